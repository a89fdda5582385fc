#include "Platform/Linux/BusEditorService.h"

#include "Tests/Platform/Linux/BusTestSupport.h"

namespace
{
using Claim = XEditorService::Claim;

struct Editor
{
    Claim ClaimFolder( const std::filesystem::path& inFolder )
    {
        return mService.ClaimFolder( inFolder, [this]( const XEditorService::Request& inRequest ) {
            EXPECT_TRUE( XIsMainThread() );
            mRequests.push_back( inRequest );
            return mHandler ? mHandler( inRequest )
                            : XEditorService::Reply{ 3, "out of " + inRequest.mArguments.front(), "errors" };
        } );
    }

    BusConnection mBus{ XWork::Current() };
    BusEditorService mService{ mBus, XWork::Current() };
    std::vector<XEditorService::Request> mRequests;
    std::function<XEditorService::Reply( const XEditorService::Request& )> mHandler;
};

// This program once more, as one that asks: see LinuxTestsMain.cpp.
class Asker
{
public:
    Asker( const std::filesystem::path& inFolder, const std::string& inArgument, std::size_t inInputBytes = 0 )
        : mChild( { "/proc/self/exe", "--ask", inFolder, inArgument, std::to_string( inInputBytes ) },
              { std::string( "DBUS_SESSION_BUS_ADDRESS=" ) + ::getenv( "DBUS_SESSION_BUS_ADDRESS" ) } )
    {
        // The loop has to go on meanwhile: it is told of the end.
        mWatch = g_child_watch_add(
            mChild.Number(), +[]( GPid, gint, gpointer outIsOver ) { *static_cast<bool*>( outIsOver ) = true; },
            &mIsOver );
    }
    [[nodiscard]] bool IsOver() const { return mIsOver; }
    [[nodiscard]] std::string Answer() const { return mChild.ReadLine(); }

private:
    ChildOfTest mChild;
    bool mIsOver = false;
    guint mWatch = 0;
};
using EditorService = BusTest;
} // namespace

TEST_F( EditorService, AFolderHasOneEditorAndItComesFreeWithItsEnd )
{
    Editor second;
    {
        Editor first, elsewhere;
        EXPECT_EQ( first.ClaimFolder( mFolder ), Claim::kOwned );
        EXPECT_EQ( second.ClaimFolder( mFolder / "." ), Claim::kTaken );
        EXPECT_EQ( elsewhere.ClaimFolder( mScratch / "other" ), Claim::kOwned );
        first.mService.ReleaseFolder();
        EXPECT_EQ( second.ClaimFolder( mFolder ), Claim::kOwned );
        second.mService.ReleaseFolder();
        EXPECT_EQ( first.ClaimFolder( mFolder ), Claim::kOwned );
    }
    EXPECT_EQ( second.ClaimFolder( mFolder ), Claim::kOwned );
}

TEST_F( EditorService, AVerbIsRunThereAndItsReplyComesBack )
{
    Editor editor;
    ASSERT_EQ( editor.ClaimFolder( mFolder ), Claim::kOwned );
    const std::string argument = "re\xFFname Ä"; // no valid text
    const Asker asker( mFolder, argument, 5 );
    EXPECT_TRUE( Until( [&] { return asker.IsOver(); } ) );
    EXPECT_EQ( asker.Answer(), "3|out of " + argument + "|errors" );
    ASSERT_EQ( editor.mRequests.size(), 1u );
    const XEditorService::Request& request = editor.mRequests.front();
    EXPECT_EQ( request.mArguments, ( std::vector<std::string>{ argument, "" } ) );
    EXPECT_EQ( request.mWorkingFolder, std::filesystem::current_path() );
    EXPECT_EQ( request.mStandardInput, std::string( 5, '\0' ) );
    EXPECT_TRUE( request.mOutputIsTerminal );
    EXPECT_FALSE( request.mColours );
}

