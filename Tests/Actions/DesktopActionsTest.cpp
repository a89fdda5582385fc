// The actions of macros, palettes, keyboard, mouse, windows, images, screen and key decks: files with every key, damaged
// keys, older keys and what is only written sometimes.
#include "ActionTestSupport.h"

#include "Tests/ClipboardSwitcher/FakeClipboardNames.h"
#include "Tests/Macros/MacroFixtures.h"

namespace
{
__SafeCFPropertyList Bytes( std::initializer_list<std::uint8_t> inBytes )
{
    return XPlistData::Make( std::span( inBytes.begin(), inBytes.size() ) );
}

const PlistEntry kSpecific = { "TargetingType", Str( u"Specific" ) };
const PlistEntry kFinder = { "TargetApplication",
    Dict( { { "Name", Str( u"Finder" ) }, { "BundleIdentifier", Str( u"com.apple.finder" ) } } ) };

__SafeCFPropertyList Area()
{
    return Dict( { { "ScreenAreaType", Str( u"WindowNameMatching" ) }, { "WindowName", Str( u"^Doc" ) },
        { "IndexExpression", Str( u"7" ) }, { "LeftExpression", Str( u"1" ) }, { "TopExpression", Str( u"2" ) },
        { "WidthExpression", Str( u"3" ) }, { "HeightExpression", Str( u"4" ) } } );
}

// An action with every key of its type at another value than the default.
__SafeCFPropertyList Full( TextView inType, std::initializer_list<PlistEntry> inEntries )
{
    const auto action = ActionDict( inType, inEntries );
    return HBaseAction::CreateFromPropertyList( ActionDict( inType ) )->HasTimeOut()
        ? With( action, "TimeOutAbortsMacro", Bool( true ) )
        : action;
}

// The target that most images have.
const PlistEntry kTriggerTarget = { "TargetUseTriggerClipboard", Bool( true ) };

std::vector<__SafeCFPropertyList> FullActions()
{
    const auto frame = []( TextView inType, PlistEntry inFirst, std::initializer_list<PlistEntry> inMore ) {
        auto action = Full( inType,
            { inFirst, kTriggerTarget, { "Left", Str( u"1" ) }, { "Top", Str( u"2" ) }, { "Width", Str( u"3" ) },
                { "Height", Str( u"4" ) } } );
        for ( const auto& [key, value] : inMore )
            action = With( action, key, value );
        return action;
    };
    const auto fuzzy = Str( u"Bottom" );
    return {
        Full( u"ShowPaletteOfMacros",
            { { "Macros", Array( { Str( u"A" ), Str( u"B" ) } ) }, { "Allowed", Str( u"IncludeDisabled" ) },
                { "IncludeInTouchBar", Bool( true ) } } ),
        Full( u"GetTouchBarSelection",
            { { "Buttons", Str( u"One|Two" ) }, { "DisplayKind", Str( u"AppendVar" ) }, { "Variable", Str( u"v" ) } } ),
        Full( u"GetTouchBarSelection",
            { { "Buttons", Str( u"One" ) }, { "DisplayKind", Str( u"Clipboard" ) },
                { "ClipboardTargetUseTriggerClipboard", Bool( true ) } } ),
        Full( u"OCRImage",
            { { "Language", Str( u"deu" ) }, { "ImageSource", Str( u"File" ) }, { "ImagePath", Str( u"~/a.png" ) },
                { "DisplayKind", Str( u"Variable" ) }, { "Variable", Str( u"v" ) } } ),
        Full( u"MarkMacro", { { "MacroUID", Str( u"M" ) }, { "MacroAction", Str( u"Toggle" ) } } ),
        Full( u"SetMacroEnable", { { "MacroUID", Str( u"M" ) }, { "Action", Str( u"Disable" ) } } ),
        Full( u"MacroGroupToggle",
            { { "MacroGroupUID", Str( u"G" ) }, { "ToggleMode", Str( u"Once" ) }, { "DisplayToggle", Bool( true ) } } ),
        Full( u"ConcealMacroPalettes", { { "Action", Str( u"ConcealUntilAppSwitch" ) } } ),
        Full( u"ApplicationsPaletteToggle", { { "Action", Str( u"Hide" ) } } ),
        Full( u"SetFindPasteboard", { { "Text", Str( u"needle" ) } } ),
        Full( u"SetNetworkLocation", { { "NetworkLocation", Str( u"Home" ) } } ),
        Full( u"FastUserSwitch", { { "UserName", Str( u"ann" ) } } ),
        Full( u"SetKeyboardLayout",
            { { "KeyboardLayoutID", Str( u"layout.us" ) }, { "KeyboardLayoutName", Str( u"U.S." ) } } ),
        Full( u"QuickMacro",
            { { "KeyCode", Int( 12 ) }, { "Modifiers", Int( 256 ) }, { "EnableRepeat", Bool( true ) },
                { "AddToMacroPalette", Bool( true ) }, { "AddToStatusMenu", Bool( true ) },
                { "QuickMacroUID", Str( u"5B2E2E0B-0000-4000-8000-00000000C0DE" ) } } ),
        Full( u"SimulateKeystroke",
            { { "Modifiers", Int( 1 ) }, { "KeyCode", Int( 0 ) }, { "Press", Str( u"Release" ) },
                { "ReleaseAll", Bool( true ) }, kSpecific, kFinder } ),
        Full( u"TriggerMacroByHotKey", { { "Modifiers", Int( 768 ) }, { "KeyCode", Int( 5 ) } } ),
        Full( u"SimulateModifiers", { { "Modifiers", Int( 1024 ) }, { "Press", Str( u"PressAndHold" ) } } ),
        Full( u"SimulateHardwareKey",
            { { "HardwareKey", Str( u"VIDMIRROR" ) }, { "Press", Str( u"PressAndRepeat" ) },
                { "Modifiers", Int( 512 ) } } ),
        Full( u"MouseMoveAndClick",
            { { "Action", Str( u"Click" ) }, { "ClickCount", Int( 2 ) }, { "Button", Int( 1 ) },
                { "Relative", Str( u"Image" ) }, { "RelativeCorner", Str( u"Center" ) }, { "ScreenArea", Area() },
                { "HorizontalPositionExpression", Str( u"5" ) }, { "VerticalPositionExpression", Str( u"6" ) },
                { "Modifiers", Int( 256 ) }, { "MouseDrag", Str( u"To" ) }, { "DragHorizontalPosition", Str( u"7" ) },
                { "DragVerticalPosition", Str( u"8" ) }, { "RestoreMouseLocation", Bool( true ) },
                { "ImageSource", Str( u"SystemClipboard" ) }, { "ImageSelection", fuzzy }, { "Fuzz", Int( 3 ) },
                { "DisplayMatches", Bool( true ) } } ),
        Full( u"ScrollWheelEvent",
            { { "ScrollDirection", Str( u"Left" ) }, { "ScrollAmountExpression", Str( u"1+2" ) } } ),
        Full( u"SelectMenuItem", { kSpecific, kFinder, { "Menu", Array( { Str( u"File" ), Str( u"Save" ) } ) } } ),
        Full( u"PressButton", { { "ButtonName", Str( u"OK" ) } } ),
        Full( u"DarkMode", { { "DarkModeAction", Str( u"KVToggle" ) } } ),
        Full( u"ManipulateWindow",
            { { "Targeting", Str( u"WindowNameMatching" ) }, { "Action", Str( u"UnminimizeWindow" ) },
                { "WindowName", Str( u".*" ) }, { "HorizontalExpression", Str( u"1" ) },
                { "VerticalExpression", Str( u"2" ) }, { "WidthExpression", Str( u"3" ) },
                { "HeightExpression", Str( u"4" ) }, { "WindowIndexExpression", Str( u"5" ) }, kSpecific, kFinder } ),
        Full( u"HiliteLocation",
            { { "Style", Str( u"Target" ) }, { "Left", Str( u"1" ) }, { "Top", Str( u"2" ) }, { "Width", Str( u"3" ) },
                { "Height", Str( u"4" ) }, { "Animate", Bool( true ) }, { "DisplayTime", Str( u"9" ) } } ),
        Full( u"ScreenCapture",
            { { "IncludeShadows", Bool( true ) }, { "AlwaysNominalResolution", Bool( true ) }, { "ScreenArea", Area() },
                { "DestinationUseTriggerClipboard", Bool( true ) }, { "Destination", Str( u"~/a.png" ) } } ),
        Full( u"FindImage",
            { { "Fuzz", Int( 30 ) }, { "Selection", fuzzy }, { "Unique", Bool( true ) }, { "Variable", Str( u"v" ) },
                { "DisplayMatches", Bool( true ) }, { "ScreenArea", Area() }, { "ImageSource", Str( u"Screen" ) },
                { "ImageScreenArea", Area() } } ),
        Full( u"TransformImage",
            { { "TransformAction", Str( u"FreeRotate" ) }, { "Rotation", Str( u"30" ) },
                { "TargetUseNamedClipboard", Bool( true ) }, { "TargetNamedClipboardUID", Str( u"U" ) },
                { "TargetNamedClipboardRedundantDisplayName", Str( u"Mine" ) } } ),
        frame( u"ResizeImage", { "ResizeAction", Str( u"SetDPI" ) }, {} ),
        frame( u"CompositeImage", { "UseText", Bool( true ) },
            { { "SourceUseTriggerClipboard", Bool( true ) }, { "Text", Str( u"t" ) }, { "StyledText", Bytes( { 3 } ) },
                { "ImageSource", Str( u"SystemClipboard" ) } } ),
        frame( u"DrawImage", { "DrawAction", Str( u"Oval" ) },
            { { "Fill", Dict( { { "Any", Int( 1 ) } } ) }, { "Stroke", Bytes( { 4 } ) }, { "Thickness", Str( u"1" ) },
                { "Corner", Str( u"2" ) } } ),
        Full(
            u"GetImageSize", { { "Attribute", Str( u"PixekHeight" ) }, kTriggerTarget, { "Variable", Str( u"v" ) } } ),
        Full( u"TrimImage", { kTriggerTarget } ),
        Full( u"DisplayImage", { kTriggerTarget } ),
        Full( u"NewImage", { kTriggerTarget, { "Width", Str( u"3" ) }, { "Height", Str( u"4" ) } } ),
        Full( u"SetDesktopImage",
            { { "Scaling", Str( u"CenterUnscaled" ) }, { "Path", Str( u"~/a" ) }, { "ScreenArea", Area() } } ),
        Full( u"SetClipboardToImage", { kTriggerTarget, { "ImageSource", Str( u"TriggerClipboard" ) } } ),
        Full( u"StreamDeckShow", { { "ButtonID", Str( u"R2C2" ) }, { "Alert", Bool( true ) } } ),
        Full( u"StreamDeckSetTitle", { { "ButtonID", Str( u"R2C2" ) }, { "Title", Str( u"Hi" ) } } ),
        Full( u"StreamDeckSetImage",
            { { "ButtonID", Str( u"R2C2" ) }, { "FromType", Str( u"Clipboard" ) }, kTriggerTarget,
                { "MacroUID", Str( u"M" ) }, { "Icon", Bytes( { 5 } ) } } ),
    };
}

std::string TypeOf( const __SafeCFPropertyList& inAction )
{
    return At( inAction, "MacroActionType" ).AsString()->GetUTF8();
}

// A value that no field of the value's kind can hold.
__SafeCFPropertyList WrongFor( const __SafeCFPropertyList& inValue )
{
    const bool isContainer = inValue.AsDictionary() or inValue.AsArray();
    return isContainer or inValue.AsString() ? Int( 3 ) : Dict( {} );
}

bool IsOneOf( std::string_view inKey, std::initializer_list<std::string_view> inKeys )
{
    return std::find( inKeys.begin(), inKeys.end(), inKey ) != inKeys.end();
}
} // namespace

