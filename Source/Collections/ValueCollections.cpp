#include "Collections/ValueCollections.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Range

void CRangeCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "StartExpression", mStart );
    inVisitor.Calculation( "EndExpression", mEnd );
    inVisitor.Boolean( "Upwards", mUpwards );
}

Text CRangeCollection::GetDescription() const
{
    return kvr_localizedFormat( mUpwards ? u"clRangeUpwards_DescriptionFormat" : u"clRangeDownwards_DescriptionFormat",
        TextView( kvr_excerpt( mStart ) ), TextView( kvr_excerpt( mEnd ) ) );
}

// Dictionary Keys

void CDictionaryKeysCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Dictionary", mDictionary );
}

Text CDictionaryKeysCollection::GetDescription() const
{
    return kvr_localizedFormat( u"clDictionaryKeys_DescriptionFormat", TextView( mDictionary.GetText() ) );
}

// Found Images

void CFoundImagesCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    mImage.DescribeFields( inVisitor );
    inVisitor.Integer( "Fuzz", mFuzz );
    inVisitor.Boolean( "DisplayMatches", mDisplayMatches );
    mScreenArea.DescribeIn( inVisitor, "ScreenArea" );
    inVisitor.Name( "SortOrder", mSortOrder );
}

Text CFoundImagesCollection::GetDescription() const
{
    return kvr_localizedFormat( kvr_format( "clFoundImages%@_DescriptionFormat", StoredName( mSortOrder ) ),
        TextView( mImage.GetDescription() ), TextView( mScreenArea.GetDescription() ) );
}
