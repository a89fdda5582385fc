#include "Platform/Platform.h"

#include "Platform/Alerts.h"
#include "Platform/Applications.h"
#include "Platform/FileFacts.h"
#include "Platform/ProcessNotifications.h"
#include "Platform/SearchIndex.h"

#include <atomic>

namespace
{
std::atomic<const Platform*> gPlatform{ nullptr };
}

Platform::Platform()
    : mAlerts( &XAlerts::Absent() ),
      mApplications( &XApplications::Absent() ),
      mFileFacts( &XDesktopFileFacts::Absent() ),
      mProcessNotifier( &XProcessNotifier::Absent() ),
      mSearchIndex( &XSearchIndex::Absent() )
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
