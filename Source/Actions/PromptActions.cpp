#include "Actions/PromptActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/Random.h"

// Prompt with List

APromptWithList::APromptWithList() : mPromptUID( uuidString() ) {}

void APromptWithList::DescribeFields( HFieldVisitor& inVisitor )
{
    mSource.DescribeFields( inVisitor );
    if ( not inVisitor.Searchee() ) // no words of the user's
        inVisitor.Text( "PromptUID", mPromptUID );
    if ( inVisitor.IsReading() and mPromptUID.IsEmpty() )
    {
        mPromptUID = uuidString();
        inVisitor.NoteRepair( "PromptUID", u"is empty; the prompt gets a new one", MLoadRule::kUIDAdded );
    }
    inVisitor.Text( "WindowTitle", mWindowTitle );
    inVisitor.Text( "InitialSearch", mInitialSearch );
    inVisitor.Name( "WindowWidth", mWindowWidth );
    inVisitor.Boolean( "AllowMultiple", mAllowMultiple );
    inVisitor.Boolean( "Sort", mSort );
}

void APromptWithList::UpdateForPasteOrAdd()
{
    mPromptUID = uuidString();
}

Text APromptWithList::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvPromptWithListInitialSearchExtraHTMLFormat", mInitialSearch.GetText() ) +
        kvr_extraHTMLLineIf( mAllowMultiple, u"kvPromptWithListAllowMultipleExtraHTML" ) +
        kvr_extraHTMLLineIf( mSort, u"kvPromptWithListSortExtraHTML" );
}

Text APromptWithList::InternalGetActionDescriptionString() const
{
    const Text source = mSource.GetActionDescriptionString();
    if ( mWindowTitle.IsEmpty() )
        return kvr_localizedFormat( u"kvPromptWithListDescriptionFormat", TextView( source ) );
    return kvr_localizedFormat(
        u"kvPromptWithListTitledDescriptionFormat", TextView( kvr_excerpt( mWindowTitle ) ), TextView( source ) );
}

// Prompt for User Input

void APromptForUserInput::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Title", mTitle );
    inVisitor.Text( "Prompt", mPrompt );
    inVisitor.Value( "Variables", mVariables, { .mIsSearched = true } );
    inVisitor.Value( "Buttons", mButtons, { .mIsSearched = true } );
}

Text APromptForUserInput::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvPromptForUserInputPromptExtraHTMLFormat", kvr_excerpt( mPrompt ) );
}

Text APromptForUserInput::InternalGetActionDescriptionString() const
{
    if ( mTitle.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvPromptForUserInputDescriptionFormat", TextView( kvr_excerpt( mTitle ) ) );
}

// Prompt for File

void APromptForFile::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "FileType", mFileType );
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Text( "Parameter", mParameter );
    inVisitor.Text( "WindowTitle", mWindowTitle );
    inVisitor.Text( "Location", mLocation );
}

Text APromptForFile::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvPromptForFileParameterExtraHTMLFormat", kvr_excerpt( mParameter ) ) +
        kvr_extraHTMLLine( u"kvPromptForFileLocationExtraHTMLFormat", mLocation.GetText() );
}

Text APromptForFile::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvPromptForFile%@DescriptionFormat", StoredName( mFileType ) ), TextView( mVariable.GetText() ) );
}

// Custom Prompt

void ACustomPrompt::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "UseText", mUseText );
    inVisitor.Boolean( "Floating", mFloating );
    inVisitor.Boolean( "Asynchronously", mAsynchronously );
    inVisitor.Boolean( "Resizable", mResizable );
    inVisitor.Text( "Text", mText );
    inVisitor.Text( "Path", mPath );
}

Text ACustomPrompt::GetActionExtraHTML() const
{
    return kvr_extraHTMLLine( u"kvFileExtraHTMLFormat", mUseText ? Text() : mPath.GetText() ) +
        kvr_extraHTMLLineIf( mAsynchronously, u"kvCustomPromptAsynchronouslyExtraHTML" );
}

Text ACustomPrompt::InternalGetActionDescriptionString() const
{
    if ( mUseText )
        return kvr_localizedFormat( u"kvCustomPromptTextDescriptionFormat", TextView( kvr_excerpt( mText ) ) );
    if ( mPath.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvCustomPromptFileDescriptionFormat", TextView( kvr_fileName( mPath ) ) );
}
