#include "Defines/KVPreferenceDomain.h"

#include "CFMethods/PropertyListCodec.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XErrorHandler.h"

#include <cerrno>
#include <chrono>
#include <system_error>

namespace
{
constexpr int kMostInterruptions = 100;
constexpr int kMostCopies = 1000;

std::string WithPath( const char* inSuffix, const std::filesystem::path& inPath )
{
    return inPath.native() + inSuffix;
}

/// "20240301T120000Z", from seconds since 2001.
std::string UTCStamp( XAbsoluteTime inTime )
{
    using namespace std::chrono;
    const sys_seconds time( sys_days( 2001y / 1 / 1 ) + seconds( std::int64_t( inTime ) ) );
    const sys_days day = floor<days>( time );
    const year_month_day date( day );
    const hh_mm_ss clock( time - day );
    char text[64];
    (void)std::snprintf( text, sizeof( text ), "%04d%02u%02uT%02d%02d%02dZ", int( date.year() ),
        unsigned( date.month() ), unsigned( date.day() ), int( clock.hours().count() ), int( clock.minutes().count() ),
        int( clock.seconds().count() ) );
    return text;
}
} // namespace

KVPreferenceDomain::KVPreferenceDomain( std::filesystem::path inFile, XFileCalls& inCalls )
    : mFile( std::move( inFile ) ),
      mCalls( inCalls )
{}

template<class Work>
auto KVPreferenceDomain::Locked( Work inWork )
{
    std::unique_lock lock( mMutex );
    auto result = inWork();
    const std::vector<std::string> news = std::exchange( mNews, {} );
    lock.unlock();
    for ( const std::string& line : news )
        XErrorHandler::PrivateMaybeLogFormat( "always", "KVPreferences %s", line );
    return result;
}

__SafeCFPropertyList KVPreferenceDomain::Get( const XKey& inKey )
{
    return Locked( [&] {
        Refresh();
        return Find( inKey );
    } );
}

bool KVPreferenceDomain::Set( const XKey& inKey, __SafeCFPropertyList inValue )
{
    return Locked( [&] {
        mUnsaved[std::string( inKey.Name() )] = std::move( inValue );
        return Write();
    } );
}

__SafeCFPropertyList KVPreferenceDomain::Change(
    const XKey& inKey, const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange )
{
    return Locked( [&] {
        XOpenFile lockFile;
        auto error = Lock( lockFile );
        Refresh();
        const __SafeCFPropertyList old = Find( inKey );
        __SafeCFPropertyList changed = inChange( old );
        if ( changed.Equals( old ) )
            return old;
        mUnsaved[std::string( inKey.Name() )] = changed;
        (void)Succeed( error ? std::move( error ) : WriteUnderLock() );
        return changed;
    } );
}

bool KVPreferenceDomain::WriteUnsaved()
{
    return Locked( [&] { return mUnsaved.empty() or Write(); } );
}

__SafeCFPropertyList KVPreferenceDomain::Find( const XKey& inKey ) const
{
    if ( const auto unsaved = mUnsaved.find( inKey.Name() ); unsaved != mUnsaved.end() )
        return unsaved->second;
    return mSettings ? __SafeCFPropertyList( mSettings->Find( inKey ) ) : __SafeCFPropertyList();
}

/// Every writer replaces the file, so a new file shows by its number. The system gives a number again once
/// its file is gone, perhaps within one tick of the clock: holding the file open keeps the number
/// from being given to another. Size and time show a change in place, by hand.
bool KVPreferenceDomain::IsUnchanged()
{
    XFileStatus facts;
    if ( not mHasRead )
        return false;
    if ( mCalls.GetPathFacts( mFile, facts ) < 0 )
        return not mOpenFile and mFault.empty() and errno == ENOENT;
    return mOpenFile and facts == mFacts;
}

void KVPreferenceDomain::Refresh()
{
    if ( IsUnchanged() )
        return;
    const std::string before = mFault;
    ReadFile();
    if ( not mFault.empty() and mFault != before )
        mNews.push_back( mFault );
}

