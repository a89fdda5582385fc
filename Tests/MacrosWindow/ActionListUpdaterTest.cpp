#include "MacrosWindow/ActionListUpdater.h"

#include "Tests/Fakes/ManualWorld.h"
#include "XCAF/XErrorHandler.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace
{
class FakeController final : public ActionListController
{
public:
    bool ControllerWantsUpdateMessage() const override { return mWantsIt; }
    void actionListUpdaterUpdate() override
    {
        ++mUpdates;
        if ( mOnUpdate )
            mOnUpdate();
    }
    std::vector<ActionListController*> actionListUpdatees() override { return mUpdatees; }
    std::vector<ActionListController*> Members() override { return mMembers; }

    bool mWantsIt = true;
    int mUpdates = 0;
    std::vector<ActionListController*> mUpdatees, mMembers;
    std::function<void()> mOnUpdate;
};

class FakeView final : public ActionListView
{
public:
    std::size_t CountChildren() const override { return mChildren.size(); }
    ActionListView& ChildAt( std::size_t inIndex ) override { return *mChildren.at( inIndex ); }
    bool HasVisibleArea() const override { return mIsVisible; }
    bool IsWindowOccluded() const override { return mIsOccluded; }
    ActionListController* ViewListItemController() override { return mController; }

    FakeView& Add( ActionListController* inController = nullptr )
    {
        mChildren.push_back( std::make_unique<FakeView>() );
        mChildren.back()->mController = inController;
        return *mChildren.back();
    }

    std::vector<std::unique_ptr<FakeView>> mChildren;
    ActionListController* mController = nullptr;
    bool mIsVisible = true, mIsOccluded = false;
};

class ActionListUpdaterTest : public testing::Test
{
protected:
    ActionListUpdaterTest()
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetPreferenceSource( { []( TextView ) { return std::optional<Text>( u"ActionListUpdater" ); },
            []( TextView ) { return std::optional<bool>(); } } );
    }
    ~ActionListUpdaterTest() override { XErrorHandler::ResetForTesting(); }

    /// When each update of a controller came.
    void Watch( FakeController& ioController )
    {
        ioController.mOnUpdate = [this] { mTimes.push_back( std::lround( mWorld.mClock.MonotonicSeconds() * 10 ) ); };
    }
    std::size_t Scans() const { return mWorld.mLog.CountContaining( "Finished Scan" ); }

    ManualWorld mWorld;
    std::shared_ptr<FakeView> mRoot = std::make_shared<FakeView>();
    std::vector<long> mTimes; ///< in tenths of a second
    ActionListUpdater mUpdater;
};
} // namespace

TEST_F( ActionListUpdaterTest, AShortListIsScannedOnceASecond )
{
    FakeController controllers[3];
    for ( FakeController& controller : controllers )
    {
        mRoot->Add( &controller );
        Watch( controller );
    }
    mUpdater.start( mRoot );
    mWorld.mWork.Advance( 2.15 );
    // Three views in 0.3 seconds; then the end is found, and the rest is seven tenths.
    EXPECT_EQ( mTimes, ( std::vector<long>{ 0, 1, 2, 10, 11, 12, 20, 21 } ) );
    EXPECT_EQ( Scans(), 2u );
}

TEST_F( ActionListUpdaterTest, ALongListIsTenViewsASecondWithoutARest )
{
    FakeController controllers[12];
    for ( FakeController& controller : controllers )
    {
        mRoot->Add( &controller );
        Watch( controller );
    }
    mUpdater.start( mRoot );
    mWorld.mWork.Advance( 2.35 );
    EXPECT_EQ( mTimes,
        ( std::vector<long>{ 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23 } ) );
}

TEST_F( ActionListUpdaterTest, AnEmptyListIsLookedAtOnceASecond )
{
    mUpdater.start( mRoot );
    mWorld.mWork.Advance( 5.05 );
    EXPECT_EQ( Scans(), 6u );
}

TEST_F( ActionListUpdaterTest, DepthFirstWithoutWhatCantBeSeen )
{
    FakeController outer, inner, last, hidden, dull;
    dull.mWantsIt = false;
    std::string order;
    outer.mOnUpdate = [&] { order += "outer "; };
    inner.mOnUpdate = [&] { order += "inner "; };
    last.mOnUpdate = [&] { order += "last "; };
    FakeView& outerView = mRoot->Add( &outer );
    outerView.Add().Add( &inner );
    FakeView& hiddenView = mRoot->Add( &dull ).Add();
    hiddenView.mIsVisible = false;
    hiddenView.Add( &hidden );
    mRoot->Add( &last );
    mUpdater.start( mRoot );
    mWorld.mWork.Advance( 0.35 );
    EXPECT_EQ( order, "outer inner last " );
    EXPECT_EQ( hidden.mUpdates + dull.mUpdates, 0 );
}

