#include "Actions/SoundActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/XHTMLEntities.h"

// Speak Text

void ASpeakText::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Text", mText );
    inVisitor.Text( "Voice", mVoice );
    inVisitor.Name( "Rate", mRate );
}

Text ASpeakText::InternalGetActionDescriptionString() const
{
    Text description = kvr_localizedFormat( u"kvSpeakTextDescriptionFormat", TextView( kvr_excerpt( mText ) ) );
    if ( not mVoice.IsEmpty() )
        description = kvr_localizedFormat(
            u"kvSpeakTextVoiceFormat", TextView( description ), TextView( kvr_excerpt( mVoice ) ) );
    return kvr_localizedFormat( kvr_format( "kvSpeakTextRate%@Format", StoredName( mRate ) ), TextView( description ) );
}

// Play Sound

void APlaySound::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    inVisitor.Integer( "Volume", mVolume );
    inVisitor.Text( "DeviceID", mDeviceID );
    inVisitor.Boolean( "Asynchronously", mAsynchronously );
}

Text APlaySound::GetActionExtraHTML() const
{
    const Text device = mDeviceID.IsEmpty() ? kvr_localized( u"kvPlaySoundDefaultDevice" ) : mDeviceID.GetText();
    return kvr_localizedFormat( u"kvPlaySoundExtraHTMLFormat", encodeHTML( device ), mVolume );
}

Text APlaySound::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    const Text name = kvr_fileName( mPath );
    if ( mVolume == 100 )
        return kvr_localizedFormat( u"kvPlaySoundDescriptionFormat", TextView( name ) );
    return kvr_localizedFormat( u"kvPlaySoundVolumeDescriptionFormat", TextView( name ), mVolume );
}

// System Volume

void ASystemVolume::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Volume", mVolume );
}

std::vector<Text> ASystemVolume::GetAddActionByNameExtraSearchString() const
{
    return { u"sound" };
}

Text ASystemVolume::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSystemVolumeDescriptionFormat", mVolume );
}

// MIDI

void ASendMIDIMessage::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "MIDIMessageType", mType );
    inVisitor.Calculation( "ChannelExpression", mChannel, { .mOlderKey = "Channel" } );
    inVisitor.Calculation( "NoteExpression", mNote, { .mOlderKey = "Note" } );
    inVisitor.Calculation( "ValueExpression", mValue, { .mOlderKey = "Value" } );
    inVisitor.Text( "Packet", mPacket );
}

Text ASendMIDIMessage::InternalGetActionDescriptionString() const
{
    const Text key = kvr_format( "kvSendMIDIMessage%@DescriptionFormat", StoredName( mType ) );
    if ( mType == MIDIMessageType::kPacket )
        return kvr_localizedFormat( key, TextView( kvr_excerpt( mPacket ) ) );
    return kvr_localizedFormat(
        key, TextView( kvr_excerpt( mNote ) ), TextView( kvr_excerpt( mValue ) ), TextView( kvr_excerpt( mChannel ) ) );
}