TEST( DesktopActions, EveryKeyComesBackThroughLoadingCloningAndSaving )
{
    for ( const auto& full : FullActions() )
    {
        const auto action = HBaseAction::CreateFromPropertyList( full );
        EXPECT_EQ( Saved( *action ), full ) << Shown( Saved( *action ) ) << Shown( full );
        const auto clone = action->Clone();
        EXPECT_EQ( Saved( *clone ), full );
        EXPECT_EQ( action->CompareFields( *clone ), 0 );
    }
}

TEST( DesktopActions, EveryKeyCounts )
{
    for ( const auto& full : FullActions() )
    {
        const std::string type = TypeOf( full );
        const auto plain = Reloaded( ActionDict( TextFromUTF8( type ) ) );
        for ( const std::string& key : KeysOf( full ) )
        {
            // Without them, the key beside them says the same.
            if ( IsOneOf( key, { "MacroActionType", "TimeOutAbortsMacro", "RestoreMouseLocation", "TargetingType" } ) )
                continue;
            EXPECT_NE( At( plain, key ), At( full, key ) ) << type << " " << key;
            EXPECT_NE( Reloaded( With( full, key, nullptr ) ), full ) << type << " " << key;
        }
    }
}

TEST( DesktopActions, AKeyOfAWrongTypeIsAsGoodAsNoneAndHarmsNoOther )
{
    for ( const auto& full : FullActions() )
    {
        const std::string type = TypeOf( full );
        for ( const std::string& key : KeysOf( full ) )
        {
            // Some are kept whatever they hold; and the UID is made anew each time.
            if ( IsOneOf( key, { "MacroActionType", "Menu", "Fill", "Stroke", "Icon", "QuickMacroUID" } ) )
                continue;
            const auto read = Reloaded( With( full, key, WrongFor( At( full, key ) ) ) );
            EXPECT_EQ( Reloaded( read ), read ) << type << " " << key;
            if ( key != "TargetingType" ) // without one, an application beside it decides
            {
                EXPECT_EQ( read, Reloaded( With( full, key, nullptr ) ) ) << type << " " << key;
            }
        }
    }
}

