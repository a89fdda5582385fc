#include "Actions/SettingActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

namespace
{
// What is set, in a format; the title while nothing is chosen.
Text Described( const HBaseAction& inAction, TextView inFormatKey, const XText& inValue )
{
    return inValue.IsEmpty() ? inAction.GetActionTitle() : kvr_localizedFormat( inFormatKey, kvr_excerpt( inValue ) );
}
} // namespace

void ASetFindPasteboard::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Text", mText );
}

Text ASetFindPasteboard::InternalGetActionDescriptionString() const
{
    return Described( *this, u"kvSetFindPasteboardDescriptionFormat", mText );
}

void ASetNetworkLocation::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "NetworkLocation", mNetworkLocation );
}

Text ASetNetworkLocation::InternalGetActionDescriptionString() const
{
    return Described( *this, u"kvSetNetworkLocationDescriptionFormat", mNetworkLocation );
}

void AFastUserSwitch::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "UserName", mUserName );
}

Text AFastUserSwitch::InternalGetActionDescriptionString() const
{
    return Described( *this, u"kvFastUserSwitchDescriptionFormat", mUserName );
}

void ASetKeyboardLayout::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "KeyboardLayoutID", mID );
    inVisitor.Text( "KeyboardLayoutName", mName );
}

Text ASetKeyboardLayout::InternalGetActionDescriptionString() const
{
    return Described( *this, u"kvSetKeyboardLayoutDescriptionFormat", mName.IsEmpty() ? mID : mName );
}

void ADarkMode::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "DarkModeAction", mAction );
}

Text ADarkMode::InternalGetActionDescriptionString() const
{
    return kvr_localized( kvr_format( "kvDarkMode%@Description", StoredName( mAction ) ) );
}
