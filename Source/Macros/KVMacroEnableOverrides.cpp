// A record is one byte '0' or '1' (enabled), one ':', a UID, and a zero byte.
#include "Macros/KVMacroEnableOverrides.h"

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Utility/Work/Sleep.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <string_view>
#include <system_error>
#include <vector>

namespace
{
constexpr int kTries = 100;
constexpr double kBetweenTries = 500e-6;
constexpr std::uint32_t kSharedMode = 0660;
constexpr std::size_t kLongestRecord = 128, kSmallestRecord = 35;
constexpr std::size_t kMostFileBytes = std::size_t( 64 ) << 20;

/// The copies of what was taken and isn't in the macros file yet.
class TakenOverrides
{
public:
    explicit TakenOverrides( XWork& ) {}

    void Add( std::optional<SetAside::Entry> inCopy )
    {
        const std::scoped_lock lock( mMutex );
        ++mCount;
        if ( inCopy )
            mCopies.emplace_back( mCount, std::move( *inCopy ) );
    }

    [[nodiscard]] std::uint64_t Count()
    {
        const std::scoped_lock lock( mMutex );
        return mCount;
    }

    void Drop( std::uint64_t inCount )
    {
        const std::scoped_lock lock( mMutex );
        std::erase_if( mCopies, [inCount]( const auto& copy ) {
            if ( copy.first > inCount )
                return false;
            SetAside::Remove( copy.second );
            return true;
        } );
    }

private:
    std::mutex mMutex;
    std::uint64_t mCount = 0;
    std::vector<std::pair<std::uint64_t, SetAside::Entry>> mCopies;
};

/// Opens the file, made if it is missing, and takes its lock. Empty, with `errno`, when one of them fails.
XOpenFile TryOpenLocked( const std::filesystem::path& inFile )
{
    XFileCalls& calls = XFileCalls::Current();
    XOpenFile file = XOpenFile::Open( inFile, XFileCalls::OpenFor::kUpdate, calls );
    if ( not file and errno == ENOENT )
    {
        file = XOpenFile::Open( inFile, XFileCalls::OpenFor::kLock, calls );
        if ( file )
            (void)calls.ChangeMode( file.Get(), kSharedMode );
    }
    if ( file and calls.TryLock( file.Get() ) != 0 )
    {
        const int code = errno;
        (void)file.Close();
        errno = code;
    }
    return file;
}

XOpenFile OpenLocked( const std::filesystem::path& inFile, const std::function<void( double )>& inWait )
{
    for ( int i = 0; i < kTries; ++i )
    {
        if ( i > 0 )
            inWait( kBetweenTries );
        XOpenFile file = TryOpenLocked( inFile );
        if ( file or errno == ENOENT )
            return file;
    }
    return {};
}

/// Cuts the first record off. False at the end, or at what is no record: nothing behind it is trusted.
bool TakeRecord( std::string_view& ioBytes, XText& outUID, bool& outEnabled )
{
    if ( ioBytes.size() < kSmallestRecord or ( ioBytes[0] != '0' and ioBytes[0] != '1' ) or ioBytes[1] != ':' )
        return false;
    const std::size_t end = ioBytes.substr( 0, kLongestRecord ).find( '\0', 2 );
    if ( end == std::string_view::npos )
        return false;
    outEnabled = ioBytes[0] == '1';
    outUID = TextFromUTF8( ioBytes.substr( 2, end - 2 ) );
    ioBytes.remove_prefix( end + 1 );
    return true;
}
} // namespace

std::optional<KVMacroEnableOverrides> KVMacroEnableOverrides::Get(
    const std::filesystem::path& inFile, const std::function<void( double )>& inWait )
{
    const XOpenFile file = OpenLocked( inFile, inWait );
    if ( not file )
        return {};
    const XFileContent content = ReadWholeFile( file.Get(), inFile, kMostFileBytes );
    if ( content.mError )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "KVMacroEnableOverrides %@", content.mError->Describe() );
        return {};
    }
    if ( content.mBytes.size() == 0 )
        return {};

    KVMacroEnableOverrides overrides;
    std::string_view bytes( reinterpret_cast<const char*>( content.mBytes.data() ), content.mBytes.size() );
    XText uid;
    bool enabled = false;
    while ( TakeRecord( bytes, uid, enabled ) )
        overrides.Add( uid, enabled );

    SetAside::Entry copy;
    if ( SetAside::Keep( SetAside::Kind::kOverrides, content.mBytes.Span(),
             bytes.empty() ? u"enable overrides until they are saved" : u"enable overrides with a bad record", &copy ) )
        return {};
    // Whatever couldn't be read goes as well: the engine starts from an empty file.
    if ( XFileCalls::Current().Truncate( file.Get(), 0 ) != 0 )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "KVMacroEnableOverrides can't empty %@: %@", inFile, std::generic_category().message( errno ) );
    XWork::Current().Shared<TakenOverrides>().Add( bytes.empty() ? std::optional( copy ) : std::nullopt );
    if ( overrides.GetCount() == 0 )
        return {};
    return overrides;
}

std::optional<KVMacroEnableOverrides> KVMacroEnableOverrides::Get()
{
    return Get( KVPreferences::FilePath( u"Korvalen Enable Overrides" ), XSleep::For );
}

std::uint64_t KVMacroEnableOverrides::CountTaken()
{
    return XWork::Current().Shared<TakenOverrides>().Count();
}

void KVMacroEnableOverrides::DidSave( std::uint64_t inCountTaken )
{
    XWork::Current().Shared<TakenOverrides>().Drop( inCountTaken );
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
