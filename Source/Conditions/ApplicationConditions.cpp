#include "Conditions/ApplicationConditions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

namespace
{
Text QuotedApplication( const std::optional<XApplicationIdentifier>& inApplication )
{
    const Text name = inApplication ? inApplication->GetDisplayName() : Text();
    return name.empty() ? kvr_localized( u"kvConditionNoneChosen" )
                        : kvr_localizedFormat( u"kvConditionApplicationNameFormat", TextView( name ) );
}
} // namespace

void CApplicationCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeApplication( inVisitor, "Application", mApplication );
    inVisitor.Name( "ApplicationConditionType", mType );
}

Text CApplicationCondition::GetDescription() const
{
    return kvr_localizedFormat( kvr_format( "kvConditionApplication%@Format", StoredName( mType ) ),
        TextView( QuotedApplication( mApplication ) ) );
}

// Windows

void FrontOrCertainApplication::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "IsFrontApplication", mIsFront );
    if ( inVisitor.IsReading() )
        mApplication.reset();
    if ( not mIsFront )
        DescribeApplication( inVisitor, "Application", mApplication );
    if ( not inVisitor.IsReading() or mIsFront or mApplication )
        return;
    mIsFront = true;
    inVisitor.NoteRepair( "IsFrontApplication", u"no application stands beside it; the one in front is meant" );
}

Text FrontOrCertainApplication::GetDescription() const
{
    return mIsFront ? kvr_localized( u"kvConditionFrontApplication" ) : QuotedApplication( mApplication );
}

void CFrontWindowCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "FrontWindowConditionType", mType );
    if ( MFrontWindowCondition::NeedsFrontWindowTitle( mType ) )
        inVisitor.Text( "FrontWindowTitle", mTitle );
    mApplication.DescribeFields( inVisitor );
}

Text CFrontWindowCondition::GetDescription() const
{
    return kvr_localizedFormat( kvr_format( "kvConditionFrontWindow%@Format", StoredName( mType ) ),
        TextView( mApplication.GetDescription() ), TextView( kvr_excerpt( mTitle ) ) );
}

void CAnyWindowCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "AnyWindowConditionType", mType );
    inVisitor.Text( "AnyWindowTitle", mTitle );
    mApplication.DescribeFields( inVisitor );
}

Text CAnyWindowCondition::GetDescription() const
{
    const GenericCondition condition( mType );
    return kvr_localizedFormat(
        condition.RequiresValue() ? u"kvConditionAnyWindowTitleFormat" : u"kvConditionAnyWindowFormat",
        TextView( mApplication.GetDescription() ),
        TextView( condition.GetDescription( XText( kvr_excerpt( mTitle ) ) ) ) );
}

// Buttons and menus

void CButtonCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ButtonTitle", mTitle );
    inVisitor.Name( "ButtonConditionSelectionType", mSelection );
    inVisitor.Name( "ButtonConditionType", mType );
}

Text CButtonCondition::GetDescription() const
{
    const Text button =
        kvr_localizedFormat( kvr_format( "kvConditionButtonSelection%@Format", StoredName( mSelection ) ),
            TextView( kvr_excerpt( mTitle ) ) );
    return kvr_localizedFormat( kvr_format( "kvConditionButton%@Format", StoredName( mType ) ), TextView( button ) );
}

void CMenuCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MenuTitle", mTitle );
    inVisitor.Name( "MenuConditionSelectionType", mSelection );
    inVisitor.Name( "MenuConditionType", mType );
    inVisitor.Text( "MenuShortcut", mShortcut );
    inVisitor.Integer( "MenuModifiers", mModifiers );
}

Text CMenuCondition::GetDescription() const
{
    const Text value = mSelection == MenuConditionSelectionType::kShortcut
        ? kvr_modifierGlyphs( mModifiers ) + kvr_excerpt( mShortcut )
        : kvr_excerpt( mTitle );
    const Text item = kvr_localizedFormat(
        kvr_format( "kvConditionMenuSelection%@Format", StoredName( mSelection ) ), TextView( value ) );
    return kvr_localizedFormat( kvr_format( "kvConditionMenu%@Format", StoredName( mType ) ), TextView( item ) );
}
