// What is special to single kinds, and what the base and the factories do for all.
#include "Tests/Support/ScratchFolder.h"
#include "Tests/Triggers/TriggerTestSupport.h"

#include "Defines/KVIconRegistry.h"
#include "Defines/KVPreferences.h"
#include "Triggers/KeyTriggers.h"
#include "Triggers/TGestureTrigger.h"
#include "Triggers/THIDTrigger.h"
#include "Triggers/TMIDITrigger.h"
#include "Triggers/TRemoteTrigger.h"
#include "Triggers/TimeTriggers.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Search/StringSearcher.h"

#include <algorithm>
#include <array>

namespace
{
struct LoggedTrigger : MacroWorld
{};
} // namespace

TEST( TriggerFactory, EachKindHasOneAndOtherNumbersHaveThatOfHotKeys )
{
    for ( std::size_t i = 0; i < std::size( kTriggerTypeNames ); ++i )
    {
        EXPECT_EQ( TTriggerFactory::GetTriggerFactory( TriggerType( i ) ).GetTriggerType(), TriggerType( i ) );
        EXPECT_EQ( NewTrigger( TriggerType( i ) )->GetTriggerType(), TriggerType( i ) );
        EXPECT_EQ( &NewTrigger( TriggerType( i ) )->GetTriggerFactory(),
            &TTriggerFactory::GetTriggerFactory( TriggerType( i ) ) );
    }
    for ( const int number : { 25, 26, -1, 1000 } )
        EXPECT_EQ( &TTriggerFactory::GetTriggerFactory( TriggerType( number ) ),
            &TTriggerFactory::GetTriggerFactory( TriggerType::kHotKey ) );
}

TEST( TriggerFactory, EveryKindHasAnIconOfTheRegistry )
{
    for ( std::size_t i = 0; i < std::size( kTriggerTypeNames ); ++i )
    {
        const XIcon icon = NewTrigger( TriggerType( i ) )->GetXIcon();
        ASSERT_TRUE( icon.Defined() ) << kTriggerTypeNames[i];
        EXPECT_TRUE( KVIconRegistryIsKnown( icon.GetInternalName().GetText() ) ) << kTriggerTypeNames[i];
    }
    EXPECT_EQ( NewTrigger( TriggerType::kFolder )->GetXIcon().GetInternalName(), u"Folder" );
    EXPECT_EQ( NewTrigger( TriggerType::kIdle )->GetXIcon().GetInternalName(), u"Trigger" );
}

TEST( TriggerFactory, ManagersComeFromWhoeverInstalledThem )
{
    const TTriggerFactory& factory = TTriggerFactory::GetTriggerFactory( TriggerType::kIdle );
    EXPECT_EQ( factory.CreateTriggerManager(), nullptr );
    std::vector<TriggerType> asked;
    TTriggerFactory::InstallManagers( [&asked]( TriggerType type ) {
        asked.push_back( type );
        return std::make_unique<TBaseTriggerTypeManager>();
    } );
    EXPECT_NE( factory.CreateTriggerManager(), nullptr );
    TTriggerFactory::InstallManagers( {} );
    EXPECT_THAT( asked, testing::ElementsAre( TriggerType::kIdle ) );
}

TEST( BaseTrigger, WhatIsNoTriggerThrows )
{
    EXPECT_EQ( TriggerFailure( Str( u"x" ) ), "dictionary && dictionary->IsCorrectTypeID()" );
    EXPECT_EQ( TriggerFailure( {} ), "dictionary && dictionary->IsCorrectTypeID()" );
    for ( const auto* const name : { u"hotkey", u"", u"HotKey ", u"Nonsense" } )
        EXPECT_EQ( TriggerFailure( Trigger( name ) ), "false" );
    EXPECT_EQ( TriggerFailure( Dict( {} ) ), "false" );
    EXPECT_EQ( TriggerFailure( Dict( { { "MacroTriggerType", Int( 3 ) } } ) ), "false" );
}

