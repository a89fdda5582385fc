#include "Triggers/DeviceTriggers.h"

#include "Utility/Text/Localization.h"

namespace
{
// The format of the target takes the name and what happens, in the order that suits it.
template<HNamed Enumeration>
Text Described( TextView inPrefix, Enumeration inTarget, const XText& inName, TextView inEventKey )
{
    return kvr_localizedFormat(
        Text( inPrefix ).append( StoredName( inTarget ) ), inName.GetText(), kvr_localized( inEventKey ) );
}
} // namespace

// Volume

void TVolumeTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "TargetType", mTargetType );
    inVisitor.Text( "Name", mName );
    inVisitor.Boolean( "Mounted", mMounted );
}

Text TVolumeTrigger::GetDescription() const
{
    return Described(
        u"tVolumeTrigger", mTargetType, mName, mMounted ? u"tVolumeTriggerMounted" : u"tVolumeTriggerUnmounted" );
}

Text TVolumeTrigger::GetShortDescription() const
{
    return kvr_localized( u"tVolumeTriggerShortDesc" );
}

// USB Device

void TUSBDeviceTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "TargetType", mTargetType );
    inVisitor.Text( "Name", mName );
    inVisitor.Boolean( "Attach", mAttach );
}

Text TUSBDeviceTrigger::GetDescription() const
{
    return Described( u"tUSBTrigger", mTargetType, mName, mAttach ? u"tUSBTriggerAttached" : u"tUSBTriggerDetached" );
}

Text TUSBDeviceTrigger::GetShortDescription() const
{
    return kvr_localized( u"tUSBTriggerShortDesc" );
}

// Wireless Network

void TWirelessNetworkTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "MatchType", mMatchType );
    inVisitor.Text( "Name", mName );
    inVisitor.Boolean( "Connected", mConnected );
}

Text TWirelessNetworkTrigger::GetDescription() const
{
    return Described( u"tWirelessNetworkTrigger", mMatchType, mName,
        mConnected ? u"tWirelessNetworkTriggerConnected" : u"tWirelessNetworkTriggerDisconnected" );
}

Text TWirelessNetworkTrigger::GetShortDescription() const
{
    return kvr_localized( u"tWirelessNetworkTriggerShortDesc" );
}
