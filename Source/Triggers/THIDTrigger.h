// The trigger of a key or button of any device that people hold in their hands: mice, pedals, remotes, decks.
#pragma once

#include "Triggers/KeyTriggers.h"

/// One key or button of a device, as the device names it. Clear unless it is set.
struct HIDElement
{
    /// All but the short name and the flag are required: reading throws XException without one of them.
    void DescribeFields( HFieldVisitor& inVisitor );

    XText mName = SharedText<u"None">();
    XText mShortName = SharedText<u"-">();
    bool mIsStreamDeck = false; ///< its buttons have no vendor and product here
    std::int32_t mVendorID = 0, mProductID = 0;
    std::int32_t mDeviceUsagePage = 0, mDeviceUsage = 0;
    std::int32_t mUsagePage = 0, mUsage = 0;
    std::int32_t mCookie = 0, mValue = 0;
};

class THIDTrigger final : public TTriggerOf<THIDTrigger, TriggerType::kHID>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary ) override;
    [[nodiscard]] THIDTrigger* GetAsHIDTrigger() override { return this; }
    [[nodiscard]] bool TriggerIsUseless() const override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    /// Takes the element of a stored trigger, or of what the engine heard from a device. One that can't be read is
    /// logged and leaves the trigger without an element.
    void SetElementAndNameFromDictionary( const XPlistDictionary& inDictionary );
    [[nodiscard]] const HIDElement& GetElement() const { return mElement; }

private:
    [[nodiscard]] Text WithModifiers( const XText& inName ) const;

    bool mUseModifiers = false;
    std::int32_t mModifiers = 0;
    KeyFireType mFireType = KeyFireType::kPressed;
    std::int32_t mTapCount = 0;
    HIDElement mElement;
};
