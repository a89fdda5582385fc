// The disk as a process sees it that dies: from the n-th call on nothing happens any more, not even the clearing up. Nothing
// is flushed, for what is left is looked at by the same kernel.
#pragma once

#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <limits>

class StoppingFileCalls final : public XFileCalls
{
public:
    using Path = std::filesystem::path;

    /// The calls before this one work.
    explicit StoppingFileCalls( int inFirst = std::numeric_limits<int>::max() ) : mFirst( inFirst ) {}

    int mFirst;
    int mCount = 0;
    int mCode = EIO;

    int Open( const Path& inPath, OpenFor inPurpose ) override
    {
        return Stops() ? -1 : XFileCalls::Open( inPath, inPurpose );
    }
    std::ptrdiff_t Read( int inFile, std::span<std::uint8_t> outBytes ) override
    {
        return Stops() ? -1 : XFileCalls::Read( inFile, outBytes );
    }
    std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override
    {
        return Stops() ? -1 : XFileCalls::Write( inFile, inBytes );
    }
    int FSync( int ) override { return Stops() ? -1 : 0; }
    int ChangeMode( int inFile, std::uint32_t inMode ) override
    {
        return Stops() ? -1 : XFileCalls::ChangeMode( inFile, inMode );
    }
    int Rename( const Path& inFrom, const Path& inTo ) override
    {
        return Stops() ? -1 : XFileCalls::Rename( inFrom, inTo );
    }
    int RenameToNew( const Path& inFrom, const Path& inTo ) override
    {
        return Stops() ? -1 : XFileCalls::RenameToNew( inFrom, inTo );
    }
    int Unlink( const Path& inPath ) override { return Stops() ? -1 : XFileCalls::Unlink( inPath ); }
    int MakeFolder( const Path& inPath ) override { return Stops() ? -1 : XFileCalls::MakeFolder( inPath ); }
    int ReadFolder( const Path& inPath, std::vector<std::string>& outNames ) override
    {
        return Stops() ? -1 : XFileCalls::ReadFolder( inPath, outNames );
    }
    int GetFacts( int inFile, XFileStatus& outFacts ) override
    {
        return Stops() ? -1 : XFileCalls::GetFacts( inFile, outFacts );
    }
    int GetLinkFacts( const Path& inPath, XFileStatus& outFacts ) override
    {
        return Stops() ? -1 : XFileCalls::GetLinkFacts( inPath, outFacts );
    }

private:
    bool Stops()
    {
        if ( ++mCount < mFirst )
            return false;
        errno = mCode;
        return true;
    }
};
