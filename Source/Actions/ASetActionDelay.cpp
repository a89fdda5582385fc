#include "Actions/ASetActionDelay.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void ASetActionDelay::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Preference", mPreference );
    inVisitor.Text( "Value", mValue );
    inVisitor.Boolean( "Reset", mReset );
    inVisitor.Boolean( "Permanent", mPermanent );
}

Text ASetActionDelay::InternalGetActionDescriptionString() const
{
    const TextView delay = HDelayPreference::GetDisplayName( mPreference );
    if ( mValue.IsEmpty() and not mReset )
        return kvr_localizedFormat( u"kvSetActionDelayNoValueDescriptionFormat", delay );
    const Text key =
        kvr_format( "kvSetActionDelayReset%dPermanent%dDescriptionFormat", int( mReset ), int( mPermanent ) );
    const TextView number = mValue.Equals( TextView( u"1" ) ) ? u"Singular" : u"Plural";
    return kvr_localizedFormat( key, delay, TextView( kvr_excerpt( mValue ) ),
        TextView( kvr_localized( kvr_format( "PauseUnitSeconds%@", number ) ) ) );
}
