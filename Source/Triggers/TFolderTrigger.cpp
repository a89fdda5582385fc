#include "Triggers/TFolderTrigger.h"

#include "Utility/Text/Localization.h"

void TFolderTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Converted( "Interest", mInterest, { .mRequiredAs = "interest" } );
}

Text TFolderTrigger::GetDescription() const
{
    const Text key = kvr_format(
        u"tFolderTrigger%@%@", StoredName( mInterest.GetObserve() ), StoredName( mInterest.GetObserveWhen() ) );
    return kvr_localizedFormat( key, mInterest.GetPath().GetText() );
}

Text TFolderTrigger::GetShortDescription() const
{
    return kvr_localized( u"tFolderTriggerShortDesc" );
}
