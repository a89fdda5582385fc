#include "XCAF/XFileSemaphore.h"

#include "Utility/Work/Clock.h"
#include "Utility/Work/Sleep.h"
#include "XCAF/XErrorHandler.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>

namespace
{
constexpr mode_t kMode = 0644;
constexpr unsigned kFreeValue = 1;
constexpr double kBetweenTries = 0.001, kWorthALine = 0.1, kAfterBreaking = 1.0;
} // namespace

std::unique_ptr<XFileSemaphore> XFileSemaphore::lockWithPath(
    const std::string& inName, std::filesystem::path inLockFile )
{
    return std::unique_ptr<XFileSemaphore>( new XFileSemaphore( inName, std::move( inLockFile ) ) );
}

XFileSemaphore::XFileSemaphore( const std::string& inName, std::filesystem::path inLockFile )
    : mLockFile( std::move( inLockFile ) ),
      mSemaphore( ::sem_open( inName.c_str(), O_CREAT, kMode, kFreeValue ) )
{
    if ( mSemaphore == SEM_FAILED )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Can't open semaphore %@: %@", inName, std::generic_category().message( errno ) );
}

XFileSemaphore::~XFileSemaphore()
{
    if ( i_locked )
        unlock();
    if ( mSemaphore != SEM_FAILED )
        ::sem_close( mSemaphore );
}

bool XFileSemaphore::tryLock()
{
    XAssert( !i_locked );
    if ( i_locked or not TakeKernelLock() )
        return false;
    LowerToOne();
    i_locked = mSemaphore == SEM_FAILED or ::sem_trywait( mSemaphore ) == 0;
    // Between tries nobody has the kernel's lock: kept, it would say that the one who waits is a holder.
    if ( not i_locked )
        mKernelLock.Release();
    return i_locked;
}

bool XFileSemaphore::tryLockFor( double inSeconds )
{
    const XClock& clock = XClock::Current();
    const double start = clock.MonotonicSeconds();
    while ( not tryLock() )
    {
        if ( clock.MonotonicSeconds() - start >= inSeconds )
        {
            XErrorHandler::PrivateMaybeLogFormat(
                "XFileSemaphore", "File tryLock failed after %.2f seconds", clock.MonotonicSeconds() - start );
            return false;
        }
        XSleep::For( kBetweenTries );
    }
    if ( const double seconds = clock.MonotonicSeconds() - start; seconds > kWorthALine )
        XErrorHandler::PrivateMaybeLogFormat( "XFileSemaphore", "File tryLock took %.2f seconds", seconds );
    return true;
}

void XFileSemaphore::forceLockAfter( double inSeconds )
{
    XAssert( !i_locked );
    while ( not i_locked and not tryLockFor( inSeconds ) )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Break semaphore" );
        if ( mSemaphore != SEM_FAILED )
            ::sem_post( mSemaphore );
        XSleep::For( kAfterBreaking );
    }
}

void XFileSemaphore::unlock()
{
    XAssert( i_locked );
    if ( not i_locked ) // a post without a lock would let two in
        return;
    i_locked = false;
    if ( mSemaphore != SEM_FAILED )
        ::sem_post( mSemaphore );
    LowerToOne();
    mKernelLock.Release();
}

/// False when one of us has it. A folder that can't be written to, or a volume without locks, is no reason to wait:
/// then the semaphore has to do.
bool XFileSemaphore::TakeKernelLock()
{
    const auto result = mKernelLock.TryTake( mLockFile );
    if ( result == XKernelLock::Result::kFailed and not std::exchange( mHasLoggedFailure, true ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "XFileSemaphore %@", mKernelLock.Error()->Describe() );
    return result != XKernelLock::Result::kHeldByAnother;
}

/// Takes back what was posted by force while the holder was alive. Only under the kernel's lock: two who lower at once
/// could take the last one away from everybody.
void XFileSemaphore::LowerToOne()
{
    int value = 0;
    while ( mKernelLock.IsHeld() and mSemaphore != SEM_FAILED and ::sem_getvalue( mSemaphore, &value ) == 0 and
        value > int( kFreeValue ) and ::sem_trywait( mSemaphore ) == 0 )
    {}
}
