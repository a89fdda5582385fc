// What comes in from files: what arrives, what it joins, and that nothing at all arrives when something is wrong.
#include "MacrosWindow/MacroImport.h"

#include "Defines/KVPreferences.h"
#include "Macros/ImportedLibraries.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MacroExport.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeWorkspace.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Macros/RandomMacrosFile.h"
#include "Tests/Support/LongTests.h"
#include "Tests/Support/ScratchFolder.h"
#include "Tests/Support/StoppingFileCalls.h"
#include "Utility/Work/ManualWork.h"

namespace
{
using MacroImport::Options;
using MacroImport::Result;

class MacroImportTest : public DomainWorld
{
protected:
    MacroImportTest()
    {
        KVPreferences::UseFolder( mFolder.Path() );
        mPlatform.SetAlerts( mAlerts );
        mPlatform.SetWorkspace( mWorkspace );
        MacrosWindowUndo::Reset();
        ImportedLibraries::Reset();
    }
    ~MacroImportTest() override
    {
        MacrosWindowUndo::Reset();
        mWork.RunAll();
        KVPreferences::UseFolder( {} );
    }

    void Begin( std::initializer_list<__SafeCFPropertyList> inGroups )
    {
        mDomain.LoadFromPropertyList( FileWith( inGroups ) );
        MMacroPreferenceFile::SaveAllMacros();
        mWork.RunAll();
    }
    __SafeCFPropertyList Model() { return WithoutStamps( mDomain.GetPropertyList() ); }
    __SafeCFPropertyList OnDisk()
    {
        mWork.RunAll();
        const std::string bytes = mFolder.Read( "Korvalen Macros.plist" );
        return WithoutStamps( ReadPropertyList( XBytes( bytes ).Span() ).mValue );
    }
    /// That all is as it was, by what the test did with the model's dictionary before.
    void ExpectUntouched( const __SafeCFPropertyList& inModel, const std::string& inCase )
    {
        EXPECT_TRUE( Model() == inModel ) << inCase;
        EXPECT_TRUE( OnDisk() == inModel ) << inCase;
        EXPECT_EQ( MacrosWindowUndo::UndoCount(), 0u ) << inCase;
        EXPECT_FALSE( MacrosWindowUndo::NeedSaveAllMacros() ) << inCase;
        EXPECT_FALSE( MMacroInsertion::CurrentlyInserting() ) << inCase;
    }

    StoppingFileCalls mCalls; // which doesn't wait for the disk
    XFileCalls::Substitute mCallsInUse{ mCalls };
    ScratchFolder mFolder;
    FakeAlerts mAlerts;
    FakeWorkspace mWorkspace;
    Platform mPlatform;
    Platform::Substitute mPlatformInUse{ mPlatform };
    XManualWork mWork{ mClock };
    XWork::Substitute mWorkInUse{ mWork };
};

Options Enabled()
{
    Options options;
    options.mDisabled = ImportMacrosDisabledType::kAsTheyAre;
    return options;
}

__SafeCFPropertyList Named( const __SafeCFPropertyList& inObject, TextView inName )
{
    return With( inObject, "Name", Str( inName ) );
}

/// Changes, takes out or repeats a few bytes somewhere.
void Damage( std::string& ioBytes, RandomMacrosFile& ioRandom )
{
    const std::size_t at = ioRandom.Below( ioBytes.size() ), length = ioRandom.Below( 30 );
    switch ( ioRandom.Below( 3 ) )
    {
    case 0:
        ioBytes[at] = char( ioRandom.Below( 256 ) );
        break;
    case 1:
        ioBytes.erase( at, length );
        break;
    default:
        ioBytes.insert( at, ioBytes.substr( ioRandom.Below( ioBytes.size() ), length ) );
    }
}

std::string Words( const Result& inResult )
{
    Text text;
    for ( const Text& line : inResult.Describe() )
        text += line + u"\n";
    return UTF8FromText( text );
}
} // namespace

TEST_F( MacroImportTest, ReferencesWithinAFileFollowWhenUIDsWereTaken )
{
    Begin( { GroupWith( u"G", { MacroWith( u"A" ), MacroWith( u"B" ) } ) } );
    const Result result = MacroImport::importMacrosFromArray(
        Array( { GroupWith( u"H",
            { MacroWith( u"A", { { "Actions", Array( { ExecuteMacro( u"B" ), ExecuteMacro( u"elsewhere" ) } ) } } ),
                MacroWith( u"B" ) } ) } ),
        Enabled() );
    ASSERT_EQ( result.mMacros.size(), 2u ) << Words( result );
    EXPECT_NE( result.mMacros[0].mUID, XText( u"A" ) );
    EXPECT_NE( result.mMacros[1].mUID, XText( u"B" ) );
    EXPECT_EQ( ReferencesOf( FoundMacro( result.mMacros[0].mUID.GetText() ).CopyToPropertyList() ),
        ( std::vector<Text>{ result.mMacros[1].mUID.GetText(), u"elsewhere" } ) );
}

