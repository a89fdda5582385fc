#include "XCAF/XKernelLock.h"

#include <cerrno>
#include <system_error>

namespace
{
constexpr int kMostTries = 16; // each fails only when a signal or somebody's new file comes in between
}

XKernelLock::Result XKernelLock::Fail( const char* inCall, const std::filesystem::path& inPath, int inCode )
{
    mError = XFileError{ inCall, inPath, inCode,
        inCode == 0 ? "it isn't a regular file" : std::generic_category().message( inCode ), {} };
    return Result::kFailed;
}

XKernelLock::Result XKernelLock::TryTake( const std::filesystem::path& inPath, XFileCalls& inCalls )
{
    mError.reset();
    Release();
    for ( int i = 0; i < kMostTries; ++i )
    {
        XOpenFile file = XOpenFile::Open( inPath, XFileCalls::OpenFor::kLock, inCalls );
        if ( not file )
            return Fail( "open", inPath, errno );
        if ( inCalls.TryLock( file.Get() ) != 0 )
        {
            if ( errno == EWOULDBLOCK )
                return Result::kHeldByAnother;
            if ( errno == EINTR )
                continue;
            return Fail( "lock", inPath, errno );
        }
        XFileStatus locked, named;
        if ( inCalls.GetFacts( file.Get(), locked ) != 0 )
            return Fail( "look at", inPath, errno );
        if ( locked.mKind != XFileStatus::Kind::kRegular )
            return Fail( "lock", inPath, 0 );
        // A lock on a file that lost its name in the meantime keeps nobody out.
        if ( inCalls.GetLinkFacts( inPath, named ) != 0 or named.mDevice != locked.mDevice or
            named.mFile != locked.mFile )
            continue;
        mFile = std::move( file );
        return Result::kTaken;
    }
    return Fail( "lock", inPath, EAGAIN );
}
