#include "Platform/Linux/BusNotifier.h"

#include "Tests/Platform/Linux/BusTestSupport.h"
#include "Tests/Support/LogTags.h"

namespace
{
// A program of the suite: a connection with a notifier, and what it heard.
struct Program
{
    explicit Program( const std::filesystem::path& inFolder )
    {
        EXPECT_TRUE( mBus.Connect() );
        mNotifier.SetReceiver(
            [this]( TextView inName, const CFContainer<XPlistDictionary>& inPayload, bool inFromEngine ) {
                EXPECT_TRUE( XIsMainThread() );
                EXPECT_TRUE( inPayload );
                mHeard.push_back( UTF8FromText( inName ) + ( inFromEngine ? " from the engine" : "" ) );
                mPayload = inPayload;
            } );
        mNotifier.Start( inFolder );
    }
    void Post( const char16_t* inName, XProcessNotifier::Audience inAudience = XProcessNotifier::Audience::kEverybody )
    {
        mNotifier.Post( inName, nullptr, inAudience );
    }
    /// Takes the engine's name.
    void BecomeEngine( const std::filesystem::path& inFolder ) const
    {
        (void)mBus.CallBus(
            "RequestName", g_variant_new( "(su)", BusNames::EngineOf( inFolder ).c_str(), guint32( 4 ) ), "(u)" );
    }

    BusConnection mBus{ XWork::Current() };
    BusNotifier mNotifier{ mBus, XWork::Current() };
    std::vector<std::string> mHeard;
    CFContainer<XPlistDictionary> mPayload;
};
using Lines = std::vector<std::string>;
using Notifier = BusTest;
} // namespace

TEST_F( Notifier, OthersOfTheFolderHearAPostOnceAndItsMakerNot )
{
    Program one( mFolder ), two( mFolder ), elsewhere( mScratch / "other" );
    Settle( *one.mBus.Get() );
    Settle( *two.mBus.Get() );
    Settle( *elsewhere.mBus.Get() );
    XMutableDictionary payload;
    payload.SetText( CFSTR( "UID" ), u"ABC" );
    const CFContainer<XPlistDictionary> sealed = payload.Seal();
    one.mNotifier.Post( u"KV_MacroWillExecute", sealed, XProcessNotifier::Audience::kEverybody );
    one.Post( u"KV_ClipDataChanged" );
    Settle( *one.mBus.Get() );
    EXPECT_TRUE( Until( [&] { return two.mHeard.size() >= 2; } ) );
    Settle( *elsewhere.mBus.Get() );
    EXPECT_EQ( two.mHeard, ( Lines{ "KV_MacroWillExecute", "KV_ClipDataChanged" } ) );
    EXPECT_EQ( one.mHeard, Lines{} );
    EXPECT_EQ( elsewhere.mHeard, Lines{} );
}

TEST_F( Notifier, WhatRunsSomethingReachesTheOwnerOfTheEnginesNameAlone )
{
    using enum XProcessNotifier::Audience;
    const LogTags tags( u"engine", mLog );
    Program editor( mFolder ), engine( mFolder ), third( mFolder );
    Settle( *editor.mBus.Get() );
    editor.Post( u"KV_ExecuteMacro", kEngineOnly ); // nobody is the engine yet
    EXPECT_EQ( mLog.CountContaining( "KV_ExecuteMacro is dropped: there is no engine" ), 1u );
    engine.BecomeEngine( mFolder );
    Settle( *editor.mBus.Get() );
    editor.Post( u"KV_DoExecuteActions", kEngineOnly );
    editor.Post( u"KV_ClipDataChanged" );
    EXPECT_TRUE( Until( [&] { return third.mHeard.size() >= 1 and engine.mHeard.size() >= 2; } ) );
    EXPECT_EQ( engine.mHeard, ( Lines{ "KV_DoExecuteActions", "KV_ClipDataChanged" } ) );
    EXPECT_EQ( third.mHeard, Lines{ "KV_ClipDataChanged" } );
}

