#include "Utility/Work/Sleep.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace
{
std::atomic<XSleep*> gSleep{ nullptr };
} // namespace

void XSleep::For( double inSeconds )
{
    if ( XSleep* const sleep = gSleep.load( std::memory_order_acquire ) )
        sleep->Sleep( inSeconds );
    else
        std::this_thread::sleep_for( std::chrono::duration<double>( inSeconds ) );
}

XSleep::Substitute::Substitute( XSleep& inSleep ) : mPrevious( gSleep.exchange( &inSleep ) ) {}

XSleep::Substitute::~Substitute()
{
    gSleep.store( mPrevious );
}