TEST_F( MacroImportTest, IsOneUndoStep )
{
    Begin( { GroupWith( u"G", { MacroWith( u"A" ) } ) } );
    const __SafeCFPropertyList before = Model();
    EXPECT_TRUE( MacroImport::importMacrosFromArray(
        Array( { GroupWith( u"H", { MacroWith( u"B" ) } ), SmartGroupWith( u"S", { Str( u"x" ) } ) } ), Enabled() ) );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 1u );
    const __SafeCFPropertyList after = Model();
    mClock.Advance( 2 );
    mWork.Advance( 2 );
    EXPECT_TRUE( OnDisk() == after );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_TRUE( Model() == before );
}

TEST_F( MacroImportTest, AGroupJoinsTheOneOfItsNameAndTarget )
{
    const auto target = Targeting( u"Included", { u"Mail.app" } );
    Begin( { Named( GroupWith( u"G", { MacroWith( u"A" ) } ), u"Letters" ),
        Named( GroupWith( u"Off", { MacroWith( u"O" ) }, { { "IsActive", Bool( false ) } } ), u"Resting" ) } );
    const auto file = Array( { Named( GroupWith( u"G1", { MacroWith( u"B" ) } ), u"LETTERS" ),
        Named( GroupWith( u"G2", { MacroWith( u"C" ) }, { { "Targeting", target } } ), u"Letters" ),
        Named( GroupWith( u"G3", { MacroWith( u"D" ), MacroWith( u"E", { { "IsActive", Bool( false ) } } ) } ),
            u"Resting" ) } );
    Options options;
    options.mDisabled = ImportMacrosDisabledType::kDisabled;
    const Result result = MacroImport::importMacrosFromArray( file, options );
    ASSERT_TRUE( result );
    EXPECT_EQ( FoundMacro( u"B" ).GetOwningGroup()->GetUID(), XText( u"G" ) );
    EXPECT_FALSE( FoundMacro( u"B" ).IsActive() );
    EXPECT_TRUE( FoundMacro( u"A" ).IsActive() );
    EXPECT_FALSE( FoundGroup( u"G2" ).IsActive() );
    ASSERT_EQ( result.mGroups.size(), 1u );
    EXPECT_EQ( result.mGroups[0].mUID, XText( u"G2" ) );
    ASSERT_EQ( result.mMerged.size(), 2u );
    EXPECT_EQ( result.mMerged[0].mGroup.mUID, XText( u"G" ) );
    // D stays enabled in a group that is off; E was off itself.
    ASSERT_EQ( result.mEnabledInGroupsThatAreOff.size(), 1u );
    EXPECT_EQ( result.mEnabledInGroupsThatAreOff[0].mMacros, 1u );
    EXPECT_NE( Words( result ).find( "The group “Resting” is off." ), std::string::npos ) << Words( result );
}

TEST_F( MacroImportTest, OnlyTheOptionKeyByItselfBringsMacrosInEnabled )
{
    constexpr struct
    {
        ImportMacrosDisabledType mType;
        std::uint32_t mKeys;
        bool mComesEnabled;
    } kCases[] = {
        { ImportMacrosDisabledType::kDisabled, kModifierOption, false },
        { ImportMacrosDisabledType::kAsTheyAre, 0, true },
        { ImportMacrosDisabledType::kByOptionKey, 0, false },
        { ImportMacrosDisabledType::kByOptionKey, kModifierOption, true },
        { ImportMacrosDisabledType::kByOptionKey, kModifierOption | 65536, true }, // caps lock doesn't count
        { ImportMacrosDisabledType::kByOptionKey, kModifierOption | kModifierShift, false },
        { ImportMacrosDisabledType::kByOptionKey, kModifierCommand, false },
    };
    for ( const auto& [type, keys, comesEnabled] : kCases )
    {
        Begin( {} );
        mWorkspace.mModifiers = keys;
        Options options;
        options.mDisabled = type;
        EXPECT_TRUE(
            MacroImport::importMacrosFromArray( Array( { GroupWith( u"H", { MacroWith( u"B" ) } ) } ), options ) );
        EXPECT_EQ( FoundGroup( u"H" ).IsActive(), comesEnabled ) << int( type ) << " " << keys;
    }
}

