// The keys of every kind with their values in a new trigger and without the key, written by hand from the rules of the
// files; and the tests that walk over all of them.
#include "Tests/Triggers/TriggerTestSupport.h"

#include "Utility/Search/StringSearchee.h"

#include <algorithm>

namespace
{
struct Field
{
    const char* mKey;
    __SafeCFPropertyList mNew;
    __SafeCFPropertyList mAbsent; // null: required
    std::vector<__SafeCFPropertyList> mOthers;
};

struct Kind
{
    TextView mName;
    std::vector<PlistEntry> mChosen; // what makes it write these keys; nothing for a new trigger
    std::vector<Field> mFields;
};

std::vector<__SafeCFPropertyList> Names( std::initializer_list<const char16_t*> inNames )
{
    std::vector<__SafeCFPropertyList> values;
    for ( const char16_t* const name : inNames )
        values.push_back( Str( name ) );
    return values;
}

Field Number( const char* inKey, std::int64_t inNew, std::int64_t inOther )
{
    return { inKey, Int( inNew ), Int( inNew ), { Int( inOther ), Int( 0 ) } };
}

Field RequiredNumber( const char* inKey, std::int64_t inNew, std::int64_t inOther )
{
    return { inKey, Int( inNew ), nullptr, { Int( inOther ), Int( 0 ) } };
}

Field Flag( const char* inKey, bool inNew )
{
    return { inKey, Bool( inNew ), Bool( inNew ), { Bool( not inNew ) } };
}

Field Name( const char* inKey, const char16_t* inNew, std::initializer_list<const char16_t*> inOthers )
{
    return { inKey, Str( inNew ), Str( inNew ), Names( inOthers ) };
}

Field Words( const char* inKey, const char16_t* inNew )
{
    return { inKey, Str( inNew ), Str( inNew ), Names( { u"other", u"" } ) };
}

const std::vector<Kind>& Kinds()
{
    static const std::vector<Kind> gKinds = {
        { u"HotKey", {},
            { RequiredNumber( "KeyCode", 32767, 12 ), RequiredNumber( "Modifiers", 0, 6912 ),
                Name( "FireType", u"Pressed", { u"WhileDown", u"Released" } ) } },
        { u"HotKey", { { "FireType", Str( u"Tapped" ) } },
            { RequiredNumber( "KeyCode", 3, 0 ), RequiredNumber( "Modifiers", 256, 512 ),
                Number( "TapCount", 0, 3 ) } },
        { u"Application", {},
            { Name( "Target", u"Front", { u"Specific" } ),
                Name(
                    "FireType2", u"Activate", { u"Launch", u"Deactivate", u"Quit", u"WhileActive", u"WhileRunning" } ),
                Number( "RepeatTime", 60, -5 ) } },
        { u"Time", {},
            { { "ExecuteType", Str( u"Time" ), nullptr, Names( { u"Login", u"Launch" } ) }, Number( "TimeHour", 8, 23 ),
                Number( "TimeMinutes", 30, -128 ), Number( "TimeFinishHour", 17, 127 ),
                Number( "TimeFinishMinutes", 30, 59 ), { "Repeat", Bool( false ), Bool( false ), {} },
                Number( "RepeatTime", 60, -1 ), Number( "WhichDays", 127, 96 ) } },
        { u"Wake", {}, {} },
        { u"Sleep", {}, {} },
        { u"MacroPalette", {}, {} },
        { u"StatusMenu", {}, {} },
        { u"PublicWeb", {}, {} },
        { u"TypedString", {},
            { { "TypedString", Str( u"" ), nullptr, Names( { u"teh " } ) }, Flag( "SimulateDeletes", true ),
                Flag( "OnlyAfterWordBreak", false ) } },
        { u"TypedString", { { "DiacriticalsMatter", Bool( false ) } },
            { { "TypedString", Str( u"x" ), nullptr, Names( { u"teh " } ) },
                { "Case", Str( u"Remember" ), Str( u"Exact" ), Names( { u"Ignore", u"Match" } ) },
                Flag( "SimulateDeletes", true ), Flag( "OnlyAfterWordBreak", false ) } },
        { u"MIDI", {},
            { { "Device", Str( u"Any MIDI Device" ), nullptr, Names( { u"", u"Keys" } ) },
                { "Kind", Str( u"Note" ), Str( u"Note" ), {} }, RequiredNumber( "Channel", 0, 16 ),
                RequiredNumber( "Note", 0, 60 ), Name( "FireType", u"Pressed", { u"WhileDown", u"Released" } ) } },
        { u"MIDI", { { "Kind", Str( u"ControlChange" ) } },
            { { "Device", Str( u"Keys" ), nullptr, {} }, RequiredNumber( "Channel", 1, 16 ),
                RequiredNumber( "Controller", 7, 60 ),
                Name( "CCFireType", u"Changes",
                    { u"LessThan", u"LessThanOrEqual", u"Equal", u"GreaterThanOrEqual", u"GreaterThan", u"Changed",
                        u"LessThanOnce", u"LessThanOrEqualOnce", u"EqualOnce", u"GreaterThanOrEqualOnce",
                        u"GreaterThanOnce", u"Decreases", u"Increases" } ),
                Number( "Value", 0, 63 ) } },
        { u"MIDI", { { "Kind", Str( u"ControlChange" ) }, { "CCFireType", Str( u"EqualOnce" ) } },
            { { "Device", Str( u"Keys" ), nullptr, {} }, RequiredNumber( "Channel", 1, 16 ),
                RequiredNumber( "Controller", 7, 60 ), RequiredNumber( "Value", 0, 63 ) } },
        { u"MIDI", { { "Kind", Str( u"Packet" ) } },
            { { "Device", Str( u"Keys" ), nullptr, {} }, Number( "Byte1Lo", 247, 128 ), Number( "Byte1Hi", 255, 129 ),
                Number( "Byte2Lo", 0, 5 ), Number( "Byte2Hi", 1, 6 ), Number( "MinLength", 0, 1 ),
                Number( "MaxLength", 0, 3 ),
                { "PacketMatch", Str( u"^.*$" ), Str( u".*" ), Names( { u"^F8$", u"" } ) } } },
        { u"Volume", {},
            { Name( "TargetType", u"Named", { u"Any", u"Containing", u"Matching" } ), Words( "Name", u"" ),
                Flag( "Mounted", true ) } },
        { u"USBDevice", {},
            { Name( "TargetType", u"Named", { u"Any", u"Containing", u"Matching" } ), Words( "Name", u"" ),
                Flag( "Attach", true ) } },
        { u"WirelessNetwork", {},
            { Name( "MatchType", u"NameIs", { u"Any", u"NameContains", u"NameMatches", u"BSSID" } ),
                Words( "Name", u"" ), Flag( "Connected", true ) } },
        { u"Clipboard", {}, {} },
        { u"FocussedWindow", {},
            { Name( "ChangeType", u"FocussedWindowTitleChanges",
                { u"FocussedWindowChanges", u"FocussedWindowsTitleChanged", u"FocussedWindowsFrameChanged" } ) } },
        { u"ClipboardFilter", {}, {} },
        { u"Gesture", {},
            { { "Gesture", Str( u"" ), nullptr, Names( { u"RDL" } ) },
                Name( "Requirement", u"UseModifiers",
                    { u"Nothing", u"UseMouse", u"UseModifiersOrMouse", u"UseModifiersAndMouse" } ),
                Number( "Modifiers", 0, 4096 ), Number( "Button", 0, 2 ), Flag( "AllowReverse", false ) } },
        { u"Remote", {}, { Words( "Name", u"" ), Flag( "Shared", false ) } },
        { u"AudioOutputDevice", {}, {} },
        { u"Idle", {}, { RequiredNumber( "Idle", 10, 600 ), Number( "AndAfter", 0, 30 ) } },
        { u"Cron", {}, { { "Cron", Str( u"0 0 -1 1 +1 2017" ), Str( u"" ), Names( { u"no cron at all" } ) } } },
        { u"DraggedFile", {}, {} },
        { u"Display", {}, {} },
    };
    return gKinds;
}

__SafeCFPropertyList Base( const Kind& inKind )
{
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "MacroTriggerType" ), inKind.mName );
    for ( const auto& [key, value] : inKind.mChosen )
        dictionary.Set( XKey( key ), value );
    return dictionary.Seal();
}