TEST( DesktopActions, OlderNumbersAreReadAsTextsAndNotWrittenAgain )
{
    const struct
    {
        TextView mType;
        const char *mOlder, *mCurrent;
    } kCases[] = {
        { u"ScrollWheelEvent", "ScrollAmount", "ScrollAmountExpression" },
        { u"MouseMoveAndClick", "HorizontalPosition", "HorizontalPositionExpression" },
        { u"MouseMoveAndClick", "VerticalPosition", "VerticalPositionExpression" },
        { u"ManipulateWindow", "Horizontal", "HorizontalExpression" },
        { u"ManipulateWindow", "Vertical", "VerticalExpression" },
        { u"ManipulateWindow", "WindowIndex", "WindowIndexExpression" },
    };
    for ( const auto& [type, older, current] : kCases )
    {
        const auto read = Reloaded( ActionDict( type, { { older, __SafeCFPropertyList::Real( -12.5 ) } } ) );
        EXPECT_EQ( At( read, current ), Str( u"-12.5" ) ) << older;
        EXPECT_FALSE( At( read, older ) ) << older;
        const auto both = Reloaded( ActionDict( type, { { older, Int( 3 ) }, { current, Str( u"x" ) } } ) );
        EXPECT_EQ( At( both, current ), Str( u"x" ) ) << older;
    }
}

