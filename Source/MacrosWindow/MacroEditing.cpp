#include "MacrosWindow/MacroEditing.h"

#include "Actions/ActionLimits.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace
{
using namespace MacroEditing;
using Type = MacrosWindowChangeType;

enum class Kind : std::uint8_t { kMacro, kGroup, kSmartGroup };
constexpr std::u16string_view kKindWords[] = { u" Macro", u" Macro Group", u" Smart Group" };

Kind KindOf( const MMacroSerializedObject& inObject )
{
    return inObject.GetAsMacro() ? Kind::kMacro : inObject.GetAsMacroGroup() ? Kind::kGroup : Kind::kSmartGroup;
}

struct EditRow
{
    std::u16string_view mWord;
    Type mTypes[std::size( kKindWords )]; ///< in the order of Kind
};

constexpr EditRow kEdits[] = {
    { u"Add", { Type::kMacroAdded, Type::kMacroGroupAdded, Type::kMacroSmartGroupAdded } },
    { u"Delete", { Type::kMacroDeleted, Type::kMacroGroupDeleted, Type::kMacroSmartGroupDeleted } },
    { u"Duplicate", { Type::kMacroAdded, Type::kMacroGroupAdded, Type::kMacroSmartGroupAdded } },
    { u"Enable", { Type::kMacroChanged, Type::kMacroGroupChanged, Type::kMacroSmartGroupChanged } },
    { u"Disable", { Type::kMacroChanged, Type::kMacroGroupChanged, Type::kMacroSmartGroupChanged } },
    { u"Move", { Type::kMacroMoved, Type::kReserved, Type::kReserved } },
    { u"Rename", { Type::kMacroChanged, Type::kMacroGroupChanged, Type::kMacroSmartGroupChanged } },
    { u"Restore", { Type::kMacroAdded, Type::kMacroGroupAdded, Type::kMacroSmartGroupAdded } },
};
static_assert( std::size( kEdits ) == std::size_t( Edit::kRestore ) + 1 );

const EditRow& RowOf( Edit inEdit )
{
    return kEdits[std::size_t( inEdit )];
}

/// The only kind that there is among them; absent for a mix.
std::optional<Kind> OnlyKind( const Objects& inObjects )
{
    std::set<Kind> kinds;
    for ( const MMacroSerializedObject* const object : inObjects )
        kinds.insert( KindOf( *object ) );
    return kinds.size() == 1 ? std::optional( *kinds.begin() ) : std::nullopt;
}

// One change for each kind; the same title keeps them one undo step.
void Note( Edit inEdit, const Objects& inObjects )
{
    const Text title = UndoTitle( inEdit, inObjects );
    for ( const Kind kind : { Kind::kSmartGroup, Kind::kGroup, Kind::kMacro } )
    {
        MacrosWindowChange change;
        change.mType = RowOf( inEdit ).mTypes[std::size_t( kind )];
        for ( MMacroSerializedObject* const object : inObjects )
        {
            if ( KindOf( *object ) == kind )
                change.mObjects.insert( object );
        }
        if ( not change.mObjects.empty() )
            MacrosWindowInterface::NoteChange( title, change );
    }
}

MMacroDomain& Domain()
{
    return *MMacroDomain::Get();
}

void AppendMacrosOf( MMacroSerializedObject& inObject, std::vector<MMacro*>& ioMacros )
{
    if ( MMacro* const macro = inObject.GetAsMacro() )
        ioMacros.push_back( macro );
    else if ( const MMacroGroup* const group = inObject.GetAsMacroGroup() )
        group->GetEveryMacro( ioMacros );
}

/// Named as a copy, and where it belongs.
MMacroSerializedObject* InsertCopy( const MMacroSerializedObject& inObject )
{
    const auto insert = [&inObject]( auto inCopy, const auto& inInsert ) -> MMacroSerializedObject* {
        MMacroSerializedObject* const copy = inCopy.get();
        copy->SetName( inObject.GetName() + u" copy" );
        inInsert( std::move( inCopy ) );
        return copy;
    };
    if ( const MMacro* const macro = inObject.GetAsMacro() )
        return insert( macro->Clone( CloneFor::kDuplicate ),
            [macro]( auto copy ) { macro->GetOwningGroup()->InsertMacro( std::move( copy ) ); } );
    if ( const MMacroGroup* const group = inObject.GetAsMacroGroup() )
        return insert(
            group->Clone( CloneFor::kDuplicate ), []( auto copy ) { Domain().InsertMacroGroup( std::move( copy ) ); } );
    return insert( inObject.GetAsMacroSmartGroup()->Clone( CloneFor::kDuplicate ),
        []( auto copy ) { Domain().InsertMacroSmartGroup( std::move( copy ) ); } );
}

XText UIDOf( const __SafeCFPropertyList& inValue )
{
    XText uid;
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
        (void)dictionary->Get( CFSTR( "UID" ), uid );
    return uid;
}

enum class SavedKind : std::uint8_t { kMacro, kGroup, kSmartGroup };

SavedKind KindOf( const Restorable& inObject )
{
    if ( inObject.mGroup )
        return SavedKind::kMacro;
    return MMacroDomain::LooksLikeMacroGroupAndNotMacroSmartGroup( inObject.mValue ) ? SavedKind::kGroup
                                                                                     : SavedKind::kSmartGroup;
}

/// The group's settings without its macros.
__SafeCFPropertyList EmptyGroup( const __SafeCFPropertyList& inGroup )
{
    XMutableDictionary dictionary;
    if ( const XPlistDictionary* const group = inGroup.AsDictionary() )
        dictionary.SetAll( *group );
    dictionary.Set( CFSTR( "Macros" ), XMutableArray().Seal() );
    return dictionary.Seal();
}

/// Throws XException for what can't be understood, while what is there now is still there. Within an insertion.
void TryToLoad( const Restorable& inObject, SavedKind inKind )
{
    switch ( inKind )
    {
    case SavedKind::kMacro:
        (void)MMacro( inObject.mValue );
        break;
    case SavedKind::kGroup:
        (void)MMacroGroup( inObject.mValue, nullptr );
        break;
    case SavedKind::kSmartGroup:
        (void)MMacroSmartGroup( inObject.mValue );
        break;
    }
}

MMacroGroup& GroupForRestored( const __SafeCFPropertyList& inGroup )
{
    const XText uid = UIDOf( inGroup );
    if ( MMacroGroup* const group = IsEmpty( uid ) ? nullptr : MMacroSerializedObject::FindMacroGroupByUID( uid ) )
        return *group;
    auto made = std::make_unique<MMacroGroup>( EmptyGroup( inGroup ), nullptr );
    MMacroGroup& group = *made;
    Domain().InsertMacroGroup( std::move( made ) );
    return group;
}

// What has the UID now goes first, for an object that is made keeps its UID only if nobody has it.
MMacroSerializedObject* RestoreMacro( const Restorable& inObject )
{
    MMacro* const present = MMacroSerializedObject::FindMacroByUID( UIDOf( inObject.mValue ) );
    MMacroGroup& group =
        present and present->GetOwningGroup() ? *present->GetOwningGroup() : GroupForRestored( inObject.mGroup );
    if ( present )
        group.DeleteMacro( present );
    auto made = std::make_unique<MMacro>( inObject.mValue );
    MMacro* const macro = made.get();
    group.InsertMacro( std::move( made ) );
    return macro;
}

MMacroSerializedObject* RestoreGroup( const __SafeCFPropertyList& inValue )
{
    Domain().DeleteMacroGroup( MMacroSerializedObject::FindMacroGroupByUID( UIDOf( inValue ) ) );
    auto made = std::make_unique<MMacroGroup>( inValue, nullptr );
    MMacroGroup* const group = made.get();
    Domain().InsertMacroGroup( std::move( made ) );
    return group;
}

MMacroSerializedObject* RestoreSmartGroup( const __SafeCFPropertyList& inValue )
{
    Domain().DeleteMacroSmartGroup( MMacroSerializedObject::FindMacroSmartGroupByUID( UIDOf( inValue ) ) );
    auto made = std::make_unique<MMacroSmartGroup>( inValue );
    MMacroSmartGroup* const smartGroup = made.get();
    Domain().InsertMacroSmartGroup( std::move( made ) );
    return smartGroup;
}
} // namespace

