#include "Utility/Work/ThreadFinished.h"

#include "Tests/Fakes/ManualWorld.h"

#include <gtest/gtest.h>

TEST( ThreadFinished, ATokenStaysLiveUntilTheMainQueueHasHeard )
{
    ManualWorld world;
    const auto first = ThreadFinished::GetNewToken(), second = ThreadFinished::GetNewToken();
    EXPECT_NE( first, second );
    EXPECT_NE( first, ThreadFinished::kNull );
    world.mWork.MakeSerialQueue( u"worker" )->Sync( [&] {
        ThreadFinished::Finished( first );
        ThreadFinished::Finished( ThreadFinished::kNull );
    } );
    EXPECT_TRUE( ThreadFinished::IsLive( first ) );
    EXPECT_EQ( world.mWork.RunAll(), 1u ); // the null token isn't even sent
    EXPECT_FALSE( ThreadFinished::IsLive( first ) );
    EXPECT_TRUE( ThreadFinished::IsLive( second ) );
    EXPECT_EQ( world.mLog.Lines().size(), 0u );
}

TEST( ThreadDataHolder, TheResultArrivesOnTheMainQueue )
{
    ManualWorld world;
    ThreadDataHolder holder;
    EXPECT_FALSE( holder.IsFinished() );
    const auto token = holder.Start();
    const auto result = std::make_shared<int>( 7 );
    ThreadDataHolder::Finished( token, result );
    EXPECT_FALSE( holder.IsFinished() );
    world.mWork.RunAll();
    EXPECT_TRUE( holder.IsFinished() );
    EXPECT_TRUE( holder.IsFinished() );
    EXPECT_EQ( holder.GetResult(), result );
}

TEST( ThreadDataHolder, NobodyKeepsAResultThatNobodyWaitsFor )
{
    ManualWorld world;
    const auto result = std::make_shared<int>();
    ThreadDataHolder holder;
    const auto abandoned = holder.Start();
    const auto restarted = holder.Start();
    ThreadDataHolder::Finished( abandoned, result );
    ThreadDataHolder::Finished( restarted, result );
    world.mWork.RunAll();
    EXPECT_EQ( result.use_count(), 2 );
    holder.AbandonToken(); // after delivery, before anyone asked
    EXPECT_EQ( result.use_count(), 1 );
    {
        ThreadDataHolder gone;
        ThreadDataHolder::Finished( gone.Start(), result );
    }
    world.mWork.RunAll();
    EXPECT_EQ( result.use_count(), 1 );
    EXPECT_FALSE( holder.IsFinished() );
}

TEST( ThreadDataHolder, MisuseIsAnAssertion )
{
    ManualWorld world;
    ThreadDataHolder holder;
    ThreadDataHolder::Finished( ThreadDataHolder::kNull, std::make_shared<int>() );
    ThreadDataHolder::Finished( holder.Start(), nullptr );
    world.mWork.RunAll();
    EXPECT_FALSE( holder.IsFinished() );
    EXPECT_EQ( world.mLog.CountAssertions( "token != kNull" ), 1u );
    EXPECT_EQ( world.mLog.CountAssertions( "result" ), 1u );
    const auto before = holder.GetToken();
    world.mWork.MakeSerialQueue( u"worker" )->Sync( [&] {
        EXPECT_EQ( ThreadFinished::GetNewToken(), ThreadFinished::kNull );
        EXPECT_EQ( holder.Start(), ThreadDataHolder::kNull );
    } );
    EXPECT_EQ( holder.GetToken(), before ); // dropped, not half done
    EXPECT_EQ( world.mLog.CountAssertions( "[NSThread isMainThread]" ), 2u );
}
