#include "XCAF/XNotificationCenter.h"

#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/ProcessNotifications.h"
#include "Utility/Work/Work.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <vector>

namespace
{
using namespace XNotificationCenter;

struct Registration
{
    std::uint64_t mNumber;
    Reach mReach;
    Text mName;
    const void* mTarget;
    Block mBlock;
};

// The lock is for those who break the rule of the main thread; it is open while blocks run, so that
// they may add and remove.
class Center
{
public:
    explicit Center( XWork& inWork ) : mWork( inWork ) {}

    std::uint64_t Add( Reach inReach, TextView inName, const void* inTarget, Block inBlock )
    {
        const std::scoped_lock lock( mMutex );
        mRegistrations.push_back( std::make_shared<const Registration>(
            Registration{ ++mLast, inReach, Text( inName ), inTarget, std::move( inBlock ) } ) );
        return mLast;
    }

    template<class Which>
    std::size_t Remove( const Which& inWhich )
    {
        std::vector<std::shared_ptr<const Registration>> removed; // their blocks go when the lock is open
        const std::scoped_lock lock( mMutex );
        const auto kept = std::stable_partition( mRegistrations.begin(), mRegistrations.end(),
            [&]( const auto& inRegistration ) { return not inWhich( *inRegistration ); } );
        removed.assign( kept, mRegistrations.end() );
        mRegistrations.erase( kept, mRegistrations.end() );
        return removed.size();
    }

    template<class Which>
    [[nodiscard]] std::size_t Count( const Which& inWhich ) const
    {
        const std::scoped_lock lock( mMutex );
        return std::size_t( std::count_if( mRegistrations.begin(), mRegistrations.end(),
            [&]( const auto& inRegistration ) { return inWhich( *inRegistration ); } ) );
    }

    void Deliver( Reach inReach, const Notification& inNotification )
    {
        std::vector<std::weak_ptr<const Registration>> observers;
        {
            const std::scoped_lock lock( mMutex );
            for ( const auto& registration : mRegistrations )
            {
                if ( registration->mReach == inReach and registration->mName == inNotification.mName )
                    observers.push_back( registration );
            }
        }
        // One that an earlier one removed has gone by now, and isn't called: its owner may be gone as well.
        for ( const auto& weakObserver : observers )
        {
            if ( const auto observer = weakObserver.lock() )
                observer->mBlock( inNotification );
        }
    }

    void DeliverSoon( Reach inReach, Notification inNotification )
    {
        mWork.MainQueue()->Async(
            [this, inReach, notification = std::move( inNotification )] { Deliver( inReach, notification ); } );
    }

private:
    XWork& mWork;
    mutable std::mutex mMutex;
    std::uint64_t mLast = 0;
    std::vector<std::shared_ptr<const Registration>> mRegistrations;
};

Center& TheCenter()
{
    return XWork::Current().Shared<Center>();
}

// By the address, as "%p" writes it: targets have no description that all of them share.
Text DescribeTarget( const void* inTarget )
{
    return kvr_format( "0x%llx", std::uint64_t( reinterpret_cast<std::uintptr_t>( inTarget ) ) );
}

bool CheckMainThread( const char* inFormat, TextView inName )
{
    const bool isMain = XIsMainThread();
    XAssertText( isMain, "[NSThread isMainThread]" );
    if ( not isMain )
        Platform::Current().Alerts().SystemLog( kvr_format( inFormat, inName ) );
    return isMain;
}

// What the engine would refuse doesn't go out; our own observers aren't concerned.
void PostToOtherProcesses( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo )
{
    if ( const auto reason = KVNotifications::CheckPayload( inName, inUserInfo ) )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "%@ isn't sent to other processes: %@", inName, *reason );
        return;
    }
    using Audience = XProcessNotifier::Audience;
    Platform::Current().ProcessNotifier().Post(
        inName, inUserInfo, KVNotifications::IsEngineOnly( inName ) ? Audience::kEngineOnly : Audience::kEverybody );
}
} // namespace