TEST( BaseTrigger, OlderNamesOfKindsAreReadAndSavedAsTodays )
{
    NotesTaken notes;
    EXPECT_EQ( ReloadedTrigger( Trigger( u"FloatingPalette" ) ), Trigger( u"MacroPalette" ) );
    EXPECT_EQ( ReloadedTrigger( Trigger( u"MenuBar" ) ), Trigger( u"StatusMenu" ) );
    EXPECT_THAT( notes.mNotes, testing::ElementsAre( "FloatingPalette is MacroPalette", "MenuBar is StatusMenu" ) );
}

TEST( BaseTrigger, ATriggerGoesThroughItsXML )
{
    const auto trigger = LoadedTrigger( HotKeyTrigger( 4 ) );
    const auto again = TBaseTrigger::CreateFromTriggerXML( trigger->GetTriggerXML().value() );
    EXPECT_EQ( trigger->CompareWith( *again ), 0 );
    EXPECT_EQ( TBaseTrigger::CreateFromTriggerXML( u"<plist><dict>" ), nullptr );
}

TEST( BaseTrigger, KindsAreOrderedByNumberFirst )
{
    for ( std::size_t i = 0; i + 1 < std::size( kTriggerTypeNames ); ++i )
    {
        EXPECT_EQ( NewTrigger( TriggerType( i ) )->CompareWith( *NewTrigger( TriggerType( i + 1 ) ) ), -1 );
        EXPECT_EQ( NewTrigger( TriggerType( i + 1 ) )->CompareWith( *NewTrigger( TriggerType( i ) ) ), 1 );
    }
}

TEST( BaseTrigger, OnlyTheKindAskedForAnswersItself )
{
    for ( std::size_t i = 0; i < std::size( kTriggerTypeNames ); ++i )
    {
        const auto trigger = NewTrigger( TriggerType( i ) );
        const auto isA = [&]( TriggerType type ) { return TriggerType( i ) == type; };
        EXPECT_EQ( trigger->GetAsHotKeyTrigger() != nullptr, isA( TriggerType::kHotKey ) ) << i;
        EXPECT_EQ( trigger->GetAsTypedStringTrigger() != nullptr, isA( TriggerType::kTypedString ) ) << i;
        EXPECT_EQ( trigger->GetAsHIDTrigger() != nullptr, isA( TriggerType::kHID ) ) << i;
        EXPECT_EQ( trigger->GetAsDraggedFileTrigger() != nullptr, isA( TriggerType::kDraggedFile ) ) << i;
    }
}

TEST( BaseTrigger, ASearchIsAskedOfTheWordsAndOfAHotKeysKeystroke )
{
    StringSearcher searcher( TextView( u"hotkey:⇧⌘C" ) );
    EXPECT_TRUE( LoadedTrigger( HotKeyTrigger( 8, 256 + 512 ) )->MatchesTextSearch( searcher ) );
    EXPECT_FALSE( LoadedTrigger( HotKeyTrigger( 8, 256 ) )->MatchesTextSearch( searcher ) );
    StringSearcher nothing;
    EXPECT_TRUE( NewTrigger( TriggerType::kWake )->MatchesTextSearch( nothing ) ) << "nothing finds everything";
}

TEST( BaseTrigger, WhatCouldNeverFireIsUseless )
{
    const auto hid = []( std::int64_t vendor, std::int64_t product, bool deck ) {
        return With( LoadableTrigger( u"HID" ),
            { { "ElementVendorID", Int( vendor ) }, { "ElementProductID", Int( product ) },
                { "ElementStreamDeck", Bool( deck ) } } );
    };
    const auto gesture = []( TextView path, TextView requirement, int modifiers, int button ) {
        return Trigger( u"Gesture",
            { { "Gesture", Str( path ) }, { "Requirement", Str( requirement ) }, { "Modifiers", Int( modifiers ) },
                { "Button", Int( button ) } } );
    };
    const std::pair<__SafeCFPropertyList, bool> kCases[] = {
        { HotKeyTrigger( 32767 ), true },
        { HotKeyTrigger( 0 ), false },
        { Trigger( u"TypedString", { { "TypedString", Str( u"" ) } } ), true },
        { Trigger( u"TypedString", { { "TypedString", Str( u" " ) } } ), false },
        { hid( 0, 0, false ), true },
        { hid( 0, 0, true ), false },
        { hid( 1, 0, false ), false },
        { hid( 0, 1, false ), false },
        { With( hid( 0, 0, true ), "ElementCookie", nullptr ), true }, // it can't be read
        { gesture( u"", u"UseModifiersAndMouse", 256, 1 ), true },
        { gesture( u"R", u"Nothing", 256, 1 ), true },
        { gesture( u"R", u"UseModifiers", 0, 1 ), true },
        { gesture( u"R", u"UseModifiers", 256, 0 ), false },
        { gesture( u"R", u"UseModifiers", 1024, 0 ), true }, // caps lock is no modifier
        { gesture( u"R", u"UseModifiersOrMouse", 0, 1 ), true },
        { gesture( u"R", u"UseModifiersOrMouse", 256, 0 ), false },
        { gesture( u"R", u"UseMouse", 256, 0 ), true },
        { gesture( u"R", u"UseMouse", 0, 1 ), false },
        { gesture( u"R", u"UseModifiersAndMouse", 0, 0 ), false },
        { gesture( u"RD", u"Nothing", 0, 0 ), false },
        { Trigger( u"Cron" ), false },
        { Trigger( u"Remote" ), false },
        { Trigger( u"Volume" ), false },
    };
    for ( const auto& [value, useless] : kCases )
        EXPECT_EQ( LoadedTrigger( value )->TriggerIsUseless(), useless ) << Shown( value );
}

