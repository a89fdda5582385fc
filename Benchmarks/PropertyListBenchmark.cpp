// Reading and writing macros files of three sizes, ours beside the peers, and a few small costs.
// Benchmarks/README.md says what the rows mean.
#include "Benchmarks/BinaryBareScan.h"
#include "Benchmarks/MacrosFileMaker.h"
#include "Benchmarks/Peers.h"
#include "Benchmarks/Report.h"
#include "Tests/CFMethods/BinaryPropertyListAssembler.h"
#include "XCAF/XErrorHandler.h"

#include <cstdlib>
#include <fmt/format.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
constexpr std::size_t kSizes[] = { 1000, 10000, 100000 };
// libplist searches all earlier values for each that it writes in binary, and plistlib takes minutes
// and gigabytes: both stop here.
constexpr std::size_t kMostForSlowPeers = 10000;
// The XML form of 100,000 macros is larger than what readers accept by themselves.
constexpr XPlistLimits kLimits{ .mMaxBytes = std::size_t( 2 ) << 30 };

// One macros file in all its forms. Only the last size asked for is kept: the largest takes gigabytes.
struct Corpus
{
    explicit Corpus( std::size_t inMacros )
        : mMacros( inMacros ),
          mValue( MakeMacrosFile( inMacros ) ),
          mBinary( WriteBinaryPropertyList( mValue ) )
    {
        XPlistWriteResult xml = WriteXMLPropertyList( mValue );
        if ( not xml.mFault )
            mXML = std::move( xml.mBytes );
        // A figure of a reader that reads something else is worth nothing.
        if ( not( ReadBinaryPropertyList( mBinary.Span() ).mValue == mValue ) or
            not( ReadXMLPropertyList( mXML.Span(), kLimits ).mValue == mValue ) )
        {
            fmt::print( stderr, "the macros file doesn't survive our own codecs\n" );
            std::exit( 1 );
        }
    }

    [[nodiscard]] const XBytes& Bytes( XPlistFormat inFormat ) const
    {
        return inFormat == XPlistFormat::kBinary ? mBinary : mXML;
    }
    [[nodiscard]] const std::map<std::string, double>& Plistlib()
    {
        if ( not mPlistlib )
            mPlistlib = TimePlistlib( mBinary.View(), mXML.View() );
        return *mPlistlib;
    }

    static Corpus& Of( std::size_t inMacros )
    {
        static std::unique_ptr<Corpus> gLast;
        if ( not gLast or gLast->mMacros != inMacros )
        {
            gLast.reset();
            gLast = std::make_unique<Corpus>( inMacros );
        }
        return *gLast;
    }

    std::size_t mMacros;
    __SafeCFPropertyList mValue;
    XBytes mBinary, mXML;
    std::optional<std::map<std::string, double>> mPlistlib;
};

const char* NameOf( XPlistFormat inFormat )
{
    return inFormat == XPlistFormat::kBinary ? "binary" : "xml";
}

std::size_t HeapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// The allocator puts off part of the work of freeing; the row that freed has to be done with it, or the
// next one pays: seconds after a tree of gigabytes.
void SettleHeap()
{
    malloc_trim( 0 );
}

// Runs the body for each round; it gives the number of bytes that count.
template<class Body>
void Measure( benchmark::State& ioState, const Body& inBody )
{
    std::size_t bytes = 0;
    for ( [[maybe_unused]] auto round : ioState )
        bytes += inBody();
    ioState.SetBytesProcessed( std::int64_t( bytes ) );
}

template<class MakeTree>
void MeasureRead( benchmark::State& ioState, const XBytes& inBytes, const MakeTree& inMake )
{
    {
        const std::size_t before = HeapBytes();
        const auto tree = inMake();
        ioState.counters["tree bytes/file byte"] = double( HeapBytes() - before ) / double( inBytes.size() );
    }
    Measure( ioState, [&] {
        benchmark::DoNotOptimize( inMake() );
        return inBytes.size();
    } );
}

