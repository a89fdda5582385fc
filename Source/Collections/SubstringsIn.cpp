#include "Collections/SubstringsIn.h"

#include "Utility/Text/Format.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Text/StringHelpers.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <vector>

namespace
{
// A text with its case folded fully, as by ICU, and where each of its units came from: folding changes lengths ("ß" is
// "ss"), and what is found must be told in units of the text itself.
struct FoldedText
{
    explicit FoldedText( TextView inText )
    {
        mUnits.reserve( inText.size() );
        mSource.reserve( inText.size() + 1 );
        for ( std::size_t at = 0; at < inText.size(); )
        {
            const std::size_t start = at;
            const char32_t character = kvr_nextCharacter( inText, at );
            Append( inText.substr( start, at - start ), character, start );
        }
        mSource.push_back( inText.size() );
    }

    // Does a character of the source begin at the unit? Not within what one was folded to.
    [[nodiscard]] bool IsBoundary( std::size_t inUnit ) const
    {
        return inUnit == 0 or mSource[inUnit] != mSource[inUnit - 1];
    }

    Text mUnits;
    std::vector<std::size_t> mSource; // for each unit, and for the end: where its character begins

private:
    void Append( TextView inUnits, char32_t inCharacter, std::size_t inStart )
    {
        if ( inCharacter < 0x80 )
        {
            const bool isCapital = inCharacter >= U'A' and inCharacter <= U'Z';
            mUnits += char16_t( isCapital ? inCharacter + 32 : inCharacter );
        }
        else
        {
            char16_t folded[8]; // full folding makes at most three units of one
            UErrorCode status = U_ZERO_ERROR;
            const auto length = u_strFoldCase( folded, std::int32_t( std::size( folded ) ), inUnits.data(),
                std::int32_t( inUnits.size() ), U_FOLD_CASE_DEFAULT, &status );
            mUnits.append( folded, std::size_t( std::clamp( length, 0, std::int32_t( std::size( folded ) ) ) ) );
        }
        mSource.resize( mUnits.size(), inStart );
    }
};
} // namespace

// The method of Knuth, Morris and Pratt, which looks at no unit of the text again: the library's search compares
// anew at each place, and that is a product of two lengths for repetitive texts.
class SubstringsIn::Searcher
{
public:
    Searcher( TextView inText, TextView inSearch, bool inIgnoreCase ) : mText( inText ), mSearch( inSearch )
    {
        if ( inIgnoreCase )
        {
            mFolded.emplace( inText );
            mFoldedSearch = FoldedText( inSearch ).mUnits;
            mText = mFolded->mUnits;
            mSearch = mFoldedSearch;
        }
        mRepeats.resize( mSearch.size(), 0 );
        for ( std::size_t i = 1, matched = 0; i < mSearch.size(); ++i )
            mRepeats[i] = matched = Advance( matched, mSearch[i] );
    }

    /// The next place behind the last one, in units of the text as given.
    std::optional<TextRange> FindNext()
    {
        std::size_t matched = 0;
        while ( not mSearch.empty() and mAt < mText.size() )
        {
            if ( matched == mSearch.size() )
                matched = mRepeats[matched - 1]; // that place lay across a folded character
            matched = Advance( matched, mText[mAt++] );
            const std::size_t start = mAt - matched;
            if ( matched == mSearch.size() and IsBoundary( start ) and IsBoundary( mAt ) )
                return TextRange{ SourceOf( start ), SourceOf( mAt ) - SourceOf( start ) };
        }
        return {};
    }

private:
    // How much of the search text ends with the unit, after that much of it stood before.
    [[nodiscard]] std::size_t Advance( std::size_t inMatched, char16_t inUnit ) const
    {
        while ( inMatched > 0 and inUnit != mSearch[inMatched] )
            inMatched = mRepeats[inMatched - 1];
        return inMatched + ( inUnit == mSearch[inMatched] );
    }

    [[nodiscard]] bool IsBoundary( std::size_t inUnit ) const { return not mFolded or mFolded->IsBoundary( inUnit ); }
    [[nodiscard]] std::size_t SourceOf( std::size_t inUnit ) const
    {
        return mFolded ? mFolded->mSource[inUnit] : inUnit;
    }

    std::optional<FoldedText> mFolded;
    Text mFoldedSearch;
    TextView mText, mSearch;
    std::vector<std::size_t> mRepeats; // for each end in the search text: how much of its beginning stands before it
    std::size_t mAt = 0;
};

SubstringsIn::SubstringsIn( const XText& initWithString, const XText& searchString, SubstringsInMatchType matchType,
    SubstringsInResultType resultType )
    : mString( initWithString.GetText() ),
      mSearch( searchString.GetText() ),
      mMatchType( matchType ),
      mResultType( resultType )
{
    XAssertText( not initWithString.IsNull(), "string" );
    XAssertText( not searchString.IsNull(), "searchString" );
}

SubstringsIn::~SubstringsIn() = default;

std::optional<TextRange> SubstringsIn::FindNext()
{
    switch ( mMatchType )
    {
    case SubstringsInMatchType::kCaseSensitive:
    case SubstringsInMatchType::kCaseInsensitive:
        if ( not mSearcher )
            mSearcher =
                std::make_unique<Searcher>( mString, mSearch, mMatchType == SubstringsInMatchType::kCaseInsensitive );
        return mSearcher->FindNext();
    case SubstringsInMatchType::kMatch:
        return rangeOfRegex(
            mString, mSearch, RegexOptions::kNone, TextRange{ mPosition, mString.size() - mPosition } );
    }
    return {}; // a number that is no match type
}

std::optional<Text> SubstringsIn::nextObject()
{
    if ( mPosition >= mString.size() )
        return {};
    const std::optional<TextRange> found = FindNext();
    if ( not found )
    {
        mPosition = mString.size();
        return {};
    }
    // An empty match must not be found again.
    mPosition = found->mLocation + std::max<std::size_t>( found->mLength, 1 );
    switch ( mResultType )
    {
    case SubstringsInResultType::kString:
        return mString.substr( found->mLocation, found->mLength );
    case SubstringsInResultType::kPosition:
        return kvr_format( "%lu", found->mLocation + 1 );
    case SubstringsInResultType::kRange:
        return kvr_format( "%lu,%lu", found->mLocation + 1, found->mLength );
    }
    return {}; // a number that is no result type
}
