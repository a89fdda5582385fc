// A folder of its own for each test, gone with all that is in it at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string name = ( std::filesystem::temp_directory_path() / "korvalen-test-XXXXXX" ).native();
        if ( not ::mkdtemp( name.data() ) )
            throw std::filesystem::filesystem_error(
                "mkdtemp", name, std::error_code( errno, std::generic_category() ) );
        mPath = name;
    }
    ~ScratchFolder()
    {
        std::error_code error;
        std::filesystem::remove_all( mPath, error );
    }
    ScratchFolder( const ScratchFolder& ) = delete;
    ScratchFolder& operator=( const ScratchFolder& ) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return mPath; }
    std::filesystem::path operator/( const char* inName ) const { return mPath / inName; }

    void Write( const std::string& inName, std::string_view inBytes ) const
    {
        std::ofstream( mPath / inName, std::ios::binary ).write( inBytes.data(), std::streamsize( inBytes.size() ) );
    }
    /// The bytes; "" when there is no such file.
    [[nodiscard]] std::string Read( const std::string& inName ) const
    {
        std::ifstream stream( mPath / inName, std::ios::binary );
        return { std::istreambuf_iterator<char>( stream ), {} };
    }

private:
    std::filesystem::path mPath;
};