TEST( HotKeyTrigger, OnlyFourModifiersCount )
{
    NotesTaken notes;
    const auto trigger = LoadedTrigger( HotKeyTrigger( 5, 0xFFFF ) );
    EXPECT_EQ( At( trigger->CopyToPropertyList(), "Modifiers" ), Int( 6912 ) );
    EXPECT_THAT( notes.mNotes, testing::ElementsAre( "repaired Modifiers" ) );
    THotKeyTrigger* const hotKey = trigger->GetAsHotKeyTrigger();
    hotKey->SetKeystroke( 8, 256 + 1024 );
    EXPECT_TRUE( hotKey->MatchesHotKey( 8, 256 ) );
    EXPECT_TRUE( hotKey->MatchesHotKey( 8, 256 + 1024 ) ) << "caps lock is no part of a hot key";
    EXPECT_FALSE( hotKey->MatchesHotKey( 8, 0 ) );
    EXPECT_FALSE( hotKey->MatchesHotKey( 9, 256 ) );
    EXPECT_FALSE( THotKeyTrigger().MatchesHotKey( 32767, 0 ) );
    EXPECT_FALSE( NewTrigger( TriggerType::kHID )->MatchesHotKey( 8, 256 ) );
}

TEST( HotKeyTrigger, TheOlderRepeatStandsUnlessTheFireTypeIsKnown )
{
    const struct
    {
        __SafeCFPropertyList mRepeat, mFireType;
        TextView mRead;
    } kCases[] = {
        { Bool( true ), {}, u"WhileDown" },
        { Bool( false ), {}, u"Pressed" },
        { Int( 1 ), {}, u"Pressed" },
        { Bool( true ), Str( u"Released" ), u"Released" },
        { Bool( true ), Str( u"Sometimes" ), u"WhileDown" },
        { {}, Str( u"Sometimes" ), u"Pressed" },
    };
    for ( const auto& [repeat, fireType, read] : kCases )
        EXPECT_EQ(
            ReloadedTrigger( With( HotKeyTrigger( 1 ), { { "TriggerRepeat", repeat }, { "FireType", fireType } } ) ),
            With( HotKeyTrigger( 1 ), "FireType", Str( read ) ) )
            << Shown( repeat ) << Shown( fireType );
}

TEST( HotKeyTrigger, TapsAreCountedInTheFileForTapsAlone )
{
    const auto tapped = With( HotKeyTrigger( 1 ), { { "FireType", Str( u"Tapped" ) }, { "TapCount", Int( 2 ) } } );
    EXPECT_EQ( ReloadedTrigger( tapped ), tapped );
    EXPECT_EQ( ReloadedTrigger( With( tapped, "FireType", Str( u"Released" ) ) ),
        With( HotKeyTrigger( 1 ), "FireType", Str( u"Released" ) ) );
}

