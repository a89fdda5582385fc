// The trigger of a MIDI device: a note, a controller, or any packet that matches.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Triggers/TBaseTrigger.h"

enum class MIDITriggerKind { kNote, kControlChange, kPacket };
inline constexpr TextView kMIDITriggerKindNames[] = { u"Note", u"ControlChange", u"Packet" };
static_assert( std::size( kMIDITriggerKindNames ) == std::size_t( MIDITriggerKind::kPacket ) + 1 );
constexpr auto NamesOf( MIDITriggerKind )
{
    return std::span( kMIDITriggerKindNames );
}

/// When a note fires.
enum class MIDINoteFireType { kPressed, kWhileDown, kReleased };
inline constexpr TextView kMIDINoteFireTypeNames[] = { u"Pressed", u"WhileDown", u"Released" };
static_assert( std::size( kMIDINoteFireTypeNames ) == std::size_t( MIDINoteFireType::kReleased ) + 1 );
constexpr auto NamesOf( MIDINoteFireType )
{
    return std::span( kMIDINoteFireTypeNames );
}

/// When a controller fires: at each message whose value is so, or, by the names with Once, when its value comes to be
/// so. kChanges fires at each message, kChanged only at another value than before.
enum class MIDIControlFireType {
    kChanges,
    kLessThan,
    kLessThanOrEqual,
    kEqual,
    kGreaterThanOrEqual,
    kGreaterThan,
    kChanged,
    kLessThanOnce,
    kLessThanOrEqualOnce,
    kEqualOnce,
    kGreaterThanOrEqualOnce,
    kGreaterThanOnce,
    kDecreases,
    kIncreases,
};
inline constexpr TextView kMIDIControlFireTypeNames[] = { u"Changes", u"LessThan", u"LessThanOrEqual", u"Equal",
    u"GreaterThanOrEqual", u"GreaterThan", u"Changed", u"LessThanOnce", u"LessThanOrEqualOnce", u"EqualOnce",
    u"GreaterThanOrEqualOnce", u"GreaterThanOnce", u"Decreases", u"Increases" };
static_assert( std::size( kMIDIControlFireTypeNames ) == std::size_t( MIDIControlFireType::kIncreases ) + 1 );
constexpr auto NamesOf( MIDIControlFireType )
{
    return std::span( kMIDIControlFireTypeNames );
}

/// The keys of the other kinds are never written.
class TMIDITrigger final : public TTriggerOf<TMIDITrigger, TriggerType::kMIDI>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    /// Is there a value to compare the controller's with?
    [[nodiscard]] bool NeedsValue() const;
    /// The bytes of a packet as the packet expression sees them: "90 3C 7F".
    [[nodiscard]] static Text PacketToString( std::span<const std::uint8_t> inBytes );

    [[nodiscard]] MIDITriggerKind GetKind() const { return mKind; }
    void SetKind( MIDITriggerKind inKind ) { mKind = inKind; }
    [[nodiscard]] MIDIControlFireType GetControlFireType() const { return mCCFireType; }
    void SetControlFireType( MIDIControlFireType inFireType ) { mCCFireType = inFireType; }

private:
    void DescribePacket( HFieldVisitor& inVisitor );
    [[nodiscard]] Text DescribedEvent() const;

    XText mDevice = SharedText<u"Any MIDI Device">();
    MIDITriggerKind mKind = MIDITriggerKind::kNote;
    std::int32_t mChannel = 0;
    std::int32_t mNote = 0; // the number of the controller too
    MIDINoteFireType mFireType = MIDINoteFireType::kPressed;
    MIDIControlFireType mCCFireType = MIDIControlFireType::kChanges;
    std::int32_t mCCValue = 0;
    std::int32_t mByte1Lo = 247, mByte1Hi = 255, mByte2Lo = 0, mByte2Hi = 1;
    std::int32_t mMinLength = 0, mMaxLength = 0;
    XText mPacketMatch = SharedText<u"^.*$">();
};
