#include "Actions/FileActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

namespace
{
Text FileHTML( const XText& inPath )
{
    return kvr_extraHTMLLine( u"kvFileExtraHTMLFormat", inPath.GetText() );
}

// A variable or text, named as where other texts come from and go to.
Text PlaceDescription( TextView inStoredName, TextView inValue )
{
    return kvr_localizedFormat( kvr_format( "kvActionTextSource%@Description", inStoredName ), inValue );
}
} // namespace

// Move, copy, delete

void AFile::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Operation", mOperation );
    inVisitor.Text( "Source", mSource );
    inVisitor.Text( "Destination", mDestination );
}

bool AFile::NeedsDestination() const
{
    return mOperation == FileOperation::kMove or mOperation == FileOperation::kCopy;
}

Text AFile::InternalGetActionDescriptionString() const
{
    const TextView operation = StoredName( mOperation );
    if ( mSource.IsEmpty() or ( NeedsDestination() and mDestination.IsEmpty() ) )
        return kvr_localized( kvr_format( "kvFile%@Title", operation ) );
    return kvr_localizedFormat( kvr_format( "kvFile%@DescriptionFormat", operation ),
        TextView( kvr_fileName( mSource ) ), TextView( mDestination.GetText() ) );
}

Text AFile::GetActionExtraHTML() const
{
    return FileHTML( mSource );
}

// Read

void AReadFile::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Destination", mDestination );
    if ( mDestination == ReadFileDestination::kNamedClipboard )
        DescribeClipboard( inVisitor, "Name", "RedundandDisplayName", mClipboard ); // "Redundand" as stored
    inVisitor.Text( "Source", mSource );
    inVisitor.Variable( "Variable", mVariable );
}

void AReadFile::UpdateToDefaultValues( bool inForce )
{
    if ( mDestination == ReadFileDestination::kNamedClipboard )
        mClipboard.UpdateClipboardReference( inForce );
}

Text AReadFile::InternalGetActionDescriptionString() const
{
    if ( mSource.IsEmpty() )
        return GetActionTitle();
    const TextView destination = StoredName( mDestination );
    const Text place = mDestination == ReadFileDestination::kVariable
        ? PlaceDescription( destination, mVariable.GetText() )
        : PlaceDescription( destination, mClipboard.GetClipboardName().GetText() );
    return kvr_localizedFormat(
        u"kvReadFileDescriptionFormat", TextView( kvr_fileName( mSource ) ), TextView( place ) );
}

Text AReadFile::GetActionExtraHTML() const
{
    return FileHTML( mSource );
}

// Write

void AWriteFile::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Source", mSource );
    DescribeFormat( inVisitor );
    inVisitor.Name( "Encoding", mEncoding );
    inVisitor.Text( "Destination", mDestination );
    inVisitor.Boolean( "Append", mAppend );
    if ( mSource == WriteFileSource::kNamedClipboard )
        DescribeClipboard( inVisitor, "Name", "RedundandDisplayName", mClipboard ); // "Redundand" as stored
    mText.DescribeFields( inVisitor, "Text", "StyledText" );
    inVisitor.Variable( "Variable", mVariable );
}

// The older key stands in for the newer one when that is missing or has no name that is known. Its table was in
// another order, but held the same names.
void AWriteFile::DescribeFormat( HFieldVisitor& inVisitor )
{
    WriteFileFormat older = mFormat;
    if ( inVisitor.IsReading() and inVisitor.HasKey( "Format" ) )
    {
        inVisitor.Name( "Format", older );
        if ( not inVisitor.HasKey( "Format2" ) )
            inVisitor.NoteOlderKey( "Format", "Format2" );
    }
    inVisitor.Name( "Format2", mFormat, { .mWhenMissing = older } );
}

void AWriteFile::UpdateToDefaultValues( bool inForce )
{
    if ( mSource == WriteFileSource::kNamedClipboard )
        mClipboard.UpdateClipboardReference( inForce );
}

Text AWriteFile::GetSourceDescription() const
{
    switch ( mSource )
    {
    case WriteFileSource::kStyledText:
        return kvr_localizedFormat(
            u"kvWriteFileStyledTextDescriptionFormat", TextView( kvr_excerpt( mText.GetText() ) ) );
    case WriteFileSource::kText:
        return PlaceDescription( StoredName( mSource ), kvr_excerpt( mText.GetText() ) );
    case WriteFileSource::kVariable:
        return PlaceDescription( StoredName( mSource ), mVariable.GetText() );
    default:
        return PlaceDescription( StoredName( mSource ), mClipboard.GetClipboardName().GetText() );
    }
}

Text AWriteFile::InternalGetActionDescriptionString() const
{
    if ( mDestination.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( mAppend ? u"kvWriteFileAppendDescriptionFormat" : u"kvWriteFileDescriptionFormat",
        TextView( GetSourceDescription() ), TextView( kvr_fileName( mDestination ) ) );
}

Text AWriteFile::GetActionExtraHTML() const
{
    return FileHTML( mDestination );
}

// Icon

void ASetFileIcon::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    mImage.DescribeFields( inVisitor );
}

void ASetFileIcon::UpdateToDefaultValues( bool inForce )
{
    mImage.UpdateToDefaultValues( inForce );
}

Text ASetFileIcon::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat(
        u"kvSetFileIconDescriptionFormat", TextView( kvr_fileName( mPath ) ), TextView( mImage.GetDescription() ) );
}

Text ASetFileIcon::GetActionExtraHTML() const
{
    return FileHTML( mPath );
}

// Folder

void ANewFolder::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Destination", mDestination );
    inVisitor.Boolean( "CreateIntermediate", mCreateIntermediate );
}

Text ANewFolder::InternalGetActionDescriptionString() const
{
    if ( mDestination.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvNewFolderDescriptionFormat", TextView( mDestination.GetText() ) );
}

Text ANewFolder::GetActionExtraHTML() const
{
    return kvr_extraHTMLLineIf( mCreateIntermediate, u"kvNewFolderCreateIntermediateExtraHTML" );
}

// Path

void ASplitPath::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    inVisitor.Variable( "Parent", mParent );
    inVisitor.Variable( "FileName", mFileName );
    inVisitor.Variable( "BaseName", mBaseName );
    inVisitor.Variable( "Extension", mExtension );
    inVisitor.Boolean( "AbbreviateWithTilda", mAbbreviateWithTilde ); // as stored
}

Text ASplitPath::InternalGetActionDescriptionString() const
{
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvSplitPathDescriptionFormat", TextView( mPath.GetText() ) );
}

Text ASplitPath::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvSplitPathParentExtraHTMLFormat", mParent.GetText() ) +
        kvr_extraHTMLLine( u"kvSplitPathFileNameExtraHTMLFormat", mFileName.GetText() ) +
        kvr_extraHTMLLine( u"kvSplitPathBaseNameExtraHTMLFormat", mBaseName.GetText() ) +
        kvr_extraHTMLLine( u"kvSplitPathExtensionExtraHTMLFormat", mExtension.GetText() );
}