TEST( ApplicationTrigger, OlderFireTypesAreReadWhereTheCurrentOneIsntKnown )
{
    const struct
    {
        std::vector<PlistEntry> mKeys;
        TextView mRead;
    } kCases[] = {
        { {}, u"Activate" },
        { { { "TriggerRepeat", Bool( true ) } }, u"WhileActive" },
        { { { "TriggerRepeat", Bool( true ) }, { "FireType", Str( u"Launch" ) } }, u"WhileRunning" },
        { { { "TriggerRepeat", Bool( true ) }, { "FireType", Str( u"Deactivate" ) } }, u"Deactivate" },
        { { { "TriggerRepeat", Bool( false ) }, { "FireType", Str( u"Launch" ) } }, u"Launch" },
        { { { "FireType", Str( u"Quit" ) } }, u"Quit" },
        { { { "FireType", Str( u"Quit" ) }, { "FireType2", Str( u"Launch" ) } }, u"Launch" },
        { { { "FireType", Str( u"Quit" ) }, { "FireType2", Str( u"Now" ) } }, u"Quit" },
        { { { "FireType", Str( u"Now" ) }, { "FireType2", Int( 1 ) } }, u"Activate" },
        { { { "TriggerRepeat", Bool( true ) }, { "FireType2", Str( u"Activate" ) } }, u"Activate" },
    };
    for ( const auto& [keys, read] : kCases )
    {
        __SafeCFPropertyList value = Trigger( u"Application", { { "Target", Str( u"Front" ) } } );
        for ( const auto& [key, entry] : keys )
            value = With( value, key, entry );
        EXPECT_EQ( ReloadedTrigger( value ),
            Trigger( u"Application",
                { { "Target", Str( u"Front" ) }, { "FireType2", Str( read ) }, { "RepeatTime", Int( 60 ) } } ) )
            << Shown( value );
    }
}

TEST( ApplicationTrigger, AnApplicationWithoutATypeIsThatOneAndAWrongOneIsNone )
{
    const auto app = Dict( { { "BundleIdentifier", Str( u"com.example.editor" ) }, { "Name", Str( u"Editor" ) } } );
    const auto saved = ReloadedTrigger( Trigger( u"Application", { { "Application", app } } ) );
    EXPECT_EQ( At( saved, "Target" ), Str( u"Specific" ) );
    EXPECT_EQ( At( saved, "Application" ), app );
    EXPECT_EQ( At( ReloadedTrigger( Trigger( u"Application", { { "Application", Str( u"x" ) } } ) ), "Application" ),
        __SafeCFPropertyList() );
}

TEST( TypedStringTrigger, DefaultsOfCaseAndDiacriticalsAreLeftOut )
{
    const auto plain = Trigger( u"TypedString",
        { { "TypedString", Str( u"x" ) }, { "SimulateDeletes", Bool( true ) },
            { "OnlyAfterWordBreak", Bool( false ) } } );
    EXPECT_EQ(
        ReloadedTrigger( With( plain, { { "Case", Str( u"Exact" ) }, { "DiacriticalsMatter", Bool( true ) } } ) ),
        plain );

    NotesTaken notes;
    EXPECT_EQ( ReloadedTrigger( With(
                   plain, { { "Case", Str( u"IgnoreDiacriticals" ) }, { "DiacriticalsMatter", Bool( true ) } } ) ),
        With( plain, { { "Case", Str( u"Ignore" ) }, { "DiacriticalsMatter", Bool( false ) } } ) );
    EXPECT_THAT( notes.mNotes, testing::ElementsAre( "upgraded Case" ) );
}

TEST( MIDITrigger, RequiredKeysThrowByTheNameOfWhatTheyFill )
{
    const auto midi = Trigger( u"MIDI",
        { { "Device", Str( u"D" ) }, { "Channel", Int( 1 ) }, { "Note", Int( 2 ) }, { "Controller", Int( 3 ) },
            { "CCFireType", Str( u"Equal" ) }, { "Value", Int( 4 ) } } );
    constexpr struct
    {
        const char16_t* mKind;
        const char *mKey, *mMessage;
    } kCases[] = {
        { u"Note", "Device", "dictionary->Get( CFSTR(\"Device\"), device )" },
        { u"Note", "Channel", "dictionary->Get( CFSTR(\"Channel\"), mChannel )" },
        { u"Note", "Note", "dictionary->Get( CFSTR(\"Note\"), mNote )" },
        { u"ControlChange", "Channel", "dictionary->Get( CFSTR(\"Channel\"), mChannel )" },
        { u"ControlChange", "Controller", "dictionary->Get( CFSTR(\"Controller\"), mNote )" },
        { u"ControlChange", "Value", "dictionary->Get( CFSTR(\"Value\"), mCCValue )" },
        { u"Note", "Value", "" },
        { u"Packet", "Channel", "" },
    };
    for ( const auto& [kind, key, message] : kCases )
        EXPECT_EQ( TriggerFailure( With( midi, { { "Kind", Str( kind ) }, { key, nullptr } } ) ), message );
}

