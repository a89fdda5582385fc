// The actions that are heard: speech, sounds, the volume, MIDI.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"

enum class SpeechRate : std::int32_t {
    kDefault,
    kSlow,
    kModerate,
    kNormal,
    kQuick,
    kFast,
};
inline constexpr TextView kSpeechRateNames[] = { u"Default", u"Slow", u"Moderate", u"Normal", u"Quick", u"Fast" };
static_assert( std::size( kSpeechRateNames ) == std::size_t( SpeechRate::kFast ) + 1 );
constexpr auto NamesOf( SpeechRate )
{
    return std::span( kSpeechRateNames );
}

class ASpeakText final : public HActionOf<ASpeakText, HActionType::kSpeakText>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mText = SharedText<u"">();
    XText mVoice = SharedText<u"">(); // "": the system's
    SpeechRate mRate = SpeechRate::kDefault;
};

class APlaySound final : public HActionOf<APlaySound, HActionType::kPlaySound>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetActionExtraHTML() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mPath = SharedText<u"">();
    std::int32_t mVolume = 100; // percent
    XText mDeviceID = SharedText<u"">();
    bool mAsynchronously = false;
};

class ASystemVolume final : public HActionOf<ASystemVolume, HActionType::kSystemVolume>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    std::int32_t mVolume = 100; // percent
};

enum class MIDIMessageType : std::int32_t {
    kNoteOn,
    kNoteOff,
    kControlChange,
    kPacket,
};
inline constexpr TextView kMIDIMessageTypeNames[] = { u"NoteOn", u"NoteOff", u"ControlChange", u"Packet" };
static_assert( std::size( kMIDIMessageTypeNames ) == std::size_t( MIDIMessageType::kPacket ) + 1 );
constexpr auto NamesOf( MIDIMessageType )
{
    return std::span( kMIDIMessageTypeNames );
}

class ASendMIDIMessage final : public HActionOf<ASendMIDIMessage, HActionType::kSendMIDIMessage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    MIDIMessageType mType = MIDIMessageType::kNoteOn;
    XText mChannel = SharedText<u"1">(); // calculations
    XText mNote = SharedText<u"60">();
    XText mValue = SharedText<u"63">();
    XText mPacket = SharedText<u"90 3C 3F">(); // bytes in hexadecimal digits
};
