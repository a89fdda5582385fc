#include "Conditions/DeviceConditions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void CDiskCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "DiskTitle", mTitle );
    inVisitor.Name( "DiskConditionSelectionType", mSelection );
    inVisitor.Name( "DiskConditionType", mType );
}

Text CDiskCondition::GetDescription() const
{
    const Text disk = kvr_localizedFormat(
        kvr_format( "kvConditionDiskSelection%@Format", StoredName( mSelection ) ), TextView( kvr_excerpt( mTitle ) ) );
    return kvr_localizedFormat( kvr_format( "kvConditionDisk%@Format", StoredName( mType ) ), TextView( disk ) );
}

void CPathCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    inVisitor.Name( "PathConditionType", mType );
}

Text CPathCondition::GetDescription() const
{
    return kvr_localizedFormat(
        kvr_format( "kvConditionPath%@Format", StoredName( mType ) ), TextView( kvr_excerpt( mPath ) ) );
}

void CLocationCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    // A new condition has a name; one read without the key has none.
    inVisitor.Text( "LocationName", mName, { .mWhenMissing = u"" } );
    inVisitor.Name( "LocationConditionType", mType );
}

Text CLocationCondition::GetDescription() const
{
    return kvr_localizedFormat( u"kvConditionLocationFormat",
        TextView( GenericCondition( mType ).GetDescription( XText( kvr_excerpt( mName ) ) ) ) );
}

void CUSBDeviceCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "USBDeviceConditionName", mName );
    inVisitor.Name( "USBDeviceConditionSelectionType", mSelection );
    inVisitor.Name( "USBDeviceConditionType", mType );
}

Text CUSBDeviceCondition::GetDescription() const
{
    const Text device =
        kvr_localizedFormat( kvr_format( "kvConditionUSBDeviceSelection%@Format", StoredName( mSelection ) ),
            TextView( kvr_excerpt( mName ) ) );
    return kvr_localizedFormat( kvr_format( "kvConditionUSBDevice%@Format", StoredName( mType ) ), TextView( device ) );
}

void CWirelessNetworkCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "WirelessNetworkConditionName", mName );
    inVisitor.Name( "WirelessNetworkMatchType", mMatch );
    inVisitor.Name( "WirelessNetworkConditionType", mType );
}

Text CWirelessNetworkCondition::GetDescription() const
{
    const Text network =
        kvr_localizedFormat( kvr_format( "kvConditionWirelessNetworkMatch%@Format", StoredName( mMatch ) ),
            TextView( kvr_excerpt( mName ) ) );
    return kvr_localizedFormat(
        kvr_format( "kvConditionWirelessNetwork%@Format", StoredName( mType ) ), TextView( network ) );
}
