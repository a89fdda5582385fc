// What single types of condition do beyond their keys, and what all of them do alike.
#include "ConditionTestSupport.h"

#include "Macros/MMacroAppTarget.h"
#include "Utility/Search/StringSearchee.h"

#include <algorithm>

namespace
{
__SafeCFPropertyList Editor()
{
    return Dict( { { "Name", Str( u"Editor" ) } } );
}

bool Finds( const CBaseCondition& inCondition, TextView inWord )
{
    StringSearchee searchee;
    inCondition.AddMatchStrings( searchee );
    return std::ranges::any_of(
        searchee.GetElements(), [&]( const auto& element ) { return element.mText.find( inWord ) != Text::npos; } );
}
} // namespace

TEST( CBaseCondition, WhatIsNoConditionThrowsAndQuotesWhy )
{
    const std::pair<__SafeCFPropertyList, const char*> kCases[] = {
        { nullptr, "dictionary && dictionary->IsCorrectTypeID()" },
        { Array( {} ), "dictionary && dictionary->IsCorrectTypeID()" },
        { Dict( {} ), "good" },
        { Dict( { { "ConditionType", Int( 3 ) } } ), "good" },
        { ConditionDict( u"variable" ), "good" },
        { ConditionDict( u"" ), "good" },
    };
    for ( const auto& [value, message] : kCases )
        EXPECT_EQ( ConditionReadFailure( value ), message ) << Shown( value );
}

TEST( CBaseCondition, TypesAreOrderedByNumberAlone )
{
    for ( int first = 0; first < 25; ++first )
    {
        for ( int second = 0; second < 25; ++second )
        {
            const int order = CBaseCondition::Create( ConditionType( first ) )
                                  ->CompareWith( *CBaseCondition::Create( ConditionType( second ) ) );
            EXPECT_EQ( order, ( first > second ) - ( first < second ) );
        }
    }
}

TEST( CBaseCondition, KeysOfOthersAreNotKept )
{
    const auto read = ConditionDict( u"TypedString", { { "Odd", Str( u"x" ) }, { "NewFile", Str( u"y" ) } } );
    EXPECT_EQ( Shown( ReloadedCondition( read ) ),
        Shown( ConditionDict( u"TypedString", { { "TrippedCaseBehaviour", Str( u"None" ) } } ) ) );
}

TEST( CBaseCondition, AWindowTitleIsStoredWithTheTypesThatHaveOne )
{
    std::size_t withTitle = 0;
    for ( const TextView name : kFrontWindowConditionTypeNames )
    {
        const auto saved = ReloadedCondition( ConditionDict(
            u"FrontWindow", { { "FrontWindowConditionType", Str( name ) }, { "FrontWindowTitle", Str( u"T" ) } } ) );
        const bool hasTitle = name.find( u"Title" ) != TextView::npos;
        EXPECT_EQ( Shown( At( saved, "FrontWindowTitle" ) ), Shown( hasTitle ? Str( u"T" ) : nullptr ) );
        withTitle += hasTitle;
    }
    EXPECT_EQ( withTitle, 9U );
}

TEST( CBaseCondition, WithoutAUsableApplicationTheFrontOneIsMeant )
{
    for ( const TextView type : { u"FrontWindow", u"AnyWindow" } )
    {
        struct
        {
            __SafeCFPropertyList mFlag, mApplication, mSavedFlag, mSavedApplication;
        } const kCases[] = {
            { Bool( false ), Editor(), Bool( false ), Editor() },
            { Bool( false ), nullptr, Bool( true ), nullptr },
            { Bool( false ), Str( u"Editor" ), Bool( true ), nullptr },
            { Bool( true ), Editor(), Bool( true ), nullptr },
            { nullptr, Editor(), Bool( true ), nullptr },
        };
        for ( const auto& [flag, application, savedFlag, savedApplication] : kCases )
        {
            const auto saved = ReloadedCondition(
                With( With( ConditionDict( type ), "IsFrontApplication", flag ), "Application", application ) );
            EXPECT_EQ( Shown( At( saved, "IsFrontApplication" ) ), Shown( savedFlag ) );
            EXPECT_EQ( Shown( At( saved, "Application" ) ), Shown( savedApplication ) );
        }
    }
}

