// No test writes into the logs folder of whoever runs it.
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XErrorHandler.h"

#include <gtest/gtest.h>

namespace
{
class LogsFolderOfTests final : public testing::Environment
{
public:
    void SetUp() override { XErrorHandler::SetLogsFolder( mFolder.Path() ); }
    void TearDown() override { XErrorHandler::Quitting(); } // nothing writes there when it goes

private:
    ScratchFolder mFolder;
};

[[maybe_unused]] testing::Environment* const gEnvironment = testing::AddGlobalTestEnvironment( new LogsFolderOfTests );
} // namespace
