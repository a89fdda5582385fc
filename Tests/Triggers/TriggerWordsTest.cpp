// The sentences in which triggers tell people when a macro starts.
#include "Tests/Triggers/TriggerTestSupport.h"

#include "Triggers/TimeTriggers.h"
#include "Utility/Text/NSStringRegularExpressions.h"

namespace
{
// A text that is missing shows its key.
void ExpectWords( const __SafeCFPropertyList& inValue )
{
    const auto trigger = LoadedTrigger( inValue );
    for ( const Text& words :
        { trigger->GetTriggerTypeDescription(), trigger->GetDescription(), trigger->GetShortDescription() } )
    {
        EXPECT_NE( words, u"" ) << Shown( inValue );
        EXPECT_FALSE( isMatchedByRegex( words, u"\\bt[A-Z][A-Za-z]+[A-Z]" ) ) << UTF8FromText( words );
        EXPECT_FALSE( isMatchedByRegex( words, u"%|  |\\(null\\)| $" ) ) << UTF8FromText( words );
    }
}
} // namespace

TEST( TriggerWords, EveryValueOfEveryKindHasThem )
{
    for ( const std::string_view kind : kTriggerTypeNames )
    {
        const auto base = With( LoadableTrigger( TextFromASCII( kind ) ), "Name", Str( u"Some-Name" ) );
        ExpectWords( base );
        constexpr struct
        {
            const char* mKey;
            std::vector<const char16_t*> ( *mNames )();
        } kChoices[] = {
            { "FireType",
                [] {
                    return std::vector{ u"Pressed", u"WhileDown", u"Released", u"Tapped" };
                } },
            { "FireType2",
                [] {
                    return std::vector{ u"Launch", u"Activate", u"Deactivate", u"Quit", u"WhileActive",
                        u"WhileRunning" };
                } },
            { "ExecuteType",
                [] {
                    return std::vector{ u"Login", u"Launch", u"Time", u"While" };
                } },
            { "Case",
                [] {
                    return std::vector{ u"Exact", u"Ignore", u"IgnoreDiacriticals", u"Remember", u"Match" };
                } },
            { "TargetType",
                [] {
                    return std::vector{ u"Any", u"Named", u"Containing", u"Matching" };
                } },
            { "MatchType",
                [] {
                    return std::vector{ u"Any", u"NameIs", u"NameContains", u"NameMatches", u"BSSID" };
                } },
            { "ChangeType",
                [] {
                    return std::vector{ u"FocussedWindowChanges", u"FocussedWindowTitleChanges",
                        u"FocussedWindowsTitleChanged", u"FocussedWindowsFrameChanged" };
                } },
            { "CCFireType",
                [] {
                    return std::vector{ u"Changes", u"LessThan", u"LessThanOrEqual", u"Equal", u"GreaterThanOrEqual",
                        u"GreaterThan", u"Changed", u"LessThanOnce", u"LessThanOrEqualOnce", u"EqualOnce",
                        u"GreaterThanOrEqualOnce", u"GreaterThanOnce", u"Decreases", u"Increases" };
                } },
        };
        const auto midi =
            With( base, { { "Kind", Str( u"ControlChange" ) }, { "Controller", Int( 7 ) }, { "Value", Int( 64 ) } } );
        for ( const auto& [key, names] : kChoices )
        {
            for ( const char16_t* const name : names() )
                ExpectWords( With( std::string_view( key ) == "CCFireType" ? midi : base, key, Str( name ) ) );
        }
        ExpectWords( With( base, { { "Kind", Str( u"Packet" ) } } ) );
        for ( const char* const flag : { "Mounted", "Attach", "Connected", "Shared", "AllowReverse", "SimulateDeletes",
                  "OnlyAfterWordBreak", "DiacriticalsMatter" } )
        {
            ExpectWords( With( base, flag, Bool( false ) ) );
            ExpectWords( With( base, flag, Bool( true ) ) );
        }
        for ( const int count : { 0, 1, 2, 3 } )
            ExpectWords( With( base, { { "FireType", Str( u"Tapped" ) }, { "TapCount", Int( count ) } } ) );
    }
    for ( const auto* const observe : { u"Add", u"Remove", u"Both" } )
    {
        for ( const auto* const when : { u"Immediate", u"IgnorePartial", u"WaitCompletion" } )
            ExpectWords( Trigger( u"Folder",
                { { "Interest",
                    Dict( { { "UID2", Str( u"I" ) }, { "Observe", Str( observe ) },
                        { "ObserveWhen", Str( when ) } } ) } } ) );
    }
}

