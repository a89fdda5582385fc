#include "Platform/ProcessNotifications.h"

namespace
{
class AbsentNotifier final : public XProcessNotifier
{
public:
    void Post( TextView, const CFContainer<XPlistDictionary>&, Audience ) override {}
    void SetReceiver( Receiver ) override {}
};
} // namespace

XProcessNotifier& XProcessNotifier::Absent()
{
    static AbsentNotifier gAbsent;
    return gAbsent;
}
