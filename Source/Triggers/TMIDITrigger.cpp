#include "Triggers/TMIDITrigger.h"

#include "Utility/Text/Localization.h"

void TMIDITrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Device", mDevice, { .mRequiredAs = "device" } );
    inVisitor.Name( "Kind", mKind );
    switch ( mKind )
    {
    case MIDITriggerKind::kNote:
        inVisitor.Integer( "Channel", mChannel, { .mRequiredAs = "mChannel" } );
        inVisitor.Integer( "Note", mNote, { .mRequiredAs = "mNote" } );
        inVisitor.Name( "FireType", mFireType );
        break;
    case MIDITriggerKind::kControlChange:
        inVisitor.Integer( "Channel", mChannel, { .mRequiredAs = "mChannel" } );
        inVisitor.Integer( "Controller", mNote, { .mRequiredAs = "mNote" } );
        inVisitor.Name( "CCFireType", mCCFireType );
        inVisitor.Integer( "Value", mCCValue, { .mRequiredAs = NeedsValue() ? "mCCValue" : nullptr } );
        break;
    case MIDITriggerKind::kPacket:
        DescribePacket( inVisitor );
        break;
    }
}

void TMIDITrigger::DescribePacket( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Byte1Lo", mByte1Lo );
    inVisitor.Integer( "Byte1Hi", mByte1Hi );
    inVisitor.Integer( "Byte2Lo", mByte2Lo );
    inVisitor.Integer( "Byte2Hi", mByte2Hi );
    inVisitor.Integer( "MinLength", mMinLength );
    inVisitor.Integer( "MaxLength", mMaxLength );
    inVisitor.Text( "PacketMatch", mPacketMatch, { .mWhenMissing = u".*" } );
}

bool TMIDITrigger::NeedsValue() const
{
    using Fire = MIDIControlFireType;
    return mKind == MIDITriggerKind::kControlChange and mCCFireType != Fire::kChanges and
        mCCFireType != Fire::kChanged and mCCFireType != Fire::kDecreases and mCCFireType != Fire::kIncreases;
}

Text TMIDITrigger::PacketToString( std::span<const std::uint8_t> inBytes )
{
    Text text;
    for ( const std::uint8_t byte : inBytes )
        text += kvr_format( text.empty() ? u"%02X" : u" %02X", byte );
    return text;
}

Text TMIDITrigger::DescribedEvent() const
{
    switch ( mKind )
    {
    case MIDITriggerKind::kNote:
        return kvr_localizedFormat( kvr_format( u"tMIDITriggerDesc%@Format", StoredName( mFireType ) ), mNote );
    case MIDITriggerKind::kControlChange:
        return kvr_localizedFormat(
            kvr_format( u"tMIDITriggerDescCC%@Format", StoredName( mCCFireType ) ), mNote, mCCValue );
    case MIDITriggerKind::kPacket:
        break;
    }
    return kvr_localizedFormat( u"tMIDITriggerDescPacketFormat", mPacketMatch.GetText() );
}

Text TMIDITrigger::GetDescription() const
{
    Text description = DescribedEvent();
    if ( mKind != MIDITriggerKind::kPacket )
        description += kvr_localizedFormat( u"tMIDITriggerOnChannelFormat", mChannel );
    return description + kvr_localizedFormat( u"tMIDITriggerOnDeviceFormat", mDevice.GetText() );
}

Text TMIDITrigger::GetShortDescription() const
{
    switch ( mKind )
    {
    case MIDITriggerKind::kNote:
        return kvr_localizedFormat( u"tMIDITriggerShortDescNoteFormat", mNote );
    case MIDITriggerKind::kControlChange:
        return kvr_localizedFormat( u"tMIDITriggerShortDescCCFormat", mNote );
    case MIDITriggerKind::kPacket:
        break;
    }
    return kvr_localized( u"tMIDITriggerShortDescPacket" );
}