Text MacroEditing::UndoTitle( Edit inEdit, const Objects& inObjects )
{
    const auto kind = OnlyKind( inObjects );
    Text title( RowOf( inEdit ).mWord );
    if ( not kind )
        return title;
    if ( inEdit == Edit::kDuplicate )
    {
        const bool isMacros = *kind == Kind::kMacro;
        if ( inObjects.size() == 1 )
            return kvr_localized( isMacros ? u"kvDuplicate1Macro" : u"kvDuplicate1MacroGroup" );
        return kvr_localizedFormat(
            isMacros ? u"kvDuplicateNMacros" : u"kvDuplicateNMacroGroups", int( inObjects.size() ) );
    }
    const bool isNewGroup = inEdit == Edit::kAdd and *kind == Kind::kGroup;
    return title + Text( isNewGroup ? u" Group" : kKindWords[std::size_t( *kind )] );
}

Objects MacroEditing::WithoutNested( const Objects& inObjects )
{
    const std::set<const MMacroSerializedObject*> all( inObjects.begin(), inObjects.end() );
    std::set<const MMacroSerializedObject*> taken;
    Objects result;
    for ( MMacroSerializedObject* const object : inObjects )
    {
        const MMacro* const macro = object->GetAsMacro();
        if ( ( not macro or not all.contains( macro->GetOwningGroup() ) ) and taken.insert( object ).second )
            result.push_back( object );
    }
    return result;
}

