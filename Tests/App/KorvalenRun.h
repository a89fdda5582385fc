// Runs the program within the test: its arguments and standard input in, its status and both outputs out. A
// scratch folder of its own holds the files.
#pragma once

#include "App/Program.h"
#include "Tests/Support/ScratchFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

struct KorvalenResult
{
    int mStatus;
    std::string mOutput, mErrors;
};

inline KorvalenResult RunKorvalenWith( const std::vector<std::string>& inArguments,
    const std::string& inStandardInput = {}, Output::Terminals inTerminals = {} )
{
    std::ostringstream output, errors;
    Output streams( output, errors, inTerminals );
    const FileInput input( [&]( std::size_t ) {
        XFileContent content;
        content.mBytes = XBytes( inStandardInput );
        return content;
    } );
    const ExitStatus status = RunKorvalen( inArguments, input, streams );
    return { int( status ), output.str(), errors.str() };
}

class KorvalenFolder
{
public:
    [[nodiscard]] std::string Path( const std::string& inName ) const { return ( mFolder.Path() / inName ).string(); }
    /// Writes a file and gives its path.
    [[nodiscard]] std::string File( const std::string& inName, std::string_view inBytes ) const
    {
        std::ofstream( mFolder.Path() / inName, std::ios::binary ) << inBytes;
        return Path( inName );
    }
    [[nodiscard]] std::string Content( const std::string& inName ) const
    {
        std::ifstream file( mFolder.Path() / inName, std::ios::binary );
        return { std::istreambuf_iterator<char>( file ), {} };
    }
    [[nodiscard]] std::size_t CountFiles() const
    {
        return std::size_t( std::distance( std::filesystem::directory_iterator( mFolder.Path() ), {} ) );
    }

private:
    ScratchFolder mFolder;
};
