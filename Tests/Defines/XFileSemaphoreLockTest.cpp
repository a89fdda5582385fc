#include "Defines/XFileSemaphoreLock.h"

#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <regex>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
constexpr KVPreferences::PreferenceID kNameID{ KVPreferences::kEditorDomain, "TestSemaphoreName" };

struct SemaphoreLock : testing::Test
{
    SemaphoreLock() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~SemaphoreLock() override
    {
        ::sem_unlink( Name().c_str() );
        KVPreferences::UseFolder( {} );
    }
    [[nodiscard]] static std::string Name() { return KVPreferences::Get( kNameID, u"" ).GetUTF8(); }

    ManualWorld mWorld;
    ManualSleep mSleep{ mWorld.mClock };
    ScratchFolder mFolder;
};
} // namespace

TEST_F( SemaphoreLock, ANameIsMadeOnceAndAValidOneIsKept )
{
    for ( const char16_t* bad :
        { u"", u"/KV", u"/KV1234567890", u"/KV123456789012", u"/KV12345/78901", u"KV123456789012" } )
    {
        ManualWorld world; // another run of the program
        KVPreferences::Set( kNameID, XText( bad ) );
        XFileSemaphoreLock::InitializeSharingLockSemaphoreName( kNameID );
        EXPECT_TRUE( std::regex_match( Name(), std::regex( "/KV[0-9A-Za-z]{11}" ) ) ) << Name();
    }
    ManualWorld world;
    const std::string name = Name();
    XFileSemaphoreLock::InitializeSharingLockSemaphoreName( kNameID );
    EXPECT_EQ( Name(), name );
    KVPreferences::Remove( kNameID );
    XFileSemaphoreLock::InitializeSharingLockSemaphoreName( kNameID );
    EXPECT_EQ( Name(), "" ) << "once";
}

TEST_F( SemaphoreLock, HoldsTheNamedSemaphoreForItsScope )
{
    XFileSemaphoreLock::InitializeSharingLockSemaphoreName( kNameID );
    sem_t* const raw = ::sem_open( Name().c_str(), O_CREAT, 0644, 1 );
    int value = -1;
    {
        const XFileSemaphoreLock lock( kNameID );
        ::sem_getvalue( raw, &value );
        EXPECT_EQ( value, 0 );
    }
    ::sem_getvalue( raw, &value );
    EXPECT_EQ( value, 1 );

    ASSERT_EQ( ::sem_trywait( raw ), 0 ); // another program, which then dies
    const double start = mWorld.mClock.MonotonicSeconds();
    {
        const XFileSemaphoreLock lock( kNameID );
        EXPECT_NEAR( mWorld.mClock.MonotonicSeconds() - start, 11, 0.1 );
    }
    ::sem_close( raw );
}

TEST_F( SemaphoreLock, WithoutANameNothingIsHeldAndNobodyWaits )
{
    const XFileSemaphoreLock a( kNameID ), b( kNameID );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "sharinglockname" ), 2u );
    EXPECT_EQ( mSleep.mCount, 0 );
}

TEST_F( SemaphoreLock, ProcessesThatMakeTheNameAtOneMomentAgree )
{
    // Each child is held by the pipe, and all go when it closes.
    int gate[2] = {};
    ASSERT_EQ( ::pipe( gate ), 0 );
    std::vector<pid_t> children;
    for ( int i = 0; i < 6; ++i )
    {
        const pid_t child = ::fork();
        if ( child == 0 )
        {
            ::close( gate[1] );
            char end = 0;
            (void)( ::read( gate[0], &end, 1 ) == 0 );
            KVPreferences::UseFolder( mFolder.Path() );
            XFileSemaphoreLock::InitializeSharingLockSemaphoreName( kNameID );
            mFolder.Write( "name" + std::to_string( i ), Name() );
            ::_exit( 0 );
        }
        children.push_back( child );
    }
    ::close( gate[0] );
    ::close( gate[1] );
    for ( const pid_t child : children )
        ::waitpid( child, nullptr, 0 );
    const std::string name = Name();
    EXPECT_EQ( name.size(), 14u );
    for ( std::size_t i = 0; i < children.size(); ++i )
        EXPECT_EQ( mFolder.Read( "name" + std::to_string( i ) ), name ) << i;
}