TEST_F( EditorService, NobodyIsAbsentAndAQuittingEditorIsNobody )
{
    const Asker nobody( mFolder, "undo" );
    EXPECT_TRUE( Until( [&] { return nobody.IsOver(); } ) );
    EXPECT_EQ( nobody.Answer(), "absent" );

    Editor editor;
    ASSERT_EQ( editor.ClaimFolder( mFolder ), Claim::kOwned );
    // One request is being run, and takes the folder away under the next.
    editor.mHandler = [&]( const XEditorService::Request& ) {
        editor.mService.ReleaseFolder();
        return XEditorService::Reply{ 0, "done", "" };
    };
    const Asker last( mFolder, "undo" );
    EXPECT_TRUE( Until( [&] { return last.IsOver(); } ) );
    EXPECT_EQ( last.Answer(), "0|done|" );
    const Asker late( mFolder, "undo" );
    EXPECT_TRUE( Until( [&] { return late.IsOver(); } ) );
    EXPECT_EQ( late.Answer(), "absent" );
}

TEST_F( EditorService, AnEditorThatGoesInTheMiddleMayHaveDoneItSoItIsNoAbsence )
{
    auto editor = std::make_unique<Editor>();
    ASSERT_EQ( editor->ClaimFolder( mFolder ), Claim::kOwned );
    editor->mHandler = [&]( const XEditorService::Request& ) -> XEditorService::Reply {
        // As if killed: the connection goes without a word.
        g_dbus_connection_close_sync( editor->mBus.Get(), nullptr, nullptr );
        return { 0, "nobody hears this", "" };
    };
    const Asker asker( mFolder, "undo" );
    EXPECT_TRUE( Until( [&] { return asker.IsOver(); } ) );
    const std::string answer = asker.Answer();
    EXPECT_TRUE( answer.starts_with( "1||korvalen: the running editor didn't answer" ) ) << answer;
}

TEST_F( EditorService, AHandlerThatThrowsIsAFailureWithItsReason )
{
    Editor editor;
    ASSERT_EQ( editor.ClaimFolder( mFolder ), Claim::kOwned );
    editor.mHandler = []( const XEditorService::Request& ) -> XEditorService::Reply {
        throw std::runtime_error( "the reason" );
    };
    const Asker asker( mFolder, "undo" );
    EXPECT_TRUE( Until( [&] { return asker.IsOver(); } ) );
    EXPECT_EQ( asker.Answer(), "1||korvalen: the editor failed: the reason" );
}

TEST_F( EditorService, LargeInputGoesOverAndTooLargeIsRefusedBeforeItIsRun )
{
    Editor editor;
    ASSERT_EQ( editor.ClaimFolder( mFolder ), Claim::kOwned );
    const Asker large( mFolder, "import", std::size_t( 32 ) << 20 );
    EXPECT_TRUE( Until( [&] { return large.IsOver(); } ) );
    EXPECT_EQ( large.Answer(), "3|out of import|errors" );
    const Asker tooLarge( mFolder, "import", ( std::size_t( 64 ) << 20 ) + 1 );
    EXPECT_TRUE( Until( [&] { return tooLarge.IsOver(); } ) );
    EXPECT_TRUE( tooLarge.Answer().starts_with( "1||korvalen: the input is larger than 64 MiB" ) );
    EXPECT_EQ( editor.mRequests.size(), 1u );
}

TEST_F( EditorService, TheNameIsOursAgainWhenTheBusIsBack )
{
    Editor editor;
    ASSERT_EQ( editor.ClaimFolder( mFolder ), Claim::kOwned );
    KillBus();
    EXPECT_TRUE( Until( [&] { return not editor.mBus.Get(); } ) );
    StartBus();
    EXPECT_TRUE( Until( [&] { return editor.mBus.Get() != nullptr; } ) );
    const Asker asker( mFolder, "undo" );
    EXPECT_TRUE( Until( [&] { return asker.IsOver(); } ) );
    EXPECT_EQ( asker.Answer(), "3|out of undo|errors" );
}

TEST( NoBusForAnEditor, ItIsAloneAndNobodyAnswers )
{
    const LogCapture log;
    ::setenv( "DBUS_SESSION_BUS_ADDRESS", "autolaunch:", 1 );
    Editor editor;
    EXPECT_EQ( editor.ClaimFolder( "/nonexistent" ), Claim::kAlone );
    EXPECT_FALSE( editor.mService.Ask( "/nonexistent", { { "undo" }, "/", "", false, false } ) );
    ::unsetenv( "DBUS_SESSION_BUS_ADDRESS" );
}
