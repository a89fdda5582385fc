// The order of an import: look through all of it, force the pending save, merge, tell the windows once. The look finds
// whatever a file can do to make the merge throw; should the merge throw all the same, the model is loaded again
// from the bytes of the last save, which are the model as it was.
#include "MacrosWindow/MacroImport.h"

#include "Actions/ActionLimits.h"
#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "CFMethods/PropertyListCodec.h"
#include "Macros/ImportedLibraries.h"
#include "Macros/MLoadDrops.h"
#include "Macros/MLoadReasons.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/PathHelpers.h"
#include "Utility/Text/StringHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <set>

namespace
{
using MacroImport::Named;
using MacroImport::Options;
using MacroImport::Result;

Result Refused( Text inError )
{
    Result result;
    result.mError = std::move( inError );
    return result;
}

Named NamedOf( const MMacroSerializedObject& inObject )
{
    return { inObject.GetUID(), inObject.GetName() };
}

bool ComesInDisabled( const Options& inOptions )
{
    if ( inOptions.mDisabled != ImportMacrosDisabledType::kByOptionKey )
        return inOptions.mDisabled == ImportMacrosDisabledType::kDisabled;
    const bool isHeld = inOptions.mIsOptionKeyHeld.value_or(
        ( Platform::Current().Workspace().ModifierFlags() & kAllModifiers ) == kModifierOption );
    return not isHeld;
}

// "element 3, “Letters”"
Text ElementWords( const __SafeCFPropertyList& inElement, std::size_t inIndex )
{
    XText name;
    if ( inElement.AsDictionary() )
        (void)inElement.AsDictionary()->Get( CFSTR( "Name" ), name );
    return name.IsEmpty() ? kvr_localizedFormat( u"ImportElementFormat", inIndex + 1 )
                          : kvr_localizedFormat( u"ImportNamedElementFormat", inIndex + 1, name );
}

Text BadElement( const __SafeCFPropertyList& inElement, std::size_t inIndex, TextView inListKey, TextView inReason )
{
    return kvr_localizedFormat( u"ImportBadElementFormat", ElementWords( inElement, inIndex ),
        DropReasonOf( inElement, inListKey, inReason ).mText );
}

// What merging would throw for, by the same reads.
std::optional<Text> FaultOf( const __SafeCFPropertyList& inArray )
{
    const XPlistArray* const array = inArray.AsArray();
    if ( not array or array->GetCount() == 0 )
        return kvr_localized( u"ImportNoMacros" );
    std::size_t count = 0;
    for ( std::size_t i = 0; i < array->GetCount(); ++i )
    {
        const __SafeCFPropertyList element = array->GetValueAt( i );
        const XPlistDictionary* const dictionary = element.AsDictionary();
        if ( not dictionary )
            return BadElement( element, i, u"MacroGroups", u"dictionary && dictionary->IsCorrectTypeID()" );
        CFContainer<XPlistArray> macros, strings;
        if ( dictionary->Get( CFSTR( "Macros" ), macros ) )
            count += macros->GetCount();
        else if ( not dictionary->Get( CFSTR( "SearchStrings" ), strings ) )
            return BadElement( element, i, u"MacroGroups", u"dictionary->Get( CFSTR(\"SearchStrings\"), strings )" );
    }
    if ( count > MacroImport::kMostMacros )
        return kvr_localizedFormat( u"ImportTooManyMacrosFormat", count, MacroImport::kMostMacros );
    return {};
}

class Merge
{
public:
    Merge( MMacroDomain& inDomain, const __SafeCFPropertyList& inArray, bool inDisable )
        : mDomain( inDomain ),
          mArray( inArray ),
          mDisable( inDisable )
    {
        mDomain.DoForEveryMacroGroup( [this]( MMacroGroup& group ) { mGroupsBefore.insert( &group ); } );
    }

