#include "Triggers/TTriggerManagerDomain.h"

namespace
{
std::function<void()> gCreate, gTerminate;
}

void TTriggerManagerDomain::Install( std::function<void()> inCreate, std::function<void()> inTerminate )
{
    gCreate = std::move( inCreate );
    gTerminate = std::move( inTerminate );
}

void TTriggerManagerDomain::CreateTriggerManagers()
{
    if ( gCreate )
        gCreate();
}

void TTriggerManagerDomain::Terminate()
{
    if ( gTerminate )
        gTerminate();
}