MMacroGroup& MacroEditing::AddGroup( const XText& inName )
{
    MMacroInsertion::Start();
    auto made = std::make_unique<MMacroGroup>();
    MMacroGroup& group = *made;
    group.SetTimesIfNotSet();
    group.SetName( inName );
    Domain().InsertMacroGroup( std::move( made ) );
    MMacroInsertion::Finish( Objects{ &group } );
    Note( Edit::kAdd, { &group } );
    return group;
}

MMacroSmartGroup& MacroEditing::AddSmartGroup( const XText& inName, std::vector<XText> inSearchStrings )
{
    MMacroInsertion::Start();
    auto made = std::make_unique<MMacroSmartGroup>();
    MMacroSmartGroup& smartGroup = *made;
    smartGroup.SetTimesIfNotSet();
    smartGroup.SetName( inName );
    if ( not inSearchStrings.empty() )
        smartGroup.SetSearchStrings( std::move( inSearchStrings ) );
    Domain().InsertMacroSmartGroup( std::move( made ) );
    MMacroInsertion::Finish( Objects{ &smartGroup } );
    Note( Edit::kAdd, { &smartGroup } );
    return smartGroup;
}

MMacro& MacroEditing::AddMacro( const XText& inName, MMacroGroup& ioGroup )
{
    MMacroInsertion::Start();
    auto made = std::make_unique<MMacro>();
    MMacro& macro = *made;
    macro.SetTimesIfNotSet();
    macro.SetName( inName );
    ioGroup.InsertMacro( std::move( made ) );
    MMacroInsertion::Finish( std::vector<MMacro*>{ &macro } );
    Note( Edit::kAdd, { &macro } );
    return macro;
}

Objects MacroEditing::Rename( const std::vector<std::pair<MMacroSerializedObject*, XText>>& inNames )
{
    Objects renamed;
    for ( const auto& [object, name] : inNames )
    {
        const Text before = object->GetName();
        object->SetName( name );
        if ( object->GetName() == before )
            continue;
        if ( MMacro* const macro = object->GetAsMacro() )
            macro->SetModificationTime( XClock::Current().Now() );
        renamed.push_back( object );
    }
    Note( Edit::kRename, renamed );
    return renamed;
}

Objects MacroEditing::SetActive( const Objects& inObjects, bool inActive )
{
    Objects changed;
    for ( MMacroSerializedObject* const object : inObjects )
    {
        if ( object->IsActive() == inActive )
            continue;
        object->SetIsActive( inActive );
        changed.push_back( object );
    }
    Note( inActive ? Edit::kEnable : Edit::kDisable, changed );
    return changed;
}

