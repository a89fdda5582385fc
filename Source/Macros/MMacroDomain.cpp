#include "Macros/MMacroDomain.h"

#include "Actions/ActionLimits.h"
#include "CFMethods/PropertyListCodec.h"
#include "ClipboardSwitcher/CSClipboardDomain.h"
#include "KorvalenVersion.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MLoadObserver.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroFileEncoder.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/RevisionDates.h"
#include "Triggers/TTriggerManagerDomain.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>

namespace
{
MMacroDomain* gMacroDomain = nullptr;

XText& SaveUUID()
{
    static XText gLastSaveUUID;
    return gLastSaveUUID;
}

XText& LoadUUID()
{
    static XText gLastLoadUUID;
    return gLastLoadUUID;
}

constexpr char16_t kUnknownVersion[] = u"1.0.0d1";

// Anything missing, non-numeric, negative or above 32 bits is 0, so that such a file takes every upgrade.
std::uint32_t ReadVersion( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    std::int64_t version = 0;
    if ( inDictionary.Get( inKey, version ) and version >= 0 and version <= 0xFFFFFFFFll )
        return std::uint32_t( version );
    if ( MLoadObserver* const observer = MLoadObserver::Current(); observer and inDictionary.Contains( inKey ) )
        observer->DidRepair( inDictionary, inKey,
            __SafeCFPropertyList( inDictionary.Find( inKey ) ).AsNumber() ? MLoadRule::kOutOfRange
                                                                          : MLoadRule::kWrongTypeDefaulted,
            u"no version number" );
    return 0;
}

template<class Object>
std::vector<Object*> SortedByUID( const auto& inObjects )
{
    std::vector<Object*> sorted( inObjects.begin(), inObjects.end() );
    std::sort( sorted.begin(), sorted.end(),
        []( const Object* a, const Object* b ) { return MMacroSerializedObject::CompareByUID( a, b ) < 0; } );
    return sorted;
}
} // namespace

MMacroDomain::MMacroDomain()
{
    XThrowIfNot( gMacroDomain == nullptr );
    gMacroDomain = this;
    CSClipboardDomain::Start();
}

MMacroDomain::~MMacroDomain()
{
    Empty();
    CSClipboardDomain::Stop();
    gMacroDomain = nullptr;
}

void MMacroDomain::Terminate()
{
    TTriggerManagerDomain::Terminate();
}

MMacroDomain* MMacroDomain::Get()
{
    return gMacroDomain;
}

void MMacroDomain::Empty()
{
    for ( MMacroGroup* const group : mMacroGroups )
        delete group;
    mMacroGroups.clear();
    for ( MMacroSmartGroup* const smartGroup : mMacroSmartGroups )
        delete smartGroup;
    mMacroSmartGroups.clear();
    MMacroFileEncoder::Forget();
}

const XText& MMacroDomain::LastSaveUUID()
{
    return SaveUUID();
}

const XText& MMacroDomain::LastLoadUUID()
{
    return LoadUUID();
}

void MMacroDomain::LoadVersions( const XPlistDictionary& inDictionary )
{
    mMacroDefaultsVersion = ReadVersion( inDictionary, CFSTR( "MacroDefaultsVersion" ) );
    mMacroPreferencesVersion = ReadVersion( inDictionary, CFSTR( "MacroPreferencesVersion" ) );
    mLastSaveDate = RevisionDates::kNoSaveDate;
    (void)inDictionary.Get( CFSTR( "PreferenceSavedDate" ), mLastSaveDate );
    LoadUUID() = nullptr;
    (void)inDictionary.Get( CFSTR( "PreferenceSaveUUID" ), LoadUUID() );
}

void MMacroDomain::LoadFromPropertyList(
    const __SafeCFPropertyList& inValue, const KVMacroEnableOverrides* inOverrides )
{
    // 1. and 2. Nothing has been destroyed when these throw.
    mLastSaveDate = u"";
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    CFContainer<XPlistArray> macroGroups;
    XThrowIfNot( dictionary->Get( CFSTR("MacroGroups"), macroGroups ) );

    // 3. and 4.
    LoadVersions( *dictionary );
    MMacroInsertion::Start();
    Empty();

    // 5. One damaged group loses that group, never the file.
    std::vector<MMacro*> macros;
    for ( std::size_t i = 0; i < macroGroups->GetCount(); ++i )
    {
        try
        {
            LoadEntry( macroGroups->GetValueAt( i ), inOverrides, macros );
        }
        catch ( const XException& exception )
        {
            if ( MLoadObserver* const observer = MLoadObserver::Current() )
                observer->DidDrop( *macroGroups, i, exception.GetMessage() );
        }
    }

    // 6. References in a file that is loaded whole are left as they are.
    MMacroInsertion::Finish();
}