// The names that a first version had at the indexes of today's.
TEST( CBaseCondition, APixelComparisonIsWrittenTwiceAndReadFromTheCurrentKeyFirst )
{
    constexpr std::pair<const char16_t*, const char16_t*> kRows[] = { { u"Is", u"IsNot" }, { u"IsNot", u"IsBrighter" },
        { u"IsBrighter", u"IsDarker" }, { u"IsDarker", u"IsMoreRed" }, { u"IsMoreRed", u"IsLessRed" },
        { u"IsLessRed", u"IsMoreGreen" }, { u"IsMoreGreen", u"IsLessGreen" }, { u"IsLessGreen", u"IsMoreBlue" },
        { u"IsMoreBlue", u"IsLessBlueIsNot" }, { u"IsLessBlue", u"IsLessBlue" } };
    for ( const auto& [current, deprecated] : kRows )
    {
        const auto olderFile = ConditionDict( u"Pixel", { { "PixelConditionType", Str( deprecated ) } } );
        const PlistEntry good( "PixelConditionTypeGood", Str( current ) );
        for ( const auto& read : { olderFile, ConditionDict( u"Pixel", { good } ),
                  ConditionDict( u"Pixel", { good, { "PixelConditionType", Str( u"IsDarker" ) } } ),
                  With( olderFile, "PixelConditionTypeGood", Str( u"Brighter" ) ),
                  With( olderFile, "PixelConditionTypeGood", Int( 1 ) ) } )
        {
            EXPECT_EQ( Shown( At( ReloadedCondition( read ), "PixelConditionTypeGood" ) ), Shown( good.second ) );
            EXPECT_EQ( Shown( At( ReloadedCondition( read ), "PixelConditionType" ) ), Shown( Str( deprecated ) ) );
        }
    }
    const auto unknown = ReloadedCondition( ConditionDict( u"Pixel", { { "PixelConditionType", Str( u"Is" ) } } ) );
    EXPECT_EQ( Shown( At( unknown, "PixelConditionTypeGood" ) ), Shown( Str( u"Is" ) ) );
}

TEST( CBaseCondition, AnOlderReferenceToAScriptFileIsAPathOrNothing )
{
    const std::uint8_t bytes[] = { 1, 2 };
    const std::pair<__SafeCFPropertyList, const char16_t*> kCases[] = {
        { ConditionDict( u"Script", { { "NewFile", Str( u"/a" ) } } ), u"/a" },
        { ConditionDict( u"Script", { { "NewFile", Str( u"/a" ) }, { "Path", Str( u"/b" ) } } ), u"/b" },
        { ConditionDict( u"Script", { { "NewFile", XPlistData::Make( bytes ) } } ), u"" },
    };
    for ( const auto& [read, path] : kCases )
    {
        EXPECT_EQ( Shown( At( ReloadedCondition( read ), "Path" ) ), Shown( Str( path ) ) );
        EXPECT_FALSE( At( ReloadedCondition( read ), "NewFile" ) );
    }
}

TEST( CBaseCondition, AClipboardIsStoredWithItsKind )
{
    const auto named = ConditionDict( u"Clipboard",
        { { "ClipboardConditionType", Str( u"HasImage" ) }, { "ClipboardText", Str( u"" ) },
            { "ClipboardSourceUseNamedClipboard", Bool( true ) }, { "ClipboardSourceNamedClipboardUID", Str( u"U" ) },
            { "ClipboardSourceNamedClipboardRedundantDisplayName", Str( u"Notes" ) } } );
    EXPECT_EQ( Shown( ReloadedCondition( named ) ), Shown( named ) );
    EXPECT_EQ( DescribedCondition( named ), "Named Clipboard “Notes” Has an Image" );
    EXPECT_TRUE( Finds( *ReadCondition( named ), u"Notes" ) );
}

TEST( CBaseCondition, AHeldImageIsShownAndAnotherIsNot )
{
    const std::uint8_t bytes[] = { 9, 8, 7 };
    for ( const TextView type : { u"ScreenImage", u"OCR" } )
    {
        const auto held = ConditionDict( type, { { "Image", XPlistData::Make( bytes ) } } );
        const XImage image = ReadCondition( held )->GetDescriptionExtraImage();
        ASSERT_TRUE( image.mBytes );
        EXPECT_TRUE( std::ranges::equal( image.mBytes->GetBytes(), bytes ) );
        EXPECT_EQ( Shown( At( ReloadedCondition( held ), "Image" ) ), Shown( XPlistData::Make( bytes ) ) );
        EXPECT_FALSE( ReadCondition( ConditionDict( type ) )->GetDescriptionExtraImage().Defined() );
        const auto file = With( held, "ImageSource", Str( u"File" ) );
        EXPECT_FALSE( ReadCondition( file )->GetDescriptionExtraImage().Defined() );
    }
    EXPECT_FALSE( ReadCondition( ConditionDict( u"Pixel" ) )->GetDescriptionExtraImage().Defined() );
}