TEST( MIDITrigger, OnlyControllersThatAreComparedNeedAValue )
{
    using Fire = MIDIControlFireType;
    for ( std::size_t i = 0; i < std::size( kMIDIControlFireTypeNames ); ++i )
    {
        TMIDITrigger trigger;
        trigger.SetControlFireType( Fire( i ) );
        EXPECT_FALSE( trigger.NeedsValue() );
        trigger.SetKind( MIDITriggerKind::kControlChange );
        const bool isCompared = Fire( i ) != Fire::kChanges and Fire( i ) != Fire::kChanged and
            Fire( i ) != Fire::kDecreases and Fire( i ) != Fire::kIncreases;
        EXPECT_EQ( trigger.NeedsValue(), isCompared ) << i;
    }
    const std::array<std::uint8_t, 3> bytes{ 0x90, 0x0A, 0xFF };
    EXPECT_EQ( TMIDITrigger::PacketToString( bytes ), u"90 0A FF" );
    EXPECT_EQ( TMIDITrigger::PacketToString( {} ), u"" );
}

TEST_F( LoggedTrigger, AnElementOfADeviceIsReadWholeOrNotAtAll )
{
    const auto fresh = With( Trigger( u"HID" ),
        { { "UseModifiers", Bool( false ) }, { "Modifiers", Int( 0 ) }, { "FireType", Str( u"Pressed" ) },
            { "TapCount", Int( 0 ) }, { "ElementName", Str( u"None" ) }, { "ElementShortName", Str( u"-" ) },
            { "ElementStreamDeck", Bool( false ) }, { "ElementVendorID", Int( 0 ) }, { "ElementProductID", Int( 0 ) },
            { "ElementDeviceUsagePage", Int( 0 ) }, { "ElementDeviceUsage", Int( 0 ) },
            { "ElementUsagePage", Int( 0 ) }, { "ElementUsage", Int( 0 ) }, { "ElementCookie", Int( 0 ) },
            { "ElementValue", Int( 0 ) } } );
    EXPECT_EQ( NewTrigger( TriggerType::kHID )->CopyToPropertyList(), fresh );

    const auto stored = With( fresh,
        { { "UseModifiers", Bool( true ) }, { "Modifiers", Int( 2048 ) }, { "FireType", Str( u"Tapped" ) },
            { "TapCount", Int( 3 ) }, { "ElementName", Str( u"Pedal" ) }, { "ElementShortName", Str( u"P" ) },
            { "ElementStreamDeck", Bool( true ) }, { "ElementVendorID", Int( 1 ) }, { "ElementProductID", Int( 2 ) },
            { "ElementDeviceUsagePage", Int( 3 ) }, { "ElementDeviceUsage", Int( 4 ) },
            { "ElementUsagePage", Int( 5 ) }, { "ElementUsage", Int( 6 ) }, { "ElementCookie", Int( 7 ) },
            { "ElementValue", Int( 8 ) } } );
    EXPECT_EQ( ReloadedTrigger( stored ), stored );
    EXPECT_EQ( LoadedTrigger( stored )->Clone()->CopyToPropertyList(), stored );
    EXPECT_EQ( At( ReloadedTrigger( With( stored, "ElementShortName", nullptr ) ), "ElementShortName" ), Str( u"X" ) );
    EXPECT_EQ( mLog.CountContaining( "THIDTrigger" ), 0u );

    for ( const char* const key : { "ElementName", "ElementVendorID", "ElementProductID", "ElementDeviceUsagePage",
              "ElementDeviceUsage", "ElementUsagePage", "ElementUsage", "ElementCookie", "ElementValue" } )
    {
        const auto trigger = LoadedTrigger( With( stored, key, Real( 0.5 ) ) );
        EXPECT_TRUE( trigger->TriggerIsUseless() ) << key;
        EXPECT_EQ( trigger->GetAsHIDTrigger()->GetElement().mName, u"None" ) << key;
        EXPECT_EQ( At( trigger->CopyToPropertyList(), "TapCount" ), Int( 3 ) ) << key;
    }
    EXPECT_EQ( mLog.CountContaining( "THIDTrigger::SetElementAndNameFromDictionary exception" ), 9u );
}

