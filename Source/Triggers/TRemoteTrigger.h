// The trigger of a web address. A local name belongs to this Mac alone, whose remote UUID goes before it; a shared
// name has both halves in it, so that several Macs listen to one address.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Triggers/TBaseTrigger.h"

class TRemoteTrigger final : public TTriggerOf<TRemoteTrigger, TriggerType::kRemote>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    /// A local name, or a full one when it is shared.
    void SetName( const XText& inName, bool inShared );
    [[nodiscard]] const XText& GetName() const { return mName; }
    [[nodiscard]] bool IsShared() const { return mShared; }

    /// "Mac/Name". Of a local name it asks for this Mac's remote UUID, which the settings make at first use.
    [[nodiscard]] Text GetFullName() const;
    /// The part after "/" of the full name; all of a shared name without one.
    [[nodiscard]] Text GetLocalName() const;
    /// The part before "/" of the full name; "" for a shared name without one.
    [[nodiscard]] Text GetSharedName() const;
    /// The full name of two halves.
    [[nodiscard]] static Text CombinedSharedAndLocalName( TextView inShared, TextView inLocal );
    /// An address that fires the trigger.
    [[nodiscard]] Text GetExampleURL() const;
    /// Each half has 8 to 64 ASCII letters, digits and hyphens.
    [[nodiscard]] static bool IsNameValid( bool inShared, TextView inName );

private:
    XText mName = SharedText<u"">();
    bool mShared = false;
};