    [[nodiscard]] Result Run()
    {
        try
        {
            const MLoadObserver::Scope scope( mDrops );
            (void)mDomain.MergePropertyListFromArray( mArray, mDisable, mMacros, mSmartGroups );
        }
        catch ( const XException& exception )
        {
            return RolledBack( exception.GetMessage() );
        }
        catch ( const std::exception& exception )
        {
            return RolledBack( TextFromUTF8( exception.what() ) );
        }
        return WhatCame();
    }
    void TellWindows( const void* inSource ) const;

private:
    [[nodiscard]] Result RolledBack( const Text& inReason );
    [[nodiscard]] Result WhatCame();
    void NoteJoined( std::vector<MacroImport::Joined>& ioJoined, const MMacroGroup& inGroup ) const;

    MMacroDomain& mDomain;
    const __SafeCFPropertyList& mArray;
    bool mDisable;
    std::set<const MMacroGroup*> mGroupsBefore;
    std::vector<MMacroGroup*> mNewGroups;
    std::vector<MMacro*> mMacros;
    std::vector<MMacroSmartGroup*> mSmartGroups;
    MLoadDrops mDrops;
};

// Pointers into the model are gone behind this.
Result Merge::RolledBack( const Text& inReason )
{
    if ( MMacroInsertion::CurrentlyInserting() )
        MMacroInsertion::Finish();
    XAssertText( MMacroPreferenceFile::SavedData() != nullptr, "MMacroPreferenceFile::SavedData()" );
    if ( MMacroPreferenceFile::SavedData() )
    {
        const CFContainer<XPlistDictionary> selection = MacrosWindowInterface::SavedSelectionState();
        MMacroPreferenceFile::ReloadAllMacros();
        MacrosWindowInterface::DidReloadMacros( __SafeCFPropertyList( selection ) );
    }
    return Refused( kvr_localizedFormat( u"ImportStoppedFormat", mDrops.LastName(), inReason ) );
}

void Merge::NoteJoined( std::vector<MacroImport::Joined>& ioJoined, const MMacroGroup& inGroup ) const
{
    const auto found = std::ranges::find_if(
        ioJoined, [&inGroup]( const MacroImport::Joined& joined ) { return joined.mGroup.mUID == inGroup.GetUID(); } );
    if ( found == ioJoined.end() )
        ioJoined.push_back( { NamedOf( inGroup ), 1 } );
    else
        ++found->mMacros;
}

Result Merge::WhatCame()
{
    Result result;
    result.mCameInDisabled = mDisable;
    mDomain.DoForEveryMacroGroup( [this]( MMacroGroup& group ) {
        if ( not mGroupsBefore.contains( &group ) )
            mNewGroups.push_back( &group );
    } );
    std::ranges::sort( mNewGroups, {}, &MMacroGroup::GetSerialNumber );
    for ( const MMacroGroup* const group : mNewGroups )
        result.mGroups.push_back( NamedOf( *group ) );
    for ( const MMacroSmartGroup* const smartGroup : mSmartGroups )
        result.mSmartGroups.push_back( NamedOf( *smartGroup ) );
    for ( const MMacro* const macro : mMacros )
    {
        result.mMacros.push_back( NamedOf( *macro ) );
        result.mAbilities.Add( *macro );
        const MMacroGroup* const group = macro->GetOwningGroup();
        if ( not mGroupsBefore.contains( group ) )
            continue;
        NoteJoined( result.mMerged, *group );
        if ( macro->IsActive() and not group->IsActive() )
            NoteJoined( result.mEnabledInGroupsThatAreOff, *group );
    }
    result.mLeftOut = mDrops.Describe( mArray );
    return result;
}

// Each kind of object is a change of its own; only the last has the title, so that all of it is one undo step.
void Merge::TellWindows( const void* inSource ) const
{
    std::vector<MacrosWindowChange> changes;
    std::set<MMacroSerializedObject*> all;
    const auto add = [&]( MacrosWindowChangeType type, const auto& objects ) {
        if ( objects.empty() )
            return;
        MacrosWindowChange change;
        change.mType = type;
        change.mSource = inSource;
        change.mObjects.insert( objects.begin(), objects.end() );
        all.insert( objects.begin(), objects.end() );
        changes.push_back( std::move( change ) );
    };
    add( MacrosWindowChangeType::kMacroGroupAdded, mNewGroups );
    add( MacrosWindowChangeType::kMacroSmartGroupAdded, mSmartGroups );
    add( MacrosWindowChangeType::kMacroAdded, mMacros );
    for ( std::size_t i = 0; i < changes.size(); ++i )
    {
        const bool isLast = i + 1 == changes.size();
        if ( isLast )
        {
            changes[i].mSelect = MacrosWindowChangeSelect::kSelect;
            changes[i].mSelectObjects = all;
        }
        MacrosWindowInterface::NoteChange(
            isLast ? std::optional( kvr_localized( u"kvImportUndoTitle" ) ) : std::nullopt, changes[i] );
    }
}

// Actions, within an insertion that the caller finishes. Null and the reason when one can't be made.
std::unique_ptr<HActionList> MakeActions( const XPlistArray& inArray, Text& outError )
{
    auto actions = std::make_unique<HActionList>();
    for ( std::size_t i = 0; i < inArray.GetCount(); ++i )
    {
        const __SafeCFPropertyList element = inArray.GetValueAt( i );
        try
        {
            actions->AppendAction( HBaseAction::CreateFromPropertyList( element ) );
        }
        catch ( const XException& exception )
        {
            outError = BadElement( element, i, u"Actions", exception.GetMessage() );
            return nullptr;
        }
    }
    return actions;
}

void MoveActions( HActionList& ioFrom, HActionList& ioTo, std::vector<HBaseAction*>& outMoved )
{
    while ( not ioFrom.Empty() )
    {
        auto action = ioFrom.ExtractAndRemoveAction( 0 );
        outMoved.push_back( action.get() );
        ioTo.AppendAction( std::move( action ) );
    }
}

void NoteMacroChanged( MMacro& ioMacro, const void* inSource )
{
    if ( not ioMacro.GetExcludeFromModificationTime() )
        ioMacro.SetModificationTime( XClock::Current().Now() );
    ioMacro.EditorChangedActionList();
    MacrosWindowChange change;
    change.mType = MacrosWindowChangeType::kMacroChanged;
    change.mSource = inSource;
    change.mObjects = { &ioMacro };
    MacrosWindowInterface::NoteChange( kvr_localized( u"kvImportUndoTitle" ), change );
}

// The import of a library that came in before makes a second copy of it: nobody wants that by mistake.
bool MayImportAgain( const Options& inOptions )
{
    if ( inOptions.mImportsLibraryAgain )
        return true;
    bool again = false;
    const XAlert alert{ XAlertStyle::kInformational, kvr_localized( u"ImportLibraryAgainTitle" ),
        kvr_localized( u"ImportLibraryAgainText" ),
        { kvr_localized( u"kvCancelButton" ), kvr_localized( u"ImportLibraryAgainButton" ) } };
    Platform::Current().Alerts().ShowAlert(
        alert, [&again]( std::optional<std::size_t> button ) { again = button == std::size_t( 1 ); } );
    return again;
}

struct ReadFile
{
    __SafeCFPropertyList mValue;
    Text mError;
};

ReadFile ReadValue( const std::filesystem::path& inFile )
{
    // Opening a pipe would wait for whoever writes it.
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( inFile, facts ) == 0 and facts.mKind != XFileStatus::Kind::kRegular )
        return { {}, kvr_localizedFormat( u"ImportNoFileFormat", inFile ) };
    const XFileContent content = ReadWholeFile( inFile, MacroImport::kMostBytes );
    if ( content.mError )
        return { {}, kvr_localizedFormat( u"ImportCouldNotReadFormat", content.mError->Describe() ) };
    const XPlistLimits limits{ .mMaxBytes = MacroImport::kMostBytes, .mMaxDepth = kActionsPlistLimits.mMaxDepth };
    const XPlistReadResult read = ReadPropertyList( content.mBytes.Span(), limits );
    if ( read.mFault )
        return { {}, kvr_localizedFormat( u"ImportNotUnderstoodFormat", inFile.filename(), read.mFault->Describe() ) };
    return { read.mValue, {} };
}

