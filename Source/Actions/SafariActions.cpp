#include "Actions/SafariActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Commands

void ASafariControl::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Command", mCommand );
    inVisitor.Text( "Argument", mArgument );
}

Text ASafariControl::InternalGetActionDescriptionString() const
{
    return kvr_commandDescription( u"kvSafariControl", StoredName( mCommand ), mArgument );
}

// Fields

void ASetVariableToSafariField::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Text( "Field", mField );
}

XText ASetVariableToSafariField::GetTransformationResult( CalculateError*, float*, bool ) const
{
    return {};
}

Text ASetVariableToSafariField::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSetVariableToSafariFieldDescriptionFormat", TextView( mVariable.GetText() ),
        TextView( kvr_excerpt( mField ) ) );
}

void HSetSafariFieldAction::DescribeValueAndField( HFieldVisitor& inVisitor, HFieldKey inValueKey )
{
    inVisitor.Text( inValueKey, mValue );
    inVisitor.Text( "Field", mField );
}

XText HSetSafariFieldAction::GetTransformationResult( CalculateError*, float*, bool ) const
{
    return mValue;
}

Text HSetSafariFieldAction::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kv%@DescriptionFormat", KeyOf( GetActionType() ) ),
        TextView( kvr_excerpt( mField ) ), TextView( kvr_excerpt( mValue ) ) );
}
