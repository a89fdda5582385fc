// Macros files as people wait for them: from bytes to the whole model, from the model to bytes, whole and after an edit,
// and what that takes of memory; beside it libplist's mere parse of the same bytes, and a plain save, which builds the
// whole property list and writes it. And cron expressions.
#include "Benchmarks/MacrosFileMaker.h"
#include "Benchmarks/Peers.h"
#include "Benchmarks/Report.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileEncoder.h"
#include "MacrosWindow/MacrosWindowInterface.h"
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

void SavePlainly( benchmark::State& ioState, const XBytes& inBytes )
{
    const auto domain = Load( inBytes );
    for ( [[maybe_unused]] auto round : ioState )
        benchmark::DoNotOptimize( WriteBinaryPropertyList( domain->GetPropertyList() ).size() );
}

// One macro after another, so that no round finds in the caches what the one before left there.
class Editor
{
public:
    explicit Editor( const MMacroDomain& inDomain )
    {
        inDomain.DoForEveryMacro( [this]( MMacroGroup&, MMacro& macro ) { mMacros.push_back( &macro ); } );
    }
    MMacro& Edit()
    {
        MMacro& macro = *mMacros[mNext = ( mNext + 7919 ) % mMacros.size()];
        macro.SetName( Text( u"Edited " ) + Text( 1, char16_t( u'a' + mNext % 26 ) ) );
        return macro;
    }

private:
    std::vector<MMacro*> mMacros;
    std::size_t mNext = 0;
};

double HeapBytes()
{
    const auto info = mallinfo2();
    return double( info.uordblks ) + double( info.hblkhd );
}

void SaveAnew( benchmark::State& ioState, const XBytes& inBytes )
{
    const auto domain = Load( inBytes );
    for ( [[maybe_unused]] auto round : ioState )
        benchmark::DoNotOptimize( MMacroFileEncoder::EncodeMacroDomainAnew( *domain )->Span().size() );
    MMacroFileEncoder::Forget();
    malloc_trim( 0 );
    const double before = HeapBytes();
    static_cast<void>( MMacroFileEncoder::EncodeMacroDomain( *domain ) );
    ioState.counters["kept bytes/file byte"] = ( HeapBytes() - before ) / double( inBytes.size() );
}

// What the main thread does: the bytes are put together by whoever writes them.
void SaveAfterEdit( benchmark::State& ioState, const XBytes& inBytes )
{
    const auto domain = Load( inBytes );
    Editor editor( *domain );
    static_cast<void>( MMacroFileEncoder::EncodeMacroDomain( *domain ) );
    for ( [[maybe_unused]] auto round : ioState )
    {
        editor.Edit();
        MMacroFileDataPtr data = MMacroFileEncoder::EncodeMacroDomain( *domain );
        ioState.PauseTiming(); // the list of pieces goes on the writer's queue
        data.reset();
        ioState.ResumeTiming();
    }
}

void PutTogether( benchmark::State& ioState, const XBytes& inBytes )
{
    const auto domain = Load( inBytes );
    Editor editor( *domain );
    for ( [[maybe_unused]] auto round : ioState )
    {
        ioState.PauseTiming();
        editor.Edit();
        MMacroFileDataPtr data = MMacroFileEncoder::EncodeMacroDomain( *domain );
        ioState.ResumeTiming();
        benchmark::DoNotOptimize( data->Span().data() );
        data.reset();
    }
}

void EditThroughTheFunnel( benchmark::State& ioState, const XBytes& inBytes )
{
    const auto domain = Load( inBytes );
    Editor editor( *domain );
    static_cast<void>( MMacroFileEncoder::EncodeMacroDomain( *domain ) );
    for ( [[maybe_unused]] auto round : ioState )
    {
        MacrosWindowChange change;
        change.mType = MacrosWindowChangeType::kMacroChanged;
        change.mObjects = { &editor.Edit() };
        MacrosWindowInterface::NoteChange( u"Rename", change );
    }
}

// As by an undo: the old model goes, and the new one comes out of the bytes.
void Reload( benchmark::State& ioState, const XBytes& inBytes )
{
    const auto domain = Load( inBytes );
    for ( [[maybe_unused]] auto round : ioState )
        domain->LoadFromPropertyList( ReadPropertyList( inBytes.Span() ).mValue );
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
    // Each beside the save that it is measured by.
    add( "macros-save", "ours", SaveAnew );
    add( "macros-save", "plain save", SavePlainly );
    add( "macros-save-after-edit", "ours", SaveAfterEdit );
    add( "macros-save-after-edit", "plain save", SavePlainly );
    add( "macros-put-together", "ours", PutTogether );
    add( "macros-put-together", "plain save", SavePlainly );
    add( "macros-edit", "ours", EditThroughTheFunnel );
    add( "macros-reload", "ours", Reload );
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