TEST_F( ActionListUpdaterTest, UpdateesAreUpdatedWithTheirController )
{
    FakeController holder, one, two, dull;
    holder.mWantsIt = false;
    dull.mWantsIt = false;
    holder.mMembers = { &one, nullptr, &dull, &two };
    holder.mUpdatees = actionListUpdateesForController( holder );
    EXPECT_EQ( holder.mUpdatees, ( std::vector<ActionListController*>{ &one, &two } ) );
    EXPECT_EQ( actionListUpdateesForController( one ), std::vector<ActionListController*>{ &one } );
    holder.mUpdatees.push_back( &dull );
    mRoot->Add( &holder );
    mUpdater.start( mRoot );
    EXPECT_EQ( one.mUpdates + two.mUpdates, 2 );
    EXPECT_EQ( holder.mUpdates + dull.mUpdates, 0 );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "ControllerWantsUpdateMessage( subcontroller )" ), 1u );
}

TEST_F( ActionListUpdaterTest, AHiddenListIsTriedASecondLaterFromItsBeginning )
{
    FakeController first, second;
    std::string order;
    first.mOnUpdate = [&] { order += "1"; };
    second.mOnUpdate = [&] { order += "2"; };
    mRoot->Add( &first );
    mRoot->Add( &second );
    for ( bool FakeView::*const flag : { &FakeView::mIsOccluded, &FakeView::mIsVisible } )
    {
        mUpdater.start( mRoot );
        EXPECT_EQ( std::exchange( order, "" ), "1" );
        mRoot.get()->*flag = not( mRoot.get()->*flag );
        mWorld.mWork.Advance( 3.05 ); // tried after 0.1, 1.1, 2.1 seconds
        EXPECT_EQ( order, "" );
        mRoot.get()->*flag = not( mRoot.get()->*flag );
        mWorld.mWork.Advance( 0.1 );
        EXPECT_EQ( std::exchange( order, "" ), "1" );
    }
}

TEST_F( ActionListUpdaterTest, NothingComesAfterStopOrWhenTheViewHasGone )
{
    FakeController controller;
    mRoot->Add( &controller );
    mUpdater.start( mRoot );
    mUpdater.stop();
    mWorld.mWork.Advance( 3 );
    EXPECT_EQ( controller.mUpdates, 1 );
    controller.mOnUpdate = [this] { mUpdater.stop(); };
    mUpdater.start( mRoot );
    mWorld.mWork.Advance( 3 );
    EXPECT_EQ( controller.mUpdates, 2 );
    controller.mOnUpdate = {};
    mUpdater.start( mRoot );
    mRoot.reset();
    mWorld.mWork.Advance( 3 );
    EXPECT_EQ( controller.mUpdates, 3 );
    EXPECT_EQ( mWorld.mWork.CountWakeUps(), 0u );
}

TEST_F( ActionListUpdaterTest, ViewsMayGoBetweenTwoSteps )
{
    FakeController controllers[4];
    for ( FakeController& controller : controllers )
        mRoot->Add().Add( &controller );
    mUpdater.start( mRoot );
    mWorld.mWork.Advance( 0.15 );
    EXPECT_EQ( controllers[1].mUpdates, 1 );
    mRoot->mChildren[1]->mChildren.clear();
    mRoot->mChildren.erase( mRoot->mChildren.begin() );
    mRoot->mChildren.pop_back();
    mWorld.mWork.Advance( 3 );
    EXPECT_GE( controllers[2].mUpdates, 2 );
    EXPECT_EQ( controllers[3].mUpdates, 0 );
}

TEST_F( ActionListUpdaterTest, ATreeThatIsTooDeepIsAnAssertionAndTheScanEnds )
{
    FakeController controller;
    FakeView* view = mRoot.get();
    for ( int i = 0; i < ViewIndex::kMaxDepth + 5; ++i )
        view = &view->Add();
    view->mController = &controller;
    mUpdater.start( mRoot );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "depth < kMaxDepth" ), 1u );
    EXPECT_EQ( controller.mUpdates, 0 );
    EXPECT_EQ( Scans(), 1u );
}
