// How the model speaks to the engine, which is another program: a notification with a name and a flat
// dictionary. The engine link installs itself at start-up; without one nothing is posted.
#pragma once

#include "CFMethods/PropertyList.h"

class HEngineNotificationPoster
{
public:
    virtual ~HEngineNotificationPoster() = default;
    virtual void PostToEngine( TextView inName, CFContainer<XPlistDictionary> inInformation ) = 0;

    /// The one in use. Main thread.
    [[nodiscard]] static HEngineNotificationPoster& Current();

    /// Installs a poster for as long as this object lives. Main thread.
    class Scope
    {
    public:
        explicit Scope( HEngineNotificationPoster& inPoster );
        ~Scope();
        Scope( const Scope& ) = delete;
        Scope& operator=( const Scope& ) = delete;

    private:
        HEngineNotificationPoster* mPrevious;
    };
};
