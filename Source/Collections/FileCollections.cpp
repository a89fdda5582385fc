#include "Collections/FileCollections.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

// Files

void CFilesCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    if ( not ReadOlderRecursive( inVisitor ) )
        inVisitor.Name( "SortOrder", mSortOrder );
    inVisitor.Boolean( "Reverse", mReverse );
    inVisitor.Boolean( "IncludeInvisibles", mIncludeInvisibles );
}

// Before there were orders, a flag told whether the folders within are looked into. It stands above an order
// in the same dictionary, and false means alphabetical.
bool CFilesCollection::ReadOlderRecursive( HFieldVisitor& inVisitor )
{
    if ( not inVisitor.IsReading() )
        return false;
    __SafeCFPropertyList older;
    inVisitor.Value( "Recursive", older, { .mWrite = XWrite::kNever } );
    const XPlistBoolean* recursive = older.AsBoolean();
    if ( not recursive )
        return false;
    mSortOrder = recursive->GetValue() ? FilesSortOrder::kRecursive : FilesSortOrder::kAlphabetical;
    inVisitor.NoteOlderKey( "Recursive", "SortOrder" );
    if ( inVisitor.HasKey( "SortOrder" ) )
        inVisitor.NoteRepair( "SortOrder", u"the older key “Recursive” stands above it" );
    return true;
}

Text CFilesCollection::GetDescription() const
{
    Text description = kvr_localizedFormat(
        kvr_format( "clFiles%@_DescriptionFormat", StoredName( mSortOrder ) ), TextView( kvr_fileName( mPath ) ) );
    if ( mReverse )
        description = kvr_localizedFormat( u"clFiles_ReverseFormat", TextView( description ) );
    if ( mIncludeInvisibles )
        description = kvr_localizedFormat( u"clFiles_IncludeInvisiblesFormat", TextView( description ) );
    return description;
}

// Volumes

void CVolumesCollection::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "AsPath", mAsPath );
}

Text CVolumesCollection::GetDescription() const
{
    return kvr_localized( mAsPath ? u"clVolumes_AsPathDescription" : u"clVolumes_LongDescription" );
}
