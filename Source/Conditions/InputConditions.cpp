#include "Conditions/InputConditions.h"

#include "Utility/Text/Localization.h"

void CModifiersCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "ModifiersDown", mDown, { .mRequiredAs = "mModifiersDown" } );
    inVisitor.Integer( "ModifiersUp", mUp, { .mRequiredAs = "mModifiersUp" } );
}

Text CModifiersCondition::GetDescription() const
{
    const Text down = kvr_modifierGlyphs( mDown ), up = kvr_modifierGlyphs( mUp );
    const TextView key = down.empty()
        ? ( up.empty() ? u"kvConditionModifiersNoneFormat" : u"kvConditionModifiersUpFormat" )
        : up.empty() ? u"kvConditionModifiersDownFormat"
                     : u"kvConditionModifiersDownAndUpFormat";
    return kvr_localizedFormat( key, TextView( down ), TextView( up ) );
}

void CKeyCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "KeyCode", mKeyCode, { .mRequiredAs = "mKeyCode" } );
    inVisitor.Name( "KeyConditionType", mType );
}

Text CKeyCondition::GetDescription() const
{
    const Text key = mKeyCode == kNoKeyCode ? kvr_localized( u"kvConditionNoneChosen" ) : kvr_keyName( mKeyCode );
    return kvr_localizedFormat( kvr_format( "kvConditionKey%@Format", StoredName( mType ) ), TextView( key ) );
}

void CTypedStringCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "TrippedCaseBehaviour", mCase );
}

Text CTypedStringCondition::GetDescription() const
{
    return kvr_localized( kvr_format( "kvConditionTypedString%@Description", StoredName( mCase ) ) );
}

void CMouseButtonCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "Button", mButton );
    inVisitor.Boolean( "Pressed", mPressed );
}

Text CMouseButtonCondition::GetDescription() const
{
    // People count from one, and call the first two by where they are.
    const Text button = mButton == 0 or mButton == 1
        ? kvr_localized( mButton == 0 ? u"kvConditionMouseButtonLeft" : u"kvConditionMouseButtonRight" )
        : kvr_localizedFormat( u"kvConditionMouseButtonNumberFormat", std::int64_t( mButton ) + 1 );
    return kvr_localizedFormat(
        mPressed ? u"kvConditionMouseButtonPressedFormat" : u"kvConditionMouseButtonNotPressedFormat",
        TextView( button ) );
}