TEST_F( MacroImportTest, ABadElementLeavesAllAsItWasAndIsNamed )
{
    const auto good = GroupWith( u"H", { MacroWith( u"B" ) } );
    const struct
    {
        __SafeCFPropertyList mArray;
        const char* mNamed;
    } kCases[] = {
        { Array( { good, Str( u"text" ) } ), "Element 2" },
        { Array( { good, Dict( { { "Name", Str( u"Broken" ) } } ) } ), "“Broken”" },
        { Array( { good, Dict( { { "Macros", Int( 1 ) } } ) } ), "neither a list “Macros”" },
        { Array( { Dict( { { "SearchStrings", Str( u"x" ) } } ), good } ), "Element 1" },
        { Array( {} ), "no macros" },
        { Dict( { { "MacroGroups", Array( { good } ) } } ), "no macros" },
        { nullptr, "no macros" },
    };
    Begin( { GroupWith( u"G", { MacroWith( u"A" ) } ) } );
    const __SafeCFPropertyList before = Model();
    for ( const auto& [array, named] : kCases )
    {
        const Result result = MacroImport::importMacrosFromArray( array, Enabled() );
        EXPECT_FALSE( result ) << named;
        EXPECT_NE( Words( result ).find( named ), std::string::npos ) << Words( result );
        ExpectUntouched( before, named );
    }
}

TEST_F( MacroImportTest, MoreMacrosThanTheLimitAreRefused )
{
    Begin( {} );
    const auto before = Model();
    XMutableArray macros;
    const auto macro = MacroWith( u"A" );
    for ( std::size_t i = 0; i <= MacroImport::kMostMacros; ++i )
        macros.Append( macro );
    const Result result = MacroImport::importMacrosFromArray(
        Array( { Dict( { { "Macros", __SafeCFPropertyList( macros.Seal() ) } } ) } ), Enabled() );
    EXPECT_NE( Words( result ).find( "100001 macros are too many" ), std::string::npos ) << Words( result );
    ExpectUntouched( before, "too many" );
}

// What no look at the file foresees: whatever is thrown, wherever.
TEST_F( MacroImportTest, WhateverStopsAMergeItIsUndone )
{
    struct FailingRandom final : XRandom
    {
        std::uint64_t Next() override
        {
            if ( mLeft-- == 0 )
                throw std::bad_alloc();
            return mSource.Next();
        }
        XSeededRandom mSource{ 7 };
        int mLeft = 0;
    } random;
    const XRandom::Substitute substitute( random );
    random.mLeft = -1;
    Begin( { GroupWith( u"G", { MacroWith( u"A" ), MacroWith( u"B" ) } ) } );
    const __SafeCFPropertyList before = Model();
    const auto file = Array( { Named( GroupWith( u"H", { MacroWith( u"A" ), MacroWith( u"C" ) } ), u"Group G" ),
        SmartGroupWith( u"S", { Str( u"x" ) } ), GroupWith( u"I", { MacroWith( u"B" ) } ) } );
    int failures = 0;
    for ( bool came = false; not came; ++failures )
    {
        ASSERT_LT( failures, 1000 );
        random.mLeft = failures;
        const Result result = MacroImport::importMacrosFromArray( file, Enabled() );
        random.mLeft = -1;
        came = bool( result );
        if ( not came )
            ExpectUntouched( before, std::to_string( failures ) );
    }
    EXPECT_GT( failures, 4 );
    EXPECT_FALSE( Model() == before );
}

TEST_F( MacroImportTest, EditsThatWaitAreSavedBeforeAMergeThatCouldFail )
{
    Begin( { GroupWith( u"G", { MacroWith( u"A" ) } ) } );
    FoundGroup( u"G" ).SetName( u"Renamed" );
    MacrosWindowInterface::NoteChange( u"Rename", {} );
    EXPECT_TRUE( MacroImport::importMacrosFromArray( Array( { GroupWith( u"H", {} ) } ), Enabled() ) );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 2u );
    EXPECT_TRUE( MacrosWindowUndo::Undo() );
    EXPECT_EQ( FoundGroup( u"G" ).GetName(), u"Renamed" );
}

