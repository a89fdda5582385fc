#include "Triggers/KeyTriggers.h"

#include "Macros/MLoadObserver.h"
#include "Triggers/TriggerModifiers.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

Text KeyFireTypeTextKey( TextView inPrefix, KeyFireType inFireType, std::int32_t inTapCount )
{
    TextView taps;
    if ( inFireType == KeyFireType::kTapped and inTapCount != 0 )
        taps = inTapCount == 1 ? u"Once" : inTapCount == 2 ? u"Twice" : u"Times";
    return kvr_format( u"%@Desc%@%@Format", inPrefix, StoredName( inFireType ), taps );
}

// Hot Key

void THotKeyTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "KeyCode", mKeyCode, { .mRequiredAs = "mKeyCode" } );
    DescribeTriggerModifiers( inVisitor, "Modifiers", mModifiers, { .mRequiredAs = "mModifiers" } );
    if ( inVisitor.IsReading() and inVisitor.HasKey( "TriggerRepeat" ) )
    {
        // What the older flag says stands unless the fire type is there and known.
        bool repeats = false;
        inVisitor.Boolean( "TriggerRepeat", repeats );
        mFireType = repeats ? KeyFireType::kWhileDown : KeyFireType::kPressed;
        inVisitor.NoteOlderKey( "TriggerRepeat", "FireType" );
    }
    inVisitor.Name( "FireType", mFireType );
    if ( mFireType == KeyFireType::kTapped )
        inVisitor.Integer( "TapCount", mTapCount );
}

bool THotKeyTrigger::MatchesHotKey( unsigned inKey, unsigned inModifiers ) const
{
    return not TriggerIsUseless() and inKey == unsigned( mKeyCode ) and
        ( inModifiers & unsigned( kModifiersMask ) ) == unsigned( mModifiers );
}

void THotKeyTrigger::SetKeystroke( std::int32_t inKeyCode, std::int32_t inModifiers )
{
    mKeyCode = inKeyCode;
    mModifiers = inModifiers & kModifiersMask;
}

void THotKeyTrigger::SetFireType( KeyFireType inFireType, std::int32_t inTapCount )
{
    mFireType = inFireType;
    mTapCount = inTapCount;
}

Text THotKeyTrigger::GetDescription() const
{
    return kvr_localizedFormat(
        KeyFireTypeTextKey( u"tHotKeyTrigger", mFireType, mTapCount ), GetShortDescription(), mTapCount );
}

Text THotKeyTrigger::GetShortDescription() const
{
    return kvr_keystrokeText( mKeyCode, mModifiers );
}

void THotKeyTrigger::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    TBaseTrigger::AddMatchStrings( ioSearchee );
    ioSearchee.AddHotKey( GetShortDescription() );
}

// Typed String

void TTypedStringTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "TypedString", mTypedString, { .mRequiredAs = "typedString" } );
    inVisitor.NameUnless( "Case", mCase, TypedStringCase::kExact );
    inVisitor.Boolean( "SimulateDeletes", mSimulateDeletes );
    inVisitor.Boolean( "OnlyAfterWordBreak", mOnlyAfterWordBreak );
    inVisitor.Boolean( "DiacriticalsMatter", mDiacriticalsMatter,
        { .mWrite = mDiacriticalsMatter ? XWrite::kNever : XWrite::kAlways } );
}

void TTypedStringTrigger::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    TBaseTrigger::LoadSubclassFromDictionary( inDictionary );
    if ( mCase != TypedStringCase::kIgnoreDiacriticals )
        return;
    SetCase( mCase );
    if ( MLoadObserver* const observer = MLoadObserver::Current() )
        observer->DidUpgradeValue( inDictionary, CFSTR( "Case" ), u"case is ignored, and diacriticals don't matter" );
}

void TTypedStringTrigger::SetCase( TypedStringCase inCase )
{
    mCase = inCase;
    if ( inCase != TypedStringCase::kIgnoreDiacriticals )
        return;
    mCase = TypedStringCase::kIgnore;
    mDiacriticalsMatter = false;
}

namespace
{
constexpr TextView kCaseTextKeys[] = { u"tTypeStringExactCase", u"tTypeStringIgnoreCase",
    u"tTypeStringIgnoreDiacriticals", u"tTypeStringRememberCase", u"tTypeStringMatch" };
static_assert( std::size( kCaseTextKeys ) == std::size( kTypedStringCaseNames ) );
} // namespace

Text TTypedStringTrigger::GetDescription() const
{
    // A regular expression says itself what may stand around it.
    const Text extra = mCase == TypedStringCase::kMatch
        ? Text( u"tTypeStringNoExtra" )
        : kvr_format( u"tTypeStringDiacriticals%@%@", mDiacriticalsMatter ? u"Matter" : u"DontMatter",
              mOnlyAfterWordBreak ? u"WordBreak" : u"Anywhere" );
    return kvr_localizedFormat(
        mSimulateDeletes ? u"tTypeStringTriggerDescWithDeleteFormat" : u"tTypeStringTriggerDescWithoutDeleteFormat",
        mTypedString.GetText(), kvr_localized( kCaseTextKeys[std::size_t( mCase )] ), kvr_localized( extra ) );
}