bool HasScheme( TextView inURL )
{
    const std::size_t colon = inURL.find( u"://" );
    return colon != TextView::npos and colon > 0 and
        std::all_of( inURL.begin(), inURL.begin() + std::ptrdiff_t( colon ), []( char16_t unit ) {
            return ( unit >= u'a' and unit <= u'z' ) or ( unit >= u'A' and unit <= u'Z' ) or
                ( unit >= u'0' and unit <= u'9' ) or unit == u'+' or unit == u'-' or unit == u'.';
        } );
}

// Absent for an escape that is cut off or names NUL, which no path holds.
std::optional<std::string> PercentDecoded( TextView inText )
{
    std::string bytes;
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        if ( inText[i] != u'%' )
        {
            std::size_t at = i;
            (void)kvr_nextCharacter( inText, at );
            bytes += UTF8FromText( inText.substr( i, at - i ) );
            i = at - 1;
            continue;
        }
        const int high = i + 2 < inText.size() ? kvr_hexValue( inText[i + 1] ) : -1;
        const int low = i + 2 < inText.size() ? kvr_hexValue( inText[i + 2] ) : -1;
        if ( high < 0 or low < 0 or high + low == 0 )
            return {};
        bytes += char( high * 16 + low );
        i += 2;
    }
    return bytes;
}
} // namespace

