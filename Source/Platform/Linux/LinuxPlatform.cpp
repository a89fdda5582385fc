#include "Platform/Linux/LinuxPlatform.h"

#include "Platform/Linux/BusEditorService.h"
#include "Platform/Linux/BusNotifier.h"
#include "Platform/Linux/LinuxAlerts.h"
#include "Platform/Linux/LinuxFileFacts.h"
#include "Platform/Linux/LinuxLoginItems.h"
#include "Platform/Linux/LinuxRunningApplications.h"
#include "Platform/Linux/LinuxWorkspace.h"
#include "XCAF/UserFolders.h"

struct LinuxPlatform::Services
{
    explicit Services( XWork& inWork )
        : mBus( inWork ),
          mNotifier( mBus, inWork ),
          mEditorService( mBus, inWork ),
          mAlerts( mBus, inWork ),
          mRunningApplications( mBus ),
          mLoginItems( kvr_userFolder( "XDG_CONFIG_HOME", ".config" ) / "autostart", inWork ),
          mWorkspace( mBus )
    {
        mPlatform.SetProcessNotifier( mNotifier );
        mPlatform.SetEditorService( mEditorService );
        mPlatform.SetAlerts( mAlerts );
        mPlatform.SetRunningApplications( mRunningApplications );
        mPlatform.SetLoginItems( mLoginItems );
        mPlatform.SetWorkspace( mWorkspace );
        mPlatform.SetFileFacts( mFileFacts );
    }

    BusConnection mBus; // first, for the others use it
    BusNotifier mNotifier;
    BusEditorService mEditorService;
    LinuxAlerts mAlerts;
    LinuxRunningApplications mRunningApplications;
    LinuxLoginItems mLoginItems;
    LinuxWorkspace mWorkspace;
    LinuxFileFacts mFileFacts;
    Platform mPlatform;
};

LinuxPlatform::LinuxPlatform() : mServices( std::make_unique<Services>( XWork::Current() ) ) {}

LinuxPlatform::~LinuxPlatform()
{
    Stop();
}

const Platform& LinuxPlatform::GetPlatform() const
{
    return mServices->mPlatform;
}

bool LinuxPlatform::Start( const std::filesystem::path& inFolder, FolderKind inKind )
{
    mServices->mRunningApplications.SetFolder( { inFolder, inKind == FolderKind::kDefault } );
    const bool isThere = mServices->mBus.Connect();
    mServices->mNotifier.Start( inFolder );
    return isThere;
}

void LinuxPlatform::Stop()
{
    mServices->mNotifier.Stop();
    mServices->mEditorService.ReleaseFolder();
    mServices->mBus.Close();
}
