// Searching a model of generated macros: what collecting costs once, what each search costs then, and the same terms
// as the expression engine finds them in the same texts. Benchmarks/README.md says what the rows mean.
#include "Benchmarks/MacrosFileMaker.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Utility/Search/SearchableTexts.h"
#include "Utility/Search/StringSearcher.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <memory>
#include <unicode/uregex.h>

namespace
{
constexpr std::size_t kSizes[] = { 10000, 100000 };

// Only the last size asked for is kept: the largest takes gigabytes.
struct Model
{
    explicit Model( std::size_t inMacros ) : mMacros( inMacros )
    {
        mDomain.LoadFromPropertyList( MakeMacrosFile( inMacros ) );
    }
    static Model& Of( std::size_t inMacros )
    {
        static std::unique_ptr<Model> gLast;
        if ( not gLast or gLast->mMacros != inMacros )
        {
            gLast.reset();
            gLast = std::make_unique<Model>( inMacros );
        }
        return *gLast;
    }

    std::size_t mMacros;
    MMacroDomain mDomain;
};

std::size_t CountMatches( const Model& inModel, TextView inQuery )
{
    StringSearcher searcher( inQuery );
    std::size_t count = 0;
    inModel.mDomain.DoForEveryMacro(
        [&]( const MMacroGroup&, const MMacro& macro ) { count += macro.MatchesTextSearch( searcher ); } );
    return count;
}

// What a plain word is looked for in, of every macro: the peer gets it ready made.
std::vector<std::vector<Text>> CollectTexts( const Model& inModel )
{
    using Kind = StringSearchee::Kind;
    std::vector<std::vector<Text>> texts;
    inModel.mDomain.DoForEveryMacro( [&]( const MMacroGroup&, const MMacro& macro ) {
        StringSearchee searchee;
        macro.AddMatchStrings( searchee );
        std::vector<Text>& own = texts.emplace_back();
        for ( const auto& element : searchee.GetElements() )
        {
            if ( element.mKind == Kind::kText or element.mKind == Kind::kName or element.mKind == Kind::kTrigger or
                element.mKind == Kind::kHotKey )
                own.push_back( element.mText );
        }
    } );
    return texts;
}

std::size_t CountByEngine( const std::vector<std::vector<Text>>& inTexts, TextView inQuery )
{
    const Text expression = StringSearcher( inQuery ).GetTerms()[0].mText;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<URegularExpression, decltype( &uregex_close )> regex(
        uregex_open( expression.data(), std::int32_t( expression.size() ), UREGEX_CASE_INSENSITIVE, nullptr, &status ),
        &uregex_close );
    std::size_t count = 0;
    for ( const std::vector<Text>& own : inTexts )
    {
        for ( const Text& text : own )
        {
            uregex_setText( regex.get(), text.data(), std::int32_t( text.size() ), &status );
            if ( uregex_find( regex.get(), 0, &status ) )
            {
                ++count;
                break;
            }
        }
    }
    return count;
}

void FirstSearch( benchmark::State& ioState, std::size_t inMacros )
{
    const Model& model = Model::Of( inMacros );
    for ( auto _ : ioState )
    {
        MSearchTexts::ForgetAll();
        benchmark::DoNotOptimize( CountMatches( model, u"orchards" ) );
    }
    std::size_t bytes = 0;
    model.mDomain.DoForEveryMacro(
        [&bytes]( const MMacroGroup&, const MMacro& macro ) { bytes += macro.GetSearchableTexts().GetBytes(); } );
    ioState.counters["bytes kept/macro"] = double( bytes ) / double( inMacros );
}

void LaterSearch( benchmark::State& ioState, std::size_t inMacros, TextView inQuery )
{
    const Model& model = Model::Of( inMacros );
    std::size_t count = CountMatches( model, inQuery );
    for ( auto _ : ioState )
        benchmark::DoNotOptimize( count = CountMatches( model, inQuery ) );
    ioState.counters["found"] = double( count );
}

void EngineSearch( benchmark::State& ioState, std::size_t inMacros, TextView inQuery )
{
    const Model& model = Model::Of( inMacros );
    const std::vector<std::vector<Text>> texts = CollectTexts( model );
    std::size_t count = 0;
    for ( auto _ : ioState )
        benchmark::DoNotOptimize( count = CountByEngine( texts, inQuery ) );
    ioState.counters["found"] = double( count );
    if ( count != CountMatches( model, inQuery ) )
        ioState.SkipWithError( "the engine finds other macros" );
}

void SmartGroup( benchmark::State& ioState, std::size_t inMacros )
{
    const Model& model = Model::Of( inMacros );
    (void)CountMatches( model, u"orchard" );
    MMacroSmartGroup smartGroup;
    smartGroup.SetSearchStrings( { u"orchard -violin", u"modified:1w enabled:" } );
    std::vector<MMacro*> macros;
    for ( auto _ : ioState )
    {
        macros.clear();
        double next = 1e9;
        smartGroup.GetEveryMacro( macros, next );
    }
    ioState.counters["found"] = double( macros.size() );
}

void EditOneAndSearch( benchmark::State& ioState, std::size_t inMacros )
{
    const Model& model = Model::Of( inMacros );
    MMacro* first = nullptr;
    model.mDomain.DoForEveryMacro( [&first]( const MMacroGroup&, MMacro& macro ) { first = first ? first : &macro; } );
    (void)CountMatches( model, u"zebra" );
    for ( auto _ : ioState )
    {
        first->DidChangeWords();
        benchmark::DoNotOptimize( CountMatches( model, u"zebra" ) );
    }
}
} // namespace

int main( int inCount, char** inArguments )
{
    benchmark::Initialize( &inCount, inArguments );
    if ( benchmark::ReportUnrecognizedArguments( inCount, inArguments ) )
        return 2;
    constexpr struct
    {
        const char* mName;
        const char16_t* mQuery;
    } kQueries[] = {
        { "word-in-many", u"orchard" },
        { "word-in-none", u"zebra" },
        { "short-word", u"the" },
        { "phrase", u"\"winter market\"" },
        { "word-not-ASCII", u"Großmutter" },
    };
    for ( const std::size_t macros : kSizes )
    {
        const auto add = [macros]( const std::string& name, auto function, auto... arguments ) {
            benchmark::RegisterBenchmark( fmt::format( "{}/{}", name, macros ).c_str(), function, macros, arguments... )
                ->Unit( benchmark::kMillisecond );
        };
        add( "first-search/ours", FirstSearch );
        for ( const auto& [name, query] : kQueries )
        {
            add( fmt::format( "{}/ours", name ), LaterSearch, TextView( query ) );
            add( fmt::format( "{}/engine", name ), EngineSearch, TextView( query ) );
        }
        add( "smart-group/ours", SmartGroup );
        add( "edit-one-and-search/ours", EditOneAndSearch );
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
