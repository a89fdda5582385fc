// Walks the editors of the actions that can be seen, slowly, so that they can refresh what they show: at most ten in a
// second, and a short list about once a second. Owned by who shows a macro's detail; main thread.
#pragma once

#include "Utility/Work/PerformCoalesced.h"

#include <cstddef>
#include <memory>
#include <vector>

/// The controller of an action's editor, or of a part of one.
class ActionListController
{
public:
    virtual ~ActionListController() = default;
    /// Does it answer actionListUpdaterUpdate?
    [[nodiscard]] virtual bool ControllerWantsUpdateMessage() const { return false; }
    virtual void actionListUpdaterUpdate() {}
    /// Others to be updated with it; each must want the message.
    [[nodiscard]] virtual std::vector<ActionListController*> actionListUpdatees() { return {}; }
    /// The controllers that it consists of.
    [[nodiscard]] virtual std::vector<ActionListController*> Members() { return {}; }
};

/// The controller itself and its members, as far as they want the message: for controllers that answer
/// actionListUpdatees with all they have.
[[nodiscard]] std::vector<ActionListController*> actionListUpdateesForController( ActionListController& inController );

/// A view in the list of actions.
class ActionListView
{
public:
    virtual ~ActionListView() = default;
    [[nodiscard]] virtual std::size_t CountChildren() const = 0;
    [[nodiscard]] virtual ActionListView& ChildAt( std::size_t inIndex ) = 0;
    [[nodiscard]] virtual bool HasVisibleArea() const = 0;
    [[nodiscard]] virtual bool IsWindowOccluded() const = 0;
    /// The controller of a `ViewListItem`; null for other views.
    [[nodiscard]] virtual ActionListController* ViewListItemController() = 0;
};

/// A place in a tree of views: the index of a child at each depth. The tree may change between two steps.
class ViewIndex
{
public:
    static constexpr int kMaxDepth = 1000;

    void Reset() { mPath.clear(); }
    /// The next view below the root, depth-first; those without a visible area are left out, with all that is in them.
    /// Null at the end.
    [[nodiscard]] ActionListView* Next( ActionListView& inRoot );

private:
    std::vector<std::size_t> mPath;
};

class ActionListUpdater final : public XCoalescedPerformer
{
public:
    /// Begins with this view, in place of an earlier one. The view isn't kept alive.
    void start( const std::shared_ptr<ActionListView>& inView );
    void stop();

private:
    void update();
    void UpdateAfter( double inDelay );
    [[nodiscard]] ActionListController* NextController( ActionListView& inRoot );
    [[nodiscard]] double FinishScan();

    std::weak_ptr<ActionListView> mView;
    ViewIndex mIndex;
    int mUpdatedCount = 0; ///< in this pass
};
