#include "Actions/OpenActions.h"

#include "Utility/Text/Localization.h"

AOpenURL::AOpenURL()
{
    static const XText gDefaultURL( kvr_localized( u"kvDefaultOpenURLValue" ) );
    mURL = gDefaultURL;
}

void AOpenURL::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "URL", mURL );
    // Older files say it by the application alone.
    inVisitor.Boolean(
        "IsDefaultApplication", mIsDefaultApplication, { .mWhenMissing = not inVisitor.HasKey( "Application" ) } );
    DescribeApplication( inVisitor, "Application", mApplication );
    inVisitor.Boolean( "OpenInBackground", mOpenInBackground );
}

Text AOpenURL::InternalGetActionDescriptionString() const
{
    if ( mIsDefaultApplication or not mApplication )
        return kvr_localizedFormat( u"kvOpenURLDescriptionFormat", TextView( mURL.GetText() ) );
    return kvr_localizedFormat( u"kvOpenURLWithApplicationDescriptionFormat", TextView( mURL.GetText() ),
        TextView( mApplication->GetDisplayName() ) );
}
