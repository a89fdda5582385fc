// The editor as people wait for it: from its start until it is ready, what one edit costs the thread that people wait
// for, until the model is back after an undo, and a verb through an editor that runs. Beside each a plain load or save
// of the same bytes. The editor works in a folder of its own below the temporary folder, on the real disk and with its
// queues.
#include "App/EditorHost.h"
#include "App/EditorSession.h"
#include "Benchmarks/MacrosFileMaker.h"
#include "Benchmarks/Report.h"
#include "Benchmarks/RunningEditor.h"
#include "Defines/KVPreferences.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileEncoder.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/SavedStates.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <limits>
#include <malloc.h>
#include <unistd.h>

namespace
{
struct Corpus
{
    std::string mName;
    XBytes mBytes; // as an editor has saved them, so that loading them changes nothing
    std::filesystem::path mFolder;
};

// After which the editor has its macros encoded, and is idle.
constexpr unsigned kEncodingSeconds = 8;
constexpr std::int64_t kMaximumUndoSize = std::int64_t( 4 ) << 30;

KVAppDelegate::Options WithoutEngine()
{
    KVAppDelegate::Options options;
    options.mMayLaunchEngine = false;
    return options;
}

void WaitForQueues()
{
    MMacroPreferenceFile::WaitForQueue();
    SavedStates::WaitForQueue();
    while ( XWork::Current().DrainMainQueue() > 0 )
    {}
}

/// An editor that has started on the folder, and has nothing more to do.
class StartedEditor
{
public:
    explicit StartedEditor( const std::filesystem::path& inFolder )
    {
        KVPreferences::UseFolder( inFolder );
        mSession.emplace( nullptr );
        mIsStarted = mSession->TakeFolder();
        if ( mIsStarted )
            mSession->Start( WithoutEngine() );
        // As it comes, the limit is below the size of the larger file, and nothing could be undone.
        (void)KVPreferences::Set( KVPreferences::kMaximumUndoSizeID, kMaximumUndoSize );
        Settle();
    }
    ~StartedEditor()
    {
        mSession.reset();
        KVPreferences::UseFolder( {} );
    }
    StartedEditor( const StartedEditor& ) = delete;
    StartedEditor& operator=( const StartedEditor& ) = delete;

