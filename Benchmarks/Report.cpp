#include "Benchmarks/Report.h"

#include <fmt/format.h>
#include <unistd.h>

// Colours only on a terminal.
RatioReporter::RatioReporter() : ConsoleReporter( isatty( STDOUT_FILENO ) ? OO_ColorTabular : OO_Tabular ) {}

void RatioReporter::ReportRuns( const std::vector<Run>& inRuns )
{
    ConsoleReporter::ReportRuns( inRuns );
    for ( const Run& run : inRuns )
    {
        const std::string& name = run.run_name.function_name;
        const std::size_t first = name.find( '/' ), second = name.find( '/', first + 1 );
        const auto rate = run.counters.find( "bytes_per_second" );
        if ( second == std::string::npos or rate == run.counters.end() or run.error_occurred )
            continue;
        const std::string who = name.substr( first + 1, second - first - 1 );
        mRates[name.substr( 0, first ) + name.substr( second )][who] = rate->second;
    }
}

void RatioReporter::PrintRatios() const
{
    fmt::print(
        "\n{:<26} {:<12} {:>12} {:>12} {:>12}\n", "subject/macros", "peer", "ours MB/s", "peer MB/s", "ours/peer" );
    for ( const auto& [subject, rates] : mRates )
    {
        const auto ours = rates.find( "ours" );
        if ( ours == rates.end() )
            continue;
        for ( const auto& [who, rate] : rates )
        {
            if ( who != "ours" )
                fmt::print( "{:<26} {:<12} {:>12.1f} {:>12.1f} {:>12.2f}\n", subject, who, ours->second / 1e6,
                    rate / 1e6, ours->second / rate );
        }
    }
}
