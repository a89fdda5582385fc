#include "App/EngineCommunicationTest.h"

#include "Utility/Work/Random.h"
#include "XCAF/KVNotifications.h"

namespace
{
using XNotificationCenter::Notification;
using XNotificationCenter::Reach;

/// A random time from now, in seconds.
double TimeBetween( double inShortest, double inLongest )
{
    const double share = double( XRandom::Bits() >> 11 ) * 0x1p-53;
    return XWork::Current().Clock().MonotonicSeconds() + inShortest + share * ( inLongest - inShortest );
}

bool IsReplyTo( std::int64_t inTest, const Notification& inNotification )
{
    std::int64_t identifier = 0;
    return inNotification.mUserInfo and inNotification.mUserInfo->Get( CFSTR( "ID" ), identifier ) and
        identifier == inTest;
}
} // namespace

EngineCommunicationTest::EngineCommunicationTest( Report inReport )
    : mReport( std::move( inReport ) ),
      mTimer( XWork::Current().MainQueue(), [this] { Finish(); } ),
      mObserver( Reach::kDistributed, KVNotifications::kCheckCommunicationReply,
          [this]( const Notification& inReply ) { mGotReply = mGotReply or IsReplyTo( mTest, inReply ); } )
{}

void EngineCommunicationTest::checkEngineCanCommunicate()
{
    ++mTest;
    mGotReply = false;
    XMutableDictionary information;
    information.SetInteger( CFSTR( "ID" ), mTest );
    XNotificationCenter::PostNotification( KVNotifications::kCheckCommunication, information.Seal(), true );
    mTimer.SetAt( TimeBetween( 0.7, 0.9 ) );
}

void EngineCommunicationTest::Finish()
{
    const bool gotReply = mGotReply;
    const Report report = mReport;
    checkEngineCanCommunicate();
    report( gotReply ); // last, for this object may be gone afterwards
}

EngineMacroActiveTest::EngineMacroActiveTest( XText inMacroUID, Report inReport )
    : mMacroUID( std::move( inMacroUID ) ),
      mReport( std::move( inReport ) ),
      mTimer( XWork::Current().MainQueue(), [this] { checkCheckMacro(); } ),
      mObserver( Reach::kDistributed, KVNotifications::kCheckMacroActiveReply,
          [this]( const Notification& inReply ) { GotReply( inReply ); } )
{}

void EngineMacroActiveTest::GotReply( const Notification& inReply )
{
    XText uid;
    bool isActive = false;
    const XPlistDictionary* const information = inReply.mUserInfo.GetCFRef();
    if ( not information or not information->Get( CFSTR( "UID" ), uid ) or not( uid == mMacroUID ) or
        not information->Get( CFSTR( "Active" ), isActive ) )
        return;
    const Report report = mReport; // this object may go meanwhile
    report( isActive );
}

void EngineMacroActiveTest::checkCheckMacro()
{
    XMutableDictionary information;
    information.SetText( CFSTR( "UID" ), mMacroUID );
    XNotificationCenter::PostNotification( KVNotifications::kCheckMacroActive, information.Seal(), true );
    mTimer.SetAt( TimeBetween( 0.3, 1.7 ) );
}