/// Every key, as in a new trigger.
__SafeCFPropertyList Full( const Kind& inKind )
{
    __SafeCFPropertyList value = Base( inKind );
    for ( const Field& field : inKind.mFields )
        value = With( value, field.mKey, field.mNew );
    return value;
}

std::vector<__SafeCFPropertyList> WrongValuesFor( const __SafeCFPropertyList& inValue )
{
    std::vector<__SafeCFPropertyList> wrong{ Dict( {} ), Array( { Int( 1 ) } ) };
    if ( not inValue.AsString() )
        wrong.push_back( Str( u"1" ) );
    if ( not inValue.AsBoolean() )
        wrong.push_back( Bool( true ) );
    if ( not inValue.AsNumber() )
        wrong.push_back( Real( 0.5 ) );
    else
        for ( const auto& number : { Real( 1.5 ), Int( 1LL << 40 ), Int( -( 1LL << 31 ) - 1 ) } )
            wrong.push_back( number );
    return wrong;
}
} // namespace

TEST( TriggerCatalogue, ANewTriggerSavesWhatTheTableSays )
{
    for ( const Kind& kind : Kinds() )
    {
        bool isOlder = false;
        const auto type = TriggerTypeFromName( kind.mName, isOlder );
        ASSERT_TRUE( type ) << UTF8FromText( kind.mName );
        if ( kind.mChosen.empty() )
        {
            EXPECT_EQ( Shown( NewTrigger( *type )->CopyToPropertyList() ), Shown( Full( kind ) ) );
        }
    }
}

