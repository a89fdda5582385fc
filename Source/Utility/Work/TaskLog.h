// What the two kinds of task share in logging. Private to them.
#pragma once

#include "CFMethods/Text.h"
#include "XCAF/XErrorHandler.h"

#include <string>
#include <string_view>
#include <vector>

namespace TaskLog
{
/// The arguments as log lines show them: "(first, second)".
[[nodiscard]] inline Text Describe( const std::vector<Text>& inArguments )
{
    Text result = u"(";
    for ( const Text& argument : inArguments )
        result += ( result.size() > 1 ? u", " : u"" ) + argument;
    return result + u")";
}

/// Logs an error stream line by line; a line that never ends is cut at kMaxLine bytes.
class ErrorLines
{
public:
    static constexpr std::size_t kMaxLine = 65536;

    void Add( std::string_view inBytes )
    {
        mPending += inBytes;
        std::size_t start = 0;
        for ( std::size_t end; ( end = mPending.find( '\n', start ) ) != std::string::npos; start = end + 1 )
            Log( std::string_view( mPending ).substr( start, end - start ) );
        mPending.erase( 0, start );
        if ( mPending.size() > kMaxLine )
            Flush();
    }
    void Flush()
    {
        if ( not mPending.empty() )
            Log( mPending );
        mPending.clear();
    }

private:
    static void Log( std::string_view inLine )
    {
        XErrorHandler::PrivateMaybeLogFormat( "display", ">%@", TextFromUTF8( inLine ) );
    }

    std::string mPending;
};
} // namespace TaskLog
