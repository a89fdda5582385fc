#include "Utility/Search/SearchableTexts.h"

#include "Utility/Search/CaseFolding.h"
#include "Utility/Search/LiteralSearch.h"
#include "Utility/Text/StringHelpers.h"

#include <algorithm>
#include <span>

namespace
{
using Kind = StringSearchee::Kind;

// As the texts lie: what a plain word is looked for in comes first, in one piece.
constexpr Kind kSlotKinds[] = { Kind::kText, Kind::kTrigger, Kind::kHotKey, Kind::kName, Kind::kUID, Kind::kGroup,
    Kind::kApplication };
constexpr std::size_t kSlotsOfPlainWords = 4;
constexpr char kASCIISeparator = '\xFF';

bool IsBlank( char inUnit )
{
    return inUnit == ' ' or ( inUnit >= '\t' and inUnit <= '\r' );
}
bool IsBlank( char16_t inUnit )
{
    return kvr_isWhitespace( inUnit );
}

const std::string& In( std::string_view, const SearchLiteral& inLiteral )
{
    return inLiteral.mASCII;
}
const Text& In( TextView, const SearchLiteral& inLiteral )
{
    return inLiteral.mFolded;
}

// One phrase in one piece of folded text.
template<class Unit>
class PhraseSearch
{
public:
    using View = std::basic_string_view<Unit>;

    PhraseSearch( View inText, const SearchPattern::Phrase& inPhrase, std::span<const std::uint32_t> inInnerPlaces )
        : mText( inText ),
          mPhrase( inPhrase ),
          mInnerPlaces( inInnerPlaces )
    {}

    bool Matches() const
    {
        const auto& first = In( mText, mPhrase.front() );
        if ( first.empty() ) // it isn't ASCII, and the text is
            return false;
        for ( std::size_t at = FindLiteral( mText, first ); at != View::npos; at = FindLiteral( mText, first, at + 1 ) )
        {
            if ( not IsInner( at ) and not IsInner( at + first.size() ) and HasBlanksBefore( at ) and
                RestMatches( at + first.size() ) )
                return true;
        }
        return false;
    }

private:
    bool IsInner( std::size_t inAt ) const
    {
        return not mInnerPlaces.empty() and
            std::binary_search( mInnerPlaces.begin(), mInnerPlaces.end(), std::uint32_t( inAt ) );
    }

    bool HasBlanksBefore( std::size_t inAt ) const
    {
        const std::size_t blanks = mPhrase.front().mBlanksBefore;
        if ( blanks > inAt )
            return false;
        const View before = mText.substr( inAt - blanks, blanks );
        return std::ranges::all_of( before, []( Unit unit ) { return IsBlank( unit ); } );
    }

    // No later literal begins with white space, so that all that stands before it has to be passed.
    bool RestMatches( std::size_t inAt ) const
    {
        for ( std::size_t i = 1; i < mPhrase.size(); ++i )
        {
            std::size_t blanks = 0;
            for ( ; inAt < mText.size() and IsBlank( mText[inAt] ); ++inAt )
                ++blanks;
            const auto& literal = In( mText, mPhrase[i] );
            const bool isElsewhere = literal.empty() and not mPhrase[i].mFolded.empty();
            if ( isElsewhere or blanks < mPhrase[i].mBlanksBefore or not mText.substr( inAt ).starts_with( literal ) )
                return false;
            inAt += literal.size();
            if ( IsInner( inAt ) )
                return false;
        }
        return true;
    }

    View mText;
    const SearchPattern::Phrase& mPhrase;
    std::span<const std::uint32_t> mInnerPlaces;
};
} // namespace

template<class Unit>
void SearchableTexts::Store<Unit>::Set( const std::basic_string<Unit>& inUnits )
{
    if ( inUnits.empty() )
        return;
    mUnits = std::make_unique_for_overwrite<Unit[]>( inUnits.size() );
    std::ranges::copy( inUnits, mUnits.get() );
}

