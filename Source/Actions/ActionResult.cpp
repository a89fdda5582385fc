#include "Actions/ActionResult.h"

#include "Utility/Text/Localization.h"

void ActionResult::DescribeFields( HFieldVisitor& inVisitor, ActionDisplayKind inWhenMissing )
{
    inVisitor.Name( "DisplayKind", mKind, { .mWhenMissing = inWhenMissing } );
    if ( mKind == ActionDisplayKind::kVariable or mKind == ActionDisplayKind::kAppendVar )
        inVisitor.Variable( "Variable", mVariable );
    else if ( mKind == ActionDisplayKind::kClipboard )
        inVisitor.Part( "ClipboardTarget", mClipboard );
}

Text ActionResult::GetDescription() const
{
    Text value;
    if ( mKind == ActionDisplayKind::kVariable or mKind == ActionDisplayKind::kAppendVar )
        value = mVariable.GetText();
    else if ( mKind == ActionDisplayKind::kClipboard )
        value = mClipboard.GetDisplayName();
    return kvr_localizedFormat( kvr_format( "kvActionResult%@Description", StoredName( mKind ) ), TextView( value ) );
}

void ActionResult::UpdateToDefaultValues( bool inForce )
{
    if ( mKind == ActionDisplayKind::kClipboard )
        mClipboard.UpdateToDefaultValues( inForce );
}
