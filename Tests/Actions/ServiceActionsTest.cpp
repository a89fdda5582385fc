// The actions that control applications, send, ask, are heard, and those of the system: what a table of keys
// and defaults doesn't say of them.
#include "ActionTestSupport.h"
#include "Actions/PromptActions.h"
#include "Utility/Search/StringSearchee.h"

#include <algorithm>

namespace
{
__SafeCFPropertyList Number( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

Text Described( TextView inType, std::initializer_list<PlistEntry> inEntries )
{
    return HBaseAction::CreateFromPropertyList( ActionDict( inType, inEntries ) )->GetActionDescriptionString();
}

struct Vocabulary
{
    TextView mType;
    const char* mKey;
    std::vector<TextView> mNames;
};

// Every name that a file may hold.
const Vocabulary kVocabularies[] = {
    { u"SafariControl", "Command",
        { u"NewWindow", u"NewTab", u"NextTab", u"PreviousTab", u"SelectTab", u"SetTitle", u"WaitForComplete",
            u"SetDocumentURL", u"ClickLink", u"SubmitForm", u"ResetForm", u"FocusField", u"SelectField" } },
    { u"iTunesControl", "Command",
        { u"PlayPause", u"Stop", u"Rewind", u"FastForward", u"Pause", u"NextTrack", u"BackTrack", u"PlayRandomTrack",
            u"PlayNamedTrack", u"PlayNamedPlaylist", u"PlayRandomPlaylistTrack", u"IncreaseVolume", u"DecreaseVolume",
            u"SetVolume", u"IncreaseRating", u"DecreaseRating", u"SetRating" } },
    { u"QuickTimePlayerControl", "Command",
        { u"Play", u"PlayPause", u"Pause", u"StepForward", u"StepBackward", u"IncreaseVolume", u"DecreaseVolume",
            u"SetVolume" } },
    { u"SetMailStatus", "Command", { u"FlagIndex", u"Flagged", u"Read", u"Junk" } },
    { u"MailSendMessage", "Operation", { u"New", u"Reply", u"ReplyAll", u"Forward", u"Redirect" } },
    { u"PromptForFile", "FileType", { u"File", u"Folder", u"NewFile", u"NewFolder" } },
    { u"SpeakText", "Rate", { u"Default", u"Slow", u"Moderate", u"Normal", u"Quick", u"Fast" } },
    { u"SystemAction", "SystemAction",
        { u"Sleep", u"Restart", u"Shutdown", u"LogOut", u"LoginWindow", u"OpenCloseCDROM", u"MuteVolume",
            u"IncreaseVolume", u"IncreaseVolumeQuarter", u"DecreaseVolume", u"DecreaseVolumeQuarter",
            u"IncreaseBrightness", u"IncreaseBrightnessQuarter", u"DecreaseBrightness", u"DecreaseBrightnessQuarter",
            u"ActivateScreenSaver", u"StopScreenSaver", u"SleepDisplay", u"WakeDisplay", u"SystemBeep",
            u"ShowMacroPalette", u"HideMacroPalette", u"ToggleMacroPalette", u"ShowStatusMenu", u"ClearTypedString" } },
    { u"DebuggerAction", "DebuggerAction",
        { u"Start", u"Finish", u"Toggle", u"NewMacrosPaused", u"NewMacrosRun", u"Breakpoint", u"BreakpointOthers",
            u"BreakpointEvery", u"StepOverOthers", u"StepIntoOthers", u"StepOutOthers", u"Continue",
            u"ContinueEvery" } },
    { u"SendMIDIMessage", "MIDIMessageType", { u"NoteOn", u"NoteOff", u"ControlChange", u"Packet" } },
};

constexpr TextView kTypes[] = { u"SetVariableToSafariField", u"SetSafariFieldToText", u"SetSafariCheckbox",
    u"SetSafariRadio", u"SafariControl", u"iTunesControl", u"QuickTimePlayerControl", u"SetMailStatus",
    u"MailSendMessage", u"SendSMS", u"PromptWithList", u"PromptForUserInput", u"PromptForFile", u"CustomPrompt",
    u"SpeakText", u"PlaySound", u"SystemAction", u"DebuggerAction", u"SystemVolume", u"SendMIDIMessage" };
} // namespace

TEST( ServiceActions, EachNameOfAVocabularyIsKeptAndHasADescriptionOfItsOwn )
{
    LogCapture log;
    for ( const auto& [type, key, names] : kVocabularies )
    {
        std::vector<Text> descriptions;
        for ( const TextView name : names )
        {
            const auto action = HBaseAction::CreateFromPropertyList( ActionDict( type, { { key, Str( name ) } } ) );
            EXPECT_EQ( At( Saved( *action ), key ), Str( name ) );
            descriptions.push_back( action->GetActionDescriptionString() );
        }
        std::sort( descriptions.begin(), descriptions.end() );
        EXPECT_EQ( std::unique( descriptions.begin(), descriptions.end() ), descriptions.end() )
            << UTF8FromText( type );
    }
    EXPECT_TRUE( log.Lines().empty() ) << "a key without a text is logged";
}

TEST( ServiceActions, AValueOfAnotherTypeIsTheDefaultAndASavedActionLoadsAsItIs )
{
    for ( const TextView type : kTypes )
    {
        const auto saved = Reloaded( ActionDict( type, { { "PromptUID", Str( u"U" ) } } ) );
        EXPECT_EQ( Reloaded( saved ), saved ) << UTF8FromText( type );
        for ( const auto& entry : saved.AsDictionary()->GetEntries() )
        {
            const std::string key( entry.mKey->ASCII() );
            for ( const auto& wrong : { Str( u"x" ), Number( 7 ), Bool( true ), Dict( {} ) } )
            {
                if ( key == "MacroActionType" or key == "PromptUID" or
                    wrong.GetType() == __SafeCFPropertyList( entry.mValue ).GetType() )
                    continue;
                EXPECT_EQ( Reloaded( With( saved, key, wrong ) ), saved ) << UTF8FromText( type ) << " " << key;
            }
        }
    }
}

TEST( ServiceActions, DescriptionsReadAsSentences )
{
    const struct
    {
        Text mDescription;
        const char* mExpected;
    } kCases[] = {
        { Described( u"SetVariableToSafariField", {} ),
            "Set Variable “VarName” to Safari Field “document.forms[0][0]”" },
        { Described( u"SetSafariFieldToText", { { "Text", Str( u"a\nb" ) }, { "Field", Str( u"f" ) } } ),
            "Set Safari Field “f” to Text “a b”" },
        { Described( u"SetSafariCheckbox", { { "Field", Str( u"f" ) } } ), "Set Safari Checkbox “f” to 1" },
        { Described( u"SafariControl", { { "Command", Str( u"SubmitForm" ) } } ), "Submit Safari Form" },
        { Described( u"SafariControl", { { "Command", Str( u"SubmitForm" ) }, { "Argument", Str( u"login" ) } } ),
            "Submit Safari Form “login”" },
        { Described( u"SafariControl", { { "Command", Str( u"NextTab" ) }, { "Argument", Str( u"unused" ) } } ),
            "Select the Next Safari Tab" },
        { Described( u"iTunesControl", { { "Command", Str( u"PlayNamedTrack" ) }, { "Argument", Str( u"100%" ) } } ),
            "Play Track “100%” in Music" },
        { Described( u"MailSendMessage",
              { { "To", Str( u"a@example.org" ) }, { "SendNow", Bool( true ) }, { "Subject", Str( u"Hi" ) } } ),
            "Send a New Mail Message to “a@example.org” with the Subject “Hi”" },
        { Described( u"MailSendMessage", { { "Operation", Str( u"ReplyAll" ) }, { "To", Str( u"unused" ) } } ),
            "Compose a Reply to Everyone in the Selected Mail Message" },
        { Described(
              u"SendSMS", { { "To", Str( u"Ann" ) }, { "Content", Str( u"Hi" ) }, { "SendiMessage", Bool( true ) } } ),
            "Send iMessage “Hi” to “Ann”" },
        { Described( u"PromptWithList", { { "Source", Str( u"Variable" ) }, { "Variable", Str( u"List" ) } } ),
            "Prompt with a List from Variable “List”" },
        { Described( u"PromptForUserInput", {} ), "Prompt “Untitled” for User Input" },
        { Described( u"PromptForUserInput", { { "Title", Str( u"" ) } } ), "Prompt for User Input" },
        { Described( u"CustomPrompt", { { "Path", Str( u"~/a/form.html" ) } } ),
            "Prompt with HTML from File “form.html”" },
        { Described(
              u"SpeakText", { { "Text", Str( u"Hi" ) }, { "Voice", Str( u"Alex" ) }, { "Rate", Str( u"Slow" ) } } ),
            "Speak Text “Hi” with Voice “Alex” Slowly" },
        { Described( u"PlaySound", { { "Path", Str( u"/S/Ping.aiff" ) }, { "Volume", Number( 40 ) } } ),
            "Play Sound “Ping.aiff” at 40% Volume" },
        { Described( u"SystemVolume", {} ), "Set the System Volume to 100%" },
        { Described( u"SendMIDIMessage", { { "Note", Number( 64 ) } } ),
            "Send MIDI Note On 64 with Velocity 63 on Channel 1" },
    };
    for ( const auto& [description, expected] : kCases )
        EXPECT_EQ( UTF8FromText( description ), expected );
}

TEST( ServiceActions, LinesUnderATitleAreSafeForAPageAndEachEndsWithABreak )
{
    const auto extra = []( TextView inType, std::initializer_list<PlistEntry> inEntries ) {
        return UTF8FromText(
            HBaseAction::CreateFromPropertyList( ActionDict( inType, inEntries ) )->GetActionExtraHTML() );
    };
    const struct
    {
        std::string mHTML;
        const char* mExpected;
    } kCases[] = {
        { extra( u"PlaySound", {} ), "Out the&#32;default&#32;device at 100% volume.<br />" },
        { extra( u"PlaySound", { { "DeviceID", Str( u"<A & B>" ) }, { "Volume", Number( 5 ) } } ),
            "Out &lt;A&#32;&amp;&#32;B&gt; at 5% volume.<br />" },
        { extra( u"MailSendMessage", {} ), "" },
        { extra( u"MailSendMessage", { { "Bcc", Str( u"<b>" ) }, { "Content", Str( u"x\ny" ) } } ),
            "Bcc: &lt;b&gt;<br />Content: x&#32;y<br />" },
        { extra( u"PromptWithList", { { "Sort", Bool( true ) } } ), "Sort the list.<br />" },
        { extra( u"CustomPrompt", { { "Path", Str( u"/a" ) }, { "UseText", Bool( true ) } } ), "" },
        { extra( u"CustomPrompt", { { "Path", Str( u"/a" ) } } ), "File: &#47;a<br />" },
    };
    for ( const auto& [html, expected] : kCases )
        EXPECT_EQ( html, expected );
}

TEST( ServiceActions, OlderNumbersOfMIDIBecomeTextsUnlessATextIsThere )
{
    const struct
    {
        __SafeCFPropertyList mText, mNumber;
        TextView mRead;
    } kCases[] = {
        { nullptr, Number( 12 ), u"12" },
        { nullptr, __SafeCFPropertyList::Real( 2.5 ), u"2.5" },
        { Str( u"N" ), Number( 12 ), u"N" },
        { Number( 3 ), Number( 12 ), u"12" },
        { nullptr, Bool( true ), u"60" },
    };
    for ( const auto& [text, number, read] : kCases )
    {
        const auto stored = With( With( ActionDict( u"SendMIDIMessage" ), "NoteExpression", text ), "Note", number );
        EXPECT_EQ( At( Reloaded( stored ), "NoteExpression" ), Str( read ) );
        EXPECT_FALSE( At( Reloaded( stored ), "Note" ) );
    }
}

TEST( ServiceActions, APromptKeepsItsUIDUntilItIsPasted )
{
    const auto stored = ActionDict( u"PromptWithList", { { "PromptUID", Str( u"A-UID" ) } } );
    const auto action = HBaseAction::CreateFromPropertyList( stored );
    EXPECT_EQ( At( Saved( *action->Clone() ), "PromptUID" ), Str( u"A-UID" ) );
    action->UpdateForPasteOrAdd();
    const XText pasted = static_cast<const APromptWithList&>( *action ).GetPromptUID();
    EXPECT_FALSE( pasted.Equals( TextView( u"A-UID" ) ) );
    EXPECT_EQ( pasted.GetLength(), 36u );

    for ( const auto& none : { Str( u"" ), Number( 1 ), __SafeCFPropertyList() } )
    {
        const auto first = Reloaded( With( stored, "PromptUID", none ) );
        const auto second = Reloaded( With( stored, "PromptUID", none ) );
        EXPECT_EQ( At( first, "PromptUID" ).AsString()->GetLength(), 36u );
        EXPECT_NE( At( first, "PromptUID" ), At( second, "PromptUID" ) );
    }
}

TEST( ServiceActions, WhatAPromptKeepsAsItStandsComesBackAndIsFound )
{
    __SafeCFPropertyList nested = Str( u"deepest" );
    for ( int i = 0; i < 400; ++i )
        nested = Array( { nested } );
    const auto variables =
        Array( { Dict( { { "Name", Str( u"Zebra" ) }, { "Default", Str( u"stripes" ) }, { "Width", Number( 3 ) } } ),
            nested } );
    const auto stored = ActionDict(
        u"PromptForUserInput", { { "Variables", variables }, { "Buttons", Array( { Str( u"Saddle Up" ) } ) } } );
    EXPECT_EQ( At( Reloaded( stored ), "Variables" ), variables );
    StringSearchee searchee;
    HBaseAction::CreateFromPropertyList( stored )->AddMatchStrings( searchee );
    for ( const TextView word : { u"Zebra", u"stripes", u"Saddle Up", u"deepest" } )
    {
        const auto elements = searchee.GetElements();
        EXPECT_TRUE( std::any_of( elements.begin(), elements.end(), [&]( const auto& e ) { return e.mText == word; } ) )
            << UTF8FromText( word );
    }
}
