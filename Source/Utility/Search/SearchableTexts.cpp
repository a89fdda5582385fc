#include "Utility/Search/SearchableTexts.h"

#include "Utility/Search/CaseFolding.h"
#include "Utility/Search/LiteralSearch.h"
#include "Utility/Text/StringHelpers.h"

#include <algorithm>
#include <cstring>
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

const LiteralSearch<char>& In( std::string_view, const SearchLiteral& inLiteral )
{
    return inLiteral.mASCII;
}
const LiteralSearch<char16_t>& In( TextView, const SearchLiteral& inLiteral )
{
    return inLiteral.mFolded;
}

// One phrase in one piece of folded text.
template<class Unit>
class PhraseSearch
{
public:
    using View = std::basic_string_view<Unit>;

    /// The inner places count from the given number of units before the text.
    PhraseSearch( View inText, const SearchPattern::Phrase& inPhrase, std::span<const std::uint32_t> inInnerPlaces = {},
        std::size_t inUnitsBefore = 0 )
        : mText( inText ),
          mPhrase( inPhrase ),
          mInnerPlaces( inInnerPlaces ),
          mUnitsBefore( inUnitsBefore )
    {}

    bool Matches() const
    {
        const auto& first = In( mText, mPhrase.front() ); // empty if it isn't ASCII, and the text is
        const std::size_t length = first.GetLiteral().size();
        for ( std::size_t at = first.Find( mText ); at != View::npos; at = first.Find( mText, at + 1 ) )
        {
            if ( not IsInner( at ) and not IsInner( at + length ) and HasBlanksBefore( at ) and
                RestMatches( at + length ) )
                return true;
        }
        return false;
    }

private:
    bool IsInner( std::size_t inAt ) const
    {
        return not mInnerPlaces.empty() and
            std::ranges::binary_search( mInnerPlaces, std::uint32_t( inAt + mUnitsBefore ) );
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
            const auto& literal = In( mText, mPhrase[i] ).GetLiteral();
            const bool isElsewhere = literal.empty() and not mPhrase[i].mText.empty();
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
    std::size_t mUnitsBefore;
};
} // namespace

// Where each slot's texts end, and how many inner places there are.
struct SearchableTexts::Layout
{
    std::uint32_t mWideEnds[std::size( kSlotKinds )];
    std::uint32_t mASCIIEnds[std::size( kSlotKinds )];
    std::uint32_t mInnerPlaces;

    static constexpr std::size_t kWords = 2 * std::size( kSlotKinds ) + 1;
    [[nodiscard]] std::size_t WideWords() const { return ( mWideEnds[std::size( kSlotKinds ) - 1] + 1 ) / 2; }
    [[nodiscard]] std::size_t ASCIIWords() const { return ( mASCIIEnds[std::size( kSlotKinds ) - 1] + 3 ) / 4; }
    [[nodiscard]] std::size_t Words() const { return kWords + WideWords() + mInnerPlaces + ASCIIWords(); }
};

struct SearchableTexts::Pieces
{
    TextView mWide;
    std::size_t mWideUnitsBefore;
    std::span<const std::uint32_t> mInnerPlaces; // of all wide texts
    std::string_view mASCII;
};

namespace
{
char FoldedASCII( char16_t inUnit )
{
    const auto unit = std::uint8_t( inUnit );
    return char( unit + ( std::uint8_t( unit - 'A' ) < 26 ? 'a' - 'A' : 0 ) );
}

// Sixteen units in a loop of fixed length, of which the compiler makes a few instructions.
void CopyFoldedASCII( const char16_t* __restrict inUnits, std::size_t inCount, char* __restrict outBytes )
{
    constexpr std::size_t kAtOnce = 16;
    std::size_t at = 0;
    for ( ; at + kAtOnce <= inCount; at += kAtOnce )
    {
        for ( std::size_t i = 0; i < kAtOnce; ++i )
            outBytes[at + i] = FoldedASCII( inUnits[at + i] );
    }
    for ( ; at < inCount; ++at )
        outBytes[at] = FoldedASCII( inUnits[at] );
}

void AddText( const Text& inText, std::string& ioASCII, Text& ioWide, std::vector<std::uint32_t>& ioInnerPlaces )
{
    if ( not IsASCII( inText ) )
    {
        AppendFoldedCase( inText, ioWide, ioInnerPlaces );
        ioWide += SearchableTexts::kSeparator;
        return;
    }
    const std::size_t start = ioASCII.size();
    ioASCII.resize( start + inText.size() + 1, kASCIISeparator );
    CopyFoldedASCII( inText.data(), inText.size(), ioASCII.data() + start );
}
} // namespace