void MacroEditing::Delete( const Objects& inObjects )
{
    const Objects objects = WithoutNested( inObjects );
    const Text title = UndoTitle( Edit::kDelete, objects );
    std::set<Kind> gone;
    for ( MMacroSerializedObject* const object : objects )
    {
        const Kind kind = KindOf( *object );
        MMacroGroup* const group = object->GetAsMacroGroup();
        const bool stays = group and group->IsDefaultMacroGroup();
        if ( MMacro* const macro = object->GetAsMacro() )
            macro->GetOwningGroup()->DeleteMacro( macro );
        else
            Domain().DeleteMacroGroupEntry( object );
        if ( not stays )
            gone.insert( kind );
    }
    // The objects aren't named: a window that looked at one would look at freed memory.
    for ( const Kind kind : gone )
    {
        MacrosWindowChange change;
        change.mType = RowOf( Edit::kDelete ).mTypes[std::size_t( kind )];
        MacrosWindowInterface::NoteChange( title, change );
    }
}

Objects MacroEditing::Move( const std::vector<MMacro*>& inMacros, MMacroGroup& ioGroup )
{
    Objects moved;
    for ( MMacro* const macro : inMacros )
    {
        MMacroGroup* const from = macro->GetOwningGroup();
        if ( from == &ioGroup )
            continue;
        from->RemoveMacro( macro );
        ioGroup.InsertMacro( std::unique_ptr<MMacro>( macro ) );
        moved.push_back( macro );
    }
    Note( Edit::kMove, moved );
    return moved;
}

Objects MacroEditing::Duplicate( const Objects& inObjects )
{
    Objects copies;
    std::vector<MMacro*> macros;
    MMacroInsertion::Start();
    for ( const MMacroSerializedObject* const object : WithoutNested( inObjects ) )
    {
        copies.push_back( InsertCopy( *object ) );
        AppendMacrosOf( *copies.back(), macros );
    }
    MMacroInsertion::Finish( macros );
    Note( Edit::kDuplicate, copies );
    return copies;
}

MMacroSerializedObject* MacroEditing::Restore( const Restorable& inObject )
{
    try
    {
        const SavedKind kind = KindOf( inObject );
        MMacroInsertion::Start();
        TryToLoad( inObject, kind );
        // The trial has left its mappings behind.
        MMacroInsertion::Finish();
        MMacroInsertion::Start();
        MMacroSerializedObject* const restored = kind == SavedKind::kMacro ? RestoreMacro( inObject )
            : kind == SavedKind::kGroup                                    ? RestoreGroup( inObject.mValue )
                                                                           : RestoreSmartGroup( inObject.mValue );
        std::vector<MMacro*> macros;
        AppendMacrosOf( *restored, macros );
        MMacroInsertion::Finish( macros );
        Note( Edit::kRestore, { restored } );
        return restored;
    }
    catch ( const XException& exception )
    {
        if ( MMacroInsertion::CurrentlyInserting() )
            MMacroInsertion::Finish();
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't restore: %@", TextFromUTF8( exception.what() ) );
        return nullptr;
    }
}

std::optional<std::string> MacroEditing::ReplaceAllMacros( const MMacroFileDataPtr& inData, const Text& inTitle )
{
    const XPlistReadResult properties = ReadPropertyList( inData->Span(), kActionsPlistLimits );
    if ( not properties.mValue )
        return "it can't be understood as a property list";
    const XPlistDictionary* const dictionary = properties.mValue.AsDictionary();
    CFContainer<XPlistArray> groups;
    if ( not dictionary or not dictionary->Get( CFSTR( "MacroGroups" ), groups ) )
        return "it is a property list, but no macros file";
    // The title makes the state of now an undo step. The save that it asks for is made at once: a moment later it would
    // write over the bytes, or be made first by the reload.
    MacrosWindowUndo::SaveAllMacrosIfNecessary();
    MacrosWindowUndo::PrivateSaveAllMacrosSoon( inTitle );
    MacrosWindowUndo::SaveAllMacrosIfNecessary();
    MMacroPreferenceFile::UndoRedoMacroData( inData );
    MacrosWindowUndo::HandleReloadMacros();
    return {};
}