void XNotificationCenter::AddCocoaObserver( const void* inTarget, TextView inName, Block inBlock )
{
    XAssertText( not inName.empty(), "!IsEmpty( name )" );
    XAssertText( inBlock, "block" );
    if ( inName.empty() or not inBlock )
        return;
    const auto isSame = [&]( const Registration& inOther ) {
        return inTarget and inOther.mTarget == inTarget and inOther.mName == inName;
    };
    if ( TheCenter().Count( isSame ) > 0 )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Duplicate AddCocoaObserver for %@", inName );
    TheCenter().Add( Reach::kDistributed, inName, inTarget, std::move( inBlock ) );
}

void XNotificationCenter::RemoveCocoaObserver( const void* inTarget, TextView inName )
{
    const auto isTarget = [&]( const Registration& inOther ) { return inTarget and inOther.mTarget == inTarget; };
    const std::size_t ofTarget = TheCenter().Count( isTarget );
    const std::size_t removed = TheCenter().Remove(
        [&]( const Registration& inOther ) { return isTarget( inOther ) and inOther.mName == inName; } );
    if ( ofTarget == 0 )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "No Target for RemoveCocoaObserver for %@", DescribeTarget( inTarget ) );
    else if ( removed == 0 )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Missing Name for RemoveCocoaObserver for %@", inName );
}

void XNotificationCenter::RemoveEveryCocoaObserver( const void* inTarget )
{
    TheCenter().Remove( [&]( const Registration& inOther ) { return inTarget and inOther.mTarget == inTarget; } );
}

// Every post of ours is delivered immediately; the carrier knows no other way.
void XNotificationCenter::PostNotification(
    TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, bool /*inDeliverImmediately*/ )
{
    // The carrier belongs to the main thread.
    if ( CheckMainThread( "Distributed Notification %@ sent from non-main thread", inName ) )
        PostToOtherProcesses( inName, inUserInfo );
    else
        XWork::Current().MainQueue()->Async(
            [name = Text( inName ), inUserInfo] { PostToOtherProcesses( name, inUserInfo ); } );
    TheCenter().DeliverSoon( Reach::kDistributed, { Text( inName ), nullptr, inUserInfo } );
}

void XNotificationCenter::PostApplicationInternalNotification(
    TextView inName, const void* inObject, const CFContainer<XPlistDictionary>& inUserInfo )
{
    const bool isMain = CheckMainThread( "Notification %@ sent fromt non-main thread", inName ); // worded so
    const Notification notification{ Text( inName ), inObject, inUserInfo };
    if ( isMain )
        TheCenter().Deliver( Reach::kInternal, notification );
    else
        TheCenter().DeliverSoon( Reach::kInternal, notification );
}

void XNotificationCenter::ListenToOtherProcesses()
{
    Platform::Current().ProcessNotifier().SetReceiver(
        []( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, bool inFromEngine ) {
            constexpr std::size_t kMostOfName = 100; // a stranger may have chosen it
            if ( const auto reason = KVNotifications::CheckReceived( inName, inUserInfo, inFromEngine ) )
                XErrorHandler::PrivateMaybeLogFormat( "display", "Refused the notification %@ of another process: %@",
                    inName.substr( 0, kMostOfName ), *reason );
            else
                TheCenter().Deliver( Reach::kDistributed, { Text( inName ), nullptr, inUserInfo } );
        } );
}

BlockNotificationObserver::BlockNotificationObserver( Reach inReach, TextView inName, Block inBlock )
    : mRegistration( 0 )
{
    XAssertText( not inName.empty(), "!IsEmpty( name )" );
    XAssertText( inBlock, "block" );
    if ( not inName.empty() and inBlock )
        mRegistration = TheCenter().Add( inReach, inName, nullptr, std::move( inBlock ) );
}

BlockNotificationObserver::~BlockNotificationObserver()
{
    if ( mRegistration )
        TheCenter().Remove( [this]( const Registration& inOther ) { return inOther.mNumber == mRegistration; } );
}