void MMacroDomain::LoadEntry( const __SafeCFPropertyList& itemProperties, const KVMacroEnableOverrides* inOverrides,
    std::vector<MMacro*>& outMacros )
{
    XThrowIfNot( itemProperties );
    if ( LooksLikeMacroGroupAndNotMacroSmartGroup( itemProperties ) )
        MergeMacroGroup( std::make_unique<MMacroGroup>( itemProperties, inOverrides ), false, false, outMacros );
    else
        InsertMacroSmartGroup( std::make_unique<MMacroSmartGroup>( itemProperties ) );
}

bool MMacroDomain::LooksLikeMacroGroupAndNotMacroSmartGroup( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    CFContainer<XPlistArray> macros;
    return dictionary->Get( CFSTR( "Macros" ), macros );
}

__SafeCFPropertyList MMacroDomain::GetPropertyList()
{
    return GetPropertyListAround( CopyEntries() );
}

__SafeCFPropertyList MMacroDomain::GetSnapshotPropertyList() const
{
    return GetSnapshotPropertyListAround( CopyEntries() );
}

__SafeCFPropertyList MMacroDomain::GetPropertyListAround( CFContainer<XPlistArray> inEntries )
{
    SaveUUID() = uuidString();
    return PropertyListWith( std::move( inEntries ), SaveUUID() );
}

__SafeCFPropertyList MMacroDomain::GetSnapshotPropertyListAround( CFContainer<XPlistArray> inEntries ) const
{
    return PropertyListWith( std::move( inEntries ), uuidString() );
}

std::vector<MMacroSmartGroup*> MMacroDomain::GetSmartGroupsInFileOrder() const
{
    return SortedByUID<MMacroSmartGroup>( mMacroSmartGroups );
}

std::vector<MMacroGroup*> MMacroDomain::GetMacroGroupsInFileOrder() const
{
    return SortedByUID<MMacroGroup>( mMacroGroups );
}

CFContainer<XPlistArray> MMacroDomain::CopyEntries() const
{
    XMutableArray entries;
    for ( const MMacroSmartGroup* const smartGroup : GetSmartGroupsInFileOrder() )
        entries.Append( smartGroup->CopyToPropertyList() );
    for ( const MMacroGroup* const group : GetMacroGroupsInFileOrder() )
        entries.Append( group->CopyToPropertyList() );
    return entries.Seal();
}

__SafeCFPropertyList MMacroDomain::PropertyListWith( CFContainer<XPlistArray> inEntries, const XText& inSaveUUID ) const
{
    XMutableDictionary dictionary;
    dictionary.Set( CFSTR( "MacroGroups" ), std::move( inEntries ) );
    dictionary.SetInteger( CFSTR( "MacroDefaultsVersion" ), mMacroDefaultsVersion );
    dictionary.SetInteger( CFSTR( "MacroPreferencesVersion" ), mMacroPreferencesVersion );
    dictionary.SetText( CFSTR( "PreferenceSavedDate" ), RevisionDates::GetCurrentSaveDate() );
    dictionary.SetText( CFSTR( "PreferenceSaveUUID" ), inSaveUUID );
    dictionary.SetText( CFSTR( "Version" ), GetOurVersion() );
    return dictionary.Seal();
}

void MMacroDomain::DoForEveryMacro( const std::function<void( MMacroGroup&, MMacro& )>& inBlock ) const
{
    DoForEveryMacroGroup( [&inBlock]( MMacroGroup& group ) {
        group.DoForEveryMacro( [&]( MMacro& macro ) { inBlock( group, macro ); } );
    } );
}

// Over a copy, so that the block may insert and delete.
void MMacroDomain::DoForEveryMacroGroup( const std::function<void( MMacroGroup& )>& inBlock ) const
{
    for ( MMacroGroup* const group : std::vector( mMacroGroups.begin(), mMacroGroups.end() ) )
        inBlock( *group );
}

void MMacroDomain::DoForEveryMacroSmartGroup( const std::function<void( MMacroSmartGroup& )>& inBlock ) const
{
    for ( MMacroSmartGroup* const smartGroup : std::vector( mMacroSmartGroups.begin(), mMacroSmartGroups.end() ) )
        inBlock( *smartGroup );
}

void MMacroDomain::GetUnorderedEveryMacroGroupEntry( std::vector<MMacroSerializedObject*>& ioEntries ) const
{
    ioEntries.insert( ioEntries.end(), mMacroSmartGroups.begin(), mMacroSmartGroups.end() );
    ioEntries.insert( ioEntries.end(), mMacroGroups.begin(), mMacroGroups.end() );
}

