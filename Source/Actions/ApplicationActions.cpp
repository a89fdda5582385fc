#include "Actions/ApplicationActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/KeystrokeText.h"
#include "Utility/Text/Localization.h"

namespace
{
Text NameOf( const std::optional<XApplicationIdentifier>& inApplication )
{
    return inApplication ? inApplication->GetDisplayName() : Text();
}
} // namespace

// Activate

void AActivateApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeApplication( inVisitor, "Application", mApplication );
    inVisitor.Boolean( "ReopenWindows", mReopenWindows );
    inVisitor.Boolean( "AllWindows", mAllWindows );
    inVisitor.Name( "AlreadyActivatedActionType", mAlreadyActivated );
}

Text AActivateApplication::InternalGetActionDescriptionString() const
{
    const Text name = NameOf( mApplication );
    if ( name.empty() )
        return GetActionTitle();
    return kvr_localizedFormat(
        kvr_format( "kvActivateApplication%@DescriptionFormat", StoredName( mAlreadyActivated ) ), TextView( name ) );
}

Text AActivateApplication::GetActionExtraHTML() const
{
    return kvr_extraHTMLLineIf( mReopenWindows, u"kvActivateApplicationReopenWindowsExtraHTML" ) +
        kvr_extraHTMLLineIf( mAllWindows, u"kvActivateApplicationAllWindowsExtraHTML" );
}

// Apply modifiers

void AApplyModifiersToApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeApplication( inVisitor, "Application", mApplication );
    inVisitor.Integer( "Modifiers", mModifiers );
}

Text AApplyModifiersToApplication::InternalGetActionDescriptionString() const
{
    const Text name = NameOf( mApplication );
    const Text modifiers = kvr_modifierGlyphs( mModifiers );
    if ( name.empty() )
        return GetActionTitle();
    if ( modifiers.empty() )
        return kvr_localizedFormat( u"kvApplyNoModifiersToApplicationDescriptionFormat", TextView( name ) );
    return kvr_localizedFormat(
        u"kvApplyModifiersToApplicationDescriptionFormat", TextView( modifiers ), TextView( name ) );
}

// Quit

void AQuitApplications::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "HonorExcluded", mHonorExcluded );
}

HActionType AQuitApplications::GetActionType() const
{
    return mScope == Scope::kAll ? HActionType::kQuitAll : HActionType::kQuitOthers;
}

std::unique_ptr<HBaseAction> AQuitApplications::Clone() const
{
    return std::make_unique<AQuitApplications>( *this );
}

Text AQuitApplications::GetActionExtraHTML() const
{
    return kvr_extraHTMLLineIf( mHonorExcluded, u"kvHonorExcludedExtraHTML" );
}

void AQuitSpecificApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    mTarget.DescribeFields( inVisitor, "Target", "Application" );
    inVisitor.Name( "Action", mAction );
}

Text AQuitSpecificApplication::InternalGetActionDescriptionString() const
{
    const Text name = mTarget.GetTargetingType() == ApplicationTargetingType::kFront
        ? kvr_localized( u"kvFrontApplication" )
        : mTarget.GetApplicationName();
    if ( name.empty() )
        return GetActionTitle();
    return kvr_localizedFormat(
        kvr_format( "kvQuitSpecificApplication%@DescriptionFormat", StoredName( mAction ) ), TextView( name ) );
}

// Hide

void AHideApplications::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "HonorExcluded", mHonorExcluded );
}

HActionType AHideApplications::GetActionType() const
{
    switch ( mScope )
    {
    case Scope::kOthers:
        return HActionType::kHideOthers;
    case Scope::kCurrent:
        return HActionType::kHideCurrent;
    default:
        return HActionType::kHideAll;
    }
}

std::unique_ptr<HBaseAction> AHideApplications::Clone() const
{
    return std::make_unique<AHideApplications>( *this );
}

Text AHideApplications::GetActionExtraHTML() const
{
    return kvr_extraHTMLLineIf( mHonorExcluded, u"kvHonorExcludedExtraHTML" );
}

void AHideSpecificApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeApplication( inVisitor, "Application", mApplication );
}

Text AHideSpecificApplication::InternalGetActionDescriptionString() const
{
    const Text name = NameOf( mApplication );
    return name.empty() ? GetActionTitle()
                        : kvr_localizedFormat( u"kvHideSpecificApplicationDescriptionFormat", TextView( name ) );
}

// Show

void AShowSpecificApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeApplication( inVisitor, "Application", mApplication );
}

Text AShowSpecificApplication::InternalGetActionDescriptionString() const
{
    const Text name = NameOf( mApplication );
    return name.empty() ? GetActionTitle()
                        : kvr_localizedFormat( u"kvShowSpecificApplicationDescriptionFormat", TextView( name ) );
}