TEST_F( Notifier, OnlyThePresentOwnerOfTheNameIsTheEngine )
{
    Program editor( mFolder ), foreign( mFolder );
    {
        Program engine( mFolder );
        engine.BecomeEngine( mFolder );
        Settle( *engine.mBus.Get() );
        Settle( *editor.mBus.Get() );
        engine.Post( u"KV_SetMacroEnable" );
        foreign.Post( u"KV_QuitEditor" );
        EXPECT_TRUE( Until( [&] { return editor.mHeard.size() >= 2; } ) );
        EXPECT_EQ( std::count( editor.mHeard.begin(), editor.mHeard.end(), "KV_SetMacroEnable from the engine" ), 1 );
        EXPECT_EQ( std::count( editor.mHeard.begin(), editor.mHeard.end(), "KV_QuitEditor" ), 1 );
    }
    editor.mHeard.clear();
    foreign.BecomeEngine( mFolder );
    Settle( *foreign.mBus.Get() );
    foreign.Post( u"KV_SetMacroEnable" );
    EXPECT_TRUE( Until( [&] { return editor.mHeard.size() >= 1; } ) );
    EXPECT_EQ( editor.mHeard, Lines{ "KV_SetMacroEnable from the engine" } );
}

TEST_F( Notifier, MalformedPayloadsAreRefusedAndNothingElseIsLost )
{
    Program editor( mFolder ), other( mFolder );
    Settle( *editor.mBus.Get() );
    constexpr const char* kMalformed[] = { "()", "('text',)", "(@a{ss} {},)", "({'a': <@o '/x'>},)",
        "({'a': <@ai [1]>}, 1)" };
    for ( const char* const text : kMalformed )
    {
        GVariant* const parameters = g_variant_parse( nullptr, text, nullptr, nullptr, nullptr );
        ASSERT_TRUE( parameters ) << text;
        g_dbus_connection_emit_signal( other.mBus.Get(), nullptr, BusNames::PathOf( mFolder ).c_str(),
            BusNames::kNotificationInterface, "KV_ClipDataChanged", parameters, nullptr );
        g_variant_unref( parameters );
    }
    const std::vector<char> tooMuch( 17 << 20 );
    g_dbus_connection_emit_signal( other.mBus.Get(), nullptr, BusNames::PathOf( mFolder ).c_str(),
        BusNames::kNotificationInterface, "KV_ClipDataChanged",
        g_variant_new_parsed(
            "({'a': <%@ay>},)", g_variant_new_fixed_array( G_VARIANT_TYPE_BYTE, tooMuch.data(), tooMuch.size(), 1 ) ),
        nullptr );
    other.Post( u"KV_SharingIncomingChange" );
    EXPECT_TRUE( Until( [&] { return editor.mHeard.size() >= 1; } ) );
    EXPECT_EQ( editor.mHeard, Lines{ "KV_SharingIncomingChange" } );
    EXPECT_EQ( mLog.CountContaining( "KV_ClipDataChanged from :" ), std::size( kMalformed ) + 1 );
}

TEST_F( Notifier, PayloadsOfActionsCrossTheBus )
{
    __SafeCFPropertyList value = __SafeCFPropertyList::String( TextView( u"\0", 1 ) );
    for ( int i = 0; i < 60; ++i ) // deeper than the bus carries
    {
        XMutableArray actions;
        XMutableDictionary action;
        action.Set( CFSTR( "Actions" ), value );
        actions.Append( action.Seal() );
        value = actions.Seal();
    }
    XMutableDictionary payload;
    payload.Set( CFSTR( "Actions" ), value );
    const CFContainer<XPlistDictionary> sealed = payload.Seal();
    Program editor( mFolder ), engine( mFolder );
    engine.BecomeEngine( mFolder );
    Settle( *editor.mBus.Get() );
    editor.mNotifier.Post( u"KV_DoExecuteActions", sealed, XProcessNotifier::Audience::kEngineOnly );
    EXPECT_TRUE( Until( [&] { return engine.mHeard.size() == 1; } ) );
    EXPECT_TRUE( __SafeCFPropertyList( engine.mPayload ) == __SafeCFPropertyList( sealed ) );
    EXPECT_TRUE( editor.mBus.Get() );
}

