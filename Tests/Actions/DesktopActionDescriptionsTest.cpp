// What the actions on the desktop say that they do.
#include "ActionTestSupport.h"

#include "Actions/ImageActions.h"
#include "Actions/KeyboardActions.h"
#include "Actions/MacroActions.h"
#include "Actions/MouseActions.h"
#include "Actions/PaletteActions.h"
#include "Actions/ScreenActions.h"
#include "Actions/SettingActions.h"
#include "Actions/StreamDeckActions.h"
#include "Actions/WindowActions.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Utility/Search/StringSearchee.h"

#include <set>

TEST( DesktopActionDescriptions, TellWhatTheActionDoesWithItsValues )
{
    const PlistEntry specific = { "TargetApplication", Dict( { { "Name", Str( u"Notes" ) } } ) };
    const struct
    {
        __SafeCFPropertyList mAction;
        TextView mDescription;
    } kCases[] = {
        { ActionDict( u"SimulateKeystroke", { { "KeyCode", Int( 8 ) }, { "Modifiers", Int( 256 ) } } ),
            u"Type the Keystroke ⌘C" },
        { ActionDict(
              u"SimulateKeystroke", { { "KeyCode", Int( 36 ) }, { "Press", Str( u"PressAndHold" ) }, specific } ),
            u"Press and Hold the Keystroke Return in “Notes”" },
        { ActionDict( u"SimulateKeystroke" ), u"Simulate Keystroke" },
        { ActionDict( u"SimulateModifiers", { { "Modifiers", Int( 768 ) }, { "Press", Str( u"Release" ) } } ),
            u"Release the Modifiers ⇧⌘" },
        { ActionDict( u"SimulateHardwareKey", { { "Modifiers", Int( 512 ) }, { "HardwareKey", Str( u"MUTE" ) } } ),
            u"Press the ⇧Mute Key" },
        { ActionDict( u"MouseMoveAndClick",
              { { "Action", Str( u"MoveAndClick" ) }, { "Relative", Str( u"Absolute" ) },
                  { "HorizontalPosition", Int( 100 ) }, { "VerticalPosition", Int( 200 ) } } ),
            u"Move the Mouse to (100, 200) and Click" },
        { ActionDict( u"MouseMoveAndClick",
              { { "Action", Str( u"Click" ) }, { "Button", Int( 1 ) }, { "ClickCount", Int( 2 ) },
                  { "Modifiers", Int( 256 ) }, { "Relative", Str( u"Window" ) },
                  { "RelativeCorner", Str( u"BottomRight" ) }, { "MouseDrag", Str( u"Relative" ) } } ),
            u"⌘ Right Double-Click at (0, 0) from the Bottom Right of the Front Window, and Drag by (0, 0)" },
        { ActionDict( u"MouseMoveAndClick", { { "Relative", Str( u"Mouse" ) } } ),
            u"Move the Mouse to (0, 0) from Where the Mouse Is" },
        { ActionDict( u"ManipulateWindow", { { "Horizontal", Int( 50 ) }, { "Vertical", Int( 100 ) } } ),
            u"Resize the Front Window to 50%, 100%" },
        { ActionDict( u"ManipulateWindow",
              { { "Action", Str( u"CloseWindow" ) }, { "Targeting", Str( u"NamedWindow" ) },
                  { "WindowName", Str( u"100%@" ) }, specific } ),
            u"Close the Window “100%@” of “Notes”" },
        { ActionDict( u"SelectMenuItem", { specific, { "Menu", Array( { Str( u"File" ), Str( u"Save" ) } ) } } ),
            u"Select the Menu Item “File ▸ Save” in “Notes”" },
        { ActionDict( u"MarkMacro" ), u"Mark Unknown Macro" },
        { ActionDict( u"MacroGroupToggle" ), u"Show the Palette of Unknown Macro Group for One Action" },
        { ActionDict( u"OCRImage",
              { { "ImageSource", Str( u"File" ) }, { "ImagePath", Str( u"~/scan.png" ) },
                  { "DisplayKind", Str( u"Briefly" ) } } ),
            u"Read the Text of the Image in the File “scan.png” and Display Briefly" },
        { ActionDict( u"CompositeImage", { { "SourceUseTriggerClipboard", Bool( true ) } } ),
            u"Composite the Image in the Trigger Clipboard onto the Image in the System Clipboard at (100, 100)" },
        { ActionDict( u"CompositeImage", { { "UseText", Bool( true ) }, { "Text", Str( u"hi" ) } } ),
            u"Composite Text “hi” onto the Image in the System Clipboard at (100, 100)" },
        { ActionDict( u"ScreenCapture" ), u"Capture All Screens to the System Clipboard" },
        { ActionDict( u"ScreenCapture", { { "Destination", Str( u"~/shot.png" ) } } ),
            u"Capture All Screens to the File “shot.png”" },
        { ActionDict( u"HiliteLocation", { { "DisplayTime", Str( u"1" ) } } ),
            u"Highlight a Rectangle at (MOUSEX(), MOUSEY()) of Size (100, 100) for 1 Second" },
        { ActionDict( u"GetImageSize", { { "Attribute", Str( u"PixekHeight" ) } } ),
            u"Set Variable “VarName” to the Height in Pixels of the Image in the System Clipboard" },
        { ActionDict( u"StreamDeckSetImage", { { "FromType", Str( u"Macro" ) } } ),
            u"Set the Image of Stream Deck Button R1C1 to the Icon of Unknown Macro" },
    };
    for ( const auto& [action, description] : kCases )
        EXPECT_EQ( Described( action ), UTF8FromText( description ) );
}

