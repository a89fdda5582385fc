#include "Macros/MacroExport.h"

#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Support/ScratchFolder.h"

#include <cstdlib>

namespace
{
class MacroExportTest : public DomainWorld
{
protected:
    MacroExportTest() { mPlatform.SetAlerts( mAlerts ); }

    ScratchFolder mFolder;
    FakeAlerts mAlerts;
    Platform mPlatform;
    Platform::Substitute mPlatformInUse{ mPlatform };
};

__SafeCFPropertyList Comment( TextView inTitle )
{
    return ActionDict( u"Comment", { { "Title", Str( inTitle ) } } );
}
} // namespace

TEST_F( MacroExportTest, AGroupHoldsTheChosenMacrosInTheirOrder )
{
    mDomain.LoadFromPropertyList(
        FileWith( { GroupWith( u"G", { MacroWith( u"C" ), MacroWith( u"B" ), MacroWith( u"A" ) } ),
            GroupWith( u"H", { MacroWith( u"D" ) } ), GroupWith( u"I", { MacroWith( u"E" ) } ) } ) );
    const __SafeCFPropertyList entries =
        MacroExport::macrosToExportForMacroSet( { &FoundMacro( u"A" ), &FoundMacro( u"C" ), &FoundMacro( u"D" ) } );
    ASSERT_EQ( entries.AsArray()->GetCount(), 2u );
    const auto uids = []( const __SafeCFPropertyList& group ) {
        std::vector<Text> found;
        for ( const XPlistNode* const macro : At( group, "Macros" ).AsArray()->Nodes() )
            found.push_back( TextAt( __SafeCFPropertyList( macro ), "UID" ) );
        return found;
    };
    EXPECT_EQ( uids( entries.AsArray()->GetValueAt( 0 ) ), ( std::vector<Text>{ u"C", u"A" } ) );
    EXPECT_EQ( uids( entries.AsArray()->GetValueAt( 1 ) ), std::vector<Text>{ u"D" } );
    EXPECT_EQ( MacroExport::CountMacros( entries ), 3u );
}

TEST_F( MacroExportTest, PlistlibReadsAnExport )
{
    mDomain.LoadFromPropertyList( FileWith( { GroupWith(
        u"G", { MacroWith( u"A", { { "Actions", Array( { Comment( u"1\r\n2\rä\U0001F600 <&>" ) } ) } } ) } ) } ) );
    const __SafeCFPropertyList entries = MacroExport::macrosToExportForMacroSet( { &FoundMacro( u"A" ) } );
    ASSERT_FALSE( MacroExport::WriteMacros( mFolder / "a.kvmacros", entries ) );
    mFolder.Write( "convert.py",
        "import plistlib, sys\n"
        "value = plistlib.load(open(sys.argv[1] + '/a.kvmacros', 'rb'))\n"
        "plistlib.dump(value, open(sys.argv[1] + '/back', 'wb'), fmt=plistlib.FMT_BINARY)\n" );
    ASSERT_EQ(
        std::system(
            ( "python3 '" + ( mFolder / "convert.py" ).native() + "' '" + mFolder.Path().native() + "'" ).c_str() ),
        0 );
    const std::string back = mFolder.Read( "back" );
    EXPECT_TRUE( ReadPropertyList( XBytes( back ).Span() ).mValue == entries );
}

TEST_F( MacroExportTest, HalfACharacterIsRefusedByTheMacrosNameAndTheFileStays )
{
    const Text half( 1, char16_t( 0xD800 ) );
    mDomain.LoadFromPropertyList( FileWith( { GroupWith( u"G",
        { MacroWith( u"A", { { "Name", Str( u"Good" ) } } ),
            MacroWith( u"B", { { "Name", Str( u"Culprit" ) }, { "Actions", Array( { Comment( half ) } ) } } ) } ) } ) );
    mFolder.Write( "a.kvmacros", "old" );
    const __SafeCFPropertyList entries = MacroExport::EntriesToExport( { &FoundGroup( u"G" ) } );
    const auto error = MacroExport::WriteMacros( mFolder / "a.kvmacros", entries );
    ASSERT_TRUE( error );
    EXPECT_TRUE( error->starts_with( u"“Culprit” can’t be exported: " ) ) << UTF8FromText( *error );
    EXPECT_EQ( mFolder.Read( "a.kvmacros" ), "old" );

    EXPECT_FALSE( MacroExport::ExportMacros( mFolder / "a.kvmacros", entries ) );
    ASSERT_EQ( mAlerts.mAlerts.size(), 1u );
    EXPECT_EQ( mAlerts.mAlerts[0].mTitle, u"Export Failed" );
    EXPECT_TRUE( mAlerts.mNotifications.empty() );
}

TEST_F( MacroExportTest, TheNoticeCounts )
{
    mDomain.LoadFromPropertyList( FileWith( { GroupWith( u"G", { MacroWith( u"A" ), MacroWith( u"B" ) } ) } ) );
    MMacro *const a = &FoundMacro( u"A" ), *const b = &FoundMacro( u"B" );
    for ( const std::set<MMacro*>& macros : { std::set<MMacro*>{}, { a }, { a, b } } )
        EXPECT_TRUE(
            MacroExport::ExportMacros( mFolder / "x.kvmacros", MacroExport::macrosToExportForMacroSet( macros ) ) );
    ASSERT_EQ( mAlerts.mNotifications.size(), 3u );
    EXPECT_EQ( mAlerts.mNotifications[0].second, u"“x.kvmacros” was written without any macros." );
    EXPECT_EQ( mAlerts.mNotifications[1].second, u"The macro was exported to “x.kvmacros”." );
    EXPECT_EQ( mAlerts.mNotifications[2].second, u"The macros were exported to “x.kvmacros”." );
}

TEST_F( MacroExportTest, OneMacroComesBackFromAnExportOfItsShape )
{
    mDomain.LoadFromPropertyList( FileWith( { GroupWith( u"G", { MacroWith( u"A" ), MacroWith( u"B" ) } ) } ) );
    const __SafeCFPropertyList one = FoundGroup( u"G" ).CopyOneMacroToPropertyListForExport( &FoundMacro( u"A" ) );
    const InsertionScope insertion;
    const auto macro = MMacroGroup::CopyOneMacroFromExportPropertyList( one );
    EXPECT_TRUE( With( macro->CopyToPropertyList(), "UID", Str( u"A" ) ) == FoundMacro( u"A" ).CopyToPropertyList() );
    const struct
    {
        __SafeCFPropertyList mValue;
        const char* mMessage;
    } kCases[] = {
        { Array( {} ), "dictionary && dictionary->IsCorrectTypeID()" },
        { Dict( {} ), "dictionary->Get( CFSTR(\"Macros\"), macros )" },
        { FoundGroup( u"G" ).CopyToPropertyList(), "macros->GetCount() == 1" },
        { Dict( { { "Macros", Array( { Dict( {} ) } ) } } ), "result" },
    };
    for ( const auto& [value, message] : kCases )
    {
        std::string thrown;
        try
        {
            (void)MMacroGroup::CopyOneMacroFromExportPropertyList( value );
        }
        catch ( const XException& exception )
        {
            thrown = UTF8FromText( exception.GetMessage() );
        }
        EXPECT_EQ( thrown, message );
    }
}