TEST( TriggerCatalogue, TheTableHasEveryKindButThoseWithTestsOfTheirOwn )
{
    for ( const std::string_view name : kTriggerTypeNames )
    {
        const bool isListed = std::ranges::any_of(
            Kinds(), [&]( const Kind& kind ) { return kind.mName == TextFromASCII( name ) and kind.mChosen.empty(); } );
        EXPECT_EQ( isListed, name != "HID" and name != "Folder" ) << name;
    }
}

TEST( TriggerCatalogue, AnAbsentKeyTakesItsDefaultAndARequiredOneThrows )
{
    for ( const Kind& kind : Kinds() )
    {
        for ( const Field& field : kind.mFields )
        {
            const auto without = With( Full( kind ), field.mKey, nullptr );
            SCOPED_TRACE( UTF8FromText( kind.mName ) + " " + field.mKey );
            if ( not field.mAbsent )
                EXPECT_NE( TriggerFailure( without ), "" );
            else if ( field.mAbsent == Str( u"Exact" ) )
                EXPECT_EQ( ReloadedTrigger( without ), without );
            else
                EXPECT_EQ( Shown( ReloadedTrigger( without ) ), Shown( With( without, field.mKey, field.mAbsent ) ) );
        }
    }
}

TEST( TriggerCatalogue, AValueOfTheWrongTypeCountsAsAbsentAndIsNoted )
{
    for ( const Kind& kind : Kinds() )
    {
        for ( const Field& field : kind.mFields )
        {
            const auto without = With( Full( kind ), field.mKey, nullptr );
            for ( const auto& value : WrongValuesFor( field.mNew ) )
            {
                const auto wrong = With( without, field.mKey, value );
                SCOPED_TRACE( Shown( wrong ) );
                NotesTaken notes;
                if ( not field.mAbsent )
                    EXPECT_EQ( TriggerFailure( wrong ), TriggerFailure( without ) );
                else
                {
                    const auto saved = ReloadedTrigger( wrong );
                    EXPECT_EQ( saved, ReloadedTrigger( without ) );
                    EXPECT_EQ( ReloadedTrigger( saved ), saved );
                    EXPECT_THAT( notes.mNotes, testing::Contains( std::string( "repaired " ) + field.mKey ) );
                }
            }
        }
    }
}

TEST( TriggerCatalogue, EveryValueComesBackIsClonedAndTellsTriggersApart )
{
    for ( const Kind& kind : Kinds() )
    {
        const auto original = LoadedTrigger( Full( kind ) );
        EXPECT_EQ( original->CopyToPropertyList(), Full( kind ) );
        for ( const Field& field : kind.mFields )
        {
            for ( const auto& value : field.mOthers )
            {
                const auto changed = With( Full( kind ), field.mKey, value );
                SCOPED_TRACE( Shown( changed ) );
                NotesTaken notes;
                const auto trigger = LoadedTrigger( changed );
                EXPECT_THAT( notes.mNotes, testing::IsEmpty() );
                EXPECT_EQ( trigger->CopyToPropertyList(), changed );
                const auto clone = trigger->Clone();
                EXPECT_EQ( clone->CopyToPropertyList(), changed );
                EXPECT_EQ( trigger->CompareWith( *clone ), 0 );
                const int order = trigger->CompareWith( *original );
                EXPECT_EQ( order == 0, changed == Full( kind ) );
                EXPECT_EQ( original->CompareWith( *trigger ), -order );
            }
        }
    }
}

TEST( TriggerCatalogue, UnknownKeysAreLeftOut )
{
    for ( const Kind& kind : Kinds() )
        EXPECT_EQ( ReloadedTrigger( With( Full( kind ), "Flavour", Str( u"x" ) ) ), Full( kind ) );
}

TEST( TriggerCatalogue, WhatAKindNamesItselfIsInItsSearchWords )
{
    for ( const Kind& kind : Kinds() )
    {
        const auto trigger = LoadedTrigger( Full( kind ) );
        StringSearchee searchee;
        trigger->AddMatchStrings( searchee );
        std::vector<Text> words;
        for ( const auto& element : searchee.GetElements() )
        {
            if ( element.mKind == StringSearchee::Kind::kTrigger )
                words.push_back( element.mText );
        }
        EXPECT_THAT( words, testing::Contains( trigger->GetTriggerTypeDescription() ) );
        EXPECT_THAT( words, testing::Contains( trigger->GetDescription() ) );
        EXPECT_TRUE( trigger->GetXIcon().Defined() );
    }
}
