#include "Actions/SubstringActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void StringRangeFields::DescribeType( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "StringRangeType", mType );
}

void StringRangeFields::DescribeValues( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "First", mFirst );
    inVisitor.Calculation( "Second", mSecond );
}

Text StringRangeFields::GetDescription() const
{
    const TextView one = u"1";
    if ( ( mType == StringRangeType::kTo or mType == StringRangeType::kLast ) and mFirst.Equals( one ) )
        return kvr_localized( kvr_format( "kvStringRange%@OneDescription", StoredName( mType ) ) );
    if ( mType == StringRangeType::kRange and mSecond.Equals( one ) )
        return kvr_localizedFormat( u"kvStringRangeRangeOneDescriptionFormat", TextView( kvr_excerpt( mFirst ) ) );
    return kvr_localizedFormat( kvr_format( "kvStringRange%@DescriptionFormat", StoredName( mType ) ),
        TextView( kvr_excerpt( mFirst ) ), TextView( kvr_excerpt( mSecond ) ) );
}

void ASubstring::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    mDestination.DescribeFields( inVisitor );
    mRange.DescribeType( inVisitor );
    inVisitor.Boolean( "Delete", mDelete );
    mRange.DescribeValues( inVisitor );
}

void ASubstring::UpdateToDefaultValues( bool inFlag )
{
    mSource.UpdateToDefaultValues( inFlag );
    mDestination.UpdateToDefaultValues( inFlag );
}

Text ASubstring::InternalGetActionDescriptionString() const
{
    const Text description =
        kvr_localizedFormat( mDelete ? u"kvSubstringDeleteDescriptionFormat" : u"kvSubstringDescriptionFormat",
            TextView( mRange.GetDescription() ), TextView( mSource.GetActionDescriptionString() ) );
    return kvr_withDestination( description, mDestination );
}

void AApplyStyle::DescribeFields( HFieldVisitor& inVisitor )
{
    mRange.DescribeType( inVisitor );
    inVisitor.Part( "Target", mTarget );
    mRange.DescribeValues( inVisitor );
    inVisitor.Value( "Attributes", mAttributes );
}

void AApplyStyle::UpdateToDefaultValues( bool inFlag )
{
    mTarget.UpdateToDefaultValues( inFlag );
}

Text AApplyStyle::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        u"kvApplyStyleDescriptionFormat", TextView( mRange.GetDescription() ), TextView( mTarget.GetDisplayName() ) );
}