TEST( CBaseCondition, DescriptionsReadAsPeopleSayIt )
{
    const std::pair<__SafeCFPropertyList, const char*> kCases[] = {
        { ConditionDict( u"Application", { { "Application", Editor() } } ), "Application “Editor” Is Running" },
        { ConditionDict( u"Application" ), "Application (None Chosen) Is Running" },
        { ConditionDict( u"FrontWindow" ), "Whatever the Front Window of the Front Application Is" },
        { ConditionDict( u"FrontWindow",
              { { "FrontWindowConditionType", Str( u"TitleIs" ) }, { "FrontWindowTitle", Str( u"To %@" ) },
                  { "IsFrontApplication", Bool( false ) }, { "Application", Editor() } } ),
            "Title of the Front Window of “Editor” Is “To %@”" },
        { ConditionDict( u"AnyWindow", { { "AnyWindowTitle", Str( u"Draft" ) } } ),
            "Title of Any Window of the Front Application Contains “Draft”" },
        { ConditionDict( u"Button", { { "ButtonConditionType", Str( u"IsOn" ) } } ), "Button “OK” Is On" },
        { ConditionDict( u"Menu", { { "MenuConditionSelectionType", Str( u"Shortcut" ) } } ),
            "Menu Item with the Shortcut ⌘C Exists" },
        { ConditionDict( u"Modifiers", { { "ModifiersDown", Int( 768 ) }, { "ModifiersUp", Int( 2048 ) } } ),
            "Modifiers ⇧⌘ Are Down and ⌥ Are Up" },
        { ConditionDict( u"Key", { { "KeyCode", Int( 0 ) } } ), "Key A Is Down" },
        { ConditionDict( u"Key", { { "KeyCode", Int( 32767 ) } } ), "Key (None Chosen) Is Down" },
        { ConditionDict( u"Disk", { { "DiskTitle", Str( u"Backup" ) } } ), "Disk “Backup” Is Mounted" },
        { ConditionDict( u"Path", { { "Path", Str( u"/tmp" ) }, { "PathConditionType", Str( u"FolderExists" ) } } ),
            "Folder “/tmp” Exists" },
        { ConditionDict( u"Clipboard", { { "ClipboardText", Str( u"x" ) } } ), "System Clipboard Text Contains “x”" },
        { ConditionDict( u"Variable", { { "Variable", Str( u"Total" ) }, { "VariableValue", Str( u"5" ) } } ),
            "Variable “Total” Contains “5”" },
        { ConditionDict( u"Variable", { { "VariableConditionType", Str( u"IsEmpty" ) } } ),
            "Variable “VarName” Is Empty" },
        { ConditionDict( u"Calculation" ), "Calculation “1” Is Not Zero" },
        { ConditionDict( u"Macro", { { "MacroUID", Str( u"no such" ) } } ), "Unknown Macro Is Enabled" },
        { ConditionDict( u"ActionResult" ), "Action Result Is OK" },
        { ConditionDict( u"ScreenImage" ), "the Image Is Found on All Screens" },
        { ConditionDict( u"Pixel", { { "Red", Int( 1 ) }, { "Green", __SafeCFPropertyList::Real( 0.5 ) } } ),
            "Pixel at (0, 0) Is #FF8000" },
        { ConditionDict( u"WirelessNetwork" ), "Any Wireless Network Is Connected" },
        { ConditionDict( u"Script",
              { { "ScriptText", Str( u"exit 1\nexit 2" ) }, { "ScriptConditionType", Str( u"ReturnsStatus" ) },
                  { "ScriptConditionSourceType", Str( u"ShellScriptText" ) },
                  { "ScriptTerminationStatus", Int( 2 ) } } ),
            "Shell Script “exit 1 exit 2” Returns Status 2" },
        { ConditionDict( u"OCR" ), "Text Recognized in the Image Is Not Empty" },
        { ConditionDict( u"MouseButton", { { "Button", Int( 2 ) }, { "Pressed", Bool( false ) } } ),
            "Mouse Button 3 Is Not Pressed" },
    };
    for ( const auto& [condition, description] : kCases )
        EXPECT_EQ( DescribedCondition( condition ), description );
}

TEST( CBaseCondition, ASearchFindsTypeDescriptionAndWhatADescriptionCutsOff )
{
    const Text longText = Text( 100, u'x' ) + u"needle";
    const auto condition = ReadCondition( ConditionDict( u"Text", { { "TextValue", Str( longText ) } } ) );
    EXPECT_TRUE( Finds( *condition, condition->GetConditionTypeDescription() ) );
    EXPECT_TRUE( Finds( *condition, condition->GetDescription() ) );
    EXPECT_TRUE( Finds( *condition, u"needle" ) );
    EXPECT_FALSE( Finds( *condition, u"haystack" ) );
    EXPECT_TRUE(
        Finds( *ReadCondition( ConditionDict( u"Application", { { "Application", Editor() } } ) ), u"Editor" ) );
}
