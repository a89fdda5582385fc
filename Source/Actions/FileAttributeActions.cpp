#include "Actions/FileAttributeActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

namespace
{
Text DisplayName( FileAttribute inAttribute )
{
    return kvr_localized( kvr_format( "kvFileAttribute%@", StoredName( inAttribute ) ) );
}
} // namespace

// Get

void AGetFileAttribute::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Attribute", mAttribute );
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Text( "Path", mPath );
}

Text AGetFileAttribute::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvGetFileAttributeDescriptionFormat", TextView( mVariable.GetText() ),
        TextView( DisplayName( mAttribute ) ), TextView( kvr_fileName( mPath ) ) );
}

Text AGetFileAttribute::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvFromFileExtraHTMLFormat", mPath.GetText() );
}

// Set

void ASetFileAttribute::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Attribute", mAttribute );
    inVisitor.Text( "Text", mText );
    inVisitor.Text( "Path", mPath );
}

bool ASetFileAttribute::ChangesTags() const
{
    return mAttribute == FileAttribute::kTagsAdd or mAttribute == FileAttribute::kTagsToggle or
        mAttribute == FileAttribute::kTagsRemove;
}

XText ASetFileAttribute::GetTransformationResult( CalculateError*, float*, bool ) const
{
    return ChangesTags() ? XText() : mText;
}

Text ASetFileAttribute::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    const Text name = kvr_fileName( mPath ), text = kvr_excerpt( mText );
    if ( ChangesTags() )
        return kvr_localizedFormat( kvr_format( "kvSetFileAttribute%@DescriptionFormat", StoredName( mAttribute ) ),
            TextView( text ), TextView( name ) );
    return kvr_localizedFormat( u"kvSetFileAttributeDescriptionFormat", TextView( DisplayName( mAttribute ) ),
        TextView( name ), TextView( text ) );
}

Text ASetFileAttribute::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvFileExtraHTMLFormat", mPath.GetText() );
}
