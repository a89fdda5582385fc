#include "Defines/KVFolderLock.h"

#include "Defines/KVPreferences.h"

#include <charconv>
#include <string>
#include <unistd.h>

namespace
{
constexpr std::size_t kMostBytes = 32;
constexpr TextView kFileName = u".Korvalen Editor Lock";

void WriteProcess( int inFile )
{
    XFileCalls& calls = XFileCalls::Current();
    const std::string process = std::to_string( ::getpid() ) + "\n";
    // Only messages suffer from a number that is missing.
    if ( calls.Truncate( inFile, 0 ) == 0 )
        (void)calls.Write( inFile, { reinterpret_cast<const std::uint8_t*>( process.data() ), process.size() } );
}

std::optional<std::int64_t> ReadProcess( const std::filesystem::path& inPath )
{
    const XFileContent content = ReadWholeFile( inPath, kMostBytes );
    const char* const begin = reinterpret_cast<const char*>( content.mBytes.data() );
    const char* const end = begin + content.mBytes.size();
    std::int64_t process = 0;
    // The line feed says that the number is whole.
    const auto [rest, fault] = std::from_chars( begin, end, process );
    if ( fault != std::errc() or rest == end or *rest != '\n' or process <= 0 )
        return {};
    return process;
}
} // namespace

XKernelLock::Result KVFolderLock::TryTake()
{
    const auto path = KVPreferences::FilePath( kFileName );
    mHolderProcess.reset();
    const auto result = mLock.TryTake( path );
    if ( result == XKernelLock::Result::kTaken )
        WriteProcess( mLock.File() );
    else if ( result == XKernelLock::Result::kHeldByAnother )
        mHolderProcess = ReadProcess( path );
    return result;
}

bool KVFolderLock::IsHeldNow()
{
    const auto path = KVPreferences::PlannedFolderPath() / UTF8FromText( kFileName );
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( path, facts ) != 0 )
        return false; // taking would make it
    XKernelLock lock;
    return lock.TryTake( path ) == XKernelLock::Result::kHeldByAnother;
}
