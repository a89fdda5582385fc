#include "App/EditorSession.h"

#include "App/EditorHost.h"
#include "App/Output.h"
#include "Defines/KVPreferences.h"
#include "Macros/MMacroPreferenceFile.h"
#include "XCAF/XException.h"

#include <fmt/format.h>

EditorSession::EditorSession( EditorHost* inHost )
    : mOwnHost( inHost ? nullptr : std::make_unique<EditorHost>() ),
      mHost( inHost ? inHost : mOwnHost.get() )
{
    mWorkInUse.emplace( mWork );
    mHost->StartPlatform( KVPreferences::FolderPath(), KVPreferences::IsFolderGiven() );
}

EditorSession::~EditorSession()
{
    Stop();
    mHost->StopPlatform();
    mWork.Finish();
}

bool EditorSession::TakeFolder()
{
    switch ( mLock.TryTake() )
    {
    case XKernelLock::Result::kTaken:
        return true;
    case XKernelLock::Result::kHeldByAnother:
        return false;
    case XKernelLock::Result::kFailed:
        break;
    }
    throw EditorTrouble( mLock.Error()->Describe() +
        "; without this lock two editors could overwrite each other; make the folder writable, or choose another with "
        "--folder" );
}

void EditorSession::Start( const KVAppDelegate::Options& inOptions )
{
    mDelegate = std::make_unique<KVAppDelegate>( inOptions, mSubsystems, [this] { mHost->StopMainLoop(); } );
    if ( not mDelegate->CheckBeforeStart() )
    {
        mDelegate.reset();
        throw EditorTrouble( "the texts of the program are damaged; install it again" );
    }
    try
    {
        mDelegate->applicationWillFinishLaunching();
    }
    catch ( const XException& exception )
    {
        exception.WarnUncaught( u"Main Application" );
        mDelegate.reset();
        throw EditorTrouble( fmt::format(
            "{} can't be loaded ({}); nothing was changed; check it with “korvalen check”, or "
            "start with “korvalen run --begin-anew”, which sets it aside first",
            QuotedPath( MMacroPreferenceFile::MacrosFilePath().string() ), UTF8FromText( exception.GetMessage() ) ) );
    }
    catch ( ... )
    {
        // What is there of the macros isn't what would have been loaded: nothing of it may be saved at the end.
        mDelegate.reset();
        throw;
    }
    // For one verb the engine is left as it is; if it runs, it has to hear of what is saved.
    if ( inOptions.mIsForOneVerb )
        MMacroPreferenceFile::InitialEngineFinishedRelaunching();
    else
        mDelegate->applicationDidFinishLaunching();
}

void EditorSession::Stop()
{
    if ( not mDelegate )
        return;
    // What is on the main queue already was asked for before the end; so was the reload of a file that is being replaced,
    // and without it the last save would put the old macros back.
    (void)mWork.DrainMainQueue();
    MMacroPreferenceFile::WaitForQueue();
    (void)mWork.DrainMainQueue();
    mDelegate->applicationWillTerminate();
    (void)mWork.DrainMainQueue();
    mDelegate.reset();
    mLock.Release();
}