using Run = std::function<void( benchmark::State&, Corpus& )>;

void Register( const std::string& inSubject, const char* inWho, std::size_t inMacros, const Run& inRun )
{
    benchmark::RegisterBenchmark( fmt::format( "{}/{}/{}", inSubject, inWho, inMacros ).c_str(),
        [inRun, inMacros]( benchmark::State& ioState ) {
            Corpus& corpus = Corpus::Of( inMacros );
            SettleHeap();
            inRun( ioState, corpus );
        } )
        ->Unit( benchmark::kMillisecond );
}

void RegisterPlistlib( const std::string& inSubject, std::size_t inMacros, XPlistFormat inFormat )
{
    const auto run = [inSubject, inMacros, inFormat]( benchmark::State& ioState ) {
        Corpus& corpus = Corpus::Of( inMacros );
        const auto seconds = corpus.Plistlib().find( inSubject );
        for ( [[maybe_unused]] auto round : ioState )
        {
            if ( seconds == corpus.Plistlib().end() )
                ioState.SkipWithError( "python3 gave no figure" );
            else
                ioState.SetIterationTime( seconds->second );
        }
        ioState.SetBytesProcessed( std::int64_t( corpus.Bytes( inFormat ).size() ) );
    };
    benchmark::RegisterBenchmark( fmt::format( "{}/plistlib/{}", inSubject, inMacros ).c_str(), run )
        ->UseManualTime()
        ->Iterations( 1 )
        ->Unit( benchmark::kMillisecond );
}

void RegisterReads( std::size_t inMacros, XPlistFormat inFormat )
{
    const std::string subject = fmt::format( "{}-read", NameOf( inFormat ) );
    Register( subject, "ours", inMacros, [inFormat]( benchmark::State& ioState, Corpus& inCorpus ) {
        const XBytes& bytes = inCorpus.Bytes( inFormat );
        MeasureRead( ioState, bytes, [&] { return ReadPropertyList( bytes.Span(), kLimits ).mValue; } );
    } );
    Register( subject, "libplist", inMacros, [inFormat]( benchmark::State& ioState, Corpus& inCorpus ) {
        const XBytes& bytes = inCorpus.Bytes( inFormat );
        MeasureRead( ioState, bytes, [&] { return std::make_unique<LibplistTree>( inFormat, bytes.View() ); } );
    } );
    Register( subject, "bare-scan", inMacros, [inFormat]( benchmark::State& ioState, Corpus& inCorpus ) {
        const XBytes& bytes = inCorpus.Bytes( inFormat );
        Measure( ioState, [&] {
            if ( inFormat == XPlistFormat::kBinary )
                benchmark::DoNotOptimize( BareScan( bytes.Span() ) );
            else
                benchmark::DoNotOptimize( ParseWithPugixml( bytes.View() ) );
            return bytes.size();
        } );
    } );
    if ( inMacros <= kMostForSlowPeers )
        RegisterPlistlib( subject, inMacros, inFormat );
}

void RegisterWrites( std::size_t inMacros, XPlistFormat inFormat )
{
    const std::string subject = fmt::format( "{}-write", NameOf( inFormat ) );
    Register( subject, "ours", inMacros, [inFormat]( benchmark::State& ioState, Corpus& inCorpus ) {
        // A tree as a load leaves it in memory, not as the maker did.
        const __SafeCFPropertyList value = ReadPropertyList( inCorpus.Bytes( inFormat ).Span(), kLimits ).mValue;
        Measure( ioState, [&] {
            return inFormat == XPlistFormat::kBinary ? WriteBinaryPropertyList( value ).size()
                                                     : WriteXMLPropertyList( value ).mBytes.size();
        } );
    } );
    if ( inFormat == XPlistFormat::kXML or inMacros <= kMostForSlowPeers )
        Register( subject, "libplist", inMacros, [inFormat]( benchmark::State& ioState, Corpus& inCorpus ) {
            const LibplistTree tree( inFormat, inCorpus.Bytes( inFormat ).View() );
            Measure( ioState, [&] { return tree.Write( inFormat ); } );
        } );
    if ( inMacros <= kMostForSlowPeers )
        RegisterPlistlib( subject, inMacros, inFormat );
}

