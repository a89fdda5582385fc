// The triggers of the keyboard: hot keys and typed strings.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Triggers/TBaseTrigger.h"
#include "Utility/Text/KeystrokeText.h"

/// When a key, or a button of a device, fires.
enum class KeyFireType { kPressed, kWhileDown, kReleased, kTapped };
inline constexpr TextView kKeyFireTypeNames[] = { u"Pressed", u"WhileDown", u"Released", u"Tapped" };
static_assert( std::size( kKeyFireTypeNames ) == std::size_t( KeyFireType::kTapped ) + 1 );
constexpr auto NamesOf( KeyFireType )
{
    return std::span( kKeyFireTypeNames );
}

/// The key of the text that says when a key or button fires: the kind's prefix ("tHotKeyTrigger"), then the fire type.
/// A tap count of 0 is any number of taps.
[[nodiscard]] Text KeyFireTypeTextKey( TextView inPrefix, KeyFireType inFireType, std::int32_t inTapCount );

class THotKeyTrigger final : public TTriggerOf<THotKeyTrigger, TriggerType::kHotKey>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] THotKeyTrigger* GetAsHotKeyTrigger() override { return this; }
    [[nodiscard]] bool MatchesHotKey( unsigned inKey, unsigned inModifiers ) const override;
    [[nodiscard]] bool TriggerIsUseless() const override { return mKeyCode == kNoKeyCode; }
    [[nodiscard]] Text GetDescription() const override;
    /// The keystroke alone.
    [[nodiscard]] Text GetShortDescription() const override;
    /// The keystroke as a hot key too, so that a search for it finds the macro.
    void AddMatchStrings( StringSearchee& ioSearchee ) const override;

    /// A virtual key code, or kNoKeyCode; modifiers that don't count are left out.
    void SetKeystroke( std::int32_t inKeyCode, std::int32_t inModifiers );
    [[nodiscard]] std::int32_t GetKeyCode() const { return mKeyCode; }
    [[nodiscard]] std::int32_t GetModifiers() const { return mModifiers; }
    [[nodiscard]] KeyFireType GetFireType() const { return mFireType; }
    [[nodiscard]] std::int32_t GetTapCount() const { return mTapCount; }
    /// The tap count only counts, and is only kept in files, for taps; 0 is any number of them.
    void SetFireType( KeyFireType inFireType, std::int32_t inTapCount = 0 );

private:
    std::int32_t mKeyCode = kNoKeyCode;
    std::int32_t mModifiers = 0;
    KeyFireType mFireType = KeyFireType::kPressed;
    std::int32_t mTapCount = 0;
};

/// How the letters of a typed string are compared.
enum class TypedStringCase {
    kExact,
    kIgnore,
    kIgnoreDiacriticals, ///< of older files: kIgnore, where diacriticals don't matter either
    kRemember,           ///< ignored, but what replaces the string takes it on
    kMatch               ///< the string is a regular expression
};
inline constexpr TextView kTypedStringCaseNames[] = { u"Exact", u"Ignore", u"IgnoreDiacriticals", u"Remember",
    u"Match" };
static_assert( std::size( kTypedStringCaseNames ) == std::size_t( TypedStringCase::kMatch ) + 1 );
constexpr auto NamesOf( TypedStringCase )
{
    return std::span( kTypedStringCaseNames );
}

class TTypedStringTrigger final : public TTriggerOf<TTypedStringTrigger, TriggerType::kTypedString>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary ) override;
    [[nodiscard]] TTypedStringTrigger* GetAsTypedStringTrigger() override { return this; }
    [[nodiscard]] bool TriggerIsUseless() const override { return mTypedString.IsEmpty(); }
    [[nodiscard]] Text GetDescription() const override;
    /// The typed string alone.
    [[nodiscard]] Text GetShortDescription() const override { return mTypedString.GetText(); }

    [[nodiscard]] const XText& GetTypedString() const { return mTypedString; }
    void SetTypedString( const XText& inString ) { mTypedString = inString; }
    [[nodiscard]] TypedStringCase GetCase() const { return mCase; }
    /// The older form turns into kIgnore without diacriticals.
    void SetCase( TypedStringCase inCase );
    [[nodiscard]] bool GetDiacriticalsMatter() const { return mDiacriticalsMatter; }

private:
    XText mTypedString = SharedText<u"">();
    TypedStringCase mCase = TypedStringCase::kExact;
    bool mSimulateDeletes = true;
    bool mOnlyAfterWordBreak = false;
    bool mDiacriticalsMatter = true;
};