std::optional<std::filesystem::path> MacroImport::LocalFileOfURL( TextView inURL )
{
    if ( inURL.empty() or inURL.find( u'\0' ) != TextView::npos )
        return {};
    if ( not kvr_caseInsensitiveHasPrefix( inURL, u"file:" ) )
        return HasScheme( inURL ) ? std::nullopt : std::optional( std::filesystem::path( UTF8FromText( inURL ) ) );
    TextView rest = inURL.substr( 5 );
    if ( rest.starts_with( u"//" ) )
    {
        rest.remove_prefix( 2 );
        const TextView host = rest.substr( 0, rest.find( u'/' ) );
        if ( not host.empty() and not kvr_caseInsensitiveIsEqualToString( host, u"localhost" ) )
            return {};
        rest.remove_prefix( host.size() );
    }
    const auto path = PercentDecoded( rest );
    if ( not path or not path->starts_with( '/' ) )
        return {};
    return std::filesystem::path( *path );
}

Result MacroImport::importMacrosFromArray( const __SafeCFPropertyList& inArray, const Options& inOptions )
{
    MMacroDomain* const domain = MMacroDomain::Get();
    XAssert( domain );
    if ( auto fault = domain ? FaultOf( inArray ) : std::optional( kvr_localized( u"ImportNoMacros" ) ) )
        return Refused( std::move( *fault ) );
    // The saved bytes are the model now, should it have to be loaded again.
    MacrosWindowUndo::SaveAllMacrosIfNecessary();
    Merge merge( *domain, inArray, ComesInDisabled( inOptions ) );
    Result result = merge.Run();
    if ( result )
        merge.TellWindows( inOptions.mSource );
    return result;
}

