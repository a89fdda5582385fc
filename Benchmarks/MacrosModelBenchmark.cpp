// Macros files as people wait for them: from bytes to the whole model, from the model to bytes, and what loading
// takes of memory; libplist's mere parse of the same bytes beside it. And cron expressions.
#include "Benchmarks/MacrosFileMaker.h"
#include "Benchmarks/Peers.h"
#include "Benchmarks/Report.h"
#include "Macros/MMacroDomain.h"
#include "Utility/Cron/CronSchedule.h"
#include "XCAF/XFileWriting.h"

#include <cstdlib>
#include <fmt/format.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
struct Corpus
{
    std::string mName;
    XBytes mBytes;
    double mPeak = 0; // bytes for each byte of the file
};

std::unique_ptr<MMacroDomain> Load( const XBytes& inBytes )
{
    auto domain = std::make_unique<MMacroDomain>();
    domain->LoadFromPropertyList( ReadPropertyList( inBytes.Span() ).mValue );
    return domain;
}

// A fresh process loads the file once: what it grows by at most, the file's own bytes included, for each byte of the
// file.
double PeakBytesPerByte( const XBytes& inBytes )
{
    int ends[2];
    if ( pipe( ends ) != 0 )
        return -1;
    const pid_t child = fork();
    if ( child == 0 )
    {
        rusage before = {}, after = {};
        getrusage( RUSAGE_SELF, &before );
        const auto domain = Load( inBytes );
        getrusage( RUSAGE_SELF, &after );
        const double bytes = double( after.ru_maxrss - before.ru_maxrss ) * 1024 + double( inBytes.size() );
        _exit( write( ends[1], &bytes, sizeof( bytes ) ) == sizeof( bytes ) ? 0 : 1 );
    }
    close( ends[1] );
    double bytes = -1;
    if ( read( ends[0], &bytes, sizeof( bytes ) ) != sizeof( bytes ) )
        bytes = -1;
    close( ends[0] );
    waitpid( child, nullptr, 0 );
    return bytes / double( inBytes.size() );
}

void Register( const Corpus& inCorpus )
{
    const auto add = [&inCorpus]( const char* inSubject, const char* inWho, auto inBody ) {
        benchmark::RegisterBenchmark( fmt::format( "{}/{}/{}", inSubject, inWho, inCorpus.mName ).c_str(),
            [&inCorpus, inBody]( auto& ioState ) {
                malloc_trim( 0 );
                inBody( ioState, inCorpus.mBytes );
                ioState.counters["peak bytes/file byte"] = inCorpus.mPeak;
                ioState.SetBytesProcessed( std::int64_t( ioState.iterations() * inCorpus.mBytes.size() ) );
            } )
            ->Unit( benchmark::kMillisecond );
    };
    add( "macros-load", "ours", []( benchmark::State& ioState, const XBytes& inBytes ) {
        for ( [[maybe_unused]] auto round : ioState )
        {
            auto domain = Load( inBytes );
            ioState.PauseTiming(); // a program frees its macros at its end, if ever
            domain.reset();
            ioState.ResumeTiming();
        }
    } );
    add( "macros-load", "libplist's mere parse", []( benchmark::State& ioState, const XBytes& inBytes ) {
        for ( [[maybe_unused]] auto round : ioState )
        {
            auto tree = std::make_unique<LibplistTree>( XPlistFormat::kBinary, inBytes.View() );
            ioState.PauseTiming();
            tree.reset();
            ioState.ResumeTiming();
        }
    } );
    add( "macros-save", "ours", []( benchmark::State& ioState, const XBytes& inBytes ) {
        const auto domain = Load( inBytes );
        for ( [[maybe_unused]] auto round : ioState )
            benchmark::DoNotOptimize( WriteBinaryPropertyList( domain->GetPropertyList() ).size() );
    } );
}

void RegisterCron()
{
    benchmark::RegisterBenchmark( "cron-parse-and-sentence", []( benchmark::State& ioState ) {
        CronParser::Entry entry;
        for ( [[maybe_unused]] auto round : ioState )
        {
            if ( CronParser::ParseString( u"*/5,17 8-18 -1,15 JAN,MAR-NOV MON-FRI 2026-2030", entry ) )
                ioState.SkipWithError( "it didn't parse" );
            benchmark::DoNotOptimize( CronParser::DisplayEntryValue( entry ) );
        }
    } )->Unit( benchmark::kMicrosecond );
    for ( const TextView text : { u"*/15 * * * *", u"0 0 29 FEB *", u"30 4 -1 * +MON", u"0 0 31 FEB *" } )
        benchmark::RegisterBenchmark( fmt::format( "cron-next-time/{}", UTF8FromText( text ) ).c_str(),
            [text]( benchmark::State& ioState ) {
                CronParser::Entry entry;
                static_cast<void>( CronParser::ParseString( text, entry ) );
                const XTimeZone zone = *XTimeZone::FromName( u"Europe/Berlin" );
                for ( [[maybe_unused]] auto round : ioState )
                    benchmark::DoNotOptimize( CronSchedule::NextTime( entry, 818000000.0, zone ) );
            } )
            ->Unit( benchmark::kMicrosecond );
}

// The files that KORVALEN_BENCHMARK_FILES names, with ":" between; without it files of our own making.
std::vector<Corpus> Corpora()
{
    std::vector<Corpus> corpora;
    if ( const char* const files = std::getenv( "KORVALEN_BENCHMARK_FILES" ) )
    {
        const std::string_view list = files;
        for ( std::size_t at = 0; at < list.size(); )
        {
            const std::size_t end = std::min( list.find( ':', at ), list.size() );
            const std::string path( list.substr( at, end - at ) );
            XFileContent content = ReadWholeFile( path, std::size_t( 2 ) << 30 );
            if ( content.mError )
                fmt::print( stderr, "can't read “{}”\n", path );
            else
                corpora.push_back( { path.substr( path.rfind( '/' ) + 1 ), std::move( content.mBytes ) } );
            at = end + 1;
        }
        return corpora;
    }
    for ( const std::size_t macros : { 10000, 100000 } )
        corpora.push_back( { fmt::format( "{}", macros ), WriteBinaryPropertyList( MakeMacrosFile( macros ) ) } );
    return corpora;
}
} // namespace

int main( int inCount, char** inArguments )
{
    benchmark::Initialize( &inCount, inArguments );
    if ( benchmark::ReportUnrecognizedArguments( inCount, inArguments ) )
        return 2;
    std::vector<Corpus> corpora = Corpora();
    for ( Corpus& corpus : corpora ) // while this process has grown by nothing but the files
        corpus.mPeak = PeakBytesPerByte( corpus.mBytes );
    for ( const Corpus& corpus : corpora )
        Register( corpus );
    RegisterCron();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks( &reporter );
    reporter.PrintRatios();
    return 0;
}
