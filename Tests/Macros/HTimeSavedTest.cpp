#include "Macros/HTimeSaved.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "Tests/Actions/ActionTestSupport.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Text/Format.h"
#include "XCAF/XNotificationCenter.h"

#include <gtest/gtest.h>

namespace
{
using Value = __SafeCFPropertyList;

struct TimeSaved : testing::Test
{
    TimeSaved()
    {
        mPlatform.SetProcessNotifier( mNotifier );
        KVPreferences::UseFolder( mFolder.Path() );
        XNotificationCenter::ListenToOtherProcesses();
    }
    ~TimeSaved() override
    {
        HTimeSaved::Stop();
        KVPreferences::UseFolder( {} );
    }

    static Value Real( double inValue ) { return Value::Real( inValue ); }
    static Value Int( std::int64_t inValue ) { return Value::Integer( inValue ); }
    void PutFile( const std::string& inName, const Value& inValue )
    {
        mFolder.Write( "Korvalen " + inName + ".plist", WriteBinaryPropertyList( inValue ).View() );
    }
    /// What the engine tells.
    void Update( const Value& inUpdate, bool inFromEngine = true )
    {
        mNotifier.mReceiver(
            u"KV_MacroStatsUpdated", CFContainer<XPlistDictionary>::Share( inUpdate.AsDictionary() ), inFromEngine );
    }
    /// A new start with the files as they are; what it logs.
    std::vector<std::string> Restart()
    {
        HTimeSaved::Stop();
        (void)mWorld.mLog.Take();
        HTimeSaved::Start( [this] { ++mResorts; } );
        return mWorld.mLog.Take();
    }

    ManualWorld mWorld;
    ScratchFolder mFolder;
    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
    int mResorts = 0;
};
} // namespace

TEST_F( TimeSaved, TheFileIsReadAndTheEngineAskedForEverything )
{
    PutFile( "Macro Stats",
        Dict( { { "A",
                    Dict( { { "LastExecuted", Real( 1000.5 ) }, { "ExecutedCount", Int( 3 ) },
                        { "TimeSaved", Real( 2.5 ) } } ) },
            { "B", Dict( { { "LastExecuted", Value( XPlistDate::Make( 2000 ) ) } } ) }, { "C", Int( 1 ) },
            { "All", Dict( { { "TimeSaved", Real( 99 ) } } ) } } ) );
    EXPECT_EQ( HMacroStats::Current().ExecutionCount( u"A" ), 0u );
    EXPECT_EQ( Restart(), std::vector<std::string>{ "The statistics of C can't be understood" } );
    EXPECT_EQ( HTimeSaved::GetLastExecuted( u"A" ), 1000.5 );
    EXPECT_EQ( HTimeSaved::GetExecutedCount( u"A" ), 3u );
    EXPECT_EQ( HTimeSaved::GetTimeSaved( u"A" ), 2.5 );
    EXPECT_EQ( HTimeSaved::GetLastExecuted( u"B" ), 2000 );
    EXPECT_EQ( HTimeSaved::GetAll(), 99 );
    EXPECT_EQ( HMacroStats::Current().ExecutionCount( u"A" ), 3u );
    EXPECT_EQ( HMacroStats::Current().LastExecution( u"never" ), 0 );
    ASSERT_EQ( mNotifier.mPosts.size(), 1u );
    EXPECT_EQ( mNotifier.mPosts[0].first, u"KV_SendAllMacroStats" );
    HTimeSaved::Stop();
    EXPECT_EQ( HMacroStats::Current().ExecutionCount( u"A" ), 0u );
    EXPECT_EQ( HTimeSaved::GetExecutedCount( u"A" ), 0u );
}