TEST_F( LoggedTrigger, AFolderKeepsItsUIDUnlessItIsOfAnEarlierVersion )
{
    const auto fresh = NewTrigger( TriggerType::kFolder )->CopyToPropertyList();
    const auto uid = At( At( fresh, "Interest" ), "UID2" );
    EXPECT_EQ( uid.AsString()->GetLength(), 36u );
    EXPECT_EQ( At( fresh, "Interest" ),
        Dict( { { "Path", Str( u"~/Downloads" ) }, { "UID2", uid }, { "Observe", Str( u"Add" ) },
            { "ObserveWhen", Str( u"Immediate" ) } } ) );

    const auto interest = Dict( { { "Path", Str( u"/tmp" ) }, { "UID2", Str( u"I" ) }, { "Observe", Str( u"Both" ) },
        { "ObserveWhen", Str( u"WaitCompletion" ) } } );
    const auto folder = [&]( std::initializer_list<PlistEntry> entries ) {
        return Trigger( u"Folder", { { "Interest", With( interest, entries ) } } );
    };
    EXPECT_EQ( ReloadedTrigger( folder( {} ) ), folder( {} ) );
    EXPECT_EQ( LoadedTrigger( folder( {} ) )->Clone()->CopyToPropertyList(), folder( {} ) );
    EXPECT_EQ( mLog.CountContaining( "Assertion Failed" ), 0u );

    const struct
    {
        __SafeCFPropertyList mUID2, mUID;
        std::size_t mAssertions;
    } kCases[] = { { {}, Str( u"Old" ), 0 }, { Int( 1 ), Str( u"Old" ), 0 }, { Str( u"" ), {}, 0 }, { {}, {}, 1 } };
    for ( const auto& [uid2, older, assertions] : kCases )
    {
        (void)mLog.Take();
        const auto saved = At( ReloadedTrigger( folder( { { "UID2", uid2 }, { "UID", older } } ) ), "Interest" );
        EXPECT_EQ( At( saved, "UID2" ).AsString()->GetLength(), 36u );
        EXPECT_EQ( With( saved, "UID2", Str( u"I" ) ), interest );
        EXPECT_EQ( mLog.CountAssertions( "dictionary->Get( CFSTR(\"UID\") )" ), assertions );
    }
}

TEST( FolderTrigger, TheInterestIsRequired )
{
    for ( const auto& wrong : { __SafeCFPropertyList(), Str( u"~" ), Array( {} ) } )
        EXPECT_EQ( TriggerFailure( Trigger( u"Folder", { { "Interest", wrong } } ) ),
            "dictionary->Get( CFSTR(\"Interest\"), interest )" );
}

