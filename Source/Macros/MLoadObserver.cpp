#include "Macros/MLoadObserver.h"

#include <utility>

namespace
{
constinit thread_local MLoadObserver* gObserver = nullptr;
}

MLoadObserver* MLoadObserver::Current()
{
    return gObserver;
}

MLoadObserver::Scope::Scope( MLoadObserver& inObserver ) : mPrevious( std::exchange( gObserver, &inObserver ) ) {}

MLoadObserver::Scope::~Scope()
{
    gObserver = mPrevious;
}
