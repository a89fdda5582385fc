// A desktop whose trash is a list: what is thrown away is gone from the disk, and its bytes are remembered.
#pragma once

#include "Platform/FileFacts.h"

#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

class FakeTrash : public XDesktopFileFacts
{
public:
    bool TrashFile( const std::filesystem::path& inFile ) override
    {
        if ( mIsFull )
            return false;
        std::ifstream file( inFile, std::ios::binary );
        std::string bytes{ std::istreambuf_iterator<char>( file ), {} };
        if ( std::filesystem::remove_all( inFile ) == 0 )
            return false;
        mTrashed.emplace_back( inFile.filename().native(), std::move( bytes ) );
        return true;
    }
    [[nodiscard]] std::optional<Text> GetFileKind( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetDisplayName( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetBundleName( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] std::optional<Text> GetType( const std::filesystem::path& ) const override { return {}; }
    [[nodiscard]] bool TypeConformsTo( TextView inType, TextView inOther ) const override { return inType == inOther; }

    std::vector<std::pair<std::string, std::string>> mTrashed; ///< names and bytes
    bool mIsFull = false;                                      ///< nothing can be thrown away
};