TEST_F( Notifier, PostsOfABusThatIsAwayComeWhenItIsBackAndTheRestIsDropped )
{
    Program one( mFolder ), two( mFolder );
    Settle( *one.mBus.Get() );
    Settle( *two.mBus.Get() );
    KillBus();
    EXPECT_TRUE( Until( [&] { return not one.mBus.Get() and not two.mBus.Get(); } ) );
    for ( std::size_t i = 0; i < BusNotifier::kMaxWaiting + 5; ++i )
        one.Post( u"KV_ClipDataChanged" );
    EXPECT_EQ( mLog.CountContaining( "KV_ClipDataChanged is dropped" ), 1u );
    StartBus();
    EXPECT_TRUE( Until( [&] { return one.mBus.Get() and two.mBus.Get(); } ) );
    Settle( *one.mBus.Get() );
    EXPECT_EQ( mLog.CountContaining( "5 notifications were dropped" ), 1u );
    // Who came back later has missed some; from here on everything is heard again.
    Settle( *two.mBus.Get() );
    one.Post( u"KV_LargeTextChanged" );
    EXPECT_TRUE( Until( [&] { return not two.mHeard.empty() and two.mHeard.back() == "KV_LargeTextChanged"; } ) );
    EXPECT_LE( two.mHeard.size(), BusNotifier::kMaxWaiting + 1 );
}

TEST_F( Notifier, TheLastChangeOfTheMacrosIsToldAlsoWhenItWasDropped )
{
    Program editor( mFolder ), engine( mFolder );
    engine.BecomeEngine( mFolder );
    Settle( *engine.mBus.Get() );
    Settle( *editor.mBus.Get() );
    // No loop runs meanwhile: as many as are counted as unsent, as many as wait, and then some.
    for ( std::size_t i = 0; i < 2 * BusNotifier::kMaxWaiting + 5; ++i )
        editor.Post( u"KV_ClipDataChanged" );
    editor.Post( u"KV_LoadMacroFiles" );
    EXPECT_TRUE(
        Until( [&] { return std::count( engine.mHeard.begin(), engine.mHeard.end(), "KV_LoadMacroFiles" ) == 1; } ) );
}

TEST_F( Notifier, AShortLifeGetsItsPostsOut )
{
    Program engine( mFolder );
    engine.BecomeEngine( mFolder );
    Settle( *engine.mBus.Get() );
    {
        // As a verb does: no loop runs between the start and the end.
        Program verb( mFolder );
        verb.Post( u"KV_LoadMacroFiles" );
        verb.Post( u"KV_ExecuteMacro", XProcessNotifier::Audience::kEngineOnly );
        verb.mNotifier.Stop();
        verb.mBus.Close();
    }
    EXPECT_TRUE( Until( [&] { return engine.mHeard.size() >= 2; } ) );
    EXPECT_EQ( engine.mHeard, ( Lines{ "KV_LoadMacroFiles", "KV_ExecuteMacro" } ) );
}

TEST( NoBus, NobodyWaitsNothingIsLaunchedAndPostingIsHarmless )
{
    const LogCapture log;
    for ( const char* const address :
        { "autolaunch:", "unixexec:path=/bin/false", "tcp:host=localhost,port=1", "unix:path=/nonexistent/bus" } )
    {
        ::setenv( "DBUS_SESSION_BUS_ADDRESS", address, 1 );
        BusConnection bus( XWork::Current() );
        BusNotifier notifier( bus, XWork::Current() );
        EXPECT_FALSE( bus.Connect() ) << address;
        EXPECT_EQ( bus.HasAddress(), std::string_view( address ).starts_with( "unix:" ) ) << address;
        notifier.Start( "/nonexistent" );
        notifier.Post( u"KV_LoadMacroFiles", nullptr, XProcessNotifier::Audience::kEverybody );
        notifier.Stop();
    }
    ::unsetenv( "DBUS_SESSION_BUS_ADDRESS" );
}

TEST( NoBus, OfSeveralAddressesTheLocalSocketsRemain )
{
    const std::pair<const char*, const char*> cases[] = { { "unix:path=/a;tcp:host=b;unix:abstract=c",
                                                              "unix:path=/a;unix:abstract=c" },
        { "launchd:env=X", "" }, { ";;", "" } };
    for ( const auto& [given, local] : cases )
    {
        ::setenv( "DBUS_SESSION_BUS_ADDRESS", given, 1 );
        EXPECT_EQ( SessionBusAddress(), local );
    }
    ::unsetenv( "DBUS_SESSION_BUS_ADDRESS" );
}
