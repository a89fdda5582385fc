// Switches tags of the log on for as long as it lives; the line that says so isn't among those that are captured.
#pragma once

#include "Tests/Support/LogCapture.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XErrorHandlerTesting.h"

class LogTags
{
public:
    LogTags( Text inTags, LogCapture& ioLog )
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetPreferenceSource( {
            .mText = [tags = std::move( inTags )]( TextView inKey ) -> std::optional<Text> {
                return inKey == u"Debug" ? std::optional( tags ) : std::nullopt;
            },
            .mBoolean = {},
        } );
        (void)XErrorHandler::MaybeShouldLog( "LogTags" ); // the first question reads the setting
        (void)ioLog.Take();
    }
    ~LogTags() { XErrorHandler::ResetForTesting(); }
    LogTags( const LogTags& ) = delete;
    LogTags& operator=( const LogTags& ) = delete;
};
