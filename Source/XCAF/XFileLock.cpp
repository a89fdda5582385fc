#include "XCAF/XFileLock.h"

#include "Utility/Text/Format.h"
#include "Utility/Work/Random.h"
#include "Utility/Work/Sleep.h"
#include "XCAF/XErrorHandler.h"

#include <cerrno>
#include <system_error>

namespace
{
constexpr double kBetweenTries = 0.001, kWorthALine = 0.1;
constexpr double k2001 = 978307200; // in seconds since 1970

XAbsoluteTime DateOf( const XFileStatus& inFacts )
{
    return double( inFacts.mModifiedSeconds ) - k2001 + double( inFacts.mModifiedNanoseconds ) * 1e-9;
}

bool IsSameLock( const XFileStatus& inA, const XFileStatus& inB )
{
    return inA.mDevice == inB.mDevice and inA.mFile == inB.mFile and inA.mModifiedSeconds == inB.mModifiedSeconds and
        inA.mModifiedNanoseconds == inB.mModifiedNanoseconds;
}

/// Gives back a lock that was moved away by mistake, unless somebody took the name since.
void MoveBack( const std::filesystem::path& inFrom, const std::filesystem::path& inTo, XFileCalls& inCalls )
{
    if ( inCalls.RenameToNew( inFrom, inTo ) == 0 )
        return;
    // Many network volumes know only the plain rename. It replaces an empty folder, that is, somebody's lock.
    XFileStatus facts;
    if ( errno != EEXIST and inCalls.GetLinkFacts( inTo, facts ) != 0 and inCalls.Rename( inFrom, inTo ) == 0 )
        return;
    (void)inCalls.RemoveFolder( inFrom );
}
} // namespace

std::unique_ptr<XFileLock> XFileLock::lockWithPath( std::filesystem::path inPath )
{
    return std::unique_ptr<XFileLock>( new XFileLock( std::move( inPath ) ) );
}

XFileLock::~XFileLock()
{
    if ( i_myLockDate )
        unlock();
}

bool XFileLock::tryLock()
{
    XFileCalls& calls = XFileCalls::Current();
    int result = calls.MakeFolder( mPath );
    if ( result != 0 and errno == ENOENT and not MakeFolders( mPath.parent_path(), calls ) )
        result = calls.MakeFolder( mPath );
    if ( result != 0 )
        return false;
    i_myLockDate = LockFacts();
    XAssert( i_myLockDate );
    return true;
}

bool XFileLock::tryLockFor( double inSeconds )
{
    const XClock& clock = XClock::Current();
    const double start = clock.MonotonicSeconds();
    while ( not tryLock() )
    {
        if ( clock.MonotonicSeconds() - start >= inSeconds )
        {
            XErrorHandler::PrivateMaybeLogFormat(
                "always", "File lock failed after %.2f seconds", clock.MonotonicSeconds() - start );
            return false;
        }
        XSleep::For( kBetweenTries );
    }
    if ( const double seconds = clock.MonotonicSeconds() - start; seconds > kWorthALine )
        XErrorHandler::PrivateMaybeLogFormat( "XFileLock", "File lock took more %.2f seconds", seconds );
    return true;
}

void XFileLock::tryThenBreakLockFor( double inSeconds )
{
    for ( auto before = LockFacts(); not tryLockFor( inSeconds ); )
    {
        // The date is of another machine's clock, which may be behind by more than the limit. What we didn't see for
        // all that time is young, whatever its date says.
        const auto now = LockFacts();
        if ( before and now and IsSameLock( *before, *now ) )
            BreakIfOlder( *now, inSeconds );
        before = now;
    }
}

void XFileLock::breakLock()
{
    if ( const auto facts = LockFacts() )
        (void)RemoveIfStill( *facts );
    i_myLockDate.reset();
}

void XFileLock::breakLockOlderThan( double inSeconds )
{
    if ( const auto facts = LockFacts() )
        BreakIfOlder( *facts, inSeconds );
}

void XFileLock::BreakIfOlder( const XFileStatus& inFacts, double inSeconds )
{
    const double age = XClock::Current().Now() - DateOf( inFacts );
    if ( not( age > inSeconds ) )
        return;
    XErrorHandler::PrivateMaybeLogFormat( "always", "File lock needs breaking %@ %f", mPath, age );
    (void)RemoveIfStill( inFacts );
    i_myLockDate.reset();
}

void XFileLock::unlock()
{
    XAssert( i_myLockDate );
    if ( i_myLockDate and not RemoveIfStill( *i_myLockDate ) )
        XAssertText( false, "false" );
    i_myLockDate.reset();
}

std::optional<XAbsoluteTime> XFileLock::lockDate() const
{
    const auto facts = LockFacts();
    return facts ? std::optional( DateOf( *facts ) ) : std::nullopt;
}

Text XFileLock::description() const
{
    if ( not i_myLockDate )
        return kvr_format( " path is '%@' not currently locked by us", mPath );
    return kvr_format( " path is '%@' locked by us at %@", mPath, kvr_format( "%f", DateOf( *i_myLockDate ) ) );
}

std::optional<XFileStatus> XFileLock::LockFacts() const
{
    XFileStatus facts;
    // Whatever else has the name isn't a lock, and nothing that may be removed.
    if ( XFileCalls::Current().GetLinkFacts( mPath, facts ) != 0 or facts.mKind != XFileStatus::Kind::kFolder )
        return {};
    return facts;
}

/// Removes the lock that has these facts. Between a look and a removal a fresh lock could take its place, so the folder
/// first gets a name that only we know, is looked at again, and goes back if it is another's.
bool XFileLock::RemoveIfStill( const XFileStatus& inFacts )
{
    const auto before = LockFacts();
    if ( not before or not IsSameLock( *before, inFacts ) )
        return false;
    XFileCalls& calls = XFileCalls::Current();
    std::filesystem::path moved = mPath;
    moved += "." + UTF8FromText( uuidString() );
    if ( calls.Rename( mPath, moved ) != 0 )
    {
        const int code = errno;
        if ( code != ENOENT )
            XErrorHandler::PrivateMaybeLogFormat(
                "always", "File lock can't be removed %@: %@", mPath, std::generic_category().message( code ) );
        return code != ENOENT;
    }
    XFileStatus facts;
    if ( calls.GetLinkFacts( moved, facts ) != 0 or not IsSameLock( facts, inFacts ) )
    {
        MoveBack( moved, mPath, calls );
        return false;
    }
    if ( calls.RemoveFolder( moved ) != 0 )
        XErrorHandler::PrivateMaybeLogFormat( "always", "File lock leaves %@ behind", moved );
    return true;
}
