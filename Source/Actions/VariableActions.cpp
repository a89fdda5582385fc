#include "Actions/VariableActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Set Variable to Calculation

void ASetVariableToCalculation::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Calculation( "Text", mText );
    inVisitor.Boolean( "UseFormat", mUseFormat );
    inVisitor.Text( "Format", mFormat );
}

Text ASetVariableToCalculation::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( mUseFormat ? u"kvSetVariableToCalculationWithFormatDescriptionFormat"
                                           : u"kvSetVariableToCalculationDescriptionFormat",
        TextView( mVariable.GetText() ), TextView( kvr_excerpt( mText ) ), TextView( mFormat.GetText() ) );
}

// Use Variable

void AUseVariable::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
    inVisitor.Variable( "Variable", mVariable );
}

Text AUseVariable::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvUseVariable%@DescriptionFormat", StoredName( mAction ) ), TextView( mVariable.GetText() ) );
}

// Keychain

void KeychainEntryFields::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "PasswordName", mName );
    inVisitor.Text( "PasswordAccount", mAccount );
}

Text KeychainEntryFields::GetDescription() const
{
    if ( mAccount.IsEmpty() or mAccount == SharedText<u"%UserLoginID%">() )
        return kvr_localizedFormat( u"kvKeychainEntryDescriptionFormat", TextView( mName.GetText() ) );
    return kvr_localizedFormat(
        u"kvKeychainEntryWithAccountDescriptionFormat", TextView( mName.GetText() ), TextView( mAccount.GetText() ) );
}

void ASetVariableToKeychainPassword::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    mEntry.DescribeFields( inVisitor );
}

Text ASetVariableToKeychainPassword::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSetVariableToKeychainPasswordDescriptionFormat", TextView( mVariable.GetText() ),
        TextView( mEntry.GetDescription() ) );
}

void ASetKeychainPasswordToText::DescribeFields( HFieldVisitor& inVisitor )
{
    mEntry.DescribeFields( inVisitor );
    inVisitor.Text( "Text", mText );
}

Text ASetKeychainPasswordToText::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSetKeychainPasswordToTextDescriptionFormat", TextView( mEntry.GetDescription() ) );
}
