#include "Macros/HMacroStats.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVPreferences.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <cmath>

namespace
{
constexpr std::size_t kMostBytes = std::size_t( 256 ) << 20;

struct ReadResult
{
    bool mExists = true;
    __SafeCFPropertyList mValue; ///< null when it can't be understood, which is logged
};

ReadResult ReadDataFile( TextView inName )
{
    const auto path = KVPreferences::FilePath( inName );
    const XFileContent content = ReadWholeFile( path, kMostBytes );
    if ( content.mError and content.mError->mCode == ENOENT )
        return { false, {} };
    std::string fault;
    if ( content.mError )
        fault = content.mError->Describe();
    else if ( auto result = ReadPropertyList( content.mBytes.Span() ); result.mFault )
        fault = result.mFault->Describe();
    else
        return { true, std::move( result.mValue ) };
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't read the statistics in %@: %s", path, fault );
    return {};
}

/// A number or, in one of the older forms, a date: seconds either way.
std::optional<double> Seconds( const __SafeCFPropertyList& inValue )
{
    double seconds = NAN;
    if ( const XPlistNumber* const number = inValue.AsNumber() )
        seconds = number->AsReal();
    else if ( const XPlistDate* const date = inValue.AsDate() )
        seconds = date->GetSeconds();
    return std::isfinite( seconds ) ? std::optional( seconds ) : std::nullopt;
}

/// The file's root was the number itself, or has it under a key.
std::optional<double> TotalInOlderFile()
{
    const __SafeCFPropertyList root = ReadDataFile( u"Korvalen Time Saved.plist" ).mValue;
    const XPlistDictionary* const dictionary = root.AsDictionary();
    if ( not dictionary )
        return Seconds( root );
    const auto all = Seconds( __SafeCFPropertyList( dictionary->Find( CFSTR( "All" ) ) ) );
    return all ? all : Seconds( __SafeCFPropertyList( dictionary->Find( CFSTR( "TimeSaved" ) ) ) );
}

double InitialTotal()
{
    if ( const auto total = TotalInOlderFile() )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            "display", "Set Initial Macro Stats All from Time Saved File to %f", *total );
        return *total;
    }
    double total = 0;
    if ( KVPreferences::Get( KVPreferences::kTimeSavedID, &total, 0.0 ) == KVPreferences::kFound )
        XErrorHandler::PrivateMaybeLogFormat(
            "display", "Set Initial Macro Stats All from Old Preference to %f", total );
    else
        XErrorHandler::PrivateMaybeLogFormat( "display", "Set Initial Macro Stats to 0" );
    return total;
}

CFContainer<XPlistDictionary> InitialStats()
{
    XMutableDictionary stats;
    const __SafeCFPropertyList lastRuns = ReadDataFile( u"Korvalen Last Executed.plist" ).mValue;
    if ( const XPlistDictionary* const times = lastRuns.AsDictionary() )
    {
        for ( const auto& [uid, value] : times->GetEntries() )
        {
            XMutableDictionary entry;
            if ( const auto time = Seconds( __SafeCFPropertyList( value ) ) )
            {
                entry.SetReal( CFSTR( "LastExecuted" ), *time );
                stats.Set( XText( CFContainer<XPlistString>::Share( uid ) ), entry.Seal() );
            }
        }
    }
    XMutableDictionary all;
    all.SetReal( CFSTR( "TimeSaved" ), InitialTotal() );
    stats.Set( XText( HMacroStats::kAllKey ), all.Seal() );
    return stats.Seal();
}

class NoStats final : public HMacroStats
{
    [[nodiscard]] XAbsoluteTime LastExecution( const XText& ) const override { return 0; }
    [[nodiscard]] std::uint64_t ExecutionCount( const XText& ) const override { return 0; }
    [[nodiscard]] double TimeSaved( const XText& ) const override { return 0; }
};

const NoStats gNoStats;
const HMacroStats* gStats = &gNoStats;
} // namespace

CFContainer<XPlistDictionary> HMacroStats::ReadFile()
{
    const ReadResult file = ReadDataFile( u"Korvalen Macro Stats.plist" );
    if ( not file.mExists )
        return InitialStats();
    if ( file.mValue.AsDictionary() )
        return CFContainer<XPlistDictionary>::Share( file.mValue.AsDictionary() );
    if ( file.mValue )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Korvalen Macro Stats.plist isn't a dictionary" );
    return XMutableDictionary().Seal();
}

const HMacroStats& HMacroStats::Current()
{
    return *gStats;
}

void HMacroStats::SetCurrent( const HMacroStats* inStats )
{
    gStats = inStats ? inStats : &gNoStats;
}