// Of a process that does nothing else, in whole pages.
std::int64_t KilobytesToRefuseTheBomb()
{
    int ends[2];
    if ( pipe( ends ) != 0 )
        return -1;
    const pid_t child = fork();
    if ( child == 0 )
    {
        const std::string bomb = DoublingBomb( 22 );
        rusage before = {}, after = {};
        getrusage( RUSAGE_SELF, &before );
        const bool refused = ReadBinaryPropertyList( AsBytes( bomb ) ).mFault.has_value();
        getrusage( RUSAGE_SELF, &after );
        const std::int64_t kilobytes = refused ? after.ru_maxrss - before.ru_maxrss : -1;
        _exit( write( ends[1], &kilobytes, sizeof( kilobytes ) ) == sizeof( kilobytes ) ? 0 : 1 );
    }
    close( ends[1] );
    std::int64_t kilobytes = -1;
    if ( read( ends[0], &kilobytes, sizeof( kilobytes ) ) != sizeof( kilobytes ) )
        kilobytes = -1;
    close( ends[0] );
    waitpid( child, nullptr, 0 );
    return kilobytes;
}

void RegisterSmallCosts( std::int64_t inBombKilobytes )
{
    benchmark::RegisterBenchmark( "refuse-the-198-byte-bomb", [inBombKilobytes]( benchmark::State& ioState ) {
        SettleHeap();
        const std::string bomb = DoublingBomb( 22 );
        for ( [[maybe_unused]] auto round : ioState )
        {
            if ( not ReadBinaryPropertyList( AsBytes( bomb ) ).mFault )
                ioState.SkipWithError( "the bomb wasn't refused" );
        }
        ioState.counters["KiB at most"] = double( inBombKilobytes );
    } )->Unit( benchmark::kMicrosecond );
    benchmark::RegisterBenchmark( "disabled-log-tag", []( benchmark::State& ioState ) {
        for ( [[maybe_unused]] auto round : ioState )
            benchmark::DoNotOptimize( XErrorHandler::MaybeShouldLog( "XFileMonitor" ) );
    } );
    if ( const char* const program = std::getenv( "KORVALEN_PROGRAM" ) )
        benchmark::RegisterBenchmark( "start-for-help",
            [program]( benchmark::State& ioState ) {
                for ( [[maybe_unused]] auto round : ioState )
                {
                    if ( RunProgram( { program, "--help" } ) != 0 )
                        ioState.SkipWithError( "the program didn't start or failed" );
                }
            } )
            ->UseRealTime()
            ->Unit( benchmark::kMillisecond );
}
} // namespace

int main( int inCount, char** inArguments )
{
    // First of all, while this process is small.
    const std::int64_t bombKilobytes = KilobytesToRefuseTheBomb();
    benchmark::Initialize( &inCount, inArguments );
    if ( benchmark::ReportUnrecognizedArguments( inCount, inArguments ) )
        return 2;
    for ( const std::size_t macros : kSizes )
    {
        for ( const XPlistFormat format : { XPlistFormat::kBinary, XPlistFormat::kXML } )
        {
            RegisterReads( macros, format );
            RegisterWrites( macros, format );
        }
    }
    RegisterSmallCosts( bombKilobytes );
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks( &reporter );
    reporter.PrintRatios();
    fmt::print(
        "\nNot run above {} macros: plistlib, and libplist's binary writer, whose time grows with the square.\n",
        kMostForSlowPeers );
    if ( not std::getenv( "KORVALEN_PROGRAM" ) )
        fmt::print( "start-for-help wasn't run: set KORVALEN_PROGRAM to the program's path.\n" );
    return 0;
}
