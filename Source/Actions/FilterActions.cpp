#include "Actions/FilterActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/LegacyUpgrade.h"
#include "Utility/Text/Localization.h"

// Filter

void AFilter::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    mDestination.DescribeFields( inVisitor );
    inVisitor.Name( "Action", mAction );
}

void AFilter::UpdateToDefaultValues( bool inFlag )
{
    mSource.UpdateToDefaultValues( inFlag );
    mDestination.UpdateToDefaultValues( inFlag );
}

XText AFilter::GetVariable() const
{
    const bool sameAsSource = mDestination.GetSourceType() == ActionTextSourceType::kSource;
    const ActionTextEither& place = sameAsSource ? static_cast<const ActionTextEither&>( mSource ) : mDestination;
    return place.GetSourceType() == ActionTextSourceType::kVariable ? place.GetVariable() : XText();
}

XText AFilter::GetVariableText() const
{
    return mSource.GetSourceType() == ActionTextSourceType::kText ? mSource.GetText() : XText();
}

Text AFilter::InternalGetActionDescriptionString() const
{
    const Text description = kvr_localizedFormat( u"kvFilterDescriptionFormat",
        TextView( mSource.GetActionDescriptionString() ), TextView( FilterText::GetDescription( mAction ) ) );
    return kvr_withDestination( description, mDestination );
}

// Apply Text Factory

void AApplyTextFactory::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribePath( inVisitor, mPath );
    inVisitor.Part( "Target", mTarget );
}

void AApplyTextFactory::UpdateToDefaultValues( bool inFlag )
{
    mTarget.UpdateToDefaultValues( inFlag );
}

Text AApplyTextFactory::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvApplyTextFactoryDescriptionFormat", TextView( kvr_fileName( mPath ) ),
        TextView( mTarget.GetDisplayName() ) );
}

// Older types

void AFilterClipboard::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "Target", mTarget );
    inVisitor.Name( "Action", mAction );
}

std::unique_ptr<HBaseAction> AFilterClipboard::CleanActionAfterInitialization( const XPlistDictionary& inDictionary )
{
    auto filter = MakeModernForm<AFilter>( *this, inDictionary );
    filter->GetSource().InitializeFromClipboardTarget( mTarget );
    filter->SetAction( mAction );
    return filter;
}

void AFilterVariable::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Name( "Action", mAction );
}

std::unique_ptr<HBaseAction> AFilterVariable::CleanActionAfterInitialization( const XPlistDictionary& inDictionary )
{
    auto filter = MakeModernForm<AFilter>( *this, inDictionary );
    filter->GetSource().InitializeFromVariable( mVariable );
    filter->SetAction( mAction );
    return filter;
}
