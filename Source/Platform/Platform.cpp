#include "Platform/Platform.h"

#include "Platform/Alerts.h"
#include "Platform/Applications.h"
#include "Platform/EditorService.h"
#include "Platform/FileFacts.h"
#include "Platform/LoginItems.h"
#include "Platform/ProcessNotifications.h"
#include "Platform/RunningApplications.h"
#include "Platform/SearchIndex.h"
#include "Platform/Workspace.h"

#include <atomic>

namespace
{
std::atomic<const Platform*> gPlatform{ nullptr };
}

Platform::Platform()
    : mAlerts( &XAlerts::Absent() ),
      mApplications( &XApplications::Absent() ),
      mFileFacts( &XDesktopFileFacts::Absent() ),
      mEditorService( &XEditorService::Absent() ),
      mLoginItems( &XLoginItems::Absent() ),
      mProcessNotifier( &XProcessNotifier::Absent() ),
      mRunningApplications( &XRunningApplications::Absent() ),
      mSearchIndex( &XSearchIndex::Absent() ),
      mWorkspace( &XWorkspace::Absent() )
{}

const Platform& Platform::Current()
{
    if ( const Platform* platform = gPlatform.load( std::memory_order_acquire ) )
        return *platform;
    static const Platform gAbsent;
    return gAbsent;
}

Platform::Substitute::Substitute( const Platform& inPlatform ) : mPrevious( gPlatform.exchange( &inPlatform ) ) {}

Platform::Substitute::~Substitute()
{
    gPlatform.store( mPrevious );
}
