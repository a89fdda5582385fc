#include "Conditions/MacroConditions.h"

#include "Actions/DescriptionText.h"
#include "Macros/MMacroInsertion.h"
#include "Utility/Text/Localization.h"

void CMacroCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MacroUID", mMacroUID, { .mRequiredAs = "mMacroUID", .mIsUID = true } );
    inVisitor.Name( "MacroConditionType", mType );
}

void CMacroCondition::UpdateForPasteOrAdd()
{
    mMacroUID = MMacroInsertion::GetMapping( mMacroUID );
}

Text CMacroCondition::GetDescription() const
{
    return kvr_localizedFormat(
        kvr_format( "kvConditionMacro%@Format", StoredName( mType ) ), TextView( kvr_macroName( mMacroUID ) ) );
}

void CActionResultCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ActionResultText", mText );
    inVisitor.Name( "ActionResultConditionType", mType );
}

Text CActionResultCondition::GetDescription() const
{
    return kvr_localizedFormat( u"kvConditionActionResultFormat",
        TextView( GenericCondition( mType ).GetDescription( XText( kvr_excerpt( mText ) ) ) ) );
}
