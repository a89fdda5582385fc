#include "Triggers/TGestureTrigger.h"

#include "Triggers/TriggerModifiers.h"
#include "Utility/Text/Localization.h"

using Requirement = GestureRequirement;

void TGestureTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Gesture", mGesture, { .mRequiredAs = "gesture" } );
    inVisitor.Name( "Requirement", mRequirement );
    DescribeTriggerModifiers( inVisitor, "Modifiers", mModifiers );
    inVisitor.Integer( "Button", mButton );
    inVisitor.Boolean( "AllowReverse", mAllowReverse );
}

bool TGestureTrigger::UsesModifiers() const
{
    return mRequirement == Requirement::kUseModifiers or mRequirement == Requirement::kUseModifiersOrMouse or
        mRequirement == Requirement::kUseModifiersAndMouse;
}

bool TGestureTrigger::UsesMouseButton() const
{
    return mRequirement == Requirement::kUseMouse or mRequirement == Requirement::kUseModifiersOrMouse or
        mRequirement == Requirement::kUseModifiersAndMouse;
}

bool TGestureTrigger::TriggerIsUseless() const
{
    if ( mGesture.GetLength() != 1 )
        return mGesture.IsEmpty();
    switch ( mRequirement )
    {
    case Requirement::kNothing:
        return true;
    case Requirement::kUseModifiers:
    case Requirement::kUseModifiersOrMouse:
        return mModifiers == 0;
    case Requirement::kUseMouse:
        return mButton == 0;
    case Requirement::kUseModifiersAndMouse:
        break;
    }
    return false;
}

Text TGestureTrigger::GetGestureDescription() const
{
    Text description;
    const auto add = [&description]( TextView part ) {
        if ( not part.empty() )
            description.append( description.empty() ? u"" : u"+" ).append( part );
    };
    if ( UsesModifiers() )
        add( kvr_modifierGlyphs( mModifiers ) );
    if ( UsesMouseButton() and mButton != 0 )
        add( kvr_format( u"🖱%d", mButton ) );
    add( mGesture.GetText() );
    return description;
}

Text TGestureTrigger::GetDescription() const
{
    if ( TriggerIsUseless() )
        return kvr_localized( u"tGestureTriggerUselessDesc" );
    return kvr_localizedFormat(
        mAllowReverse ? u"tGestureTriggerOrReverseDescFormat" : u"tGestureTriggerDescFormat", GetGestureDescription() );
}

Text TGestureTrigger::GetShortDescription() const
{
    return kvr_localizedFormat( u"tGestureTriggerShortDescFormat", GetGestureDescription() );
}
