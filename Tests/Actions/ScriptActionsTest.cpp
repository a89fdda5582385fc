// What is opened, got from the web and executed: what the catalogue of keys can't show.
#include "ActionTestSupport.h"

#include "Actions/ActionCreation.h"
#include "ClipboardSwitcher/ClipboardReference.h"
#include "Tests/Support/ScratchFolder.h"

namespace
{
class Notes final : public MLoadObserver
{
public:
    explicit Notes( const __SafeCFPropertyList& inAction )
    {
        const Scope scope( *this );
        mAction = HBaseAction::CreateFromPropertyList( inAction );
    }
    void DidDrop( const XPlistArray&, std::size_t, TextView ) override {}
    void DidReadOlderKey( const XPlistDictionary&, const XKey& inOlder, const XKey& inCurrent ) override
    {
        mText += std::string( inOlder.Name() ) + ">" + std::string( inCurrent.Name() ) + ";";
    }
    void DidUpgradeType( const XPlistDictionary&, TextView, TextView ) override {}
    void DidRepair( const XPlistDictionary&, const XKey& inKey, MLoadRule, TextView ) override
    {
        mText += "repaired " + std::string( inKey.Name() ) + ";";
    }
    void DidUpgradeValue( const XPlistDictionary&, const XKey& inKey, TextView ) override
    {
        mText += "upgraded " + std::string( inKey.Name() ) + ";";
    }
    void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

    std::string mText;
    std::unique_ptr<HBaseAction> mAction;
};

__SafeCFPropertyList App( TextView inName )
{
    return Dict( { { "Name", Str( inName ) } } );
}

const __SafeCFPropertyList kData = __SafeCFPropertyList( XPlistData::Make( std::vector<std::uint8_t>{ 1, 2 } ) );
} // namespace

TEST( ScriptActions, DescriptionsTellWhatRunsAndWhatBecomesOfTheResult )
{
    const struct
    {
        __SafeCFPropertyList mAction;
        const char* mDescription;
    } kCases[] = {
        { ActionDict( u"ExecuteShellScript",
              { { "UseText", Bool( true ) }, { "Path", Str( u"/old.sh" ) }, { "Text", Str( u"ls" ) },
                  { "DisplayKind", Str( u"Variable" ) }, { "Variable", Str( u"Out" ) } } ),
            "Execute Shell Script and Save to Variable “Out”" },
        { ActionDict(
              u"ExecuteAppleScript", { { "Path", Str( u"~/a b.scpt" ) }, { "DisplayKind", Str( u"Window" ) } } ),
            "Execute AppleScript “a b.scpt” and Display in a Window" },
        { ActionDict( u"ExecuteSwift" ), "Execute Swift Script" },
        { ActionDict( u"ExecuteWorkflow", { { "Path", Str( u"~/Backup.workflow" ) } } ),
            "Execute Workflow “Backup.workflow”" },
        { ActionDict( u"ExecuteJavaScriptForCustomPrompt", { { "WindowID", Str( u"W1" ) } } ),
            "Execute JavaScript in Custom Prompt “W1”" },
        { ActionDict( u"GetURL", { { "URL", Str( u"https://a.b" ) }, { "DisplayKind", Str( u"Clipboard" ) } } ),
            "Get URL “https://a.b” and Save to the System Clipboard" },
        { ActionDict( u"GetURL", { { "RemoteTrigger", Str( u"door" ) } } ), "Get URL of Remote Trigger “door”" },
        { ActionDict( u"GetURL" ), "Get a URL" },
        { ActionDict( u"Search", { { "Title", Str( u"Dictionary" ) }, { "URL", Str( u"https://d" ) } } ),
            "Search the Web with “Dictionary”" },
        { ActionDict( u"Open1File", { { "Path", Str( u"~/a.txt" ) } } ), "Open “a.txt”" },
        { ActionDict( u"Open1File", { { "Path", Str( u"~/a.txt" ) }, { "Application", App( u"Notes" ) } } ),
            "Open “a.txt” with “Notes”" },
        { ActionDict( u"OpenURL", { { "URL", Str( u"" ) } } ), "Open URL" },
        { ActionDict( u"OpenFinderSelection" ), "Open Finder Selection with the Front Application" },
        { ActionDict( u"SystemPrefPane", { { "NewFile", Str( u"/P/Displays.prefPane" ) } } ),
            "Open System Preference Pane “Displays”" },
        { ActionDict( u"Open1Password" ), "Open 1Password Item" },
    };
    for ( const auto& [action, description] : kCases )
        EXPECT_EQ( Described( action ), description );
}