void MMacroDomain::InsertMacroGroup( std::unique_ptr<MMacroGroup> inGroup )
{
    mMacroGroups.insert( inGroup.release() );
}

void MMacroDomain::InsertMacroSmartGroup( std::unique_ptr<MMacroSmartGroup> inSmartGroup )
{
    mMacroSmartGroups.insert( inSmartGroup.release() );
}

void MMacroDomain::DeleteMacroGroup( MMacroGroup* inGroup )
{
    if ( mMacroGroups.erase( inGroup ) > 0 )
        delete inGroup;
}

void MMacroDomain::DeleteMacroSmartGroup( MMacroSmartGroup* inSmartGroup )
{
    if ( mMacroSmartGroups.erase( inSmartGroup ) > 0 )
        delete inSmartGroup;
}

void MMacroDomain::DeleteMacroGroupEntry( MMacroSerializedObject* inEntry )
{
    if ( MMacroSmartGroup* const smartGroup = inEntry->GetAsMacroSmartGroup() )
        DeleteMacroSmartGroup( smartGroup );
    else if ( MMacroGroup* const group = inEntry->GetAsMacroGroup() )
    {
        if ( group->IsDefaultMacroGroup() )
            XAssertText( false, "false" );
        else
            DeleteMacroGroup( group );
    }
}

bool MMacroDomain::MacroGroupWithNameExists( const XText& inName ) const
{
    return std::ranges::any_of( mMacroGroups, [&inName]( const auto* group ) { return group->NameMatches( inName ); } );
}

bool MMacroDomain::MacroSmartGroupWithNameExists( const XText& inName ) const
{
    return std::ranges::any_of(
        mMacroSmartGroups, [&inName]( const auto* smartGroup ) { return smartGroup->NameMatches( inName ); } );
}

namespace
{
Text FirstFreeName( TextView inPlainKey, TextView inFormatKey, const auto& inExists )
{
    Text name = kvr_localized( inPlainKey );
    for ( int number = 2; inExists( name ); ++number )
        name = kvr_localizedFormat( inFormatKey, number );
    return name;
}
} // namespace

Text MMacroDomain::GetUntitledMacroGroupName() const
{
    return FirstFreeName( u"kvUntitledMacroGroup", u"kvUntitledMacroGroupFormat",
        [this]( const Text& name ) { return MacroGroupWithNameExists( name ); } );
}

Text MMacroDomain::GetUntitledMacroSmartGroupName() const
{
    return FirstFreeName( u"kvUntitledMacroSmartGroup", u"kvUntitledMacroSmartGroupFormat",
        [this]( const Text& name ) { return MacroSmartGroupWithNameExists( name ); } );
}

// The set is ordered by address, which says nothing; of several such groups the one that came first wins.
MMacroGroup* MMacroDomain::GetDefaultMacroGroup()
{
    const Text& name = kvr_localized( u"hkDefaultMacroGroupName" );
    MMacroGroup* first = nullptr;
    for ( MMacroGroup* const group : mMacroGroups )
    {
        if ( group->NameMatches( name ) and group->IsGloballyActive() and
            ( not first or group->GetSerialNumber() < first->GetSerialNumber() ) )
            first = group;
    }
    if ( first )
        return first;

    MMacroInsertion::Start();
    auto made = std::make_unique<MMacroGroup>();
    MMacroGroup* const group = made.get();
    group->SetName( name );
    InsertMacroGroup( std::move( made ) );
    MMacroInsertion::Finish( std::vector<MMacroSerializedObject*>{ group } );
    return group;
}

bool MMacroDomain::SetTimesIfNotSet()
{
    const XAbsoluteTime now = XClock::Current().Now();
    bool changed = false;
    for ( MMacroGroup* const group : mMacroGroups )
        changed |= group->SetTimesIfNotSet( now );
    for ( MMacroSmartGroup* const smartGroup : mMacroSmartGroups )
        changed |= smartGroup->SetTimesIfNotSet( now );
    return changed;
}

MMacroGroup* MMacroDomain::FindMergeTarget( const MMacroGroup& inGroup ) const
{
    MMacroGroup* first = nullptr;
    for ( MMacroGroup* const group : mMacroGroups )
    {
        if ( group->NameMatches( inGroup.GetName() ) and
            group->GetTarget().CompareWithSame( inGroup.GetTarget() ) == 0 and
            ( not first or group->GetSerialNumber() < first->GetSerialNumber() ) )
            first = group;
    }
    return first;
}