TEST( DesktopActions, AnOlderScreenCaptureBecomesAnArea )
{
    const auto read = Reloaded( ActionDict( u"ScreenCapture",
        { { "Source", Str( u"WindowName" ) }, { "Index", Int( 3 ) }, { "WindowName", Str( u"Doc" ) } } ) );
    const auto area = At( read, "ScreenArea" );
    EXPECT_EQ( At( area, "ScreenAreaType" ), Str( u"WindowName" ) );
    EXPECT_EQ( At( area, "IndexExpression" ), Str( u"3" ) );
    EXPECT_EQ( At( area, "WindowName" ), Str( u"Doc" ) );
    EXPECT_EQ( read.AsDictionary()->GetCount(), 4u ) << Shown( read );
}

TEST( DesktopActions, TheMousesActionAndItsRestoreFlagAreTwoFormsOfTwoFlags )
{
    const struct
    {
        TextView mAction;
        std::optional<bool> mRestore;
        TextView mSavedAction;
        bool mSavedRestore;
    } kCases[] = {
        { u"Move", {}, u"Move", false },
        { u"Move", true, u"Move", true },
        { u"Click", {}, u"Click", true },
        { u"Click", true, u"Click", true },
        { u"Click", false, u"MoveAndClick", false },
        { u"MoveAndClick", {}, u"MoveAndClick", false },
        { u"MoveAndClick", false, u"MoveAndClick", false },
        { u"MoveAndClick", true, u"Click", true },
        { u"Odd", true, u"Move", true },
    };
    for ( const auto& [action, restore, savedAction, savedRestore] : kCases )
    {
        auto stored = ActionDict( u"MouseMoveAndClick", { { "Action", Str( action ) } } );
        if ( restore )
            stored = With( stored, "RestoreMouseLocation", Bool( *restore ) );
        const auto read = Reloaded( stored );
        EXPECT_EQ( At( read, "Action" ), Str( savedAction ) ) << Shown( stored );
        EXPECT_EQ( At( read, "RestoreMouseLocation" ), Bool( savedRestore ) ) << Shown( stored );
    }
}