TEST( ScriptActions, OlderKeysAreToldOfAndReadOnceOnly )
{
    const struct
    {
        __SafeCFPropertyList mRead;
        const char* mKey;
        __SafeCFPropertyList mValue;
        const char* mNotes;
    } kCases[] = {
        { ActionDict( u"ExecuteWorkflow", { { "NewFile", Str( u"/w" ) } } ), "Path", Str( u"/w" ), "NewFile>Path;" },
        { ActionDict( u"ExecuteWorkflow", { { "NewFile", kData } } ), "Path", Str( u"" ), "repaired NewFile;" },
        { ActionDict( u"ExecuteWorkflow", { { "NewFile", kData }, { "Path", Str( u"" ) } } ), "Path", Str( u"" ), "" },
        { ActionDict( u"ExecuteShellScript", { { "TrimResults", Bool( false ) } } ), "TrimResultsNew", Bool( false ),
            "TrimResults>TrimResultsNew;" },
        { ActionDict( u"GetURL", { { "TrimResults", Bool( false ) } } ), "TrimResults", Bool( false ), "" },
        { ActionDict( u"WriteFile", { { "Format", Str( u"WordML" ) } } ), "Format2", Str( u"WordML" ),
            "Format>Format2;" },
        { ActionDict( u"WriteFile", { { "Format", Str( u"WordML" ) }, { "Format2", Str( u"GIF" ) } } ), "Format2",
            Str( u"GIF" ), "" },
        { ActionDict( u"ProgramSwitcher", { { "SortOrder", Str( u"ByUse" ) } } ), "SortOrder", Str( u"SortByUse" ),
            "upgraded SortOrder;" },
        { ActionDict( u"SetDesktopImage", { { "ScreenArea", Str( u"Main" ) } } ), "Path", Str( u"" ),
            "repaired ScreenArea;" },
        { ActionDict( u"OpenFinderSelection", { { "Application", App( u"Notes" ) } } ), "TargetApplication",
            App( u"Notes" ), "Application>TargetApplication;" },
        // What the file says beside the front application is there for whoever chooses it again.
        { ActionDict( u"OpenFinderSelection",
              { { "IsCurrentApplication", Bool( true ) }, { "Application", App( u"Notes" ) } } ),
            "TargetApplication", App( u"Notes" ), "IsCurrentApplication>TargetingType;Application>TargetApplication;" },
        { ActionDict( u"OpenFinderSelection",
              { { "IsCurrentApplication", Bool( false ) }, { "TargetingType", Str( u"Front" ) } } ),
            "TargetingType", Str( u"Front" ), "" },
    };
    for ( const auto& [read, key, value, notes] : kCases )
    {
        const Notes loaded( read );
        const auto saved = Saved( *loaded.mAction );
        EXPECT_EQ( At( saved, key ), value ) << Shown( read );
        EXPECT_EQ( loaded.mText, notes ) << Shown( read );
        EXPECT_EQ( Notes( saved ).mText, "" ) << Shown( saved );
    }
}

TEST( ScriptActions, ClipboardsThatARefreshReachesFollowTheStore )
{
    class Renamed final : public ClipboardNames
    {
    public:
        Renamed() { SetCurrent( this ); }
        ~Renamed() override { SetCurrent( nullptr ); }
        std::optional<Text> StrictGetClipboardNameByUID( TextView inUID ) const override
        {
            return inUID == u"U" ? std::optional( Text( u"New" ) ) : std::nullopt;
        }
        std::optional<Text> GetClipboardUIDByName( TextView ) const override { return {}; }
        Text GetOrCreateClipboard( TextView, TextView inUID ) override { return Text( inUID ); }
    };
    const struct
    {
        __SafeCFPropertyList mAction;
        const char* mNameKey;
    } kCases[] = {
        { ActionDict( u"ExecuteShellScript",
              { { "Source", Str( u"NamedClipboard" ) }, { "SourceNamedClipboardName", Str( u"U" ) } } ),
            "SourceRedundandDisplayName" },
        { ActionDict( u"GetURL",
              { { "DisplayKind", Str( u"Clipboard" ) }, { "ClipboardTargetUseNamedClipboard", Bool( true ) },
                  { "ClipboardTargetNamedClipboardUID", Str( u"U" ) } } ),
            "ClipboardTargetNamedClipboardRedundantDisplayName" },
        { ActionDict( u"ReadFile", { { "Destination", Str( u"NamedClipboard" ) }, { "Name", Str( u"U" ) } } ),
            "RedundandDisplayName" },
        { ActionDict( u"WriteFile", { { "Source", Str( u"NamedClipboard" ) }, { "Name", Str( u"U" ) } } ),
            "RedundandDisplayName" },
        { ActionDict( u"SetFileIcon",
              { { "ImageSource", Str( u"NamedClipboard" ) }, { "ImageNamedClipboardName", Str( u"U" ) } } ),
            "ImageNamedClipboardRedundandDisplayName" },
    };
    for ( const auto& [dictionary, nameKey] : kCases )
    {
        const auto action = HBaseAction::CreateFromPropertyList( With( dictionary, nameKey, Str( u"Old" ) ) );
        EXPECT_EQ( At( Saved( *action ), nameKey ), Str( u"Old" ) );
        {
            Renamed store;
            action->UpdateToDefaultValues( false );
        }
        // Without the store again, so that it is the action that says the new name and not its saving.
        EXPECT_EQ( At( Saved( *action ), nameKey ), Str( u"New" ) ) << nameKey;
    }
}

TEST( ScriptActions, WhatIsDroppedKnowsItsApplicationOrScript )
{
    const ScratchFolder folder;
    std::filesystem::create_directories( folder.Path() / "Known.app" / "Contents" );
    folder.Write( "Known.app/Contents/Info.plist",
        UTF8FromText( *kvr_toXMLString( Dict( { { "CFBundleIdentifier", Str( u"com.example.known" ) } } ) ) ) );
    Text title;
    EXPECT_EQ( At( Saved( *CreateActionForDraggedPath( folder / "Known.app", title ) ), "Application" ),
        Dict( { { "Name", Str( u"Known" ) }, { "BundleIdentifier", Str( u"com.example.known" ) } } ) );
    const auto script = Saved( *CreateActionForDraggedPath( "/none/a.py", title ) );
    EXPECT_EQ( At( script, "Path" ), Str( u"/none/a.py" ) );
    EXPECT_EQ( At( script, "UseText" ), Bool( false ) );
    const auto open = Saved( *CreateActionForDraggedPath( folder.Path(), title ) );
    EXPECT_EQ( At( open, "IsDefaultApplication" ), Bool( false ) );
    EXPECT_EQ( At( At( open, "Application" ), "BundleIdentifier" ), Str( u"com.apple.finder" ) );
}
