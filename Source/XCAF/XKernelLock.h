// An exclusive lock of the kernel on a file: it goes with its holder, however that ends, so nobody ever has to guess
// whether a lock is stale. It excludes only those who ask for it. Any thread, one at a time; two objects exclude each
// other within a process as well.
#pragma once

#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <optional>

class XKernelLock
{
public:
    enum class Result : std::uint8_t { kTaken, kHeldByAnother, kFailed };

    /// Takes the lock without waiting. The file is made with mode 0600 if it is missing, and a link in its place is not
    /// followed. The file stays when the lock goes: were it removed, two could hold locks on two files of one name.
    [[nodiscard]] Result TryTake( const std::filesystem::path& inPath, XFileCalls& inCalls = XFileCalls::Current() );
    /// Gives it up, if it is held.
    void Release() { (void)mFile.Close(); }

    [[nodiscard]] bool IsHeld() const { return bool( mFile ); }
    /// The descriptor of the file, to write into it; only while the lock is held.
    [[nodiscard]] int File() const { return mFile.Get(); }
    /// Why the last try has failed.
    [[nodiscard]] const std::optional<XFileError>& Error() const { return mError; }

private:
    Result Fail( const char* inCall, const std::filesystem::path& inPath, int inCode );

    XOpenFile mFile;
    std::optional<XFileError> mError;
};
