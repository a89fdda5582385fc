#include "Conditions/MacroConditions.h"

#include "Actions/DescriptionText.h"
#include "Macros/MMacroSerializedObject.h"
#include "Utility/Text/Localization.h"

void CMacroCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MacroUID", mMacroUID, { .mRequiredAs = "mMacroUID", .mIsUID = true } );
    inVisitor.Name( "MacroConditionType", mType );
}

Text CMacroCondition::GetDescription() const
{
    const MMacroSerializedObject* macro = MMacroSerializedObject::FindObjectByUID( mMacroUID );
    const Text name = macro ? macro->GetUnambiguousName() : MMacroSerializedObject::GetUnknownUnambiguousName();
    return kvr_localizedFormat( kvr_format( "kvConditionMacro%@Format", StoredName( mType ) ), TextView( name ) );
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
