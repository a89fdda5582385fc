#include "Defines/KVPreferences.h"

#include "Defines/KVNotices.h"
#include "Defines/KVPreferenceDomain.h"
#include "Defines/SetAside.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Random.h"
#include "Utility/Work/Work.h"
#include "XCAF/ErrorAlert.h"
#include "XCAF/UserFolders.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace KVPreferences
{
namespace
{
constexpr const char* kFolderName = "Korvalen";

/// What was read once or is open. UseFolder begins anew with another.
struct State
{
    std::mutex mMutex; // guards mDomains; never held while a domain is at work, for what it logs may read settings
    std::filesystem::path mFolder;
    std::map<std::string, std::unique_ptr<KVPreferenceDomain>, std::less<>> mDomains;
    std::once_flag mFolderOnce, mMacUUIDOnce, mMacRemoteUUIDOnce;
    std::filesystem::path mFolderPath;
    XText mMacUUID, mMacRemoteUUID;
};

std::mutex gStateMutex;
std::shared_ptr<State> gState;

/// KORVALEN_HOME may be relative, as a shell user writes it; later changes of folder mustn't move it.
std::filesystem::path GivenFolder()
{
    const char* given = std::getenv( "KORVALEN_HOME" );
    if ( not given or not *given )
        return {};
    std::error_code error;
    auto path = std::filesystem::absolute( given, error );
    return error ? std::filesystem::path( given ) : path;
}

std::shared_ptr<State> CurrentState()
{
    const std::scoped_lock lock( gStateMutex );
    if ( not gState )
    {
        gState = std::make_shared<State>();
        gState->mFolder = GivenFolder();
    }
    return gState;
}

std::filesystem::path ConfigurationFolderOf( const State& inState )
{
    return inState.mFolder.empty() ? kvr_userFolder( "XDG_CONFIG_HOME", ".config" ) / kFolderName : inState.mFolder;
}

std::optional<XFileError> KeepDamagedFile(
    const std::filesystem::path& inFile, std::span<const std::uint8_t> inBytes, const std::string& inReason )
{
    SetAside::Entry kept;
    if ( auto error = SetAside::Keep(
             SetAside::Kind::kPreferences, inBytes, u"a settings file that can't be understood", &kept ) )
        return error;
    KVNotices::Post( { u"kvPreferencesDamagedTitle", kvr_localized( u"kvPreferencesDamagedTitle" ),
        kvr_localizedFormat( u"kvPreferencesDamagedFormat", inFile, inReason, kept.mPath ), inFile } );
    return {};
}

KVPreferenceDomain& DomainOf( State& ioState, const PreferenceID& inID )
{
    const std::scoped_lock lock( ioState.mMutex );
    auto found = ioState.mDomains.find( inID.Domain() );
    if ( found == ioState.mDomains.end() )
    {
        const std::string name( inID.Domain() );
        auto domain = std::make_unique<KVPreferenceDomain>(
            ConfigurationFolderOf( ioState ) / ( name + ".plist" ), KeepDamagedFile );
        found = ioState.mDomains.emplace( name, std::move( domain ) ).first;
    }
    return *found->second;
}

/// The value of a setting as a number of some type.
template<class Number, class Read>
ErrorCode GetNumber( const PreferenceID& inID, Number* outValue, Number inDefault, Read inRead )
{
    XAssert( outValue != nullptr );
    if ( outValue == nullptr )
        return kBadTarget;
    *outValue = inDefault;
    const auto value = GetPropertyList( inID );
    const XPlistNumber* number = value.AsNumber();
    return number and inRead( *number, *outValue ) ? kFound : kNotFound;
}

/// A name of one folder, so that a setting can't lead out of the data folder.
bool IsFolderName( TextView inName )
{
    return not inName.empty() and inName != u"." and inName != u".." and
        inName.find_first_of( TextView( u"/\0", 2 ) ) == TextView::npos;
}

bool IsValidUUID( const XText& inUUID )
{
    const Text uuid = inUUID.GetText();
    return uuid.size() >= 8 and uuid.size() <= 64 and std::ranges::all_of( uuid, []( char16_t inUnit ) {
        return inUnit == u'-' or ( inUnit >= u'0' and inUnit <= u'9' ) or ( inUnit >= u'a' and inUnit <= u'z' ) or
            ( inUnit >= u'A' and inUnit <= u'Z' );
    } );
}

/// A write that failed is tried again by itself, after a delay that grows while it goes on failing.
struct Retries
{
    explicit Retries( XWork& inWork ) : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.Preferences" ) ) {}

    const std::shared_ptr<XQueue> mQueue;
    std::mutex mMutex;
    bool mIsPending = false;
    double mDelay = 0;
};

void RetryLater()
{
    constexpr double kFirstDelay = 1, kLongestDelay = 300;
    Retries& retries = XWork::Current().Shared<Retries>();
    const std::scoped_lock lock( retries.mMutex );
    if ( std::exchange( retries.mIsPending, true ) )
        return;
    retries.mDelay = std::clamp( 2 * retries.mDelay, kFirstDelay, kLongestDelay );
    retries.mQueue->After( retries.mDelay, [&retries] {
        const bool isDone = WriteUnsaved();
        {
            const std::scoped_lock relock( retries.mMutex );
            retries.mIsPending = false;
            if ( isDone )
                retries.mDelay = 0;
        }
        if ( not isDone )
            RetryLater();
    } );
}

/// One of the two identities of this computer, and what to say when a damaged one is replaced.
struct IdentityKind
{
    PreferenceID mID;
    const char* mLogLine;
    TextView mTitle, mFormat;
};
constexpr IdentityKind kMacUUIDKind{ kMacUUIDID, "Regenerating MacUUID", u"kvRegeneratedMacUUIDTitle",
    u"kvRegeneratedMacUUIDFormat" };
constexpr IdentityKind kMacRemoteUUIDKind{ kMacRemoteUUIDID, "Regenerating MacRemoteUUID",
    u"kvRegeneratedMacRemoteUUIDTitle", u"kvRegeneratedMacRemoteUUIDFormat" };

/// What came to pass under a name that the user never sees, so it's told: groups that were disabled here, for one.
void TellReplacedUUID( const IdentityKind& inKind, const XText& inOld, const XText& inNew )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", inKind.mLogLine );
    KVNotices::Post( { Text( inKind.mTitle ), kvr_localized( inKind.mTitle ),
        kvr_localizedFormat( inKind.mFormat, inOld, inNew ), {} } );
}

__SafeCFPropertyList ChangeIn( State& ioState, const PreferenceID& inID,
    const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange )
{
    KVPreferenceDomain& domain = DomainOf( ioState, inID );
    auto value = domain.Change( inID.Key(), inChange );
    if ( not domain.WriteUnsaved() )
        RetryLater();
    return value;
}

XText ReadOrMakeUUID( State& ioState, const IdentityKind& inKind )
{
    XText replaced;
    const auto MakeIfNeeded = [&]( const __SafeCFPropertyList& inOld ) {
        const XText old = CFContainer<XPlistString>::Share( inOld.AsString() );
        if ( IsValidUUID( old ) )
            return inOld;
        replaced = old;
        return __SafeCFPropertyList::String( uuidString() );
    };
    const auto value = ChangeIn( ioState, inKind.mID, MakeIfNeeded );
    const XText uuid = CFContainer<XPlistString>::Share( value.AsString() );
    if ( not replaced.IsEmpty() )
        TellReplacedUUID( inKind, replaced, uuid );
    return uuid;
}

std::filesystem::path MadeFolder( std::filesystem::path inFolder )
{
    if ( const auto error = MakeFolders( inFolder ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "KVPreferences %s", error->Describe() );
    return inFolder;
}

std::filesystem::path OwnFolder()
{
    Text name = Get( kPreferenceFolderNameID, u"" ).GetText();
    if ( not IsFolderName( name ) )
        name = TextFromASCII( kFolderName );
    return kvr_userFolder( "XDG_DATA_HOME", ".local/share" ) / UTF8FromText( name );
}

std::filesystem::path FindFolderPath( State& ioState )
{
    if ( not ioState.mFolder.empty() )
        return MadeFolder( ioState.mFolder );
    // There never was another place for them on this kind of system.
    return FolderOfKinds( {}, OwnFolder() );
}
} // namespace

__SafeCFPropertyList GetPropertyList( const PreferenceID& inID )
{
    return DomainOf( *CurrentState(), inID ).Get( inID.Key() );
}

bool Copy( const PreferenceID& inID, __SafeCFPropertyList& outValue )
{
    outValue = GetPropertyList( inID );
    return bool( outValue );
}

XText Get( const PreferenceID& inID, const XText& inDefault )
{
    const auto value = GetPropertyList( inID );
    return value.AsString() ? XText( CFContainer<XPlistString>::Share( value.AsString() ) ) : inDefault;
}

void Copy( const PreferenceID& inID, CFContainer<XPlistString>& outText, const XText& inDefault )
{
    outText = Get( inID, inDefault ).GetString();
}

ErrorCode Get( const PreferenceID& inID, bool* outValue, bool inDefault )
{
    XAssert( outValue != nullptr );
    if ( outValue == nullptr )
        return kBadTarget;
    const auto value = GetPropertyList( inID );
    const XPlistBoolean* flag = value.AsBoolean();
    *outValue = flag ? flag->GetValue() : inDefault;
    return flag ? kFound : kNotFound;
}

ErrorCode Get( const PreferenceID& inID, std::uint32_t* outValue, std::uint32_t inDefault )
{
    return GetNumber( inID, outValue, inDefault, []( const XPlistNumber& inNumber, std::uint32_t& ioValue ) {
        std::int64_t number = 0;
        const bool fits = inNumber.Get( number ) and number >= 0 and number <= std::int64_t( UINT32_MAX );
        if ( fits )
            ioValue = std::uint32_t( number );
        return fits;
    } );
}

ErrorCode Get( const PreferenceID& inID, std::int64_t* outValue, std::int64_t inDefault )
{
    return GetNumber( inID, outValue, inDefault,
        []( const XPlistNumber& inNumber, std::int64_t& ioValue ) { return inNumber.Get( ioValue ); } );
}

ErrorCode Get( const PreferenceID& inID, float* outValue, float inDefault )
{
    return GetNumber( inID, outValue, inDefault, []( const XPlistNumber& inNumber, float& ioValue ) {
        ioValue = float( inNumber.AsReal() );
        return true;
    } );
}

ErrorCode Get( const PreferenceID& inID, double* outValue, double inDefault )
{
    return GetNumber( inID, outValue, inDefault, []( const XPlistNumber& inNumber, double& ioValue ) {
        ioValue = inNumber.AsReal();
        return true;
    } );
}

bool GetBoolean( const PreferenceID& inID, bool inDefault )
{
    bool value = inDefault;
    (void)Get( inID, &value, inDefault );
    return value;
}

CFContainer<XPlistArray> GetArray( const PreferenceID& inID )
{
    const auto value = GetPropertyList( inID );
    return CFContainer<XPlistArray>::Share( value.AsArray() );
}

CFContainer<XPlistDictionary> GetDictionary( const PreferenceID& inID )
{
    const auto value = GetPropertyList( inID );
    return CFContainer<XPlistDictionary>::Share( value.AsDictionary() );
}

std::optional<std::set<Text>> GetSet( const PreferenceID& inID )
{
    const auto array = GetArray( inID );
    if ( not array )
        return std::nullopt;
    std::set<Text> result;
    for ( const XPlistNode* node : array->Nodes() )
    {
        if ( const auto value = __SafeCFPropertyList( node ); value.AsString() )
            result.insert( value.AsString()->GetText() );
    }
    return result;
}

bool Set( const PreferenceID& inID, const __SafeCFPropertyList& inValue )
{
    const bool isWritten = DomainOf( *CurrentState(), inID ).Set( inID.Key(), inValue );
    if ( not isWritten )
        RetryLater();
    return isWritten;
}

bool Remove( const PreferenceID& inID )
{
    return Set( inID, __SafeCFPropertyList() );
}

bool Set( const PreferenceID& inID, const XText& inText )
{
    return Set( inID, __SafeCFPropertyList( inText ) );
}

bool SetBoolean( const PreferenceID& inID, bool inValue )
{
    return Set( inID, __SafeCFPropertyList::Boolean( inValue ) );
}

bool Set( const PreferenceID& inID, std::int64_t inValue )
{
    return Set( inID, __SafeCFPropertyList::Integer( inValue ) );
}

bool Set( const PreferenceID& inID, double inValue )
{
    return Set( inID, __SafeCFPropertyList::Real( inValue ) );
}

bool Set( const PreferenceID& inID, const std::set<Text>& inSet )
{
    XMutableArray array;
    for ( const Text& text : inSet )
        array.Append( __SafeCFPropertyList::String( text ) );
    return Set( inID, __SafeCFPropertyList( array.Seal() ) );
}

__SafeCFPropertyList Change(
    const PreferenceID& inID, const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange )
{
    return ChangeIn( *CurrentState(), inID, inChange );
}

void Start()
{
    // The log asks for them by key in the application's own domain.
    XErrorHandler::SetPreferenceSource( {
        .mText = []( TextView inKey ) -> std::optional<Text> {
            const std::string key = UTF8FromText( inKey );
            const XText text = Get( PreferenceID( kEditorDomain, key ), XText() );
            return text.IsNull() ? std::nullopt : std::optional( text.GetText() );
        },
        .mBoolean = []( TextView inKey ) -> std::optional<bool> {
            const std::string key = UTF8FromText( inKey );
            bool value = false;
            const ErrorCode code = Get( PreferenceID( kEditorDomain, key ), &value, false );
            return code == kFound ? std::optional( value ) : std::nullopt;
        },
    } );
}

bool WriteUnsaved()
{
    const auto state = CurrentState();
    std::vector<KVPreferenceDomain*> domains; // they live as long as the state
    {
        const std::scoped_lock lock( state->mMutex );
        for ( const auto& [name, domain] : state->mDomains )
            domains.push_back( domain.get() );
    }
    bool isDone = true;
    for ( KVPreferenceDomain* domain : domains )
        isDone = domain->WriteUnsaved() and isDone;
    return isDone;
}

void Finish()
{
    if ( not WriteUnsaved() )
        ErrorAlert::ShowText( XAlertStyle::kWarning, nullptr, kvr_localized( u"kvPreferencesNotSavedTitle" ),
            kvr_localizedFormat( u"kvPreferencesNotSavedFormat", ConfigurationFolder() ) );
}

std::filesystem::path ConfigurationFolder()
{
    return ConfigurationFolderOf( *CurrentState() );
}

std::filesystem::path FolderPath()
{
    const auto state = CurrentState();
    std::call_once( state->mFolderOnce, [&] { state->mFolderPath = FindFolderPath( *state ); } );
    return state->mFolderPath;
}

std::filesystem::path PlannedFolderPath()
{
    const auto state = CurrentState();
    return state->mFolder.empty() ? OwnFolder() : state->mFolder;
}

bool FolderIsGiven()
{
    return not CurrentState()->mFolder.empty();
}

std::filesystem::path FilePath( TextView inName )
{
    return FolderPath() / UTF8FromText( inName );
}

std::filesystem::path FilePath( TextView inFolderName, TextView inName )
{
    return MadeFolder( FilePath( inFolderName ) ) / UTF8FromText( inName );
}

bool IsFolderGiven()
{
    return not CurrentState()->mFolder.empty();
}

void UseFolder( const std::filesystem::path& inFolder )
{
    auto state = std::make_shared<State>();
    state->mFolder = inFolder.empty() ? GivenFolder() : std::filesystem::absolute( inFolder );
    const std::scoped_lock lock( gStateMutex );
    gState = std::move( state );
}

XText MacUUID()
{
    const auto state = CurrentState();
    std::call_once( state->mMacUUIDOnce, [&] { state->mMacUUID = ReadOrMakeUUID( *state, kMacUUIDKind ); } );
    return state->mMacUUID;
}

XText MacRemoteUUID()
{
    const auto state = CurrentState();
    std::call_once(
        state->mMacRemoteUUIDOnce, [&] { state->mMacRemoteUUID = ReadOrMakeUUID( *state, kMacRemoteUUIDKind ); } );
    return state->mMacRemoteUUID;
}

AutoShow GetAutoShow()
{
    if ( GetBoolean( kAutoShowInsertActionByNameID, false ) )
        return AutoShow::kInsertActionByName;
    return GetBoolean( kAutoShowActionsID, true ) ? AutoShow::kActions : AutoShow::kNothing;
}

void SetAutoShow( AutoShow inAutoShow )
{
    SetBoolean( kAutoShowInsertActionByNameID, inAutoShow == AutoShow::kInsertActionByName );
    // Both at once isn't a choice of its own, so the other keeps what it was for.
    if ( inAutoShow != AutoShow::kInsertActionByName )
        SetBoolean( kAutoShowActionsID, inAutoShow == AutoShow::kActions );
}
} // namespace KVPreferences
