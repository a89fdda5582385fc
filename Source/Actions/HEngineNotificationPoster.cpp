#include "Actions/HEngineNotificationPoster.h"

#include <utility>

namespace
{
class NoEngine final : public HEngineNotificationPoster
{
    void PostToEngine( TextView, CFContainer<XPlistDictionary> ) override {}
};

constinit HEngineNotificationPoster* gPoster = nullptr;
} // namespace

HEngineNotificationPoster& HEngineNotificationPoster::Current()
{
    static NoEngine gNoEngine;
    return gPoster ? *gPoster : gNoEngine;
}

HEngineNotificationPoster::Scope::Scope( HEngineNotificationPoster& inPoster )
    : mPrevious( std::exchange( gPoster, &inPoster ) )
{}

HEngineNotificationPoster::Scope::~Scope()
{
    gPoster = mPrevious;
}