TEST( DesktopActions, RecordedDetailsAreOnlyWrittenWhenAskedFor )
{
    const auto details = Array( { Dict( { { "Step", Int( 1 ) } } ) } );
    const auto action =
        HBaseAction::CreateFromPropertyList( ActionDict( u"MouseMoveAndClick", { { "RecordedDetails", details } } ) );
    const auto clone = action->Clone();
    EXPECT_FALSE( At( action->CopyToPropertyList(), "RecordedDetails" ) );
    EXPECT_EQ( At( clone->CopyToPropertyList( RecordedDetails::kYes ), "RecordedDetails" ), details );
    EXPECT_EQ( With( clone->CopyToPropertyList( RecordedDetails::kYes ), "RecordedDetails", nullptr ),
        __SafeCFPropertyList( action->CopyToPropertyList() ) );
}

TEST( DesktopActions, TheKeysOfAnImageAreThoseOfAMousePlaceOnAnImage )
{
    const auto onImage = Saved( *HBaseAction::CreateFromPropertyList(
        ActionDict( u"MouseMoveAndClick", { { "Relative", Str( u"Image" ) }, { "ImageSource", Str( u"File" ) } } ) ) );
    EXPECT_TRUE( At( onImage, "ScreenArea" ) );
    EXPECT_EQ( At( onImage, "ImagePath" ), Str( u"" ) );
    EXPECT_FALSE( At( onImage, "ImageSelection" ) ) << "which one is only said when it isn't the only one";
    const auto absolute = Reloaded( With( onImage, "Relative", Str( u"Absolute" ) ) );
    for ( const char* key : { "ScreenArea", "ImageSource", "ImagePath" } )
        EXPECT_FALSE( At( absolute, key ) ) << key;
    for ( const char* key : { "Fuzz", "DisplayMatches" } )
        EXPECT_TRUE( At( absolute, key ) ) << key;
}

TEST( DesktopActions, KeysOfAnotherKindAreKeptForWhoSwitchesBack )
{
    const auto button = Reloaded( ActionDict( u"StreamDeckSetImage",
        { { "FromType", Str( u"ThisMacro" ) }, { "MacroUID", Str( u"M" ) }, { "Icon", Bytes( { 1 } ) },
            kTriggerTarget } ) );
    EXPECT_EQ( At( button, "MacroUID" ), Str( u"M" ) );
    EXPECT_EQ( At( button, "Icon" ), Bytes( { 1 } ) );
    EXPECT_EQ( At( button, kTriggerTarget.first ), Bool( true ) );
    const auto window = Reloaded( ActionDict( u"ManipulateWindow",
        { { "WindowName", Str( u"w" ) }, { "WidthExpression", Str( u"9" ) }, kFinder,
            { "TargetingType", Str( u"Front" ) } } ) );
    EXPECT_EQ( At( window, "WindowName" ), Str( u"w" ) );
    EXPECT_EQ( At( window, "WidthExpression" ), Str( u"9" ) );
    EXPECT_EQ( At( window, kFinder.first ), kFinder.second );
}

TEST( DesktopActions, APaletteKeepsEachMacroOnceAndSaysNothingOfWhatIsNormal )
{
    const auto read = Reloaded( ActionDict( u"ShowPaletteOfMacros",
        { { "Allowed", Str( u"Normal" ) },
            { "Macros", Array( { Str( u"B" ), Str( u"A" ), Int( 1 ), Str( u"B" ) } ) } } ) );
    EXPECT_EQ( At( read, "Macros" ), Array( { Str( u"B" ), Str( u"A" ) } ) );
    EXPECT_FALSE( At( read, "Allowed" ) );
    EXPECT_FALSE( At( Reloaded( ActionDict( u"ShowPaletteOfMacros", { { "Macros", Array( {} ) } } ) ), "Macros" ) );
}

TEST( DesktopActions, ReferencesFollowTheMappingOfAPaste )
{
    const struct
    {
        TextView mType;
        const char* mKey;
    } kCases[] = { { u"MarkMacro", "MacroUID" }, { u"SetMacroEnable", "MacroUID" },
        { u"MacroGroupToggle", "MacroGroupUID" } };
    const InsertionScope insertion;
    MMacroInsertion::AddMapping( XText( u"OLD" ), XText( u"NEW" ) );
    for ( const auto& [type, key] : kCases )
    {
        for ( const auto& [uid, mapped] : { std::pair( u"OLD", u"NEW" ), std::pair( u"OTHER", u"OTHER" ) } )
        {
            const auto action = HBaseAction::CreateFromPropertyList( ActionDict( type, { { key, Str( uid ) } } ) );
            action->UpdateForPasteOrAdd();
            EXPECT_EQ( At( Saved( *action ), key ), Str( mapped ) ) << UTF8FromText( type );
        }
    }
}

