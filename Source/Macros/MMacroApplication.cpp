#include "Macros/MMacroApplication.h"

#include <atomic>

namespace
{
std::atomic<MMacroApplication*> gApplication{ nullptr };
}

MMacroApplication& MMacroApplication::Current()
{
    static MMacroApplication gNone;
    MMacroApplication* const application = gApplication.load( std::memory_order_acquire );
    return application ? *application : gNone;
}

MMacroApplication::Scope::Scope( MMacroApplication& inApplication )
    : mPrevious( gApplication.exchange( &inApplication ) )
{}

MMacroApplication::Scope::~Scope()
{
    gApplication.store( mPrevious );
}
