// Plug-in actions over a folder of plug-ins, good and broken.
#include "Actions/APlugIn.h"

#include "ActionTestSupport.h"
#include "Actions/PlugInFolder.h"
#include "Defines/KVPreferences.h"
#include "Tests/Support/LongTests.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Search/StringSearchee.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <random>

namespace
{
__SafeCFPropertyList Real( double inValue )
{
    return __SafeCFPropertyList::Real( inValue );
}

// Data files of its own, and nothing cached of others.
class PlugIns : public testing::Test
{
protected:
    PlugIns()
    {
        KVPreferences::UseFolder( mFolder.Path() );
        PlugInFolder::ClearCache();
    }
    ~PlugIns() override
    {
        KVPreferences::UseFolder( {} );
        PlugInFolder::ClearCache();
    }

    void InstallBytes( const std::string& inName, std::string_view inBytes )
    {
        std::filesystem::create_directories( mFolder.Path() / "Korvalen Actions" / inName );
        mFolder.Write( "Korvalen Actions/" + inName + "/Korvalen Action.plist", inBytes );
    }
    void Install( const std::string& inName, const __SafeCFPropertyList& inInformation )
    {
        InstallBytes( inName, WriteXMLPropertyList( inInformation ).mBytes.View() );
        PlugInFolder::ClearCache();
    }
    /// A new action of a plug-in "P" with that information.
    APlugIn NewAction( std::initializer_list<PlistEntry> inInformation )
    {
        Install( "P", Dict( inInformation ) );
        return APlugIn( u"P" );
    }

    ScratchFolder mFolder;
    LogCapture mLog;
};

/// A disk of which only what lies in the folder of a plug-in may be touched.
class FencedFileCalls final : public XFileCalls
{
public:
    using Path = std::filesystem::path;
    explicit FencedFileCalls( Path inFolder ) : mFolder( std::move( inFolder ) ) {}

    int mTouches = 0;
    int Open( const Path& inPath, OpenFor inPurpose ) override
    {
        EXPECT_EQ( inPurpose, OpenFor::kRead );
        Touch( inPath );
        return XFileCalls::Open( inPath, inPurpose );
    }
    int GetPathFacts( const Path& inPath, XFileStatus& outFacts ) override
    {
        Touch( inPath );
        return XFileCalls::GetPathFacts( inPath, outFacts );
    }
    int GetLinkFacts( const Path& inPath, XFileStatus& outFacts ) override
    {
        Touch( inPath );
        return XFileCalls::GetLinkFacts( inPath, outFacts );
    }
    int ReadLink( const Path& inPath, Path& outTarget ) override
    {
        Touch( inPath );
        return XFileCalls::ReadLink( inPath, outTarget );
    }
    int ReadFolder( const Path& inPath, std::vector<std::string>& ) override { return Forbidden( inPath ); }
    int Rename( const Path& inFrom, const Path& ) override { return Forbidden( inFrom ); }
    int RenameToNew( const Path& inFrom, const Path& ) override { return Forbidden( inFrom ); }
    int Unlink( const Path& inPath ) override { return Forbidden( inPath ); }
    int MakeFolder( const Path& inPath ) override { return Forbidden( inPath ); }
    int RemoveFolder( const Path& inPath ) override { return Forbidden( inPath ); }

private:
    // As the system takes the path, so by its bytes.
    void Touch( const Path& inPath )
    {
        ++mTouches;
        if ( inPath == mFolder.parent_path() )
            return; // of all data files
        const std::string bytes = inPath.native(), beginning = mFolder.native() + "/";
        const std::string beneath = bytes.substr( std::min( beginning.size(), bytes.size() ) );
        const std::string name = beneath.substr( 0, beneath.find( '/' ) );
        EXPECT_TRUE( bytes.starts_with( beginning ) and name != "" and name != "." and name != ".." and
            beneath.substr( name.size() ) == "/Korvalen Action.plist" and beneath.find( '\0' ) == std::string::npos )
            << inPath;
    }
    int Forbidden( const Path& inPath )
    {
        ADD_FAILURE() << inPath;
        errno = EPERM;
        return -1;
    }

