#include "Platform/ProcessNotifications.h"

#include <atomic>

namespace
{
class AbsentNotifier final : public XProcessNotifier
{
public:
    void Post( TextView, const CFContainer<XPlistDictionary>& ) override {}
    void SetReceiver( Receiver ) override {}
};

AbsentNotifier gAbsent;
std::atomic<XProcessNotifier*> gNotifier{ &gAbsent };
} // namespace

XProcessNotifier& XProcessNotifier::Current()
{
    return *gNotifier.load( std::memory_order_acquire );
}

XProcessNotifier::Substitute::Substitute( XProcessNotifier& inNotifier )
    : mPrevious( gNotifier.exchange( &inNotifier ) )
{}

XProcessNotifier::Substitute::~Substitute()
{
    gNotifier.store( mPrevious );
}
