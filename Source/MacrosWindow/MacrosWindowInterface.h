// The windows that show macros, and the one funnel for every edit: whoever has changed the model, by a window, a script, a verb
// or the engine, calls NoteChange. Windows are objects of an interface; there may be none. Main thread.
#pragma once

#include "CFMethods/PropertyList.h"
#include "MacrosWindow/MacrosWindowChange.h"

#include <optional>

/// One open window, as the rest of the program sees it.
class MacrosWindow
{
public:
    virtual ~MacrosWindow() = default;
    [[nodiscard]] virtual const XText& windowUID() const = 0;
    virtual void noteChange( const MacrosWindowChange& inChange ) = 0;
    /// The selection, as a dictionary that restoreSelection understands.
    [[nodiscard]] virtual CFContainer<XPlistDictionary> savedSelectionState() const = 0;
    /// The model was rebuilt: every pointer into it is gone. The selection is null when none was saved.
    virtual void didReloadMacros( const CFContainer<XPlistDictionary>& inSelection ) = 0;
    virtual void didDeferredSaveAllMacros() = 0;
    virtual void showNeedSaveView( bool inShow ) = 0;
    virtual void stopRecording() = 0;
    /// The statistics have changed: lists that are sorted by use are sorted again.
    virtual void doResortForMacroStatsChanged() {}
    virtual void close() = 0;
};

namespace MacrosWindowInterface
{
// Windows say when they open and close; not owned.
void AddWindow( MacrosWindow& inWindow );
void RemoveWindow( MacrosWindow& inWindow );

void Start();
void ApplicationDidFinishLaunching();
/// Closes the windows and makes a save that waits.
void ApplicationWillTerminate();

/// The model has changed. Windows refresh; with a title, which is what Undo shows, the state before becomes an undo step
/// and a save follows in a second. An absent title only refreshes.
void NoteChange( const std::optional<Text>& inTitle, const MacrosWindowChange& inChange );

/// By windowUID, each window's selection.
[[nodiscard]] CFContainer<XPlistDictionary> SavedSelectionState();
/// What isn't a dictionary counts as no saved selection.
void DidReloadMacros( const __SafeCFPropertyList& inSelection );
void DidDeferredSaveAllMacros();
void ShowNeedSaveView( bool inShow );
void StopRecording();
void DoResortForMacroStatsChanged();
} // namespace MacrosWindowInterface