TEST( TriggerWords, ReadAsSentences )
{
    const auto app = Dict( { { "Name", Str( u"Editor" ) } } );
    const std::pair<__SafeCFPropertyList, TextView> kCases[] = {
        { HotKeyTrigger( 0, 256 ), u"The hot key ⌘A is pressed" },
        { With( HotKeyTrigger( 122, 0 ), { { "FireType", Str( u"Tapped" ) }, { "TapCount", Int( 3 ) } } ),
            u"The hot key F1 is tapped 3 times" },
        { With( LoadableTrigger( u"HID" ), { { "UseModifiers", Bool( true ) }, { "Modifiers", Int( 2048 ) } } ),
            u"The device key ⌥Pedal is pressed" },
        { With( LoadableTrigger( u"HID" ), "Modifiers", Int( 2048 ) ), u"The device key Pedal is pressed" },
        { Trigger( u"TypedString", { { "TypedString", Str( u"[0-9]+" ) }, { "Case", Str( u"Match" ) } } ),
            u"“[0-9]+” is typed as a regular expression, and deleted again" },
        { Trigger( u"Application", { { "Application", app }, { "FireType2", Str( u"WhileActive" ) } } ),
            u"Editor is active, repeating every 1 minute" },
        { Trigger( u"Application", { { "FireType2", Str( u"Quit" ) } } ), u"The current application quits" },
        { Trigger( u"Volume", { { "Name", Str( u"Backup" ) } } ), u"A volume named “Backup” is mounted" },
        { Trigger( u"USBDevice", { { "TargetType", Str( u"Any" ) }, { "Attach", Bool( false ) } } ),
            u"Any USB device is detached" },
        { With( LoadableTrigger( u"MIDI" ), "Kind", Str( u"Note" ) ), u"MIDI note 60 is pressed on channel 1 (Keys)" },
        { Trigger( u"Idle", { { "Idle", Int( 600 ) }, { "AndAfter", Int( 30 ) } } ),
            u"The computer has been idle for 10 minutes, and again after every further 30 seconds" },
        { Trigger( u"Gesture",
              { { "Gesture", Str( u"RDL" ) }, { "Requirement", Str( u"UseModifiersAndMouse" ) },
                  { "Modifiers", Int( 2304 ) }, { "Button", Int( 2 ) } } ),
            u"The gesture ⌥⌘+🖱2+RDL is drawn" },
        { Trigger( u"Time",
              { { "ExecuteType", Str( u"While" ) }, { "RepeatTime", Int( 900 ) }, { "TimeHour", Int( 9 ) },
                  { "TimeMinutes", Int( 5 ) }, { "WhichDays", Int( 31 ) } } ),
            u"Every 15 minutes between 9:05 and 17:30, Monday to Friday" },
    };
    for ( const auto& [value, words] : kCases )
        EXPECT_EQ( UTF8FromText( LoadedTrigger( value )->GetDescription() ), UTF8FromText( words ) );
}

TEST( TriggerWords, DaysAreToldAsRangesOfWeekdaysWithTheWeekend )
{
    constexpr struct
    {
        int mDays;
        TextView mWords;
    } kCases[] = {
        { 0, u"on no day" },
        { 96, u"on weekends" },
        { 127, u"every day" },
        { 7, u"Monday to Wednesday" },
        { 15, u"Monday to Thursday" },
        { 31, u"Monday to Friday" },
        { 14, u"Tuesday to Thursday" },
        { 30, u"Tuesday to Friday" },
        { 28, u"Wednesday to Friday" },
        { 31 + 32, u"Monday to Friday and Saturday" },
        { 28 + 64, u"Wednesday to Friday and Sunday" },
        { 7 + 96, u"Monday to Wednesday and on weekends" },
        { 1, u"on Monday" },
        { 64, u"on Sunday" },
        { 5, u"on Monday, Wednesday" },
        { 3 + 96, u"on Monday, Tuesday, Saturday, Sunday" },
        { 12, u"on Wednesday, Thursday" },
    };
    for ( const auto& [days, words] : kCases )
    {
        TTimeTrigger trigger;
        trigger.SetWhichDaysBits( std::uint16_t( days + 128 ) ); // higher bits don't count
        EXPECT_EQ( trigger.GetDaysDescription(), words ) << days;
    }
}
