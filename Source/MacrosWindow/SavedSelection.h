// What a window remembers of its selection for undo. While edits wait for their save a new selection is only
// noted, so that undo brings back the one from just before the edits. Owned by the window; main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "Utility/Work/PerformCoalesced.h"

#include <functional>

class SavedSelection final : public XCoalescedPerformer
{
public:
    using Selection = CFContainer<XPlistDictionary>;

    /// What is selected now, and whether an animation is under way, during which the views don't know it.
    SavedSelection( std::function<Selection()> inSelection, std::function<bool()> inIsAnimating );

    /// The selection has changed.
    void saveSelectionState();
    /// The edits were saved: what was noted counts from now on.
    void didDeferredSaveAllMacros();
    /// Null before there was a selection.
    [[nodiscard]] const Selection& savedSelectionState() const { return mSavedSelectionState; }

private:
    std::function<Selection()> mSelection;
    std::function<bool()> mIsAnimating;
    Selection mSavedSelectionState, mDeferredSavedSelectionState;
};