// Damage to the values, and then, in a file, to the bytes. What comes in can't run before the user enables something.
TEST_F( MacroImportTest, DamagedExportsComeInOrChangeNothing )
{
    RandomMacrosFile files( 11 );
    int refused = 0, came = 0, asFile = 0;
    const int count = ShortOrLong( 300, 10'000 );
    for ( int i = 0; i < count and not HasFailure(); ++i )
    {
        SCOPED_TRACE( i );
        Begin( { GroupWith( u"G", { MacroWith( u"A" ) } ) } );
        MacrosWindowUndo::Reset();
        const __SafeCFPropertyList before = Model();
        __SafeCFPropertyList value = At( files.Next(), "MacroGroups" );
        for ( int j = 0; j < i % 4; ++j )
            value = files.Damaged( value );
        const MacroExport::Encoded encoded = MacroExport::EncodeMacros( value );
        const bool isFile = i % 3 > 0 and not encoded.mError;
        Result result;
        if ( isFile )
        {
            std::string bytes( encoded.mBytes.View() );
            for ( int j = 1; j < i % 3; ++j )
                Damage( bytes, files );
            mFolder.Write( "x.kvmacros", bytes );
            result = MacroImport::ImportFile( mFolder / "x.kvmacros", Options() );
        }
        else
            result = MacroImport::importMacrosFromArray( value, Options() );
        asFile += isFile;
        ( result ? came : refused ) += 1;
        for ( const MacroImport::Named& named : result.mMacros )
        {
            const MMacro& macro = FoundMacro( named.mUID.GetText() );
            EXPECT_FALSE( macro.IsActive() and macro.GetOwningGroup()->IsActive() ) << named.mUID.GetUTF8();
        }
        if ( not result )
            ExpectUntouched( before, "damaged" );
    }
    EXPECT_GT( refused, count / 8 );
    EXPECT_GT( came, count / 8 );
    EXPECT_GT( asFile, count / 8 ); // many hold half a character, which no export has
}

TEST_F( MacroImportTest, WhatIsntUnderstoodWithinAMacroIsLeftOutAndTold )
{
    Begin( {} );
    const Result result = MacroImport::importMacrosFromArray(
        Array( { GroupWith( u"H",
            { Named( MacroWith( u"B",
                         { { "Actions",
                             Array( { ActionDict( u"Zap" ), ActionDict( u"Beep" ), ActionDict( u"Pause" ) } ) } } ),
                  u"Mine" ),
                Str( u"no macro" ) } ) } ),
        Enabled() );
    ASSERT_TRUE( result );
    ASSERT_EQ( result.mLeftOut.size(), 3u );
    EXPECT_EQ( UTF8FromText( result.mLeftOut[0] ), "Mine › element 1 of “Actions”: no action type is called “Zap”" );
    EXPECT_TRUE( result.mLeftOut[2].starts_with( u"Group H › element 2 of “Macros”: " ) )
        << UTF8FromText( result.mLeftOut[2] );
    EXPECT_EQ( FoundMacro( u"B" ).GetActionList()->GetCount(), 1 );
}

TEST_F( MacroImportTest, TellsWhatTheMacrosCanDo )
{
    Begin( {} );
    const auto shell = ActionDict( u"Group", { { "Actions", Array( { ActionDict( u"ExecuteShellScript" ) } ) } } );
    const Result result = MacroImport::importMacrosFromArray(
        Array( { GroupWith( u"H",
            { Named( MacroWith( u"B", { { "Actions", Array( { shell } ) } } ), u"Cleanup" ),
                Named( MacroWith( u"C", { { "Actions", Array( { ActionDict( u"Pause" ) } ) } } ), u"Wait" ) } ) } ),
        Enabled() );
    ASSERT_TRUE( result.mAbilities.Contains( MacroAbility::kRunScripts ) );
    EXPECT_EQ( result.mAbilities.Macros().at( MacroAbility::kRunScripts ), std::vector<Text>{ u"Cleanup" } );
    EXPECT_EQ( result.mAbilities.Macros().size(), 1u );
    EXPECT_NE( Words( result ).find( "Run scripts and commands: Cleanup" ), std::string::npos );
}

TEST_F( MacroImportTest, ActionsGoToTheEndOfTheEditedMacroAllOrNone )
{
    Begin( { GroupWith( u"G", { MacroWith( u"A", { { "Actions", Array( { ActionDict( u"Pause" ) } ) } } ) } ) } );
    const __SafeCFPropertyList before = Model();
    EXPECT_FALSE( MacroImport::ImportActions( Array( { ActionDict( u"Comment" ) } ), {} ) );
    EXPECT_EQ( mLog.CountContaining( "importFromURL must be editing a macro" ), 1u );
    EXPECT_EQ( mAlerts.mSounds.size(), 1u );

    Options options;
    options.mEditedMacro = &FoundMacro( u"A" );
    const Result bad =
        MacroImport::ImportActions( Array( { ActionDict( u"Comment" ), ActionDict( u"Zap" ) } ), options );
    EXPECT_NE( Words( bad ).find( "Element 2 can’t be imported: no action type is called “Zap”" ), std::string::npos )
        << Words( bad );
    ExpectUntouched( before, "bad actions" );

    const Result good = MacroImport::ImportActions( ActionDict( u"Comment" ), options );
    EXPECT_EQ( good.mActions, 1u );
    ASSERT_EQ( FoundMacro( u"A" ).GetActionList()->GetCount(), 2 );
    EXPECT_EQ( FoundMacro( u"A" ).GetActionList()->GetAction( 1 )->GetActionType(), HActionType::kComment );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 1u );
}

