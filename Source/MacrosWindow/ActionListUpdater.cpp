#include "MacrosWindow/ActionListUpdater.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>

namespace
{
constexpr double kStep = 0.1, kHiddenDelay = 1.0;
constexpr int kMostInASecond = 10;
} // namespace

std::vector<ActionListController*> actionListUpdateesForController( ActionListController& inController )
{
    std::vector<ActionListController*> updatees;
    if ( inController.ControllerWantsUpdateMessage() )
        updatees.push_back( &inController );
    for ( ActionListController* const member : inController.Members() )
    {
        if ( member and member->ControllerWantsUpdateMessage() )
            updatees.push_back( member );
    }
    return updatees;
}

ActionListView* ViewIndex::Next( ActionListView& inRoot )
{
    // The views on the path, as they are now. One that was removed cuts it off: its place is where its next sibling is.
    std::vector<ActionListView*> views{ &inRoot };
    std::size_t first = 0; // the child of the last view that comes next
    for ( std::size_t depth = 0; depth < mPath.size(); ++depth )
    {
        if ( mPath[depth] >= views.back()->CountChildren() )
        {
            first = mPath[depth];
            mPath.resize( depth );
            break;
        }
        views.push_back( &views.back()->ChildAt( mPath[depth] ) );
    }
    for ( ;; )
    {
        int depth = int( mPath.size() );
        XAssert( depth >= 0 );
        XAssert( depth < kMaxDepth );
        ActionListView& parent = *views.back();
        const std::size_t count = depth < kMaxDepth ? parent.CountChildren() : 0;
        for ( std::size_t index = first; index < count; ++index )
        {
            ActionListView& child = parent.ChildAt( index );
            if ( not child.HasVisibleArea() )
                continue;
            mPath.push_back( index );
            return &child;
        }
        if ( mPath.empty() )
            return nullptr;
        first = mPath.back() + 1;
        mPath.pop_back();
        views.pop_back();
    }
}

void ActionListUpdater::start( const std::shared_ptr<ActionListView>& inView )
{
    stop();
    mView = inView;
    update();
}

void ActionListUpdater::stop()
{
    cancelPerformCoalesced( u"update" );
    mView.reset();
    mIndex.Reset();
    mUpdatedCount = 0;
}

void ActionListUpdater::UpdateAfter( double inDelay )
{
    performCoalesced( u"update", inDelay, [this] { update(); } );
}

ActionListController* ActionListUpdater::NextController( ActionListView& inRoot )
{
    while ( ActionListView* const view = mIndex.Next( inRoot ) )
    {
        ActionListController* const controller = view->ViewListItemController();
        if ( controller and
            ( controller->ControllerWantsUpdateMessage() or not controller->actionListUpdatees().empty() ) )
            return controller;
    }
    return nullptr;
}

double ActionListUpdater::FinishScan()
{
    XErrorHandler::PrivateMaybeLogFormat( "ActionListUpdater", "Finished Scan" );
    const int updated = std::exchange( mUpdatedCount, 0 );
    mIndex.Reset();
    return updated >= kMostInASecond ? kStep : ( kMostInASecond - updated ) * kStep;
}

void ActionListUpdater::update()
{
    const auto view = mView.lock();
    if ( not view )
    {
        stop();
        return;
    }
    if ( view->IsWindowOccluded() or not view->HasVisibleArea() )
    {
        mIndex.Reset();
        UpdateAfter( kHiddenDelay );
        return;
    }
    ActionListController* const controller = NextController( *view );
    if ( not controller )
    {
        UpdateAfter( FinishScan() );
        return;
    }
    ++mUpdatedCount;
    // Before the messages: one of them may end the showing of this detail, and stop this.
    UpdateAfter( kStep );
    const auto updatees = controller->actionListUpdatees();
    if ( controller->ControllerWantsUpdateMessage() )
        controller->actionListUpdaterUpdate();
    for ( ActionListController* const subcontroller : updatees )
    {
        const bool wantsIt = subcontroller and subcontroller->ControllerWantsUpdateMessage();
        XAssertText( wantsIt, "ControllerWantsUpdateMessage( subcontroller )" );
        if ( wantsIt )
            subcontroller->actionListUpdaterUpdate();
    }
}
