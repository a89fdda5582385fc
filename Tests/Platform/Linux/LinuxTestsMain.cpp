// Runs the tests; or, with "--ask FOLDER ARGUMENT BYTES", asks the folder's editor once, as a verb in another process does,
// and prints the answer in one line.
#include "Platform/Linux/BusEditorService.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XErrorHandler.h"

#include <gtest/gtest.h>

#include <iostream>

namespace
{
int Ask( char** inArguments )
{
    BusConnection bus( XWork::Current() );
    BusEditorService service( bus, XWork::Current() );
    const auto reply = service.Ask( inArguments[0],
        { { inArguments[1], "" }, std::filesystem::current_path(), std::string( std::stoul( inArguments[2] ), '\0' ),
            true, false } );
    if ( reply )
        std::cout << reply->mStatus << '|' << reply->mOutput << '|' << reply->mErrors << '\n';
    else
        std::cout << "absent\n";
    return 0;
}
} // namespace

int main( int inCount, char** inArguments )
{
    XDeclareMainThread();
    const ScratchFolder logs;
    XErrorHandler::SetLogsFolder( logs.Path() );
    if ( inCount == 5 and std::string_view( inArguments[1] ) == "--ask" )
        return Ask( inArguments + 2 );
    testing::InitGoogleTest( &inCount, inArguments );
    const int result = RUN_ALL_TESTS();
    XErrorHandler::Quitting();
    return result;
}