    Path mFolder;
};

/// A name as somebody makes it up who wants to get out of the folder.
Text HostileName( std::mt19937_64& ioRandom )
{
    const TextView kPieces[] = { u".", u"..", u"/", u"../", u"P", u"Q", u" ", u"~", u"\\", u"%2e", u"\n", u"é",
        u"\u2024", u"\uFF0F", u"\U0001F600", TextView( u"\0", 1 ), u"Korvalen Action.plist" };
    const char16_t kHalf = 0xD800;
    Text name;
    for ( std::size_t count = ioRandom() % 6; count > 0; --count )
    {
        const std::size_t piece = ioRandom() % ( std::size( kPieces ) + 2 );
        if ( piece < std::size( kPieces ) )
            name += kPieces[piece];
        else
            name += piece == std::size( kPieces ) ? kHalf : char16_t( ioRandom() );
    }
    return name;
}

__SafeCFPropertyList Parameter( TextView inLabel, TextView inType, TextView inDefault )
{
    return Dict( { { "Label", Str( inLabel ) }, { "Type", Str( inType ) }, { "Default", Str( inDefault ) } } );
}
} // namespace

TEST_F( PlugIns, AreTheFoldersWhoseInformationLoads )
{
    Install( "b10", Dict( { { "Name", Str( u"B" ) } } ) );
    Install( "B9", Dict( {} ) );
    InstallBytes( "broken", "<plist>" );
    InstallBytes( "empty", "" );
    Install( "list", Array( {} ) );
    std::filesystem::create_directories( mFolder.Path() / "Korvalen Actions" / "nothing" );
    mFolder.Write( "Korvalen Actions/file", "x" );
    EXPECT_EQ( PlugInFolder::ListPlugIns(), ( std::vector<Text>{ u"B9", u"b10" } ) );
    EXPECT_EQ( mLog.CountContaining( "Invalid Plug In Action with Name " ), 3u );

    std::filesystem::remove_all( mFolder.Path() / "Korvalen Actions" );
    EXPECT_TRUE( PlugInFolder::ListPlugIns().empty() );
}

TEST_F( PlugIns, InformationIsReadOnceButItsAbsenceEachTime )
{
    EXPECT_FALSE( PlugInFolder::InformationForFolderName( u"P" ) );
    Install( "P", Dict( { { "Name", Str( u"One" ) } } ) );
    EXPECT_EQ( APlugIn( u"P" ).GetInformationName(), XText( u"One" ) );
    InstallBytes( "P", WriteXMLPropertyList( Dict( { { "Name", Str( u"Two" ) } } ) ).mBytes.View() );
    EXPECT_EQ( APlugIn( u"P" ).GetInformationName(), XText( u"One" ) );
    PlugInFolder::ClearCache();
    EXPECT_EQ( APlugIn( u"P" ).GetInformationName(), XText( u"Two" ) );
    EXPECT_EQ( mLog.CountContaining( "Invalid Plug In Action with Name P" ), 1u );
}

TEST_F( PlugIns, AFolderNameDoesntLeadOutOfTheFolder )
{
    mFolder.Write( "Korvalen Action.plist", WriteXMLPropertyList( Dict( {} ) ).mBytes.View() );
    Install( "P", Dict( {} ) );
    std::filesystem::create_directories( mFolder.Path() / "Korvalen Actions" / "P" / "Q" );
    for ( const TextView name : { u"", u".", u"..", u"../", u"P/", u"/P", u"P/Q/..", u"./P" } )
    {
        EXPECT_FALSE( PlugInFolder::FolderForName( XText( name ) ) ) << UTF8FromText( name );
        EXPECT_FALSE( PlugInFolder::InformationForFolderName( XText( name ) ) ) << UTF8FromText( name );
    }
    EXPECT_FALSE( PlugInFolder::FolderForName( XText( TextView( u"P\0", 2 ) ) ) );
    EXPECT_TRUE( PlugInFolder::FolderForName( XText( u"..P" ) ) );
}

