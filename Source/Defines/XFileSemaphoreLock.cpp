#include "Defines/XFileSemaphoreLock.h"

#include "Utility/Work/Random.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <mutex>
#include <set>

namespace
{
constexpr double kForceAfter = 10.0;
constexpr std::string_view kNameStart = "/KV";
constexpr std::size_t kNameLength = 14;
constexpr std::string_view kNameCharacters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

/// The settings whose name was seen to.
class InitializedNames
{
public:
    explicit InitializedNames( XWork& ) {}
    [[nodiscard]] bool Add( const KVPreferences::PreferenceID& inID )
    {
        const std::scoped_lock lock( mMutex );
        return mIDs.emplace( inID.Domain(), inID.Key().Name() ).second;
    }

private:
    std::mutex mMutex;
    std::set<std::pair<std::string_view, std::string_view>> mIDs;
};

std::string NameFrom( const KVPreferences::PreferenceID& inID )
{
    return UTF8FromText( KVPreferences::Get( inID, u"" ).GetText() );
}

/// Both applications make names of this form. Another would be opened all the same, as what it says: a path.
bool IsValidName( std::string_view inName )
{
    return inName.size() == kNameLength and inName.starts_with( kNameStart ) and
        inName.find_first_not_of( kNameCharacters, kNameStart.size() ) == std::string_view::npos;
}

std::string MakeName()
{
    std::string name( kNameStart );
    while ( name.size() < kNameLength )
        name += kNameCharacters[XRandom::Bits() % kNameCharacters.size()];
    return name;
}
} // namespace

XFileSemaphoreLock::XFileSemaphoreLock( const KVPreferences::PreferenceID& inPreferenceID )
{
    const std::string sharinglockname = NameFrom( inPreferenceID );
    XAssertText( IsValidName( sharinglockname ), "sharinglockname" );
    if ( not IsValidName( sharinglockname ) )
        return;
    // One file for the setting, not for the name, so that a name which was made anew leaves none behind.
    const std::string lockFile = "." + std::string( inPreferenceID.Key().Name() );
    mSemaphore = XFileSemaphore::lockWithPath( sharinglockname, KVPreferences::FilePath( TextFromUTF8( lockFile ) ) );
    mSemaphore->forceLockAfter( kForceAfter );
}

void XFileSemaphoreLock::InitializeSharingLockSemaphoreName( const KVPreferences::PreferenceID& inPreferenceID )
{
    if ( not XWork::Current().Shared<InitializedNames>().Add( inPreferenceID ) )
        return;
    // The engine may do the same at this moment, and two names would be two locks that exclude nobody.
    (void)KVPreferences::Change( inPreferenceID, []( const __SafeCFPropertyList& inOld ) {
        const XPlistString* const old = inOld.AsString();
        return old and IsValidName( UTF8FromText( old->GetText() ) )
            ? inOld
            : __SafeCFPropertyList::String( TextFromUTF8( MakeName() ) );
    } );
}
