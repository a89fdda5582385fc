#include "Macros/HTimeSaved.h"

#include "Defines/KVPreferences.h"
#include "Macros/XTextHash.h"
#include "Utility/Work/Work.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XNotificationCenter.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <unordered_map>

namespace
{
struct Stats
{
    XAbsoluteTime mLastExecuted = 0;
    std::uint64_t mExecutedCount = 0;
    double mTimeSaved = 0;
};

/// Seconds, as a number or as a date. Anything else leaves what is there.
bool ReadSeconds( const __SafeCFPropertyList& inValue, double& ioSeconds )
{
    const XPlistNumber* const number = inValue.AsNumber();
    const XPlistDate* const date = inValue.AsDate();
    const double seconds = number ? number->AsReal() : date ? date->GetSeconds() : NAN;
    if ( not std::isfinite( seconds ) )
        return false;
    ioSeconds = seconds;
    return true;
}

class Store final : public HMacroStats
{
public:
    [[nodiscard]] XAbsoluteTime LastExecution( const XText& inUID ) const override { return Of( inUID ).mLastExecuted; }
    [[nodiscard]] std::uint64_t ExecutionCount( const XText& inUID ) const override
    {
        return Of( inUID ).mExecutedCount;
    }
    [[nodiscard]] double TimeSaved( const XText& inUID ) const override { return Of( inUID ).mTimeSaved; }

    /// An entry that has only some of the keys changes only those.
    void Merge( const XPlistDictionary& inUpdate )
    {
        XAssertText( XIsMainThread(), "[NSThread isMainThread]" );
        for ( const auto& [key, value] : inUpdate.GetEntries() )
            Merge( CFContainer<XPlistString>::Share( key ), __SafeCFPropertyList( value ) );
    }

    [[nodiscard]] const Stats& Of( const XText& inUID ) const
    {
        static const Stats gNever;
        const auto found = mStats.find( inUID );
        return found == mStats.end() ? gNever : found->second;
    }
    [[nodiscard]] const auto& All() const { return mStats; }

private:
    void Merge( const XText& inUID, const __SafeCFPropertyList& inValue )
    {
        const XPlistDictionary* const entry = inValue.AsDictionary();
        double seconds = 0;
        if ( entry )
            Merge( mStats[inUID], *entry );
        else if ( inUID == kAllKey and ReadSeconds( inValue, seconds ) )
            mStats[inUID].mTimeSaved = seconds;
        else
            XErrorHandler::PrivateMaybeLogFormat( "display", "The statistics of %@ can't be understood", inUID );
    }

    static void Merge( Stats& ioStats, const XPlistDictionary& inEntry )
    {
        (void)ReadSeconds( __SafeCFPropertyList( inEntry.Find( CFSTR( "LastExecuted" ) ) ), ioStats.mLastExecuted );
        std::int64_t count = 0;
        if ( inEntry.Get( CFSTR( "ExecutedCount" ), count ) and count >= 0 )
            ioStats.mExecutedCount = std::uint64_t( count );
        (void)ReadSeconds( __SafeCFPropertyList( inEntry.Find( CFSTR( "TimeSaved" ) ) ), ioStats.mTimeSaved );
    }

    std::unordered_map<XText, Stats, XTextHash> mStats; // gMacroStats
};

struct Running
{
    Store mStore;
    std::function<void()> mDoResort;
    std::unique_ptr<BlockNotificationObserver> mObserver;
};
std::unique_ptr<Running> gRunning;

const Stats& StatsOf( const XText& inUID )
{
    static const Store gNothing;
    return ( gRunning ? gRunning->mStore : gNothing ).Of( inUID );
}

void MacroStatsUpdated( const XNotificationCenter::Notification& inNotification )
{
    if ( not inNotification.mUserInfo )
        return;
    gRunning->mStore.Merge( *inNotification.mUserInfo );
    if ( gRunning->mDoResort )
        gRunning->mDoResort();
}
} // namespace

void HTimeSaved::Start( std::function<void()> inDoResortForMacroStatsChanged )
{
    gRunning = std::make_unique<Running>();
    gRunning->mDoResort = std::move( inDoResortForMacroStatsChanged );
    gRunning->mStore.Merge( *HMacroStats::ReadFile() );
    gRunning->mObserver = std::make_unique<BlockNotificationObserver>(
        XNotificationCenter::Reach::kDistributed, KVNotifications::kMacroStatsUpdated, MacroStatsUpdated );
    HMacroStats::SetCurrent( &gRunning->mStore );
    XNotificationCenter::PostNotification( KVNotifications::kSendAllMacroStats, nullptr, true );
}

void HTimeSaved::Stop()
{
    HMacroStats::SetCurrent( nullptr );
    gRunning.reset();
}

double HTimeSaved::GetAll()
{
    return StatsOf( HMacroStats::kAllKey ).mTimeSaved;
}

XAbsoluteTime HTimeSaved::GetLastExecuted( const XText& inUID )
{
    return StatsOf( inUID ).mLastExecuted;
}

double HTimeSaved::GetTimeSaved( const XText& inUID )
{
    return StatsOf( inUID ).mTimeSaved;
}

std::uint64_t HTimeSaved::GetExecutedCount( const XText& inUID )
{
    return StatsOf( inUID ).mExecutedCount;
}

int HTimeSaved::DaysOfUse7()
{
    constexpr double kDay = 86400;
    constexpr std::size_t kDays = 7;
    std::bitset<kDays> days;
    if ( not gRunning )
        return 0;
    const XAbsoluteTime now = XClock::Current().Now();
    for ( const auto& [uid, stats] : gRunning->mStore.All() )
    {
        const double age = now - stats.mLastExecuted;
        if ( stats.mLastExecuted >= 1.0 and age >= 0 and age < kDays * kDay )
            days.set( std::size_t( age / kDay ) );
    }
    return int( days.count() );
}

double HTimeSaved::GetV7()
{
    double before = 0;
    (void)KVPreferences::Get( KVPreferences::kTimeSavedPreV7ID, &before, 0.0 );
    return std::max( GetAll() - before, 0.0 );
}
