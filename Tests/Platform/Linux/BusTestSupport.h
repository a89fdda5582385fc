// A session bus of a test's own, the loop that it is followed by, and the stand-in engine as a real process.
#pragma once

#include "Platform/Linux/BusConnection.h"
#include "Platform/Linux/BusNames.h"
#include "Platform/Linux/GLibMainLoop.h"
#include "Tests/Platform/Linux/ChildOfTest.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

class BusTest : public testing::Test
{
protected:
    BusTest()
    {
        // Without the services of this machine, which nobody here may start.
        mScratch.Write( "bus.conf",
            "<busconfig><type>session</type><listen>unix:path=" + mSocket +
                "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\"/>"
                "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy>"
                "<limit name=\"max_message_size\">1000000000</limit></busconfig>\n" );
        ::setenv( "DBUS_SESSION_BUS_ADDRESS", ( "unix:path=" + mSocket ).c_str(), 1 );
        StartBus();
    }
    ~BusTest() override { ::unsetenv( "DBUS_SESSION_BUS_ADDRESS" ); }

    void StartBus()
    {
        // It complains about limits that it doesn't need.
        mBus = std::make_unique<ChildOfTest>(
            std::vector<std::string>{ KORVALEN_DBUS_DAEMON, "--nofork", "--nopidfile", "--print-address=1",
                "--config-file=" + ( mScratch / "bus.conf" ).native() },
            std::vector<std::string>(), ChildOfTest::Errors::kHidden );
        ASSERT_FALSE( mBus->ReadLine().empty() ) << "the bus doesn't start";
    }
    void KillBus()
    {
        mBus.reset();
        std::filesystem::remove( mSocket );
    }

    /// Follows the loop until the condition holds; false after kPatience seconds.
    bool Until( const std::function<bool()>& inCondition )
    {
        bool isOver = false;
        const auto over = +[]( gpointer outIsOver ) -> gboolean {
            *static_cast<bool*>( outIsOver ) = true;
            return G_SOURCE_REMOVE;
        };
        constexpr guint kPatience = 20;
        const guint timer = g_timeout_add_seconds( kPatience, over, &isOver );
        while ( not inCondition() and not isOver )
        {
            g_main_context_iteration( nullptr, TRUE );
        }
        if ( not isOver )
            g_source_remove( timer );
        return inCondition();
    }

    /// Until everything that was sent before has come: a signal to ourselves goes the same way.
    void Settle( GDBusConnection& inBus )
    {
        bool isHere = false;
        const auto heard = +[]( GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*, GVariant*,
                                gpointer outIsHere ) { *static_cast<bool*>( outIsHere ) = true; };
        const guint subscription = g_dbus_connection_signal_subscribe( &inBus, nullptr, "test.Settle", nullptr, nullptr,
            nullptr, G_DBUS_SIGNAL_FLAGS_NONE, heard, &isHere, nullptr );
        g_dbus_connection_emit_signal(
            &inBus, g_dbus_connection_get_unique_name( &inBus ), "/test", "test.Settle", "Settle", nullptr, nullptr );
        EXPECT_TRUE( Until( [&] { return isHere; } ) );
        g_dbus_connection_signal_unsubscribe( &inBus, subscription );
        bool hasDrained = false; // what was heard is delivered by the main queue
        XWork::Current().MainQueue()->Async( [&] { hasDrained = true; } );
        EXPECT_TRUE( Until( [&] { return hasDrained; } ) );
    }

    LogCapture mLog;
    ScratchFolder mScratch;
    const std::string mSocket = mScratch / "bus";
    const std::filesystem::path mFolder = mScratch / "data";
    std::unique_ptr<ChildOfTest> mBus;
    GLibMainLoop mLoop;
};

/// The stand-in engine of a folder, with the lines that it told so far.
class EngineProcess
{
public:
    explicit EngineProcess( const std::filesystem::path& inFolder )
        : mChild( { KORVALEN_STAND_IN_ENGINE },
              { "KORVALEN_HOME=" + inFolder.native(),
                  std::string( "DBUS_SESSION_BUS_ADDRESS=" ) + ::getenv( "DBUS_SESSION_BUS_ADDRESS" ) } )
    {}

    [[nodiscard]] pid_t Number() const { return mChild.Number(); }
    void Command( const std::string& inLine ) { mChild.Write( inLine + "\n" ); }
    /// Reads until the line comes; false when the output ends first. The engine tells in the order of what happens.
    bool WaitFor( const std::string& inLine )
    {
        for ( std::string line; not( line = mChild.ReadLine() ).empty(); )
        {
            mLines.push_back( line );
            if ( line == inLine )
                return true;
        }
        return false;
    }
    [[nodiscard]] std::size_t Count( const std::string& inLine ) const
    {
        return std::size_t( std::count( mLines.begin(), mLines.end(), inLine ) );
    }
    bool WaitUntilReady() { return WaitFor( "ready " + std::to_string( Number() ) ); }
    int Reap() { return mChild.Reap(); }
    void WaitForEnd() const { mChild.WaitForEnd(); }

    std::vector<std::string> mLines;

private:
    ChildOfTest mChild;
};
