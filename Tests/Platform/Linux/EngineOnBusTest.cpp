// With the stand-in engine as a process of its own.
#include "Platform/Linux/BusNotifier.h"
#include "Platform/Linux/LinuxPlatform.h"
#include "Platform/Linux/LinuxRunningApplications.h"
#include "Platform/ProcessNotifications.h"
#include "Tests/Platform/Linux/BusTestSupport.h"

namespace
{
class EngineOnBus : public BusTest
{
protected:
    EngineOnBus()
    {
        std::filesystem::create_directory( mFolder );
        Notifier().SetReceiver( [this]( TextView inName, const CFContainer<XPlistDictionary>&, bool inFromEngine ) {
            mHeard.push_back( UTF8FromText( inName ) + ( inFromEngine ? " from the engine" : "" ) );
        } );
        EXPECT_TRUE( mPlatform.Start( mFolder, LinuxPlatform::FolderKind::kGiven ) );
    }

    XProcessNotifier& Notifier() { return mPlatform.GetPlatform().ProcessNotifier(); }
    std::vector<std::shared_ptr<XRunningApplication>> Engines() const
    {
        return mPlatform.GetPlatform().RunningApplications().RunningApplications( u"com.tessarine.korvalen.engine" );
    }
    void Post( TextView inName ) { Notifier().Post( inName, nullptr, XProcessNotifier::Audience::kEverybody ); }
    bool HasHeard( const std::string& inLine ) const { return std::count( mHeard.begin(), mHeard.end(), inLine ) > 0; }
    /// Until the notifier has told the engine, or whatever else is under way here, is done.
    void LetGo()
    {
        bool isDone = false;
        XWork::Current().MainQueue()->After( 0.05, [&] { isDone = true; } );
        EXPECT_TRUE( Until( [&] { return isDone; } ) );
    }

    LinuxPlatform mPlatform;
    std::vector<std::string> mHeard;
};
} // namespace

TEST_F( EngineOnBus, ItHearsAndAnswersAndIsKnownToBeTheEngine )
{
    EngineProcess engine( mFolder );
    ASSERT_TRUE( engine.WaitUntilReady() );
    LetGo();
    XMutableDictionary payload;
    payload.SetInteger( CFSTR( "ID" ), 7 );
    Notifier().Post( u"KV_CheckCommunication", payload.Seal(), XProcessNotifier::Audience::kEverybody );
    EXPECT_TRUE( Until( [&] { return HasHeard( "KV_CheckCommunicationReply from the engine" ); } ) );
    engine.Command( "toggle 11111111-2222-3333-4444-555555555555 0" );
    EXPECT_TRUE( Until( [&] { return HasHeard( "KV_SetMacroEnable from the engine" ); } ) );
    EXPECT_EQ( mScratch.Read( "data/Korvalen Enable Overrides" ),
        std::string( "0:11111111-2222-3333-4444-555555555555\0", 39 ) );
    const std::string details = mScratch.Read( "data/Running Engine Details/" + std::to_string( engine.Number() ) );
    EXPECT_EQ( details.size(), 16u );
}

TEST_F( EngineOnBus, EachEngineThatComesIsToldToLoadOnce )
{
    Post( u"KV_LoadMacroFiles" ); // nobody is there
    for ( int i = 0; i < 3; ++i )
    {
        EngineProcess engine( mFolder );
        ASSERT_TRUE( engine.WaitUntilReady() );
        LetGo();
        EXPECT_TRUE( engine.WaitFor( "load 1 0 groups 0 macros unreadable" ) );
        LetGo();
        engine.Command( "quit" ); // or, at the end of the turn, killed
        EXPECT_TRUE( i == 1 or engine.WaitFor( "quit" ) );
        EXPECT_EQ( engine.Count( "load 2 0 groups 0 macros unreadable" ), 0u );
    }
}

TEST_F( EngineOnBus, TheLastLoadIsToldAgainAfterTheBusWasKilled )
{
    EngineProcess engine( mFolder );
    ASSERT_TRUE( engine.WaitUntilReady() );
    KillBus();
    ASSERT_TRUE( engine.WaitFor( "bus went" ) );
    Post( u"KV_LoadMacroFiles" );
    StartBus();
    LetGo();
    bool isTold = false;
    std::thread reader( [&] {
        isTold = engine.WaitFor( "load 1 0 groups 0 macros unreadable" );
        mLoop.Stop();
    } );
    mLoop.Run();
    reader.join();
    EXPECT_TRUE( isTold );
}

TEST_F( EngineOnBus, ItIsFoundAndEndsWhenItIsAskedTo )
{
    ::setenv( "KORVALEN_ENGINE", KORVALEN_STAND_IN_ENGINE, 1 );
    EngineProcess engine( mFolder ), ofAnother( mScratch / "another" );
    ASSERT_TRUE( engine.WaitUntilReady() );
    ASSERT_TRUE( ofAnother.WaitUntilReady() );
    const auto engines = Engines();
    ASSERT_EQ( engines.size(), 1u );
    EXPECT_EQ( engines.front()->ProcessIdentifier(), engine.Number() );
    EXPECT_EQ( engines.front()->ExecutablePath(), std::filesystem::canonical( KORVALEN_STAND_IN_ENGINE ) );
    engines.front()->terminate();
    engine.WaitForEnd();
    EXPECT_FALSE( engines.front()->IsRunning() );
    EXPECT_EQ( engine.Reap(), 0 ) << "it quit in order";
    EXPECT_TRUE( Engines().empty() );
    ::unsetenv( "KORVALEN_ENGINE" );
}

TEST_F( EngineOnBus, OneThatRefusesIsEndedByForce )
{
    EngineProcess engine( mFolder );
    ASSERT_TRUE( engine.WaitUntilReady() );
    engine.Command( "refuse-quit 1" );
    ASSERT_TRUE( engine.WaitFor( "did refuse-quit 1" ) );
    LetGo();
    Post( u"KV_QuitEngine" );
    LetGo();
    ASSERT_TRUE( engine.WaitFor( "refused to quit by KV_QuitEngine" ) );
    const auto engines = Engines();
    ASSERT_EQ( engines.size(), 1u );
    engines.front()->terminate();
    ASSERT_TRUE( engine.WaitFor( "refused to quit by SIGTERM" ) );
    EXPECT_TRUE( engines.front()->IsRunning() );
    engines.front()->forceTerminate();
    const int status = engine.Reap();
    EXPECT_TRUE( WIFSIGNALED( status ) and WTERMSIG( status ) == SIGKILL );
}

TEST_F( EngineOnBus, WhateverOwnsTheEnginesNameIsOneToo )
{
    const ChildOfTest owner( { "/bin/sh", "-c", "exec cat" } );
    EXPECT_TRUE( Engines().empty() );
    // A copy under a name that no engine has.
    std::filesystem::copy_file( KORVALEN_STAND_IN_ENGINE, mScratch / "odd" );
    const ChildOfTest odd( { mScratch / "odd" },
        { "KORVALEN_HOME=" + mFolder.native(), "DBUS_SESSION_BUS_ADDRESS=unix:path=" + mSocket } );
    ASSERT_EQ( odd.ReadLine(), "ready " + std::to_string( odd.Number() ) );
    const auto engines = Engines();
    ASSERT_EQ( engines.size(), 1u );
    EXPECT_EQ( engines.front()->ProcessIdentifier(), odd.Number() );
}
