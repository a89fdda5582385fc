// The editor for the moment of one verb, with real queues: what the verb did is what the end leaves on disk.
#include "App/EditorSession.h"

#include "Defines/KVPreferences.h"
#include "Tests/App/KorvalenRun.h"
#include "Tests/Support/LogCapture.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XErrorHandlerTesting.h"

TEST( EditorSession, ARevertOfOneVerbOutlivesItsEnd )
{
    const LogCapture log;
    const KorvalenFolder folder;
    const auto Run = [&]( std::vector<std::string> inArguments ) {
        inArguments.insert( inArguments.begin(), { "--folder", folder.Path( "data" ) } );
        const KorvalenResult result = RunKorvalenWith( inArguments );
        EXPECT_EQ( result.mStatus, 0 ) << result.mErrors;
    };
    const auto HasExtra = [&] {
        return folder.Content( "data/Korvalen Macros.plist" ).find( "Extra" ) != std::string::npos;
    };
    Run( { "new", "group", "First" } );
    Run( { "new", "group", "Extra" } );
    EXPECT_TRUE( HasExtra() );
    // The last save at the end mustn't put back what the revert has replaced.
    Run( { "revisions", "revert", "before-version" } );
    EXPECT_FALSE( HasExtra() );
    KVPreferences::UseFolder( {} );
    XErrorHandler::ResetForTesting();
}