TEST_F( TimeSaved, WithoutTheFileTheTotalComesFromWhatOlderVersionsLeft )
{
    using Lines = std::vector<std::string>;
    EXPECT_EQ( Restart(), Lines{ "Set Initial Macro Stats to 0" } );
    EXPECT_EQ( HTimeSaved::GetAll(), 0 );
    KVPreferences::Set( KVPreferences::kTimeSavedID, 7.25 );
    EXPECT_EQ( Restart(), Lines{ "Set Initial Macro Stats All from Old Preference to 7.250000" } );
    EXPECT_EQ( HTimeSaved::GetAll(), 7.25 );
    PutFile( "Last Executed", Dict( { { "A", Real( 500 ) }, { "B", Str( u"never" ) } } ) );
    for ( const Value& total :
        { Real( 42 ), Dict( { { "All", Int( 42 ) } } ), Dict( { { "TimeSaved", Int( 42 ) } } ) } )
    {
        PutFile( "Time Saved", total );
        EXPECT_EQ( Restart(), Lines{ "Set Initial Macro Stats All from Time Saved File to 42.000000" } );
        EXPECT_EQ( HTimeSaved::GetAll(), 42 );
        EXPECT_EQ( HTimeSaved::GetLastExecuted( u"A" ), 500 );
        EXPECT_EQ( HTimeSaved::GetLastExecuted( u"B" ), 0 );
    }
    // The newer file has it all, even if it says nothing.
    PutFile( "Macro Stats", Dict( {} ) );
    EXPECT_EQ( Restart(), Lines() );
    EXPECT_EQ( HTimeSaved::GetAll(), 0 );
    EXPECT_EQ( HTimeSaved::GetLastExecuted( u"A" ), 0 );
}

TEST_F( TimeSaved, AFileThatCannotBeUnderstoodIsNotTakenForAMissingOne )
{
    KVPreferences::Set( KVPreferences::kTimeSavedID, 7.25 );
    for ( const char* const bytes : { "", "damaged", "bplist00" } )
    {
        mFolder.Write( "Korvalen Macro Stats.plist", bytes );
        const auto lines = Restart();
        ASSERT_EQ( lines.size(), 1u );
        EXPECT_TRUE( lines[0].starts_with( "Can't read the statistics in " ) ) << lines[0];
        EXPECT_EQ( HTimeSaved::GetAll(), 0 );
        EXPECT_EQ( mFolder.Read( "Korvalen Macro Stats.plist" ), bytes );
    }
}

TEST_F( TimeSaved, AnUpdateMergesWhatItHasAndThenWindowsSortAgain )
{
    (void)Restart();
    Update( Dict( { { "A", Dict( { { "ExecutedCount", Int( 1 ) }, { "TimeSaved", Real( 5 ) } } ) },
        { "All", Dict( { { "TimeSaved", Real( 5 ) } } ) } } ) );
    Update( Dict( { { "A", Dict( { { "ExecutedCount", Int( 2 ) } } ) },
        { "B", Dict( { { "LastExecuted", Real( 9 ) }, { "ExecutedCount", Int( -1 ) } } ) } } ) );
    EXPECT_EQ( HTimeSaved::GetExecutedCount( u"A" ), 2u );
    EXPECT_EQ( HTimeSaved::GetTimeSaved( u"A" ), 5 );
    EXPECT_EQ( HTimeSaved::GetLastExecuted( u"B" ), 9 );
    EXPECT_EQ( HTimeSaved::GetExecutedCount( u"B" ), 0u );
    EXPECT_EQ( HTimeSaved::GetAll(), 5 );
    EXPECT_EQ( mResorts, 2 );
    Update( Dict( { { "A", Dict( { { "ExecutedCount", Int( 1000 ) } } ) } } ), false ); // a stranger
    EXPECT_EQ( HTimeSaved::GetExecutedCount( u"A" ), 2u );
    EXPECT_EQ( mResorts, 2 );
    HTimeSaved::Stop();
    Update( Dict( { { "A", Dict( {} ) } } ) );
    EXPECT_EQ( mResorts, 2 );
}

TEST_F( TimeSaved, DaysOfUseAreCountedBackFromNow )
{
    (void)Restart();
    const double now = mWorld.mClock.Now(), day = 86400;
    EXPECT_EQ( HTimeSaved::DaysOfUse7(), 0 );
    const double kAges[] = { 1, 2, day - 1, day, 6.9 * day, 7 * day, 100 * day, -5 };
    XMutableDictionary update;
    for ( const double age : kAges )
        update.Set( XText( kvr_format( "%f", age ) ), Dict( { { "LastExecuted", Real( now - age ) } } ) );
    Update( update.Seal() );
    EXPECT_EQ( HTimeSaved::DaysOfUse7(), 3 );

    KVPreferences::Set( KVPreferences::kTimeSavedPreV7ID, 10.0 );
    EXPECT_EQ( HTimeSaved::GetV7(), 0 );
    Update( Dict( { { "All", Real( 25 ) } } ) );
    EXPECT_EQ( HTimeSaved::GetV7(), 15 );
}
