#include "MacrosWindow/SavedSelection.h"

#include "MacrosWindow/MacrosWindowUndo.h"

namespace
{
constexpr double kAnimationDelay = 0.002;
}

SavedSelection::SavedSelection( std::function<Selection()> inSelection, std::function<bool()> inIsAnimating )
    : mSelection( std::move( inSelection ) ),
      mIsAnimating( std::move( inIsAnimating ) )
{}

void SavedSelection::saveSelectionState()
{
    if ( mIsAnimating() )
    {
        performCoalesced( u"saveSelectionState", kAnimationDelay, [this] { saveSelectionState(); } );
        return;
    }
    if ( MacrosWindowUndo::NeedSaveAllMacros() )
        mDeferredSavedSelectionState = mSelection();
    else
        mSavedSelectionState = mSelection();
}

void SavedSelection::didDeferredSaveAllMacros()
{
    if ( mDeferredSavedSelectionState )
        mSavedSelectionState = std::exchange( mDeferredSavedSelectionState, {} );
}
