// The conditions about what the computer has and where it is: disks, files, devices, networks, locations.
#pragma once

#include "Conditions/CBaseCondition.h"
#include "Conditions/ConditionParts.h"
#include "Conditions/GenericCondition.h"

class CDiskCondition final : public CConditionOf<CDiskCondition, ConditionType::kDisk>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mTitle = SharedText<u"">();
    ConditionSelectionType mSelection = ConditionSelectionType::kIs;
    ExistenceConditionType mType = ExistenceConditionType::kExists;
};

enum class PathConditionType : std::int32_t {
    kNothingExists,
    kSomethingExists,
    kFileExists,
    kFileDoesNotExists,
    kFolderExists,
    kFolderDoesNotExists,
};
inline constexpr TextView kPathConditionTypeNames[] = { u"NothingExists", u"SomethingExists", u"FileExists",
    u"FileDoesNotExists", u"FolderExists", u"FolderDoesNotExists" }; // as stored
static_assert( std::size( kPathConditionTypeNames ) == std::size_t( PathConditionType::kFolderDoesNotExists ) + 1 );
constexpr auto NamesOf( PathConditionType )
{
    return std::span( kPathConditionTypeNames );
}

class CPathCondition final : public CConditionOf<CPathCondition, ConditionType::kPath>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mPath = SharedText<u"">();
    PathConditionType mType = PathConditionType::kNothingExists;
};

class CLocationCondition final : public CConditionOf<CLocationCondition, ConditionType::kLocation>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mName = SharedText<u"Automatic">(); // of the set of network settings
    GenericConditionType mType = GenericConditionType::kIs;
};

class CUSBDeviceCondition final : public CConditionOf<CUSBDeviceCondition, ConditionType::kUSBDevice>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mName = SharedText<u"">();
    ConditionSelectionType mSelection = ConditionSelectionType::kIs;
    ExistenceConditionType mType = ExistenceConditionType::kExists;
};

enum class WirelessNetworkMatchType : std::int32_t { kAny, kNameIs, kNameContains, kNameMatches, kBSSID };
inline constexpr TextView kWirelessNetworkMatchTypeNames[] = { u"Any", u"NameIs", u"NameContains", u"NameMatches",
    u"BSSID" };
static_assert( std::size( kWirelessNetworkMatchTypeNames ) == std::size_t( WirelessNetworkMatchType::kBSSID ) + 1 );
constexpr auto NamesOf( WirelessNetworkMatchType )
{
    return std::span( kWirelessNetworkMatchTypeNames );
}

enum class WirelessNetworkConditionType : std::int32_t { kIsConnected, kIsNotConnected };
inline constexpr TextView kWirelessNetworkConditionTypeNames[] = { u"IsConnected", u"IsNotConnected" };
static_assert( std::size( kWirelessNetworkConditionTypeNames ) ==
    std::size_t( WirelessNetworkConditionType::kIsNotConnected ) + 1 );
constexpr auto NamesOf( WirelessNetworkConditionType )
{
    return std::span( kWirelessNetworkConditionTypeNames );
}

class CWirelessNetworkCondition final : public CConditionOf<CWirelessNetworkCondition, ConditionType::kWirelessNetwork>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    XText mName = SharedText<u"">(); // or the base station's address
    WirelessNetworkMatchType mMatch = WirelessNetworkMatchType::kAny;
    WirelessNetworkConditionType mType = WirelessNetworkConditionType::kIsConnected;
};
