#include "Collections/TextCollections.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Lines In

void CLinesInCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    inVisitor.Boolean( "IncludeBlankLines", mIncludeBlankLines );
}

Text CLinesInCollection::GetDescription() const
{
    return kvr_localizedFormat(
        mIncludeBlankLines ? u"clLinesInWithBlankLines_DescriptionFormat" : u"clLinesIn_DescriptionFormat",
        TextView( mSource.GetActionDescriptionString() ) );
}

// Substrings In

void CSubstringsInCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    inVisitor.Name( "SearchKind", mSearchKind );
    inVisitor.Name( "ResultType", mResultType );
    inVisitor.Text( "Search", mSearch );
}

Text CSubstringsInCollection::GetDescription() const
{
    const Text search = kvr_localizedFormat(
        kvr_format( "clSubstringsIn%@_SearchFormat", StoredName( mSearchKind ) ), TextView( kvr_excerpt( mSearch ) ) );
    return kvr_localizedFormat( kvr_format( "clSubstringsIn%@_DescriptionFormat", StoredName( mResultType ) ),
        TextView( search ), TextView( mSource.GetActionDescriptionString() ) );
}

// JSON

void CJSONCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Text", mText );
    inVisitor.Name( "ResultType", mResultType );
}

Text CJSONCollection::GetDescription() const
{
    return kvr_localizedFormat(
        kvr_format( "clJSON%@_DescriptionFormat", StoredName( mResultType ) ), TextView( kvr_excerpt( mText ) ) );
}
