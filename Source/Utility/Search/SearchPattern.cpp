#include "Utility/Search/SearchPattern.h"

#include "Utility/Search/CaseFolding.h"
#include "Utility/Search/SearchableTexts.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Text/StringHelpers.h"

#include <algorithm>
#include <optional>

namespace
{
constexpr char16_t kPhraseBlank = 0x00A0;

constexpr bool StandsAsItIs( char32_t inCharacter )
{
    return ( inCharacter >= U'a' and inCharacter <= U'z' ) or ( inCharacter >= U'A' and inCharacter <= U'Z' ) or
        ( inCharacter >= U'0' and inCharacter <= U'9' ) or inCharacter == U'-' or inCharacter == U':';
}

// "\x%02X", or "\x{%04X}" above 255.
void AppendByNumber( char32_t inCharacter, Text& ioExpression )
{
    const bool isWide = inCharacter > 0xFF;
    int digits = isWide ? 4 : 2;
    while ( inCharacter >> ( 4 * digits ) )
        ++digits;
    ioExpression += isWide ? u"\\x{" : u"\\x";
    while ( digits-- > 0 )
        ioExpression += u"0123456789ABCDEF"[( inCharacter >> ( 4 * digits ) ) & 0xF];
    if ( isWide )
        ioExpression += u'}';
}

// Reads an expression character by character: that and only that which SafeExpression and the hot keys write.
class Scanner
{
public:
    explicit Scanner( TextView inExpression ) : mRest( inExpression ) {}

    [[nodiscard]] bool AtEnd() const { return mRest.empty(); }
    [[nodiscard]] bool Take( TextView inText )
    {
        if ( not mRest.starts_with( inText ) )
            return false;
        mRest.remove_prefix( inText.size() );
        return true;
    }
    [[nodiscard]] char32_t TakeCharacter()
    {
        if ( Take( u"\\x{" ) )
            return TakeHex( mRest.find( u'}' ), 1 );
        if ( Take( u"\\x" ) )
            return TakeHex( 2, 0 );
        const char16_t unit = mRest.front();
        mRest.remove_prefix( 1 );
        return unit;
    }

private:
    char32_t TakeHex( std::size_t inDigits, std::size_t inBehind )
    {
        char32_t value = 0;
        for ( const char16_t digit : mRest.substr( 0, inDigits ) )
            value = value * 16 + char32_t( std::max( 0, kvr_hexValue( digit ) ) );
        mRest.remove_prefix( std::min( mRest.size(), inDigits + inBehind ) );
        return value;
    }

    TextView mRest;
};

// Builds phrases; each optional character doubles them, and only a hot key's three modifiers are optional.
class PhraseBuilder
{
public:
    void AddBlank()
    {
        for ( SearchPattern::Phrase& phrase : mPhrases )
        {
            if ( phrase.empty() or not phrase.back().mText.empty() )
                phrase.emplace_back();
            ++phrase.back().mBlanksBefore;
        }
    }

    void AddCharacter( char32_t inCharacter, bool inOptional )
    {
        const std::size_t count = mPhrases.size();
        if ( inOptional )
        {
            mPhrases.reserve( 2 * count );
            std::copy_n( mPhrases.begin(), count, std::back_inserter( mPhrases ) );
        }
        for ( std::size_t i = 0; i < count; ++i )
        {
            if ( mPhrases[i].empty() )
                mPhrases[i].emplace_back();
            kvr_appendCharacter( mPhrases[i].back().mText, inCharacter );
        }
    }

    // Nothing when a phrase isn't for own code.
    [[nodiscard]] std::vector<SearchPattern::Phrase> Finish()
    {
        for ( SearchPattern::Phrase& phrase : mPhrases )
        {
            if ( not IsForOwnCode( phrase ) )
                return {};
            for ( SearchLiteral& literal : phrase )
            {
                literal.mText = FoldedCase( literal.mText );
                literal.mFolded = LiteralSearch<char16_t>( literal.mText );
                if ( IsASCII( literal.mText ) )
                    literal.mASCII = LiteralSearch<char>( UTF8FromText( literal.mText ) );
            }
        }
        return std::move( mPhrases );
    }

private:
    static bool IsForOwnCode( const SearchPattern::Phrase& inPhrase )
    {
        if ( inPhrase.empty() or inPhrase.front().mText.empty() )
            return false;
        return std::ranges::all_of( inPhrase, []( const SearchLiteral& literal ) {
            // White space behind white space would make the engine try how much the first takes.
            const bool isAmbiguous =
                literal.mBlanksBefore > 0 and not literal.mText.empty() and kvr_isWhitespace( literal.mText.front() );
            return not isAmbiguous and not FindLoneSurrogate( literal.mText ) and
                literal.mText.find( SearchableTexts::kSeparator ) == Text::npos;
        } );
    }

    std::vector<SearchPattern::Phrase> mPhrases{ {} };
};
} // namespace

SearchPattern::SearchPattern( TextView inExpression ) : mExpression( inExpression )
{
    if ( mExpression.empty() )
        return;
    PhraseBuilder builder;
    for ( Scanner scanner( mExpression ); not scanner.AtEnd(); )
    {
        if ( scanner.Take( u"\\s+" ) )
            builder.AddBlank();
        else
        {
            const char32_t character = scanner.TakeCharacter();
            builder.AddCharacter( character, scanner.Take( u"?" ) );
        }
    }
    mPhrases = builder.Finish();
}

bool SearchPattern::Matches( TextView inText ) const
{
    if ( NeedsEngine() )
        return isMatchedByRegex( inText, mExpression, RegexOptions::kCaseInsensitive );
    StringSearchee searchee;
    searchee.Add( inText );
    return IsEmpty() or SearchableTexts( searchee ).Matches( *this, StringSearchee::Kind::kText );
}

Text SearchPattern::SafeExpression( TextView inTerm )
{
    Text expression;
    expression.reserve( inTerm.size() );
    for ( std::size_t at = 0; at < inTerm.size(); )
    {
        const char32_t character = kvr_nextCharacter( inTerm, at );
        if ( StandsAsItIs( character ) )
            expression += char16_t( character );
        else if ( character == kPhraseBlank )
            expression += u"\\s+";
        else
            AppendByNumber( character, expression );
    }
    return expression;
}
