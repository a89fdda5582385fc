#include "Triggers/TFolderTrigger.h"

#include "Utility/Text/Localization.h"
#include "XCAF/XException.h"

void TFolderTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Converted( "Interest", mInterest );
}

void TFolderTrigger::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    const XPlistDictionary* const dictionary = &inDictionary;
    CFContainer<XPlistDictionary> interest;
    XThrowIfNot( dictionary->Get( CFSTR("Interest"), interest ) );
    TBaseTrigger::LoadSubclassFromDictionary( inDictionary );
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
