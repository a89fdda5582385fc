// The judge is the expression engine itself: whatever a term's expression means to it, ignoring case, our matching
// has to say, on texts made of all that case folding makes difficult.
#include "Utility/Search/SearchPattern.h"

#include "Utility/Search/CaseFolding.h"
#include "Utility/Search/LiteralSearch.h"
#include "Utility/Search/SearchableTexts.h"
#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/StringHelpers.h"
#include "Utility/Work/Random.h"

#include <gtest/gtest.h>
#include <memory>
#include <unicode/uchar.h>
#include <unicode/uregex.h>
#include <unicode/ustring.h>

namespace
{
using Kind = StringSearchee::Kind;

class EngineJudge
{
public:
    explicit EngineJudge( const Text& inExpression )
    {
        UErrorCode status = U_ZERO_ERROR;
        mRegex.reset( uregex_open(
            inExpression.data(), std::int32_t( inExpression.size() ), UREGEX_CASE_INSENSITIVE, nullptr, &status ) );
        EXPECT_TRUE( U_SUCCESS( status ) ) << UTF8FromText( inExpression );
    }
    bool Finds( TextView inText ) const
    {
        UErrorCode status = U_ZERO_ERROR;
        uregex_setText( mRegex.get(), inText.empty() ? u"" : inText.data(), std::int32_t( inText.size() ), &status );
        return uregex_find( mRegex.get(), 0, &status );
    }

private:
    struct Close
    {
        void operator()( URegularExpression* inRegex ) const { uregex_close( inRegex ); }
    };
    std::unique_ptr<URegularExpression, Close> mRegex;
};

Text RandomText( XSeededRandom& ioRandom, std::u32string_view inAlphabet, std::size_t inMost )
{
    Text text;
    for ( std::size_t left = ioRandom.Next() % ( inMost + 1 ); left > 0; --left )
        kvr_appendCharacter( text, inAlphabet[ioRandom.Next() % inAlphabet.size()] );
    return text;
}

std::string Shown( TextView inText )
{
    std::string shown;
    for ( const char16_t unit : inText )
        shown += UTF8FromText( TextView( &unit, 1 ) ) + "(" + std::to_string( unsigned( unit ) ) + ")";
    return shown;
}
} // namespace

TEST( SearchPattern, AgreesWithTheExpressionOnRandomTexts )
{
    // Expansions, letters that fold beyond ASCII or from beyond it, pairs and their halves, all sorts of blanks.
    constexpr std::u32string_view kAlphabets[] = {
        U"sSkKiI\u00DF\u1E9E\u017F\u212A\u0130\u0131\u0307 ",
        U"fFiIlLtTs\uFB00\uFB01\uFB03\uFB05 ",
        U"\u03C3\u03A3\u03C2\u03B1\u0391\u03AC\u1FB3\u1FBC\u0345\u03B9\u0399 ",
        U"ab\t\u00A0\u2003\u0085 \u2028",
        U"aA\U00010400\U00010428\U0001F600\U0001F3FF\uFFFF",
        U"⌃⌥⇧⌘Tt",
        U"nN\u0149\u02BC\u01F0jJ\u030C\u13A0\uAB70\u01C5\u01C4\u01C6",
        U"abAB01-:.",
    };
    constexpr std::uint64_t kSeed = 20261121;
    XSeededRandom random( kSeed );
    int found = 0;
    for ( int round = 0; round < 4000; ++round )
    {
        const std::u32string_view alphabet = kAlphabets[round % std::size( kAlphabets )];
        StringSearcher searcher;
        const bool isHotKey = round % 3 == 0;
        searcher.Add( ( isHotKey ? u"h:" : u"" ) + RandomText( random, alphabet, 4 ) );
        if ( searcher.Useless() or searcher.GetTerms()[0].mText.empty() )
            continue;
        const SearchTerm& term = searcher.GetTerms()[0];
        const EngineJudge judge( term.mText );
        for ( int text = 0; text < 20; ++text )
        {
            const Text where = RandomText( random, alphabet, 12 );
            const bool expected = judge.Finds( where );
            found += expected;
            ASSERT_EQ( term.mPattern.Matches( where ), expected )
                << "seed " << kSeed << ", " << UTF8FromText( term.mText ) << " in " << Shown( where );
        }
    }
    EXPECT_GT( found, 3000 ) << "too few matches to say anything";
}

TEST( SearchPattern, AgreesWithTheExpressionOnHalvesOfPairs )
{
    XSeededRandom random( 7 );
    constexpr char16_t kUnits[] = { 0xD83D, 0xDE00, 0xD800, 0xDC00, u'a', 0xFFFF, 0xDFFF };
    const auto make = [&]( std::size_t most ) {
        Text text;
        for ( std::size_t left = 1 + random.Next() % most; left > 0; --left )
            text += kUnits[random.Next() % std::size( kUnits )];
        return text;
    };
    for ( int i = 0; i < 5000; ++i )
    {
        const Text expression = SearchPattern::SafeExpression( make( 3 ) ), text = make( 8 );
        ASSERT_EQ( SearchPattern( expression ).Matches( text ), EngineJudge( expression ).Finds( text ) )
            << UTF8FromText( expression ) << " in " << Shown( text );
    }
}