TEST( TimeTrigger, TheExecuteTypeIsRequiredAndRepeatingIsAForm )
{
    const auto time = []( std::initializer_list<PlistEntry> entries ) {
        return With( Trigger( u"Time", { { "ExecuteType", Str( u"Time" ) } } ), entries );
    };
    for ( const auto& wrong : { __SafeCFPropertyList(), Str( u"time" ), Int( 1 ) } )
        EXPECT_EQ( TriggerFailure( time( { { "ExecuteType", wrong } } ) ), "gotExecuteType" );

    const struct
    {
        std::vector<PlistEntry> mKeys;
        TextView mType;
        std::int64_t mRepeatTime, mDays;
    } kCases[] = {
        { { { "Repeat", Bool( true ) } }, u"While", 60, 127 },
        { { { "Repeat", Bool( false ) }, { "ExecuteType", Str( u"While" ) } }, u"While", 60, 127 },
        { { { "Repeat", Bool( true ) }, { "RepeatTime", Int( -1 ) } }, u"While", 60, 127 },
        { { { "RepeatTime", Int( 0 ) } }, u"Time", 0, 127 },
        { { { "WhichDays", Int( 65536 ) } }, u"Time", 60, 127 },
        { { { "WhichDays", Int( 65535 - 64 ) } }, u"Time", 60, 63 },
        { { { "WhichDays", Int( -1 ) } }, u"Time", 60, 127 },
        { { { "WhichDays", Int( 0 ) } }, u"Time", 60, 0 },
    };
    for ( const auto& [keys, type, repeatTime, days] : kCases )
    {
        __SafeCFPropertyList value = time( {} );
        for ( const auto& [key, entry] : keys )
            value = With( value, key, entry );
        const auto saved = ReloadedTrigger( value );
        EXPECT_EQ( At( saved, "ExecuteType" ), Str( type ) ) << Shown( value );
        EXPECT_EQ( At( saved, "Repeat" ), Bool( type == u"While" ) ) << Shown( value );
        EXPECT_EQ( At( saved, "RepeatTime" ), Int( repeatTime ) ) << Shown( value );
        EXPECT_EQ( At( saved, "WhichDays" ), Int( days ) ) << Shown( value );
    }
    NotesTaken notes;
    (void)LoadedTrigger( time( { { "Repeat", Bool( true ) } } ) );
    (void)LoadedTrigger( time( { { "WhichDays", Int( 255 ) } } ) );
    EXPECT_THAT( notes.mNotes, testing::ElementsAre( "upgraded ExecuteType", "repaired WhichDays" ) );
    for ( const std::int64_t hour : { 128, -129 } )
        EXPECT_EQ( At( ReloadedTrigger( time( { { "TimeHour", Int( hour ) } } ) ), "TimeHour" ), Int( 8 ) );
}

TEST( RemoteTrigger, NamesHaveEightToSixtyFourLettersDigitsAndHyphens )
{
    const struct
    {
        Text mName;
        bool mLocal, mShared;
    } kCases[] = {
        { Text( 7, u'a' ), false, false },
        { Text( 8, u'a' ), true, false },
        { Text( 64, u'Z' ), true, false },
        { Text( 65, u'Z' ), false, false },
        { u"12345678/abc-DEF-9", false, true },
        { u"1234567/abc-DEF-9", false, false },
        { u"12345678/abcdefgh/x", false, false },
        { u"abcdefgh\n", false, false },
        { u"abcdéfgh", false, false },
    };
    for ( const auto& [name, local, shared] : kCases )
    {
        EXPECT_EQ( TRemoteTrigger::IsNameValid( false, name ), local ) << UTF8FromText( name );
        EXPECT_EQ( TRemoteTrigger::IsNameValid( true, name ), shared ) << UTF8FromText( name );
    }
}

TEST( RemoteTrigger, ALocalNameBelongsToThisMac )
{
    const ScratchFolder folder;
    KVPreferences::UseFolder( folder.Path() );
    KVPreferences::Set( KVPreferences::kMacRemoteUUIDID, XText( u"ThisMac-1" ) );
    TRemoteTrigger trigger;
    trigger.SetName( u"Porch-Light", false );
    EXPECT_EQ( trigger.GetFullName(), u"ThisMac-1/Porch-Light" );
    EXPECT_EQ( trigger.GetSharedName(), u"ThisMac-1" );
    EXPECT_EQ( trigger.GetLocalName(), u"Porch-Light" );
    EXPECT_TRUE( trigger.GetExampleURL().ends_with( u"/ThisMac-1/Porch-Light?TriggerValue" ) );
    trigger.SetName( u"AllMacs-1/Porch-Light", true );
    EXPECT_EQ( trigger.GetFullName(), u"AllMacs-1/Porch-Light" );
    EXPECT_EQ( trigger.GetSharedName(), u"AllMacs-1" );
    EXPECT_EQ( trigger.GetLocalName(), u"Porch-Light" );
    EXPECT_EQ( TRemoteTrigger::CombinedSharedAndLocalName( trigger.GetSharedName(), trigger.GetLocalName() ),
        trigger.GetFullName() );
    KVPreferences::UseFolder( {} );
}
