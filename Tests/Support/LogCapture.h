// Takes what is logged, instead of the file, for as long as it lives; any thread may log.
#pragma once

#include "XCAF/XErrorHandlerTesting.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

class LogCapture
{
public:
    LogCapture()
    {
        XErrorHandler::SetSinkForTesting( [this]( bool, TextView inMessage ) {
            const std::scoped_lock lock( mMutex );
            mLines.push_back( UTF8FromText( inMessage ) );
        } );
    }
    ~LogCapture() { XErrorHandler::SetSinkForTesting( {} ); }
    LogCapture( const LogCapture& ) = delete;
    LogCapture& operator=( const LogCapture& ) = delete;

    [[nodiscard]] std::size_t CountContaining( std::string_view inPart ) const
    {
        const std::scoped_lock lock( mMutex );
        return std::size_t( std::count_if( mLines.begin(), mLines.end(),
            [&]( const std::string& inLine ) { return inLine.find( inPart ) != std::string::npos; } ) );
    }
    /// The assertions whose quoted text is this.
    [[nodiscard]] std::size_t CountAssertions( std::string_view inExpression ) const
    {
        return CountContaining( "Assertion Failed: " + std::string( inExpression ) + ", " );
    }
    [[nodiscard]] std::vector<std::string> Lines() const
    {
        const std::scoped_lock lock( mMutex );
        return mLines;
    }
    /// The lines since the last call. An assertion's line is cut behind the condition, before its place.
    [[nodiscard]] std::vector<std::string> Take()
    {
        const std::scoped_lock lock( mMutex );
        for ( std::string& line : mLines )
        {
            if ( line.starts_with( "Assertion Failed: " ) )
                line.resize( line.find( " file: " ) );
        }
        return std::exchange( mLines, {} );
    }

private:
    mutable std::mutex mMutex;
    std::vector<std::string> mLines;
};
