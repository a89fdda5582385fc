// Runs a block on the main thread after a delay; a repeat for the same target and key replaces the
// earlier request, so that a block runs only after its key has been quiet for its delay. Targets
// aren't kept alive: a request whose target has gone never runs. Everything here is called on
// the main thread, and the blocks run there.
#pragma once

#include "CFMethods/Text.h"
#include "Utility/Work/Work.h"

#include <functional>
#include <memory>
#include <typeinfo>

/// The name of a type as log lines show it.
[[nodiscard]] Text kvr_typeDescription( const std::type_info& inType );

namespace PerformCoalesced
{
/// An object that may go at any time, and what log lines call it: its type unless told.
class Target
{
public:
    Target() = default;
    template<class T>
    Target( const std::shared_ptr<T>& inObject, TextView inDescription = {} )
        : Target( inObject, inDescription.empty() ? kvr_typeDescription( typeid( T ) ) : Text( inDescription ), 0 )
    {}
    template<class T>
    Target( const std::weak_ptr<T>& inObject, TextView inDescription = {} )
        : Target( inObject, inDescription.empty() ? kvr_typeDescription( typeid( T ) ) : Text( inDescription ), 0 )
    {}

    [[nodiscard]] bool IsGone() const { return mObject.expired(); }
    [[nodiscard]] std::shared_ptr<void> Lock() const { return mObject.lock(); }
    [[nodiscard]] const Text& GetDescription() const { return mDescription; }
    /// The same object, whether it is there or gone.
    [[nodiscard]] bool IsSame( const Target& inOther ) const
    {
        return not mObject.owner_before( inOther.mObject ) and not inOther.mObject.owner_before( mObject );
    }

private:
    Target( std::weak_ptr<void> inObject, Text inDescription, int )
        : mObject( std::move( inObject ) ),
          mDescription( std::move( inDescription ) )
    {}

    std::weak_ptr<void> mObject;
    Text mDescription;
};

/// Takes the target, which is alive during the call.
using Block = std::function<void( const std::shared_ptr<void>& inTarget )>;

/// Runs the block in so many seconds, unless the request is repeated or cancelled, the target goes, or
/// everything finishes. A missing target, key or block, a delay below 0, another thread and a call
/// after Finish are assertions, and the request is dropped.
void Perform( const Target& inTarget, TextView inKey, double inAfterDelay, Block inBlock );

/// Takes back a request; afterwards its block doesn't run, even if its time had come.
void Cancel( const Target& inTarget, TextView inKey );

/// Stops for good and drops every request.
void Finish();
} // namespace PerformCoalesced

/// A base for objects that ask for coalesced work themselves, whoever owns them and however: the object is
/// the target. Main thread only, its destructor included.
class XCoalescedPerformer
{
public:
    XCoalescedPerformer() = default;
    // A copy is another target.
    XCoalescedPerformer( const XCoalescedPerformer& ) {}
    XCoalescedPerformer& operator=( const XCoalescedPerformer& ) { return *this; }

    void performCoalesced( TextView inKey, double inAfterDelay, XBlock inBlock );
    void cancelPerformCoalesced( TextView inKey );

protected:
    virtual ~XCoalescedPerformer() = default;

private:
    struct Presence
    {};
    [[nodiscard]] PerformCoalesced::Target AsTarget() const;

    const std::shared_ptr<Presence> mPresence = std::make_shared<Presence>();
};