TEST( DesktopActions, AQuickMacroSharesItsUIDWithClonesOnly )
{
    const auto uid = []( const HBaseAction& inAction ) { return At( Saved( inAction ), "QuickMacroUID" ); };
    const auto stored = ActionDict( u"QuickMacro", { { "QuickMacroUID", Str( u"QUICK-UID" ) } } );
    const auto original = HBaseAction::CreateFromPropertyList( stored );
    EXPECT_EQ( uid( *original ), Str( u"QUICK-UID" ) );
    const auto clone = original->Clone();
    EXPECT_EQ( uid( *clone ), uid( *original ) );
    LogCapture log;
    const auto copy = HBaseAction::CreateFromPropertyList( stored );
    EXPECT_TRUE( log.Lines().empty() ) << "a file with one UID twice is told of as a repair, not as a fault";
    EXPECT_NE( uid( *copy ), uid( *original ) );
    clone->UpdateForPasteOrAdd();
    EXPECT_NE( uid( *clone ), uid( *original ) );
    EXPECT_NE( uid( *clone ), uid( *copy ) );
    for ( const auto& none : { Str( u"" ), Int( 1 ), __SafeCFPropertyList() } )
    {
        const auto read = HBaseAction::CreateFromPropertyList( With( stored, "QuickMacroUID", none ) );
        EXPECT_EQ( uid( *read ).AsString()->GetLength(), 36u );
    }
}

TEST( DesktopActions, AWindowsNameThatIsMatchedCouldBeARegularExpression )
{
    const auto regEx = []( const __SafeCFPropertyList& inAction ) {
        return HBaseAction::CreateFromPropertyList( inAction )->ActionCouldBeRegExStrings();
    };
    const std::vector<Text> pattern = { u"^Doc" };
    for ( TextView type : { u"ScreenCapture", u"FindImage", u"SetDesktopImage" } )
        EXPECT_EQ( regEx( ActionDict( type, { { "ScreenArea", Area() } } ) ), pattern ) << UTF8FromText( type );
    const auto window = ActionDict(
        u"ManipulateWindow", { { "WindowName", Str( u"^Doc" ) }, { "Targeting", Str( u"WindowNameMatching" ) } } );
    EXPECT_EQ( regEx( window ), pattern );
    EXPECT_TRUE( regEx( With( window, "Targeting", Str( u"NamedWindow" ) ) ).empty() );

    // So could that of the windows whose image is looked at.
    for ( TextView type :
        { u"FindImage", u"OCRImage", u"SetFileIcon", u"CompositeImage", u"SetClipboardToImage", u"MouseMoveAndClick" } )
    {
        const auto action = ActionDict( type,
            { { "Relative", Str( u"Image" ) }, { "ImageSource", Str( u"Screen" ) }, { "ImageScreenArea", Area() } } );
        EXPECT_EQ( regEx( action ), pattern ) << UTF8FromText( type );
        EXPECT_TRUE( regEx( With( action, "ImageSource", Str( u"SystemClipboard" ) ) ).empty() );
    }
}

TEST( DesktopActions, AResultsClipboardFollowsItsStore )
{
    const std::string prefix = "ClipboardTarget";
    for ( TextView type : { u"GetTouchBarSelection", u"OCRImage" } )
    {
        const auto stored = With( With( ActionDict( type,
                                            { { "DisplayKind", Str( u"Clipboard" ) },
                                                { "ClipboardTargetUseNamedClipboard", Bool( true ) } } ),
                                      prefix + "NamedClipboardUID", Str( u"1" ) ),
            prefix + "NamedClipboardRedundantDisplayName", Str( u"Before" ) );
        const auto action = HBaseAction::CreateFromPropertyList( stored );
        {
            const FakeClipboardNames store{ { u"1", u"Now" } };
            action->UpdateToDefaultValues( false );
        }
        EXPECT_EQ( At( Saved( *action ), prefix + "NamedClipboardRedundantDisplayName" ), Str( u"Now" ) )
            << UTF8FromText( type );
    }
}

TEST( DesktopActions, ComparingMakesNoClipboard )
{
    const FakeClipboardNames store;
    const auto action = HBaseAction::CreateFromPropertyList( ActionDict( u"TrimImage",
        { { "TargetUseNamedClipboard", Bool( true ) },
            { "TargetNamedClipboardRedundantDisplayName", Str( u"Mine" ) } } ) );
    EXPECT_EQ( action->CompareFields( *action->Clone() ), 0 );
    EXPECT_TRUE( store.mNamesByUID.empty() );
}
