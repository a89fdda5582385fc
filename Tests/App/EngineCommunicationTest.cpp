#include "App/EngineCommunicationTest.h"

#include "Tests/App/EngineWorld.h"
#include "Utility/Work/Random.h"

namespace
{
struct EngineCommunication : EngineWorld
{
    [[nodiscard]] std::int64_t LastID() const
    {
        std::int64_t identifier = 0;
        EXPECT_TRUE( mNotifier.mPosts.back().second->Get( CFSTR( "ID" ), identifier ) );
        return identifier;
    }
    void Reply( std::int64_t inID )
    {
        XMutableDictionary reply;
        reply.SetInteger( CFSTR( "ID" ), inID );
        mNotifier.mReceiver( u"KV_CheckCommunicationReply", reply.Seal(), true );
    }
    void ReplyActive( TextView inUID, bool inActive )
    {
        XMutableDictionary reply;
        reply.SetText( CFSTR( "UID" ), inUID );
        reply.SetBoolean( CFSTR( "Active" ), inActive );
        mNotifier.mReceiver( u"KV_CheckMacroActiveReply", reply.Seal(), true );
    }
    /// The times from one post to the next, while the world goes on by so much.
    std::vector<double> Intervals( double inSeconds )
    {
        constexpr double kStep = 0.001;
        std::vector<double> intervals;
        double since = 0;
        for ( double time = 0; time < inSeconds; time += kStep )
        {
            const std::size_t posts = mNotifier.mPosts.size();
            mWorld.mWork.Advance( kStep );
            since += kStep;
            if ( mNotifier.mPosts.size() > posts )
                intervals.push_back( std::exchange( since, 0 ) );
        }
        return intervals;
    }

    XSeededRandom mRandom{ 5 };
    XRandom::Substitute mRandomInUse{ mRandom };
};
} // namespace

TEST_F( EngineCommunication, EachTestReportsWhetherItsOwnReplyCame )
{
    std::string reports;
    auto test = std::make_unique<EngineCommunicationTest>( [&]( bool inCan ) { reports += inCan ? 'y' : 'n'; } );
    test->checkEngineCanCommunicate();
    EXPECT_EQ( mNotifier.mPosts.back().first, u"KV_CheckCommunication" );
    const std::int64_t first = LastID();
    mWorld.mWork.Advance( 0.69 );
    EXPECT_EQ( reports, "" );
    mWorld.mWork.Advance( 0.22 );
    EXPECT_EQ( reports, "n" );
    Reply( first ); // too late
    mWorld.mWork.Advance( 0.9 );
    EXPECT_EQ( reports, "nn" );
    Reply( LastID() );
    Reply( first );
    mWorld.mWork.Advance( 0.9 );
    EXPECT_EQ( reports, "nny" );
    test.reset();
    mWorld.mWork.Advance( 5 );
    EXPECT_EQ( reports, "nny" );
}

TEST_F( EngineCommunication, TheTimesBetweenTestsVaryWithinTheirBounds )
{
    const auto ExpectBetween = []( const std::vector<double>& inIntervals, double inShortest, double inLongest ) {
        ASSERT_GT( inIntervals.size(), 10u );
        const auto [least, most] = std::minmax_element( inIntervals.begin(), inIntervals.end() );
        EXPECT_GE( *least, inShortest - 0.0015 );
        EXPECT_LE( *most, inLongest + 0.0015 );
        EXPECT_GT( *most - *least, ( inLongest - inShortest ) / 2 );
    };
    {
        EngineCommunicationTest test( []( bool ) {} );
        test.checkEngineCanCommunicate();
        ExpectBetween( Intervals( 40 ), 0.7, 0.9 );
    }
    EngineMacroActiveTest test( u"U", []( bool ) {} );
    test.checkCheckMacro();
    ExpectBetween( Intervals( 40 ), 0.3, 1.7 );
}

TEST_F( EngineCommunication, AReportMayEndItsTest )
{
    std::unique_ptr<EngineCommunicationTest> test;
    test = std::make_unique<EngineCommunicationTest>( [&]( bool ) { test.reset(); } );
    test->checkEngineCanCommunicate();
    mWorld.mWork.Advance( 5 );
    EXPECT_FALSE( test );
    EXPECT_EQ( mWorld.mWork.CountWakeUps(), 0u );
}

TEST_F( EngineCommunication, OnlyAnswersAboutTheMacroAreReported )
{
    std::string reports;
    EngineMacroActiveTest test( u"U", [&]( bool inActive ) { reports += inActive ? 'y' : 'n'; } );
    test.checkCheckMacro();
    EXPECT_EQ( mNotifier.mPosts.back().first, u"KV_CheckMacroActive" );
    ReplyActive( u"V", true );
    ReplyActive( u"U", true );
    ReplyActive( u"U", false );
    mNotifier.mReceiver( u"KV_CheckMacroActiveReply", nullptr, true );
    EXPECT_EQ( reports, "yn" );
}
