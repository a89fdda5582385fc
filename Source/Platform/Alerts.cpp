#include "Platform/Alerts.h"

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
} // namespace

XAlerts& XAlerts::Absent()
{
    static AbsentAlerts gAbsent;
    return gAbsent;
}
