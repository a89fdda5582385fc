#include "Actions/SystemActions.h"

#include "Utility/Text/Localization.h"

void ASystemAction::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "SystemAction", mCommand );
}

Text ASystemAction::InternalGetActionDescriptionString() const
{
    return kvr_localized( kvr_format( "kvSystemAction%@Description", StoredName( mCommand ) ) );
}

void ADebuggerAction::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "DebuggerAction", mCommand );
}

Text ADebuggerAction::InternalGetActionDescriptionString() const
{
    return kvr_localized( kvr_format( "kvDebuggerAction%@Description", StoredName( mCommand ) ) );
}