// Every character, as a search for it alone and with another, in itself and in its foldings.
TEST( SearchPattern, EveryCharacterWithCaseMatchesWhatItMatchesAsAnExpression )
{
    for ( char32_t character = 0x80; character < 0x1E944; ++character )
    {
        if ( not u_hasBinaryProperty( UChar32( character ), UCHAR_CHANGES_WHEN_CASEMAPPED ) )
            continue;
        Text text;
        kvr_appendCharacter( text, character );
        for ( const char32_t other : { char32_t( u_foldCase( UChar32( character ), U_FOLD_CASE_DEFAULT ) ),
                  char32_t( u_toupper( UChar32( character ) ) ), U's', U'f', U'\u0345' } )
        {
            Text where;
            kvr_appendCharacter( where, other );
            for ( const auto& [term, place] : { std::pair( text, where ), std::pair( where, text ),
                      std::pair( where + where, text ), std::pair( text, where + where ) } )
            {
                const Text expression = SearchPattern::SafeExpression( term );
                ASSERT_EQ( SearchPattern( expression ).Matches( place ), EngineJudge( expression ).Finds( place ) )
                    << UTF8FromText( expression ) << " in " << Shown( place );
            }
        }
    }
}

TEST( CaseFolding, EveryCharacterFoldsAsUnicodeSays )
{
    for ( char32_t character = 0x80; character < 0x20000; ++character )
    {
        if ( character >= 0xD800 and character < 0xE000 )
            continue;
        Text text;
        kvr_appendCharacter( text, character );
        UErrorCode status = U_ZERO_ERROR;
        char16_t folded[8];
        const std::int32_t length = u_strFoldCase( folded, std::int32_t( std::size( folded ) ), text.data(),
            std::int32_t( text.size() ), U_FOLD_CASE_DEFAULT, &status );
        ASSERT_EQ( FoldedCase( text ), Text( folded, std::size_t( length ) ) ) << std::uint32_t( character );
    }
}

TEST( SearchPattern, FoundInACollectionExactlyWhenFoundInOneOfItsTexts )
{
    constexpr std::u32string_view kAlphabet = U"aAbsS\u00DF\u00A0 \uFFFF\u212Ak";
    XSeededRandom random( 99 );
    for ( int round = 0; round < 3000; ++round )
    {
        StringSearchee searchee;
        for ( int i = 0; i < 8; ++i )
        {
            const Text text = RandomText( random, kAlphabet, 6 );
            switch ( random.Next() % 5 )
            {
            case 0:
                searchee.Add( text );
                break;
            case 1:
                searchee.AddName( text );
                break;
            case 2:
                searchee.AddHotKey( text );
                break;
            case 3:
                searchee.AddGroup( text );
                break;
            default:
                searchee.AddUID( text );
                break;
            }
        }
        const SearchableTexts texts( searchee );
        const SearchPattern pattern( SearchPattern::SafeExpression( RandomText( random, kAlphabet, 3 ) ) );
        if ( pattern.NeedsEngine() )
            continue;
        for ( const Kind kind : { Kind::kText, Kind::kUID, Kind::kGroup, Kind::kHotKey, Kind::kApplication } )
        {
            bool expected = false;
            for ( const auto& element : searchee.GetElements() )
            {
                const bool isOfKind = element.mKind == kind or
                    ( kind == Kind::kText and ( element.mKind == Kind::kName or element.mKind == Kind::kHotKey ) );
                expected |= isOfKind and pattern.Matches( element.mText );
            }
            ASSERT_EQ( texts.Matches( pattern, kind ), expected ) << UTF8FromText( pattern.GetExpression() );
        }
    }
}

TEST( LiteralSearch, FindsWhatTheStandardLibraryFinds )
{
    XSeededRandom random( 5 );
    for ( int round = 0; round < 20000; ++round )
    {
        // Few letters and long runs, so that candidates fail often.
        std::string text( random.Next() % 300, 'a' ), needle( 1 + random.Next() % 24, 'a' );
        for ( std::string* const target : { &text, &needle } )
        {
            for ( std::size_t changes = random.Next() % 4; changes > 0 and not target->empty(); --changes )
                ( *target )[random.Next() % target->size()] = char( 'a' + random.Next() % 3 );
        }
        const std::size_t from = random.Next() % 20;
        ASSERT_EQ( LiteralSearch<char>( needle ).Find( text, from ), text.find( needle, from ) )
            << needle << " in " << text;
        const Text wideText = TextFromASCII( text ), wideNeedle = TextFromASCII( needle );
        ASSERT_EQ( LiteralSearch<char16_t>( wideNeedle ).Find( wideText, from ), text.find( needle, from ) );
    }
}

TEST( LiteralSearch, LongRunsOfFewLettersAreSearchedWithoutGoingBack )
{
    // By going back this would compare ten billion letters.
    std::string text( 400000, 'a' ), needle( 100000, 'a' );
    needle[50000] = 'b';
    EXPECT_EQ( LiteralSearch<char>( needle ).Find( text ), std::string::npos );
    text[350000] = 'b';
    EXPECT_EQ( LiteralSearch<char>( needle ).Find( text ), 300000u );
}
