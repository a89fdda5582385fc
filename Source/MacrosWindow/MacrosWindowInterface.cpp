#include "MacrosWindow/MacrosWindowInterface.h"

#include "Macros/MMacro.h"
#include "Macros/MMacroGroup.h"
#include "MacrosWindow/MacrosWindowUndo.h"

#include <algorithm>
#include <vector>

namespace
{
std::vector<MacrosWindow*> gWindows;

// Over a copy, for a window may close while it is told something; one that did isn't called any more.
template<class Block>
void ForEachWindow( const Block& inBlock )
{
    for ( MacrosWindow* const window : std::vector( gWindows ) )
    {
        if ( std::find( gWindows.begin(), gWindows.end(), window ) != gWindows.end() )
            inBlock( *window );
    }
}

// Whatever was changed behind an object's back, in an action or a trigger, is saved: its encoded form goes. Deleted
// objects aren't touched, for they may be gone.
void TellObjects( const MacrosWindowChange& inChange )
{
    using enum MacrosWindowChangeType;
    if ( inChange.mType == kMacroGroupDeleted or inChange.mType == kMacroSmartGroupDeleted or
        inChange.mType == kMacroDeleted )
        return;
    for ( MMacroSerializedObject* const object : inChange.mObjects )
    {
        object->DidChangeWords();
        if ( const MMacroGroup* const group = object->GetAsMacroGroup() )
            group->DoForEveryMacro( []( MMacro& macro ) { macro.DidChangeWords(); } );
    }
}
} // namespace

void MacrosWindowInterface::AddWindow( MacrosWindow& inWindow )
{
    gWindows.push_back( &inWindow );
}

void MacrosWindowInterface::RemoveWindow( MacrosWindow& inWindow )
{
    std::erase( gWindows, &inWindow );
}

void MacrosWindowInterface::Start() {}

void MacrosWindowInterface::ApplicationDidFinishLaunching() {}

void MacrosWindowInterface::ApplicationWillTerminate()
{
    ForEachWindow( []( MacrosWindow& window ) { window.close(); } );
    MacrosWindowUndo::SaveAllMacrosIfNecessary();
}

void MacrosWindowInterface::NoteChange( const std::optional<Text>& inTitle, const MacrosWindowChange& inChange )
{
    TellObjects( inChange );
    ForEachWindow( [&]( MacrosWindow& window ) { window.noteChange( inChange ); } );
    if ( inTitle )
        MacrosWindowUndo::PrivateSaveAllMacrosSoon( *inTitle );
}

CFContainer<XPlistDictionary> MacrosWindowInterface::SavedSelectionState()
{
    XMutableDictionary state;
    ForEachWindow( [&]( MacrosWindow& window ) {
        if ( const auto selection = window.savedSelectionState() )
            state.Set( window.windowUID(), __SafeCFPropertyList( selection ) );
    } );
    return state.Seal();
}

void MacrosWindowInterface::DidReloadMacros( const __SafeCFPropertyList& inSelection )
{
    const XPlistDictionary* const selections = inSelection.AsDictionary();
    ForEachWindow( [&]( MacrosWindow& window ) {
        CFContainer<XPlistDictionary> selection;
        if ( const XPlistNode* const found = selections ? selections->Find( window.windowUID() ) : nullptr )
            selection = CFContainer<XPlistDictionary>::Share( __SafeCFPropertyList( found ).AsDictionary() );
        window.didReloadMacros( selection );
    } );
}

void MacrosWindowInterface::DidDeferredSaveAllMacros()
{
    ForEachWindow( []( MacrosWindow& window ) { window.didDeferredSaveAllMacros(); } );
}

void MacrosWindowInterface::ShowNeedSaveView( bool inShow )
{
    ForEachWindow( [&]( MacrosWindow& window ) { window.showNeedSaveView( inShow ); } );
}

void MacrosWindowInterface::StopRecording()
{
    ForEachWindow( []( MacrosWindow& window ) { window.stopRecording(); } );
}

void MacrosWindowInterface::DoResortForMacroStatsChanged()
{
    ForEachWindow( []( MacrosWindow& window ) { window.doResortForMacroStatsChanged(); } );
}