void MMacroDomain::MergeMacroGroup(
    std::unique_ptr<MMacroGroup> inGroup, bool inMergeWithExisting, bool inDisable, std::vector<MMacro*>& outMacros )
{
    XAssert( MMacroInsertion::CurrentlyInserting() );
    inGroup->GetEveryMacro( outMacros );
    MMacroGroup* const found = inMergeWithExisting ? FindMergeTarget( *inGroup ) : nullptr;
    if ( found )
    {
        MergeInto( *found, *inGroup, inDisable );
        return;
    }
    if ( inDisable )
        inGroup->SetIsActive( false );
    InsertMacroGroup( std::move( inGroup ) );
}

// References to the group that came in have to lead to the one that was found: so its mapping, if it has one,
// gives way to one from the UID that it had in its source.
void MMacroDomain::MergeInto( MMacroGroup& ioFound, MMacroGroup& inGroup, bool inDisable )
{
    const XText newUID = inGroup.GetUID();
    const XText oldUID = MMacroInsertion::GetReverseMapping( newUID );
    const XText foundUID = ioFound.GetUID();
    XAssertText( not IsEmpty( newUID ), "!IsEmpty( newUID )" );
    XAssertText( not IsEmpty( oldUID ), "!IsEmpty( oldUID )" );
    XAssertText( not IsEmpty( foundUID ), "!IsEmpty( foundUID )" );
    if ( not oldUID.Equals( newUID ) )
        MMacroInsertion::RemoveMapping( oldUID, newUID );
    if ( not oldUID.Equals( foundUID ) )
        MMacroInsertion::AddMapping( oldUID, foundUID );

    std::vector<MMacro*> macros;
    inGroup.GetEveryMacro( macros );
    for ( MMacro* const macro : macros )
    {
        inGroup.RemoveMacro( macro );
        ioFound.InsertMacro( std::unique_ptr<MMacro>( macro ) );
        if ( inDisable and ioFound.IsActive() )
            macro->SetIsActive( false );
    }
}

std::size_t MMacroDomain::MergePropertyListFromArray( const __SafeCFPropertyList& inArray, bool inDisable,
    std::vector<MMacro*>& outMacros, std::vector<MMacroSmartGroup*>& outSmartGroups )
{
    MMacroInsertion::Start();
    const XPlistArray* const array = inArray.AsArray();
    std::vector<MMacro*> macros;
    std::size_t smartGroups = 0;
    for ( std::size_t i = 0; array and i < array->GetCount(); ++i )
    {
        const __SafeCFPropertyList item = array->GetValueAt( i );
        XThrowIfNot( item );
        if ( LooksLikeMacroGroupAndNotMacroSmartGroup( item ) )
            MergeMacroGroup( std::make_unique<MMacroGroup>( item, nullptr ), true, inDisable, macros );
        else
        {
            auto smartGroup = std::make_unique<MMacroSmartGroup>( item );
            outSmartGroups.push_back( smartGroup.get() );
            ++smartGroups;
            InsertMacroSmartGroup( std::move( smartGroup ) );
        }
    }
    MMacroInsertion::Finish( macros );
    outMacros.insert( outMacros.end(), macros.begin(), macros.end() );
    return macros.size() + smartGroups;
}

std::size_t MMacroDomain::MergePropertyListFromArray( const __SafeCFPropertyList& inArray )
{
    std::vector<MMacro*> macros;
    std::vector<MMacroSmartGroup*> smartGroups;
    return MergePropertyListFromArray( inArray, false, macros, smartGroups );
}

Text MMacroDomain::GetOurVersion()
{
    static const Text gVersion = [] {
        const Text version = TextFromUTF8( kKorvalenVersion );
        XAssertText( not version.empty(), "version" );
        return version.empty() ? Text( kUnknownVersion ) : version;
    }();
    return gVersion;
}

Text MMacroDomain::VersionFromFileData( std::span<const std::uint8_t> inData )
{
    XAssertText( inData.data() != nullptr, "data" );
    if ( inData.data() == nullptr )
        return kUnknownVersion;
    return VersionFromPropertyList( ReadPropertyList( inData, kActionsPlistLimits ).mValue );
}

Text MMacroDomain::VersionFromPropertyList( const __SafeCFPropertyList& inProperties )
{
    XAssertText( inProperties, "properties" );
    const XPlistDictionary* const dictionary = inProperties.AsDictionary();
    if ( inProperties )
        XAssertText( dictionary, "[properties isKindOfClass:[NSDictionary class]]" );
    XText version;
    const bool found = dictionary and dictionary->Get( CFSTR( "Version" ), version );
    if ( dictionary )
        XAssertText( found, "version" );
    return found ? version.GetText() : Text( kUnknownVersion );
}