TEST_F( MacroImportTest, ALibraryComesInASecondTimeOnlyWhenTheUserWantsIt )
{
    Begin( {} );
    const auto library =
        Dict( { { "UID", Str( u"L" ) }, { "Items", Array( { GroupWith( u"H", { MacroWith( u"B" ) } ) } ) } } );
    EXPECT_TRUE( MacroImport::ImportLibrary( library, Enabled() ) );
    EXPECT_TRUE( mAlerts.mAlerts.empty() );
    EXPECT_TRUE( ImportedLibraries::WasImported( u"L" ) );
    EXPECT_FALSE( MacroImport::ImportLibrary( library, Enabled() ) );
    EXPECT_EQ( mAlerts.mAlerts.size(), 1u );
    mAlerts.mButton = 1;
    EXPECT_TRUE( MacroImport::ImportLibrary( library, Enabled() ) );
    EXPECT_FALSE( MacroImport::ImportLibrary( Dict( { { "UID", Str( u"M" ) } } ), Enabled() ) );
    EXPECT_FALSE( ImportedLibraries::WasImported( u"M" ) );
}

TEST_F( MacroImportTest, TheExtensionSaysWhatAFileIsAndOnlyLocalFilesAreRead )
{
    Begin( {} );
    mFolder.Write( "a b.KVMacros",
        MacroExport::EncodeMacros( Array( { GroupWith( u"H", { MacroWith( u"B" ) } ) } ) ).mBytes.View() );
    mFolder.Write( "broken.kvmacros", "<plist>" );
    mFolder.Write( "other.txt", "x" );
    const Text folder = TextFromUTF8( mFolder.Path().native() );
    EXPECT_TRUE( MacroImport::importFromURL( u"file://localhost" + folder + u"/a%20b.KVMacros", {} ) );
    EXPECT_TRUE( MacroImport::importFromURL( folder + u"/a b.KVMacros", {} ) );
    EXPECT_FALSE( MacroImport::importFromURL( folder + u"/broken.kvmacros", {} ) );
    EXPECT_FALSE( MacroImport::importFromURL( folder + u"/none.kvmacros", {} ) );
    EXPECT_FALSE( MacroImport::importFromURL( folder + u"/other.txt", {} ) );
    EXPECT_EQ( mLog.CountContaining( "importFromURL unknown file extension for " ), 1u );
    for ( const TextView url : { u"https://example.com/a.kvmacros", u"file://host/a.kvmacros", u"file:a.kvmacros",
              u"file:///a%00.kvmacros", u"file:///a%4", u"smb://host/a.kvmacros", u"" } )
    {
        EXPECT_FALSE( MacroImport::LocalFileOfURL( url ) ) << UTF8FromText( url );
        EXPECT_FALSE( MacroImport::importFromURL( url, {} ) ) << UTF8FromText( url );
    }
}

TEST_F( MacroImportTest, ComesBackFromItsOwnExport )
{
    const Text odd = u"\u0001\r\n\tä\U0001F600<&>";
    Begin(
        { Named(
              GroupWith( u"G",
                  { Named( MacroWith( u"A",
                               { { "Actions", Array( { ActionDict( u"Comment", { { "Title", Str( odd ) } } ) } ) } } ),
                        u"One" ),
                      MacroWith( u"B" ) },
                  { { "Targeting", Targeting( u"Included", { u"Mail.app" } ) } } ),
              u"Letters" ),
            SmartGroupWith( u"S", { Str( odd ) } ) } );
    const __SafeCFPropertyList before = Model();
    const auto entries =
        MacroExport::EntriesToExport( { &FoundGroup( u"G" ), MMacroSerializedObject::FindObjectByUID( u"S" ) } );
    const auto file = mFolder / "all.kvmacros";
    ASSERT_FALSE( MacroExport::WriteMacros( file, __SafeCFPropertyList( entries ) ) );
    Begin( {} );
    EXPECT_TRUE( MacroImport::ImportFile( file, Enabled() ) );
    EXPECT_TRUE( At( Model(), "MacroGroups" ) == At( before, "MacroGroups" ) );
}