TEST( DesktopActionDescriptions, EachStoredNameHasWordsOfItsOwn )
{
    const auto given = ActionDict( u"", { { "KeyCode", Int( 0 ) }, { "Modifiers", Int( 256 ) } } );
    const struct
    {
        TextView mType;
        const char* mKey;
        std::span<const TextView> mNames;
    } kCases[] = {
        { u"SimulateKeystroke", "Press", NamesOf( KeyPress() ) },
        { u"SimulateModifiers", "Press", NamesOf( KeyPress() ) },
        { u"SimulateHardwareKey", "Press", NamesOf( KeyPress() ) },
        { u"SimulateHardwareKey", "HardwareKey", NamesOf( HardwareKey() ) },
        { u"MarkMacro", "MacroAction", NamesOf( MarkMacroAction() ) },
        { u"SetMacroEnable", "Action", NamesOf( MacroEnableAction() ) },
        { u"MacroGroupToggle", "ToggleMode", NamesOf( MacroGroupToggleMode() ) },
        { u"ConcealMacroPalettes", "Action", NamesOf( ConcealAction() ) },
        { u"ApplicationsPaletteToggle", "Action", NamesOf( PaletteToggleAction() ) },
        { u"DarkMode", "DarkModeAction", NamesOf( DarkModeAction() ) },
        { u"MouseMoveAndClick", "Action", NamesOf( MouseAction() ) },
        { u"MouseMoveAndClick", "Relative", NamesOf( MouseRelative() ) },
        { u"MouseMoveAndClick", "RelativeCorner", NamesOf( RelativeCorner() ) },
        { u"MouseMoveAndClick", "MouseDrag", NamesOf( MouseDrag() ) },
        { u"ScrollWheelEvent", "ScrollDirection", NamesOf( ScrollDirection() ) },
        { u"ManipulateWindow", "Action", NamesOf( WindowAction() ) },
        { u"ManipulateWindow", "Targeting", NamesOf( WindowTargeting() ) },
        { u"HiliteLocation", "Style", NamesOf( HiliteStyle() ) },
        { u"TransformImage", "TransformAction", NamesOf( TransformAction() ) },
        { u"ResizeImage", "ResizeAction", NamesOf( ResizeAction() ) },
        { u"DrawImage", "DrawAction", NamesOf( DrawAction() ) },
        { u"GetImageSize", "Attribute", NamesOf( ImageSizeAttribute() ) },
        { u"StreamDeckSetImage", "FromType", NamesOf( StreamDeckFromType() ) },
    };
    for ( const auto& [type, key, names] : kCases )
    {
        std::set<Text> descriptions;
        for ( TextView name : names )
        {
            LogCapture log;
            const auto action = With( With( given, "MacroActionType", Str( type ) ), key, Str( name ) );
            descriptions.insert( TextFromUTF8( Described( action ) ) );
            EXPECT_TRUE( log.Lines().empty() ) << UTF8FromText( type ) << " " << UTF8FromText( name );
        }
        EXPECT_EQ( descriptions.size(), names.size() ) << UTF8FromText( type ) << " " << key;
    }
}

TEST( DesktopActionDescriptions, SearchesFindMenusAndMacrosByWhatTheUserSees )
{
    const auto words = []( const __SafeCFPropertyList& inAction ) {
        StringSearchee searchee;
        HBaseAction::CreateFromPropertyList( inAction )->AddMatchStrings( searchee );
        std::string all;
        for ( const auto& element : searchee.GetElements() )
            all += UTF8FromText( element.mText ) + "\n";
        return all;
    };
    // A title of the user's hides the description, not what can be found.
    const PlistEntry title = { "ActionName", Str( u"Mine" ) };
    EXPECT_NE(
        words( ActionDict( u"SelectMenuItem", { title, { "Menu", Array( { Str( u"Edit" ) } ) } } ) ).find( "Edit" ),
        std::string::npos );
    EXPECT_NE( words( ActionDict( u"ShowPaletteOfMacros", { title, { "Macros", Array( { Str( u"SOME-UID" ) } ) } } ) )
                   .find( "SOME-UID" ),
        std::string::npos );
    // What is only kept of other kinds of area isn't seen, and so isn't found.
    const auto named = Dict( { { "ScreenAreaType", Str( u"WindowName" ) }, { "WindowName", Str( u"Ledger" ) } } );
    const auto capture = ActionDict( u"ScreenCapture", { title, { "ScreenArea", named } } );
    EXPECT_NE( words( capture ).find( "Ledger" ), std::string::npos );
    const auto whole = With( named, "ScreenAreaType", Str( u"ScreenMain" ) );
    EXPECT_EQ( words( With( capture, "ScreenArea", whole ) ).find( "Ledger" ), std::string::npos );
}