Result MacroImport::ImportActions( const __SafeCFPropertyList& inValue, const Options& inOptions )
{
    if ( not inOptions.mEditedMacro )
    {
        XErrorBeep( "importFromURL must be editing a macro" );
        return Refused( kvr_localized( u"ImportActionsNeedMacro" ) );
    }
    XMutableArray wrapper;
    if ( inValue.AsDictionary() )
        wrapper.Append( inValue );
    const CFContainer<XPlistArray> array =
        inValue.AsArray() ? CFContainer<XPlistArray>::Share( inValue.AsArray() ) : wrapper.Seal();
    if ( array->GetCount() == 0 )
        return Refused( kvr_localized( u"ImportNoActions" ) );

    Result result;
    MLoadDrops drops;
    MMacroInsertion::Start();
    Text error;
    std::unique_ptr<HActionList> actions;
    {
        const MLoadObserver::Scope scope( drops );
        actions = MakeActions( *array, error );
    }
    if ( not actions )
    {
        MMacroInsertion::Finish();
        return Refused( std::move( error ) );
    }
    MMacro& macro = *inOptions.mEditedMacro;
    result.mActions = std::size_t( actions->GetCount() );
    result.mAbilities.Add( *actions, macro.GetName() );
    std::vector<HBaseAction*> moved;
    MoveActions( *actions, *macro.GetActionList(), moved );
    MMacroInsertion::Finish( moved );
    result.mLeftOut = drops.Describe( __SafeCFPropertyList( array ) );
    NoteMacroChanged( macro, inOptions.mSource );
    return result;
}

Result MacroImport::ImportLibrary( const __SafeCFPropertyList& inLibrary, const Options& inOptions )
{
    const XPlistDictionary* const library = inLibrary.AsDictionary();
    CFContainer<XPlistArray> items;
    if ( not library or not library->Get( CFSTR( "Items" ), items ) )
        return Refused( kvr_localized( u"ImportNoLibrary" ) );
    XText uid;
    (void)library->Get( CFSTR( "UID" ), uid );
    if ( not uid.IsEmpty() and ImportedLibraries::WasImported( uid.GetText() ) and not MayImportAgain( inOptions ) )
        return Refused( kvr_localized( u"ImportLibraryWasImported" ) );
    Result result = importMacrosFromArray( __SafeCFPropertyList( items ), inOptions );
    if ( result and not uid.IsEmpty() )
        ImportedLibraries::Imported( uid.GetText() );
    return result;
}

Result MacroImport::ImportFile( const std::filesystem::path& inFile, const Options& inOptions )
{
    using Import = Result ( * )( const __SafeCFPropertyList&, const Options& );
    constexpr struct
    {
        TextView mExtension;
        Import mImport;
    } kKinds[] = { { u"kvmacros", importMacrosFromArray }, { u"kvactions", ImportActions },
        { u"kvlibrary", ImportLibrary } };
    const Text extension = pathExtension( TextFromUTF8( inFile.native() ) );
    for ( const auto& [known, import] : kKinds )
    {
        if ( not kvr_caseInsensitiveIsEqualToString( extension, known ) )
            continue;
        // Before a large file is read for nothing.
        if ( import == Import( ImportActions ) and not inOptions.mEditedMacro )
            return ImportActions( nullptr, inOptions );
        const ReadFile file = ReadValue( inFile );
        return file.mValue ? import( file.mValue, inOptions ) : Refused( file.mError );
    }
    XErrorBeep( "importFromURL unknown file extension for %@", inFile );
    return Refused( kvr_localizedFormat( u"ImportUnknownExtensionFormat", inFile.filename() ) );
}

Result MacroImport::importFromURL( TextView inURL, const Options& inOptions )
{
    const auto file = LocalFileOfURL( inURL );
    return file ? ImportFile( *file, inOptions ) : Refused( kvr_localizedFormat( u"ImportNotLocalFormat", inURL ) );
}

Result MacroImport::ImportFromURL( TextView inURL, ImportMacrosDisabledType inDisabled )
{
    Options options;
    options.mDisabled = inDisabled;
    Result result = importFromURL( inURL, options );
    TellUser( result );
    return result;
}
