#include "Defines/KVPreferenceDomain.h"

#include "CFMethods/PropertyListCodec.h"
#include "XCAF/XErrorHandler.h"

#include <cerrno>
#include <system_error>

namespace
{
constexpr int kMostInterruptions = 100;
constexpr int kMostDamagedFiles = 3; // somebody who damages it again and again is left to it

std::string WithPath( const char* inSuffix, const std::filesystem::path& inPath )
{
    return inPath.native() + inSuffix;
}
} // namespace

KVPreferenceDomain::KVPreferenceDomain( std::filesystem::path inFile, Keep inKeep, XFileCalls& inCalls )
    : mFile( std::move( inFile ) ),
      mKeep( std::move( inKeep ) ),
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

template<class Work>
bool KVPreferenceDomain::WriteBy( const Work& inWork )
{
    for ( int i = 0; i < kMostDamagedFiles; ++i )
    {
        Damage damage;
        const Outcome outcome = Locked( [&] {
            const Outcome result = inWork();
            damage = mDamage;
            return result;
        } );
        if ( outcome != Outcome::kMustKeep )
            return outcome == Outcome::kDone;
        if ( not SetAside( damage ) )
            return false;
    }
    return false;
}

bool KVPreferenceDomain::SetAside( const Damage& inDamage )
{
    const auto error = mKeep ? mKeep( mFile, inDamage.mBytes->Span(), inDamage.mReason )
                             : XFileError{ "set aside", mFile, 0, "there is no place for it", {} };
    return Locked( [&] {
        if ( error )
            mNews.push_back( error->Describe() + ", and the damaged file isn't replaced without a copy" );
        else
            mIsKept = mDamage.mBytes == inDamage.mBytes;
        return not error;
    } );
}

bool KVPreferenceDomain::Set( const XKey& inKey, __SafeCFPropertyList inValue )
{
    return WriteBy( [&] {
        mUnsaved[std::string( inKey.Name() )] = inValue;
        return Write();
    } );
}

__SafeCFPropertyList KVPreferenceDomain::Change(
    const XKey& inKey, const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange )
{
    __SafeCFPropertyList result, before;
    bool isOurs = false; // the value that waits is one that an earlier try has made, and nobody has seen yet
    (void)WriteBy( [&] {
        XOpenFile lockFile;
        auto error = Lock( lockFile );
        const std::string name( inKey.Name() );
        // By now another process may have put a new file in the damaged one's place, and its value stands.
        if ( isOurs )
            before ? (void)( mUnsaved[name] = before ) : (void)mUnsaved.erase( name );
        Refresh();
        const auto waiting = mUnsaved.find( name );
        before = waiting == mUnsaved.end() ? __SafeCFPropertyList() : waiting->second;
        const __SafeCFPropertyList old = Find( inKey );
        result = inChange( old );
        isOurs = not result.Equals( old );
        if ( not isOurs )
            return Outcome::kDone;
        mUnsaved[name] = result;
        return error ? Failed( std::move( *error ) ) : WriteUnderLock();
    } );
    return result;
}

bool KVPreferenceDomain::WriteUnsaved()
{
    return WriteBy( [&] { return mUnsaved.empty() ? Outcome::kDone : Write(); } );
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
    mDamage = {};
    mIsKept = false;
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
        mDamage.mReason = result.mFault ? result.mFault->Describe() : "its root isn't a dictionary";
        mDamage.mBytes = std::make_shared<const XBytes>( std::move( content.mBytes ) );
        mFault = "couldn't understand “" + mFile.native() + "”: " + mDamage.mReason;
    }
}

KVPreferenceDomain::Outcome KVPreferenceDomain::Write()
{
    XOpenFile lockFile;
    auto error = Lock( lockFile );
    return error ? Failed( std::move( *error ) ) : WriteUnderLock();
}

KVPreferenceDomain::Outcome KVPreferenceDomain::Failed( std::string inWhy )
{
    mNews.push_back( std::move( inWhy ) );
    return Outcome::kFailed;
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

KVPreferenceDomain::Outcome KVPreferenceDomain::WriteUnderLock()
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
        return Outcome::kDone;
    }
    // What can't even be read can't be copied, and so isn't replaced either.
    if ( not mFault.empty() and not mDamage.mBytes )
        return Failed( mFault + "; nothing is written over it" );
    if ( mDamage.mBytes and not mIsKept )
        return Outcome::kMustKeep;

    const XBytes bytes = WriteBinaryPropertyList( settings );
    const auto error = XAtomicFile::Write( mFile, bytes.Span(), XAtomicFile::Links::kReplace, mCalls );
    mHasRead = false; // even after an error the file may be the new one
    if ( error )
        return Failed( error->Describe() );
    mUnsaved.clear();
    return Outcome::kDone;
}