template<class Unit>
std::basic_string_view<Unit> SearchableTexts::Store<Unit>::Slots( std::size_t inFirst, std::size_t inLast ) const
{
    const std::size_t begin = inFirst == 0 ? 0 : mEnds[inFirst - 1];
    return { mUnits.get() + begin, mEnds[inLast] - begin };
}

SearchableTexts::SearchableTexts( const StringSearchee& inSearchee )
{
    static_assert( std::size( kSlotKinds ) == kSlots );
    std::string ascii;
    Text wide;
    std::vector<std::uint32_t> innerPlaces;
    const auto elements = inSearchee.GetElements();
    for ( std::size_t slot = 0; slot < kSlots; ++slot )
    {
        for ( std::size_t i = 0; i < elements.size(); ++i )
        {
            if ( elements[i].mKind != kSlotKinds[slot] or elements[i].mText.empty() )
                continue;
            // Actions say much twice: a title that is the description too, a field that the user named it by.
            if ( i > 0 and elements[i].mKind == elements[i - 1].mKind and elements[i].mText == elements[i - 1].mText )
                continue;
            if ( IsASCII( elements[i].mText ) )
            {
                for ( const char16_t unit : elements[i].mText )
                    ascii += char( unit >= u'A' and unit <= u'Z' ? unit + 32 : unit );
                ascii += kASCIISeparator;
            }
            else
            {
                AppendFoldedCase( elements[i].mText, wide, innerPlaces );
                wide += kSeparator;
            }
        }
        mASCII.mEnds[slot] = std::uint32_t( ascii.size() );
        mWide.mEnds[slot] = std::uint32_t( wide.size() );
    }
    mASCII.Set( ascii );
    mWide.Set( wide );
    if ( not innerPlaces.empty() )
        mInnerPlaces = std::make_unique<const std::vector<std::uint32_t>>( std::move( innerPlaces ) );
}

SearchableTexts::Slots SearchableTexts::SlotsOf( Kind inKind )
{
    if ( inKind == Kind::kText )
        return { 0, kSlotsOfPlainWords - 1 };
    const std::size_t slot = std::size_t( std::ranges::find( kSlotKinds, inKind ) - std::begin( kSlotKinds ) );
    return { slot, slot };
}

bool SearchableTexts::Has( Kind inKind ) const
{
    const auto [first, last] = SlotsOf( inKind );
    return not mASCII.Slots( first, last ).empty() or not mWide.Slots( first, last ).empty();
}

bool SearchableTexts::Matches( const SearchPattern& inPattern, Kind inKind ) const
{
    if ( inPattern.IsEmpty() )
        return Has( inKind );
    const auto [first, last] = SlotsOf( inKind );
    const std::string_view ascii = mASCII.Slots( first, last );
    const TextView wide = mWide.Slots( first, last );
    // The inner places count from the start of all wide texts.
    std::vector<std::uint32_t> inner;
    if ( mInnerPlaces )
    {
        const std::uint32_t begin = mWide.mEnds[last] - std::uint32_t( wide.size() );
        for ( const std::uint32_t place : *mInnerPlaces )
        {
            if ( place >= begin and place < begin + wide.size() )
                inner.push_back( place - begin );
        }
    }
    return std::ranges::any_of( inPattern.GetPhrases(), [&]( const SearchPattern::Phrase& phrase ) {
        return PhraseSearch<char>( ascii, phrase, {} ).Matches() or
            ( not wide.empty() and PhraseSearch<char16_t>( wide, phrase, inner ).Matches() );
    } );
}

std::size_t SearchableTexts::GetBytes() const
{
    return mASCII.mEnds.back() + mWide.mEnds.back() * sizeof( char16_t ) +
        ( mInnerPlaces ? mInnerPlaces->capacity() * sizeof( std::uint32_t ) : 0 );
}