void KVPreferenceDomain::ReadFile()
{
    mHasRead = true;
    mSettings = nullptr;
    mDamaged = {};
    mFault.clear();
    mOpenFile = {};

    // Asked first, because opening a pipe that somebody put there would wait for its writer.
    XFileStatus facts;
    if ( mCalls.GetPathFacts( mFile, facts ) < 0 )
    {
        if ( errno != ENOENT )
            mFault = XFileError{ "look at", mFile, errno, std::generic_category().message( errno ), {} }.Describe();
        return;
    }
    if ( facts.mKind != XFileStatus::Kind::kRegular )
    {
        mFault = XFileError{ "read", mFile, 0, "it isn't a file", {} }.Describe();
        return;
    }
    XOpenFile file = XOpenFile::Open( mFile, XFileCalls::OpenFor::kRead, mCalls );
    if ( not file )
    {
        // Gone since: another process may have removed it, and none has its name now.
        if ( errno != ENOENT )
            mFault = XFileError{ "open", mFile, errno, std::generic_category().message( errno ), {} }.Describe();
        return;
    }
    XFileContent content = ReadWholeFile( file.Get(), mFile, kMaxFileSize, mCalls );
    if ( content.mError )
    {
        mFault = content.mError->Describe();
        return;
    }
    mFacts = content.mFacts;
    mOpenFile = std::move( file );

    const XPlistReadResult result = ReadPropertyList( content.mBytes.Span() );
    if ( const XPlistDictionary* dictionary = result.mValue.AsDictionary() )
        mSettings = CFContainer<XPlistDictionary>::Share( dictionary );
    else
    {
        mFault = "couldn't understand “" + mFile.native() +
            "”: " + ( result.mFault ? result.mFault->Describe() : "its root isn't a dictionary" );
        mDamaged = std::move( content.mBytes );
    }
}

bool KVPreferenceDomain::Write()
{
    XOpenFile lockFile;
    auto error = Lock( lockFile );
    return Succeed( error ? std::move( error ) : WriteUnderLock() );
}

bool KVPreferenceDomain::Succeed( std::optional<std::string> inError )
{
    if ( inError )
        mNews.push_back( std::move( *inError ) );
    return not inError;
}

std::optional<std::string> KVPreferenceDomain::Lock( XOpenFile& outLock )
{
    if ( const auto error = MakeFolders( mFile.parent_path(), mCalls ) )
        return error->Describe();
    // A file of its own, because the domain's file is another after each write; never removed, for a
    // process may be waiting for it.
    const std::filesystem::path path = WithPath( ".lock", mFile );
    outLock = XOpenFile::Open( path, XFileCalls::OpenFor::kLock, mCalls );
    int result = outLock ? mCalls.Lock( outLock.Get() ) : -1;
    for ( int i = 0; outLock and result < 0 and errno == EINTR and i < kMostInterruptions; ++i )
        result = mCalls.Lock( outLock.Get() );
    if ( result == 0 )
        return std::nullopt;
    return XFileError{ "lock", path, errno, std::generic_category().message( errno ), {} }.Describe();
}

std::optional<std::string> KVPreferenceDomain::WriteUnderLock()
{
    Refresh();
    XMutableDictionary dictionary;
    if ( mSettings )
        dictionary.SetAll( *mSettings );
    const __SafeCFPropertyList old = dictionary.Seal();
    dictionary.SetAll( *old.AsDictionary() );
    for ( const auto& [key, value] : mUnsaved )
        dictionary.Set( XKey( key ), value );
    const __SafeCFPropertyList settings = dictionary.Seal();
    if ( settings.Equals( old ) )
    {
        mUnsaved.clear();
        return std::nullopt;
    }
    if ( not mFault.empty() )
    {
        if ( auto error = SetDamagedFileAside() )
            return error;
    }

    const XBytes bytes = WriteBinaryPropertyList( settings );
    const auto error = XAtomicFile::Write( mFile, bytes.Span(), XAtomicFile::Links::kReplace, mCalls );
    mHasRead = false; // even after an error the file may be the new one
    if ( error )
        return error->Describe();
    mUnsaved.clear();
    return std::nullopt;
}

std::optional<std::string> KVPreferenceDomain::SetDamagedFileAside()
{
    // What can't even be read can't be copied, and so isn't replaced either.
    if ( not mOpenFile )
        return mFault + "; nothing is written over it";
    const std::string base = WithPath( ".damaged-", mFile ) + UTCStamp( XClock::Current().Now() );
    std::filesystem::path copy = base;
    XFileStatus facts;
    for ( int i = 2; i < kMostCopies and mCalls.GetLinkFacts( copy, facts ) == 0; ++i )
        copy = base + "-" + std::to_string( i );
    if ( const auto error = XAtomicFile::Write( copy, mDamaged.Span(), XAtomicFile::Links::kReplace, mCalls ) )
        return error->Describe() + ", and the damaged file isn't replaced without a copy";
    mNews.push_back(
        "copied the damaged file “" + mFile.native() + "” to “" + copy.native() + "” before writing a new one" );
    return std::nullopt;
}