TEST_F( PlugIns, NoFolderNameReadsAnythingOutsideAndEachComesBack )
{
    Install( "P", Dict( {} ) );
    mFolder.Write( "Korvalen Action.plist", WriteXMLPropertyList( Dict( {} ) ).mBytes.View() );
    FencedFileCalls calls( mFolder.Path() / "Korvalen Actions" );
    const XFileCalls::Substitute callsInUse( calls );
    std::mt19937_64 random( 3 );
    int bad = 0;
    for ( int i = ShortOrLong( 10'000, 1'000'000 ); i > 0 and not HasFailure(); --i )
    {
        const Text name = HostileName( random );
        const auto stored =
            ActionDict( u"PlugIn", { { "PlugInFolderName", Str( name ) }, { "PlugInParameters", Dict( {} ) } } );
        calls.mTouches = 0;
        PlugInFolder::ClearCache();
        EXPECT_EQ( At( Reloaded( stored ), "PlugInFolderName" ), Str( name ) );
        const bool isBad = name.empty() or name == u"." or name == u".." or name.find( u'/' ) != Text::npos or
            name.find( u'\0' ) != Text::npos;
        bad += isBad;
        EXPECT_TRUE( not isBad or calls.mTouches == 0 ) << UTF8FromText( name );
        (void)mLog.Take();
    }
    EXPECT_GT( bad, 1000 );
}

TEST_F( PlugIns, AFileOfThePlugInHasAPlainName )
{
    const struct
    {
        TextView mName;
        bool mIsSafe;
    } kCases[] = { { u"icon.png", true }, { u"Icon_2", true }, { u"../x.png", false }, { u"a.b.c", false },
        { u".png", false }, { u"a.", false }, { u"", false }, { u"a/b", false }, { u"a b", false }, { u"é.png", false },
        { u"a.png\n", false }, { u"..", false } };
    for ( const auto& [name, isSafe] : kCases )
    {
        const APlugIn action = NewAction( { { "Icon", Str( name ) } } );
        const auto icon = action.GetInformationIcon();
        EXPECT_EQ( icon.has_value(), isSafe ) << UTF8FromText( name );
        if ( icon )
        {
            EXPECT_EQ( *icon, mFolder.Path() / "Korvalen Actions" / "P" / UTF8FromText( name ) );
        }
    }
    EXPECT_EQ( mLog.CountContaining( "Invalid File for key Icon contents " ), 10u );
    EXPECT_EQ( mLog.CountContaining( "Invalid File for key Icon contents ../x.png for Plug In Action P" ), 1u );
    EXPECT_FALSE( NewAction( {} ).GetInformationIcon() );
}

TEST_F( PlugIns, TheFirstResultIsTheDefaultAndANameWithinAWordCounts )
{
    using Kind = ActionDisplayKind;
    const struct
    {
        __SafeCFPropertyList mResults;
        Kind mDefault;
        std::size_t mCount;
        bool mShould;
    } kCases[] = {
        { Str( u"None|Window" ), Kind::kNone, 2, true },
        { Str( u"Pasting|Variable|AppendVar" ), Kind::kPasting, 3, true },
        { Str( u"Window" ), Kind::kWindow, 1, true },
        { Str( u"None" ), Kind::kNone, 1, false },
        { Str( u"Windows|Nothing" ), Kind::kNone, 1, true },
        { Str( u"window" ), Kind::kNone, 0, false },
        { Str( u"|Window" ), Kind::kNone, 1, true },
        { Str( u"" ), Kind::kNone, 0, false },
        { Bool( true ), Kind::kNone, 1, false },
        { nullptr, Kind::kNone, 1, false },
    };
    for ( const auto& row : kCases )
    {
        const APlugIn action = NewAction( { { "Results", row.mResults } } );
        EXPECT_EQ( action.GetInformationDefaultDisplayKind(), row.mDefault ) << Shown( row.mResults );
        EXPECT_EQ( action.CountAllowedDisplayKind(), row.mCount ) << Shown( row.mResults );
        EXPECT_EQ( action.ShouldDisplayKind(), row.mShould ) << Shown( row.mResults );
        EXPECT_EQ( At( Saved( action ), "DisplayKind" ), Str( StoredName( row.mDefault ) ) );
    }
    EXPECT_GE( mLog.CountContaining( "Invalid Plug In Results" ), 1u );
}

TEST_F( PlugIns, DeclareTheirTimeOutAndNoneWithZero )
{
    const struct
    {
        __SafeCFPropertyList mNew, mOld;
        double mPeriod;
        bool mHas;
    } kCases[] = {
        { nullptr, nullptr, 356400, true },
        { Real( 2.5 ), Real( 9 ), 2.5, true },
        { nullptr, __SafeCFPropertyList::Integer( 9 ), 9, true },
        { Str( u"5" ), Real( 9 ), 9, true },
        { Real( 0 ), Real( 9 ), 0, false },
        { Real( 0.01 ), nullptr, 0.01, false },
        { Real( 0.011 ), nullptr, 0.011, true },
    };
    for ( const auto& row : kCases )
    {
        const APlugIn action = NewAction( { { "Timeout", row.mNew }, { "Time Out", row.mOld } } );
        EXPECT_EQ( action.DefaultTimeOutPeriod(), row.mPeriod );
        EXPECT_EQ( action.HasTimeOut(), row.mHas );
        EXPECT_EQ( bool( At( Saved( action ), "TimeOutAbortsMacro" ) ), row.mHas );
    }
    const APlugIn gone( u"gone" );
    static_cast<void>( mLog.Take() );
    EXPECT_EQ( gone.DefaultTimeOutPeriod(), 356400 );
    EXPECT_EQ( mLog.CountContaining( "Invalid Plug In Action with Name gone" ), 1u )
        << "each line is a read of the disk";
}

TEST_F( PlugIns, WhatAnEntryCantSayIsLoggedAndReadsAsNothing )
{
    const APlugIn action = NewAction( { { "Parameters",
        Array( {
            Parameter( u"Good Label", u"PopupMenu", u"x" ),
            Dict( { { "Label", Str( u"2nd" ) }, { "Type", Str( u"popupmenu" ) }, { "Default", Bool( true ) } } ),
            Dict( { { "Label", Real( 3 ) }, { "Type", Str( u"INVALID" ) }, { "Menu", Array( {} ) } } ),
            Str( u"no entry" ),
        } ) } } );
    static_cast<void>( mLog.Take() );
    ASSERT_EQ( action.GetInformationParameterCount(), 4u );
    EXPECT_EQ( action.GetInformationParameterEntryLabel( 0 ), XText( u"Good Label" ) );
    EXPECT_EQ( action.GetInformationParameterEntryType( 0 ), PlugInParameterType::kPopupMenu );
    EXPECT_EQ( action.GetInformationParameterEntryDefault( 0 ), XText( u"x" ) );
    EXPECT_TRUE( action.GetInformationParameterEntryMenu( 0 ).IsNull() );
    EXPECT_TRUE( mLog.Take().empty() );
    for ( std::size_t i = 1; i < 5; ++i )
    {
        EXPECT_TRUE( action.GetInformationParameterEntryLabel( i ).IsNull() );
        EXPECT_EQ( action.GetInformationParameterEntryType( i ), PlugInParameterType::kInvalid );
        EXPECT_TRUE( action.GetInformationParameterEntryDefault( i ).IsNull() );
        EXPECT_TRUE( action.GetInformationParameterEntryMenu( i ).IsNull() );
    }
    const std::string lines = testing::PrintToString( mLog.Lines() );
    for ( const char* line : { "Invalid Parameter Entry 1 Label Format 2nd for Plug In Action P",
              "Invalid Parameter Entry 1 Type popupmenu for Plug In Action P",
              "Invalid Parameter Entry 1 Default boolean for Plug In Action P",
              "Invalid Parameter Entry 2 Label 3 for Plug In Action P",
              "Invalid Parameter Entry 2 Type INVALID for Plug In Action P",
              "Invalid Parameter Entry 2 Default array for Plug In Action P", // of the menu, by its older line
              "Invalid Parameter Entry 3 Label (null) for Plug In Action P" } )
        EXPECT_NE( lines.find( line ), std::string::npos ) << line << "\n" << lines;
}

TEST_F( PlugIns, DefaultsFillWhatIsMissingAndHiddenOnesReplaceWhatAFileSays )
{
    Install( "P",
        Dict( { { "Parameters",
            Array( { Parameter( u"Shown", u"String", u"s" ), Parameter( u"Secret", u"Hidden", u"h" ),
                Parameter( u"Newer", u"Bogus", u"n" ), Parameter( u"9", u"String", u"x" ) } ) } } ) );
    const auto stored = ActionDict( u"PlugIn",
        { { "PlugInFolderName", Str( u"P" ) },
            { "PlugInParameters",
                Dict( { { "Shown", Str( u"" ) }, { "Secret", Str( u"hacked" ) }, { "Gone", Str( u"kept" ) } } ) } } );
    EXPECT_EQ( At( Reloaded( stored ), "PlugInParameters" ),
        Dict( { { "Shown", Str( u"" ) }, { "Secret", Str( u"h" ) }, { "Newer", Str( u"n" ) },
            { "Gone", Str( u"kept" ) } } ) );
    EXPECT_EQ( At( Saved( APlugIn( u"P" ) ), "PlugInParameters" ),
        Dict( { { "Shown", Str( u"s" ) }, { "Secret", Str( u"h" ) }, { "Newer", Str( u"n" ) } } ) );
    EXPECT_EQ( Reloaded( Reloaded( stored ) ), Reloaded( stored ) );
}

TEST_F( PlugIns, AnActionWhosePlugInIsGoneKeepsItsParameters )
{
    const auto stored = ActionDict( u"PlugIn",
        { { "PlugInFolderName", Str( u"Gone" ) }, { "PlugInParameters", Dict( { { "A", Array( {} ) } } ) },
            { "DisplayKind", Str( u"AppendVar" ) }, { "Variable", Str( u"V" ) }, { "TrimResultsNew", Bool( false ) },
            { "IncludeStdErr", Bool( false ) }, { "TimeOutAbortsMacro", Bool( true ) } } );
    EXPECT_EQ( Reloaded( stored ), stored );
    EXPECT_GE( mLog.CountContaining( "Invalid Plug In Action with Name Gone" ), 1u );
    EXPECT_EQ( UTF8FromText( HBaseAction::CreateFromPropertyList( stored )->GetActionDescriptionString() ),
        "Plug-In Action “Gone”" );
}

TEST_F( PlugIns, KeysHaveTheirDefaultsAndParametersAreRequired )
{
    Install( "P", Dict( { { "Results", Str( u"Variable|None" ) } } ) );
    const auto bare = ActionDict( u"PlugIn", { { "PlugInParameters", Dict( {} ) } } );
    EXPECT_EQ( Reloaded( bare ),
        ActionDict( u"PlugIn",
            { { "PlugInParameters", Dict( {} ) }, { "PlugInFolderName", Str( u"" ) }, { "DisplayKind", Str( u"None" ) },
                { "TrimResultsNew", Bool( true ) }, { "IncludeStdErr", Bool( true ) },
                { "TimeOutAbortsMacro", Bool( true ) } } ) );
    for ( const TextView kind : { u"", u"variable", u"Hologram" } )
    {
        const auto stored = With( With( bare, "PlugInFolderName", Str( u"P" ) ), "DisplayKind", Str( kind ) );
        EXPECT_EQ( At( Reloaded( stored ), "DisplayKind" ), Str( u"Variable" ) );
        EXPECT_EQ( At( Reloaded( stored ), "Variable" ), Str( u"VarName" ) );
    }
    const auto clipboard =
        With( With( bare, "DisplayKind", Str( u"Clipboard" ) ), "ClipboardTargetUseTriggerClipboard", Bool( true ) );
    EXPECT_EQ( At( Reloaded( clipboard ), "ClipboardTargetUseTriggerClipboard" ), Bool( true ) );
    EXPECT_FALSE(
        At( Reloaded( With( clipboard, "DisplayKind", Str( u"None" ) ) ), "ClipboardTargetUseTriggerClipboard" ) );
    EXPECT_EQ( ReadFailure( ActionDict( u"PlugIn" ) ), "params" );
    EXPECT_EQ( ReadFailure( ActionDict( u"PlugIn", { { "PlugInParameters", Array( {} ) } } ) ), "params" );
}

TEST_F( PlugIns, ParametersGoByLabelsThatAreNamesOfVariables )
{
    APlugIn action;
    action.SetParameterValue( u"Size", u"12" );
    EXPECT_EQ( action.GetParameterValue( u"Size" ), XText( u"12" ) );
    EXPECT_TRUE( action.GetParameterValue( u"Other" ).IsNull() );
    static_cast<void>( mLog.Take() );
    action.SetParameterValue( u"1", u"x" );
    EXPECT_TRUE( action.GetParameterValue( u"1" ).IsNull() );
    EXPECT_EQ( mLog.CountAssertions( "KVVariables::ValidVariable( label )" ), 2u );

    StringSearchee searchee;
    action.AddMatchStrings( searchee );
    const auto elements = searchee.GetElements();
    EXPECT_TRUE( std::any_of( elements.begin(), elements.end(), []( const auto& e ) { return e.mText == u"12"; } ) );
}

TEST_F( PlugIns, AreCalledByTheirTitleOrName )
{
    EXPECT_EQ( NewAction( { { "Title", Str( u"Do %Param%" ) }, { "Name", Str( u"N" ) } } ).GetNewActionTitle(),
        u"Do %Param%" );
    EXPECT_EQ( NewAction( { { "Name", Str( u"N" ) } } ).GetNewActionTitle(), u"N" );
    EXPECT_EQ( mLog.CountContaining( "Invalid Name" ), 0u );
    EXPECT_TRUE( NewAction( { { "Name", Bool( true ) } } ).GetInformationTitle().IsNull() );
    EXPECT_EQ( mLog.CountContaining( "Invalid Name boolean for Plug In Action P" ), 1u );
}

TEST_F( PlugIns, ATitleIsExpandedByWhoeverKnowsTokens )
{
    APlugIn action = NewAction( { { "Title", Str( u"Resize" ) } } );
    action.SetParameterValue( u"Size", u"12" );
    APlugIn::SetTokenText( []( TextView inTitle, const XPlistDictionary& inContext ) {
        EXPECT_EQ( inContext.GetCount(), 1u );
        const __SafeCFPropertyList parameters( inContext.Find( CFSTR( "Parameters" ) ) );
        return Text( inTitle ) + u" to " + At( parameters, "Size" ).AsString()->GetText();
    } );
    EXPECT_EQ( action.GetActionDescriptionString(), u"Resize to 12" );
    APlugIn::SetTokenText( nullptr );
    EXPECT_EQ( action.GetActionDescriptionString(), u"Resize" );
}

TEST_F( PlugIns, TheToolTipHasTheLinesThatThereAre )
{
    EXPECT_EQ( NewAction( {} ).GetToolTip(), std::nullopt );
    EXPECT_EQ( NewAction( { { "Author", Bool( true ) } } ).GetToolTip(), std::nullopt );
    EXPECT_EQ( NewAction( { { "Help", Str( u"one\r\n\ntwo\rthree\n\n" ) }, { "Author", Str( u"A" ) } } ).GetToolTip(),
        u"Author: A\rHelp: one\r\rtwo\rthree" );
}

TEST( PlugInListing, LikelyContainsAPlugInByItsInformationFile )
{
    EXPECT_TRUE( PlugInFolder::UnzipLikelyContains( u"  120  Mine/Korvalen Action.plist\n" ) );
    EXPECT_FALSE( PlugInFolder::UnzipLikelyContains( u"Mine/korvalen action.plist" ) );
}
