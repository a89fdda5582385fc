#include "Actions/KeyboardActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/TextActions.h"
#include "Utility/Text/Localization.h"

// Simulate Keystroke

void ASimulateKeystroke::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Modifiers", mModifiers );
    inVisitor.Integer( "KeyCode", mKeyCode );
    inVisitor.Name( "Press", mPress );
    inVisitor.Boolean( "ReleaseAll", mReleaseAll );
    mTarget.DescribeFields( inVisitor, "TargetingType", "TargetApplication" );
}

namespace
{
constexpr std::int32_t kSpaceKeyCode = 49;

constexpr bool IsPrintable( char16_t inCharacter )
{
    return inCharacter >= u' ' and inCharacter != u'\x7F' and not( inCharacter >= 0x80 and inCharacter < 0xA0 ) and
        not( inCharacter >= 0xF700 and inCharacter <= 0xF8FF ); // there stand the arrows and function keys
}

// Shifted digits and signs differ even among layouts with the same letters, so that they have none here.
char16_t ANSICharacter( std::int32_t inKeyCode, bool inShift )
{
    if ( inKeyCode == kSpaceKeyCode )
        return inShift ? 0 : u' ';
    const Text name = kvr_keyName( inKeyCode );
    if ( name.size() != 1 or name[0] > u'~' )
        return 0;
    const bool isLetter = name[0] >= u'A' and name[0] <= u'Z';
    if ( inShift )
        return isLetter ? name[0] : 0;
    return isLetter ? char16_t( name[0] - u'A' + u'a' ) : name[0];
}
} // namespace

char16_t ASimulateKeystroke::GetTypedCharacter() const
{
    const std::int32_t modifiers = mModifiers & kModifiersMask;
    if ( mPress != KeyPress::kPressAndRelease or mReleaseAll or
        ( modifiers & ( kModifierCommand | kModifierControl ) ) )
        return 0;
    if ( mRecordedCharacter != 0 )
        return IsPrintable( mRecordedCharacter ) ? mRecordedCharacter : 0;
    return modifiers & kModifierOption ? 0 : ANSICharacter( mKeyCode, modifiers & kModifierShift );
}

std::unique_ptr<HBaseAction> ASimulateKeystroke::Merge( const HBaseAction& inNext ) const
{
    const char16_t character = GetTypedCharacter();
    if ( const auto* text = dynamic_cast<const AInsertText*>( &inNext ) )
        return character ? text->MergedAfter( character, mTarget ) : nullptr;
    const auto* next = dynamic_cast<const ASimulateKeystroke*>( &inNext );
    if ( not next or not mTarget.IsSameAs( next->mTarget ) )
        return nullptr;
    if ( character and next->GetTypedCharacter() )
        return AInsertText::MakeTyped( XText( kvr_format( "%C%C", character, next->GetTypedCharacter() ) ), mTarget );
    const bool isHeldAndReleased = mPress == KeyPress::kPressAndHold and next->mPress == KeyPress::kRelease and
        mKeyCode == next->mKeyCode and mModifiers == next->mModifiers and not mReleaseAll;
    if ( not isHeldAndReleased )
        return nullptr;
    auto merged = std::make_unique<ASimulateKeystroke>( *this );
    merged->mPress = KeyPress::kPressAndRelease;
    merged->mReleaseAll = next->mReleaseAll;
    return merged;
}

std::vector<Text> ASimulateKeystroke::GetAddActionByNameExtraSearchString() const
{
    return { u"type", u"press", u"key" };
}

Text ASimulateKeystroke::InternalGetActionDescriptionString() const
{
    if ( mKeyCode == kNoKeyCode )
        return GetActionTitle();
    return kvr_withApplication(
        kvr_localizedFormat( kvr_format( "kvSimulateKeystroke%@DescriptionFormat", StoredName( mPress ) ),
            kvr_keystrokeText( mKeyCode, mModifiers ) ),
        mTarget );
}

// Trigger Macro by Hot Key

void ATriggerMacroByHotKey::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Modifiers", mModifiers );
    inVisitor.Integer( "KeyCode", mKeyCode );
}

Text ATriggerMacroByHotKey::InternalGetActionDescriptionString() const
{
    if ( mKeyCode == kNoKeyCode )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvTriggerMacroByHotKeyDescriptionFormat", kvr_keystrokeText( mKeyCode, mModifiers ) );
}

// Simulate Modifiers

void ASimulateModifiers::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Modifiers", mModifiers );
    inVisitor.Name( "Press", mPress );
}

Text ASimulateModifiers::InternalGetActionDescriptionString() const
{
    const Text glyphs = kvr_modifierGlyphs( mModifiers );
    if ( glyphs.empty() )
        return GetActionTitle();
    return kvr_localizedFormat( kvr_format( "kvSimulateModifiers%@DescriptionFormat", StoredName( mPress ) ), glyphs );
}

// Simulate Hardware Key

void ASimulateHardwareKey::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "HardwareKey", mKey );
    inVisitor.Name( "Press", mPress );
    inVisitor.Integer( "Modifiers", mModifiers );
}

Text ASimulateHardwareKey::InternalGetActionDescriptionString() const
{
    const Text& key = kvr_localized( kvr_format( "kvHardwareKey%@Name", StoredName( mKey ) ) );
    return kvr_localizedFormat( kvr_format( "kvSimulateHardwareKey%@DescriptionFormat", StoredName( mPress ) ),
        kvr_modifierGlyphs( mModifiers ) + key );
}
