// A record is one byte '0' or '1' (enabled), one ':', a UID, and a zero byte.
#include "Macros/KVMacroEnableOverrides.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{
constexpr int kTries = 100;
constexpr double kBetweenTries = 500e-6;
constexpr std::size_t kBufferSize = 128, kSmallestRecord = 35;

// The locked file, or -1.
int OpenLocked( const std::filesystem::path& inFile, const std::function<void( double )>& inWait )
{
    for ( int i = 0; i < kTries; ++i )
    {
        if ( i > 0 )
            inWait( kBetweenTries );
        const int file = open( inFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0660 );
        if ( file < 0 )
        {
            if ( errno == ENOENT )
                return -1;
            continue;
        }
        if ( flock( file, LOCK_EX | LOCK_NB ) == 0 )
            return file;
        close( file );
    }
    return -1;
}

class RecordReader
{
public:
    explicit RecordReader( int inFile ) : mFile( inFile ) {}

    // False at the end, or at what is no record: nothing behind it is trusted.
    bool Next( XText& outUID, bool& outEnabled )
    {
        Fill();
        if ( mUsed < kSmallestRecord or ( mBuffer[0] != '0' and mBuffer[0] != '1' ) or mBuffer[1] != ':' )
            return false;
        const auto* const end = static_cast<const char*>( std::memchr( mBuffer + 2, 0, mUsed - 2 ) );
        if ( not end )
            return false;
        outEnabled = mBuffer[0] == '1';
        outUID = TextFromUTF8( std::string_view( mBuffer + 2, end ) );
        const std::size_t length = std::size_t( end - mBuffer ) + 1;
        mUsed -= length;
        std::memmove( mBuffer, mBuffer + length, mUsed );
        return true;
    }

private:
    void Fill()
    {
        while ( mUsed < kBufferSize )
        {
            const ssize_t count = read( mFile, mBuffer + mUsed, kBufferSize - mUsed );
            if ( count < 0 and errno == EINTR )
                continue;
            if ( count <= 0 )
                return;
            mUsed += std::size_t( count );
        }
    }

    int mFile;
    char mBuffer[kBufferSize];
    std::size_t mUsed = 0;
};
} // namespace

std::optional<KVMacroEnableOverrides> KVMacroEnableOverrides::Get(
    const std::filesystem::path& inFile, const std::function<void( double )>& inWait )
{
    const int file = OpenLocked( inFile, inWait );
    if ( file < 0 )
        return {};
    KVMacroEnableOverrides overrides;
    RecordReader records( file );
    XText uid;
    bool enabled = false;
    while ( records.Next( uid, enabled ) )
        overrides.Add( uid, enabled );
    // Whatever couldn't be read goes as well: the engine starts from an empty file.
    if ( ftruncate( file, 0 ) != 0 )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "KVMacroEnableOverrides can't empty %@: %s", inFile, std::strerror( errno ) );
    close( file );
    if ( overrides.GetCount() == 0 )
        return {};
    return overrides;
}

void KVMacroEnableOverrides::Add( const XText& inUID, bool inEnabled )
{
    mStates.insert_or_assign( inUID, inEnabled );
}

std::optional<bool> KVMacroEnableOverrides::StateFor( const XText& inUID ) const
{
    const auto state = mStates.find( inUID );
    if ( state == mStates.end() )
        return {};
    return state->second;
}
