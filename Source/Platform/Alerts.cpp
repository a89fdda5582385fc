#include "Platform/Alerts.h"

#include <atomic>

namespace
{
class AbsentAlerts final : public XAlerts
{
public:
    void SystemLog( TextView ) override {}
    void PlayAlertSound( int ) override {}
    void ShowAlert( const XAlert&, const Answer& inAnswer ) override
    {
        if ( inAnswer )
            inAnswer( {} );
    }
    void Notify( TextView, TextView ) override {}
    bool IsApplicationActive() override { return false; }
};

AbsentAlerts gAbsent;
std::atomic<XAlerts*> gAlerts{ &gAbsent };
} // namespace

XAlerts& XAlerts::Current()
{
    return *gAlerts.load( std::memory_order_acquire );
}

XAlerts::Substitute::Substitute( XAlerts& inAlerts ) : mPrevious( gAlerts.exchange( &inAlerts ) ) {}

XAlerts::Substitute::~Substitute()
{
    gAlerts.store( mPrevious );
}
