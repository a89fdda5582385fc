// Code that the documents quote is code that is compiled: each fenced block stands, line by line, in the file that was
// named last before it.
#include "Tests/Support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sstream>

namespace
{
const std::string kTop = KORVALEN_TESTS_FOLDER "/../";

std::string Content( const std::string& inPath )
{
    std::ifstream file( kTop + inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( file ), {} };
}

/// The path in backticks that comes last in the line, if there is one.
std::string LastPath( const std::string& inLine )
{
    std::size_t at = std::string::npos;
    for ( const char* const folder : { "`Source/", "`Tests/" } )
    {
        if ( const std::size_t found = inLine.rfind( folder ); found != std::string::npos )
            at = at == std::string::npos ? found : std::max( at, found );
    }
    return at == std::string::npos ? "" : inLine.substr( at + 1, inLine.find( '`', at + 1 ) - at - 1 );
}
} // namespace

TEST( Documents, QuotedCodeStandsInTheFileThatIsNamed )
{
    std::istringstream lines( Content( "CONTRIBUTING.md" ) );
    std::string path, block;
    bool isInBlock = false;
    int blocks = 0;
    for ( std::string line; std::getline( lines, line ); )
    {
        if ( line.starts_with( "```" ) )
        {
            isInBlock = not isInBlock;
            if ( not isInBlock )
            {
                EXPECT_NE( Content( path ).find( block ), std::string::npos ) << path << " doesn't have:\n" << block;
                ++blocks;
            }
            block.clear();
        }
        else if ( isInBlock )
            block += line + '\n';
        else if ( const std::string named = LastPath( line ); not named.empty() )
            path = named;
    }
    EXPECT_EQ( blocks, 4 );
}