    [[nodiscard]] explicit operator bool() const { return mIsStarted; }
    /// All edits are saved, and the objects have their encoded form, as some idle turns later.
    static void Settle()
    {
        WaitForQueues();
        (void)MMacroFileEncoder::EncodeSome( *MMacroDomain::Get(), std::numeric_limits<std::size_t>::max() );
    }
    /// The macro that the next edit is about. An undo makes new ones.
    void Choose()
    {
        std::vector<MMacro*> macros;
        MMacroDomain::Get()->DoForEveryMacro( [&]( MMacroGroup&, MMacro& macro ) { macros.push_back( &macro ); } );
        mMacro = macros[++mEdits * 7919 % macros.size()];
    }
    void Edit()
    {
        MMacro& macro = *mMacro;
        macro.SetName( TextFromUTF8( fmt::format( "Edited {}", mEdits ) ) );
        MacrosWindowChange change;
        change.mType = MacrosWindowChangeType::kMacroChanged;
        change.mObjects = { &macro };
        MacrosWindowInterface::NoteChange( u"Rename", change );
    }

private:
    std::optional<EditorSession> mSession;
    bool mIsStarted = false;
    MMacro* mMacro = nullptr;
    std::size_t mEdits = 0;
};

void Start( benchmark::State& ioState, const Corpus& inCorpus )
{
    std::uint64_t written = 0;
    for ( [[maybe_unused]] auto round : ioState )
    {
        KVPreferences::UseFolder( inCorpus.mFolder );
        auto session = std::make_unique<EditorSession>( nullptr );
        if ( not session->TakeFolder() )
            return ioState.SkipWithError( "the folder is taken" );
        session->Start( WithoutEngine() );
        ioState.PauseTiming();
        const auto saved = MMacroPreferenceFile::SavedData();
        written += not saved or not std::ranges::equal( saved->Span(), inCorpus.mBytes.Span() );
        WaitForQueues();
        session.reset();
        KVPreferences::UseFolder( {} );
        // The last save gives the file a new identity.
        if ( XAtomicFile::Write( inCorpus.mFolder / "Korvalen Macros.plist", inCorpus.mBytes.Span() ) )
            return ioState.SkipWithError( "the macros file can't be written" );
        ioState.ResumeTiming();
    }
    if ( written > 0 )
        ioState.SkipWithError( "the start changed the macros" );
}

void Edit( benchmark::State& ioState, const Corpus& inCorpus )
{
    StartedEditor editor( inCorpus.mFolder );
    if ( not editor )
        return ioState.SkipWithError( "the folder is taken" );
    for ( [[maybe_unused]] auto round : ioState )
    {
        ioState.PauseTiming();
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        StartedEditor::Settle();
        editor.Choose();
        ioState.ResumeTiming();
        editor.Edit();
    }
}

void SaveAfterEdit( benchmark::State& ioState, const Corpus& inCorpus )
{
    StartedEditor editor( inCorpus.mFolder );
    if ( not editor )
        return ioState.SkipWithError( "the folder is taken" );
    for ( [[maybe_unused]] auto round : ioState )
    {
        ioState.PauseTiming();
        StartedEditor::Settle();
        editor.Choose();
        editor.Edit();
        ioState.ResumeTiming();
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
    }
}

// Until the model is the one before the edit, and the macros file too.
void UndoOneEdit( benchmark::State& ioState, const Corpus& inCorpus )
{
    StartedEditor editor( inCorpus.mFolder );
    if ( not editor )
        return ioState.SkipWithError( "the folder is taken" );
    for ( [[maybe_unused]] auto round : ioState )
    {
        ioState.PauseTiming();
        editor.Choose();
        editor.Edit();
        MacrosWindowUndo::SaveAllMacrosIfNecessary();
        StartedEditor::Settle();
        ioState.ResumeTiming();
        if ( not MacrosWindowUndo::Undo() )
            return ioState.SkipWithError( "nothing was undone" );
    }
}

void RenameThroughTheEditor( benchmark::State& ioState, const Corpus& inCorpus )
{
    RunningEditor editor( inCorpus.mFolder );
    if ( not editor )
        return ioState.SkipWithError( "the editor doesn't start; is there a session bus?" );
    const std::string macro = RunningEditor::AnyMacro( inCorpus.mBytes );
    sleep( kEncodingSeconds );
    std::size_t count = 0;
    const double before = editor.ProcessorSeconds();
    for ( [[maybe_unused]] auto round : ioState )
    {
        if ( editor.Run( { "rename", macro, fmt::format( "Renamed {}", ++count ) } ) != 0 )
            return ioState.SkipWithError( "the verb failed" );
    }
    ioState.counters["processor ms"] =
        ( editor.ProcessorSeconds() - before ) * 1000 / double( std::max<std::size_t>( count, 1 ) );
}

void PlainLoad( benchmark::State& ioState, const Corpus& inCorpus )
{
    for ( [[maybe_unused]] auto round : ioState )
    {
        auto domain = std::make_unique<MMacroDomain>();
        domain->LoadFromPropertyList( ReadPropertyList( inCorpus.mBytes.Span() ).mValue );
        ioState.PauseTiming();
        domain.reset();
        malloc_trim( 0 );
        ioState.ResumeTiming();
    }
}

void PlainSave( benchmark::State& ioState, const Corpus& inCorpus )
{
    MMacroDomain domain;
    domain.LoadFromPropertyList( ReadPropertyList( inCorpus.mBytes.Span() ).mValue );
    for ( [[maybe_unused]] auto round : ioState )
        benchmark::DoNotOptimize( WriteBinaryPropertyList( domain.GetPropertyList() ).size() );
}

void Register( const Corpus& inCorpus )
{
    const auto add = [&inCorpus]( const char* inSubject, const char* inWho, auto inBody ) {
        return benchmark::RegisterBenchmark( fmt::format( "{}/{}/{}", inSubject, inWho, inCorpus.mName ).c_str(),
            [&inCorpus, inBody]( auto& ioState ) {
                malloc_trim( 0 );
                inBody( ioState, inCorpus );
                ioState.SetBytesProcessed( std::int64_t( ioState.iterations() * inCorpus.mBytes.size() ) );
            } )
            ->Unit( benchmark::kMillisecond )
            ->UseRealTime(); // a wait for the disk is time as well
    };
    add( "editor-start", "ours", Start )->Iterations( 3 );
    add( "editor-start", "plain load", PlainLoad )->Iterations( 3 );
    add( "editor-edit", "ours", Edit )->Iterations( 5 );
    add( "editor-edit", "plain save", PlainSave )->Iterations( 3 );
    add( "editor-save-after-edit", "ours", SaveAfterEdit )->Iterations( 5 );
    add( "editor-save-after-edit", "plain save", PlainSave )->Iterations( 3 );
    add( "editor-undo", "ours", UndoOneEdit )->Iterations( 3 );
    add( "editor-undo", "plain load", PlainLoad )->Iterations( 3 );
    if ( RunningEditor::Program() )
    {
        add( "editor-rename-by-verb", "ours", RenameThroughTheEditor )->Iterations( 50 );
        add( "editor-rename-by-verb", "plain load", PlainLoad )->Iterations( 3 );
    }
}

/// A first start gives the file what an editor adds to it: version, default group, times.
XBytes AsSavedByAnEditor( const std::filesystem::path& inFolder )
{
    {
        const StartedEditor editor( inFolder );
    }
    XFileContent content = ReadWholeFile( inFolder / "Korvalen Macros.plist", std::size_t( 2 ) << 30 );
    return std::move( content.mBytes );
}

std::optional<Corpus> MakeCorpus( const std::string& inName, std::span<const std::uint8_t> inBytes )
{
    std::string folder = ( std::filesystem::temp_directory_path() / "korvalen-benchmark-XXXXXX" ).string();
    if ( not mkdtemp( folder.data() ) )
        return {};
    Corpus corpus{ inName, {}, folder };
    if ( XAtomicFile::Write( corpus.mFolder / "Korvalen Macros.plist", inBytes ) )
        return {};
    corpus.mBytes = AsSavedByAnEditor( corpus.mFolder );
    return corpus;
}

// The files that KORVALEN_BENCHMARK_FILES names, with ":" between; without it files of our own making.
std::vector<Corpus> Corpora()
{
    std::vector<Corpus> corpora;
    const auto add = [&corpora]( const std::string& name, std::span<const std::uint8_t> bytes ) {
        if ( auto corpus = MakeCorpus( name, bytes ) )
            corpora.push_back( std::move( *corpus ) );
        else
            fmt::print( stderr, "can't make a folder for “{}”\n", name );
    };
    const char* const files = std::getenv( "KORVALEN_BENCHMARK_FILES" );
    const std::string_view list = files ? files : "";
    for ( std::size_t at = 0; at < list.size(); )
    {
        const std::size_t end = std::min( list.find( ':', at ), list.size() );
        const std::string path( list.substr( at, end - at ) );
        const XFileContent content = ReadWholeFile( path, std::size_t( 2 ) << 30 );
        if ( content.mError )
            fmt::print( stderr, "can't read “{}”\n", path );
        else
            add( path.substr( path.rfind( '/' ) + 1 ), content.mBytes.Span() );
        at = end + 1;
    }
    if ( not files )
    {
        for ( const std::size_t macros : { 10000, 100000 } )
            add( fmt::format( "{}", macros ), WriteBinaryPropertyList( MakeMacrosFile( macros ) ).Span() );
    }
    return corpora;
}
} // namespace

int main( int inCount, char** inArguments )
{
    XDeclareMainThread();
    benchmark::Initialize( &inCount, inArguments );
    if ( benchmark::ReportUnrecognizedArguments( inCount, inArguments ) )
        return 2;
    const std::vector<Corpus> corpora = Corpora();
    for ( const Corpus& corpus : corpora )
        Register( corpus );
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks( &reporter );
    reporter.PrintRatios();
    for ( const Corpus& corpus : corpora )
    {
        std::error_code ignored;
        std::filesystem::remove_all( corpus.mFolder, ignored );
    }
    if ( not RunningEditor::Program() )
        fmt::print( "editor-rename-by-verb wasn't run: set KORVALEN_PROGRAM to the program's path.\n" );
    return 0;
}
