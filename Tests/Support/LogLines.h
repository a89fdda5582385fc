// What is logged while the object lives, line by line, in place of the log file.
#pragma once

#include "CFMethods/Text.h"
#include "XCAF/XErrorHandlerTesting.h"

#include <mutex>
#include <string>
#include <vector>

class LogLines
{
public:
    LogLines()
    {
        XErrorHandler::SetSinkForTesting( [this]( bool, TextView inMessage ) {
            const std::scoped_lock lock( mMutex );
            mLines.push_back( UTF8FromText( inMessage ) );
        } );
    }
    ~LogLines() { XErrorHandler::SetSinkForTesting( nullptr ); }
    LogLines( const LogLines& ) = delete;
    LogLines& operator=( const LogLines& ) = delete;

    /// The lines since the last call. An assertion's line is cut behind the condition, before its place.
    [[nodiscard]] std::vector<std::string> Take()
    {
        const std::scoped_lock lock( mMutex );
        for ( std::string& line : mLines )
            if ( line.starts_with( "Assertion Failed: " ) )
                line.resize( line.find( " file: " ) );
        return std::exchange( mLines, {} );
    }

private:
    std::mutex mMutex;
    std::vector<std::string> mLines;
};
