#include "App/LinuxEditorHost.h"

#include <csignal>

void LinuxEditorHost::StartPlatform( const std::filesystem::path& inFolder, bool inIsGiven )
{
    mPlatform.emplace();
    mInUse.emplace( mPlatform->GetPlatform() );
    // Without a bus the services answer so, and whoever has to tell the user asks them.
    (void)mPlatform->Start(
        inFolder, inIsGiven ? LinuxPlatform::FolderKind::kGiven : LinuxPlatform::FolderKind::kDefault );
}

void LinuxEditorHost::StopPlatform()
{
    if ( mPlatform )
        mPlatform->Stop();
    mInUse.reset();
    mPlatform.reset();
}

void LinuxEditorHost::RunMainLoop( std::function<void()> inDidAskToEnd )
{
    mLoop.emplace();
    mLoop->OnSignals( { SIGHUP, SIGINT, SIGTERM }, std::move( inDidAskToEnd ) );
    mLoop->Run();
    mLoop.reset();
}

void LinuxEditorHost::StopMainLoop()
{
    if ( mLoop )
        mLoop->Stop();
}
