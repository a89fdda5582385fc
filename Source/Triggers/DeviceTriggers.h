// The triggers of what comes and goes: volumes, USB devices and wireless networks.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Triggers/TBaseTrigger.h"

/// Which volumes or devices are meant.
enum class DeviceTargetType { kAny, kNamed, kContaining, kMatching };
inline constexpr TextView kDeviceTargetTypeNames[] = { u"Any", u"Named", u"Containing", u"Matching" };
static_assert( std::size( kDeviceTargetTypeNames ) == std::size_t( DeviceTargetType::kMatching ) + 1 );
constexpr auto NamesOf( DeviceTargetType )
{
    return std::span( kDeviceTargetTypeNames );
}

class TVolumeTrigger final : public TTriggerOf<TVolumeTrigger, TriggerType::kVolume>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

private:
    DeviceTargetType mTargetType = DeviceTargetType::kNamed;
    XText mName = SharedText<u"">();
    bool mMounted = true;
};

class TUSBDeviceTrigger final : public TTriggerOf<TUSBDeviceTrigger, TriggerType::kUSBDevice>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

private:
    DeviceTargetType mTargetType = DeviceTargetType::kNamed;
    XText mName = SharedText<u"">();
    bool mAttach = true;
};

/// Which wireless networks are meant; by BSSID the name is the address of an access point.
enum class WirelessNetworkMatchType { kAny, kNameIs, kNameContains, kNameMatches, kBSSID };
inline constexpr TextView kWirelessNetworkMatchTypeNames[] = { u"Any", u"NameIs", u"NameContains", u"NameMatches",
    u"BSSID" };
static_assert( std::size( kWirelessNetworkMatchTypeNames ) == std::size_t( WirelessNetworkMatchType::kBSSID ) + 1 );
constexpr auto NamesOf( WirelessNetworkMatchType )
{
    return std::span( kWirelessNetworkMatchTypeNames );
}

class TWirelessNetworkTrigger final : public TTriggerOf<TWirelessNetworkTrigger, TriggerType::kWirelessNetwork>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

private:
    WirelessNetworkMatchType mMatchType = WirelessNetworkMatchType::kNameIs;
    XText mName = SharedText<u"">();
    bool mConnected = true;
};
