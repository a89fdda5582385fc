#include "Conditions/ScriptCondition.h"

#include "Actions/ActionFieldParts.h"
#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void CScriptCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ScriptConditionSourceType", mSource );
    inVisitor.Name( "ScriptConditionType", mType );
    // A new condition has an example; one read without the key has none.
    inVisitor.Text( "ScriptText", mScript, { .mWhenMissing = u"" } );
    DescribePath( inVisitor, mPath );
    inVisitor.Text( "ScriptResult", mResult );
    inVisitor.Integer( "ScriptTerminationStatus", mTerminationStatus );
}

Text CScriptCondition::GetDescription() const
{
    const Text condition = GenericCondition( mType ).GetDescription(
        XText( kvr_excerpt( mResult ) ), mTerminationStatus, GenericConditionAddText::kResult );
    return kvr_localizedFormat( kvr_format( "kvConditionScript%@Format", StoredName( mSource ) ),
        TextView( IsFile() ? kvr_fileName( mPath ) : kvr_excerpt( mScript ) ), TextView( condition ) );
}