SearchableTexts::SearchableTexts( const StringSearchee& inSearchee )
{
    // Kept for the next object, unless this one is a giant.
    struct Buffers
    {
        std::string mASCII;
        Text mWide;
        std::vector<std::uint32_t> mInnerPlaces;
    };
    static thread_local Buffers gBuffers;
    constexpr std::size_t kMostKept = 1 << 20;
    if ( gBuffers.mASCII.capacity() > kMostKept or gBuffers.mWide.capacity() > kMostKept )
        gBuffers = {};
    auto& [ascii, wide, innerPlaces] = gBuffers;
    ascii.clear();
    wide.clear();
    innerPlaces.clear();

    Layout layout{};
    const auto elements = inSearchee.GetElements();
    for ( std::size_t slot = 0; slot < std::size( kSlotKinds ); ++slot )
    {
        const StringSearchee::Element* last = nullptr;
        for ( const StringSearchee::Element& element : elements )
        {
            if ( element.mKind != kSlotKinds[slot] or element.mText.empty() )
                continue;
            // Actions say much twice: a title that is the description too, a field that the user named it by.
            if ( not last or last->mText != element.mText )
                AddText( element.mText, ascii, wide, innerPlaces );
            last = &element;
        }
        layout.mASCIIEnds[slot] = std::uint32_t( ascii.size() );
        layout.mWideEnds[slot] = std::uint32_t( wide.size() );
    }
    layout.mInnerPlaces = std::uint32_t( innerPlaces.size() );

    auto block = std::make_unique_for_overwrite<std::uint32_t[]>( layout.Words() );
    std::uint32_t* at = block.get();
    const auto append = [&at]( const void* inBytes, std::size_t inCount, std::size_t inWords ) {
        if ( inCount > 0 )
            std::memcpy( at, inBytes, inCount );
        at += inWords;
    };
    append( &layout, sizeof layout, Layout::kWords );
    append( ascii.data(), ascii.size(), layout.ASCIIWords() );
    append( wide.data(), wide.size() * sizeof( char16_t ), layout.WideWords() );
    append( innerPlaces.data(), innerPlaces.size() * sizeof( std::uint32_t ), innerPlaces.size() );
    mBlock = std::move( block );
}

const SearchableTexts::Layout& SearchableTexts::GetLayout() const
{
    static_assert( sizeof( Layout ) == Layout::kWords * sizeof( std::uint32_t ) );
    static constexpr Layout kNothing{};
    return mBlock ? *reinterpret_cast<const Layout*>( mBlock.get() ) : kNothing;
}

SearchableTexts::Pieces SearchableTexts::PiecesOf( Kind inKind ) const
{
    const Layout& layout = GetLayout();
    // A plain word is looked for in several slots, which lie in one piece.
    const std::size_t first = std::size_t( std::ranges::find( kSlotKinds, inKind ) - std::begin( kSlotKinds ) );
    const std::size_t last = inKind == Kind::kText ? kSlotsOfPlainWords - 1 : first;
    const auto beginOf = [first]( const std::uint32_t* ends ) { return first == 0 ? 0 : ends[first - 1]; };
    if ( not mBlock or last >= std::size( kSlotKinds ) )
        return {};
    const std::uint32_t* const ascii = mBlock.get() + Layout::kWords;
    const std::uint32_t* const wide = ascii + layout.ASCIIWords();
    const std::uint32_t* const inner = wide + layout.WideWords();
    const std::size_t wideBegin = beginOf( layout.mWideEnds ), asciiBegin = beginOf( layout.mASCIIEnds );
    return {
        { reinterpret_cast<const char16_t*>( wide ) + wideBegin, layout.mWideEnds[last] - wideBegin },
        wideBegin,
        { inner, layout.mInnerPlaces },
        { reinterpret_cast<const char*>( ascii ) + asciiBegin, layout.mASCIIEnds[last] - asciiBegin },
    };
}

bool SearchableTexts::Has( Kind inKind ) const
{
    const Pieces pieces = PiecesOf( inKind );
    return not pieces.mASCII.empty() or not pieces.mWide.empty();
}

bool SearchableTexts::Matches( const SearchPattern& inPattern, Kind inKind ) const
{
    if ( inPattern.IsEmpty() )
        return Has( inKind );
    // What a search waits for is memory: the first texts are fetched together with the layout, not after it.
    constexpr std::size_t kLineWords = 16;
    for ( std::size_t line = 1; line <= 4 and mBlock; ++line )
        __builtin_prefetch( mBlock.get() + line * kLineWords );
    const Pieces pieces = PiecesOf( inKind );
    return std::ranges::any_of( inPattern.GetPhrases(), [&]( const SearchPattern::Phrase& phrase ) {
        return PhraseSearch<char>( pieces.mASCII, phrase ).Matches() or
            PhraseSearch<char16_t>( pieces.mWide, phrase, pieces.mInnerPlaces, pieces.mWideUnitsBefore ).Matches();
    } );
}

std::size_t SearchableTexts::GetBytes() const
{
    return mBlock ? GetLayout().Words() * sizeof( std::uint32_t ) : 0;
}
