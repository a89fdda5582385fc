// Each container of both values gets a digest of its content first, from the leaves up. Digests only
// choose: which elements belong together, and which pairs deserve a look. Whether two values are equal
// is always decided by comparing them, so crafted digests can't hide a difference. A pair that is equal
// isn't descended into, so that each value is compared about once.
//
// The pairs that still have to be compared wait on a stack; paths share their beginnings.
#include "CFMethods/PropertyListDifference.h"

#include "CFMethods/PropertyListWalk.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <unordered_map>

namespace
{
using Digest = std::uint64_t;

// The finishing steps of a well-known generator of 64 bits: every bit moves every other.
constexpr Digest Mix( Digest inValue )
{
    inValue += 0x9E3779B97F4A7C15u;
    inValue = ( inValue ^ ( inValue >> 30 ) ) * 0xBF58476D1CE4E5B9u;
    inValue = ( inValue ^ ( inValue >> 27 ) ) * 0x94D049BB133111EBu;
    return inValue ^ ( inValue >> 31 );
}

constexpr Digest Join( Digest inSoFar, Digest inNext )
{
    return Mix( inSoFar ^ Mix( inNext ) );
}

Digest DigestOfBytes( std::string_view inBytes )
{
    return std::hash<std::string_view>()( inBytes );
}

Digest DigestOfString( const XPlistString& inString )
{
    if ( inString.IsASCII() )
        return DigestOfBytes( inString.ASCII() );
    return std::hash<TextView>()( inString.Wide() );
}

Digest DigestOfLeaf( const XPlistNode* inNode )
{
    const __SafeCFPropertyList value( inNode );
    const auto type = Digest( inNode->GetType() );
    if ( const XPlistString* const string = value.AsString() )
        return Join( type, DigestOfString( *string ) );
    if ( const XPlistNumber* const number = value.AsNumber() )
        return Join( type + ( number->IsReal() ? 100 : 0 ), number->Bits() );
    if ( const XPlistBoolean* const boolean = value.AsBoolean() )
        return Join( type, boolean->GetValue() );
    if ( const XPlistDate* const date = value.AsDate() )
        return Join( type, std::bit_cast<Digest>( date->GetSeconds() ) );
    const auto bytes = value.AsData()->GetBytes();
    return Join( type, DigestOfBytes( { reinterpret_cast<const char*>( bytes.data() ), bytes.size() } ) );
}

bool IsContainer( const XPlistNode* inNode )
{
    return inNode->GetType() == XPlistType::kArray or inNode->GetType() == XPlistType::kDictionary;
}

// The digests of all containers of a value; shared ones are worked out once.
class Digests
{
public:
    void Add( const __SafeCFPropertyList& inValue ) { WalkPropertyList( inValue, *this ); }

    [[nodiscard]] Digest Of( const XPlistNode* inNode ) const
    {
        return IsContainer( inNode ) ? mOfContainers.at( inNode ) : DigestOfLeaf( inNode );
    }
    // The digests of the elements, or of the entries with their keys, in order of size.
    [[nodiscard]] std::vector<Digest> ProfileOf( const XPlistNode* inNode ) const;

    void Leaf( const __SafeCFPropertyList& inValue, const XPlistPlace& inPlace )
    {
        Include( inPlace, DigestOfLeaf( inValue.GetNode() ) );
    }
    bool Enter( const XPlistContainer& inContainer, const XPlistPlace& inPlace )
    {
        const auto known = mOfContainers.find( &inContainer );
        if ( known != mOfContainers.end() )
        {
            Include( inPlace, known->second );
            return false;
        }
        mOpen.push_back( Join( Digest( inContainer.GetType() ), inContainer.GetCount() ) );
        return true;
    }
    void Leave( const XPlistContainer& inContainer, const XPlistPlace& inPlace )
    {
        const Digest digest = mOpen.back();
        mOpen.pop_back();
        mOfContainers.emplace( &inContainer, digest );
        Include( inPlace, digest );
    }

private:
    static Digest OfEntry( const XPlistString& inKey, Digest inValue )
    {
        return Join( DigestOfString( inKey ), inValue );
    }
    void Include( const XPlistPlace& inPlace, Digest inDigest )
    {
        if ( not mOpen.empty() )
            mOpen.back() = Join( mOpen.back(), inPlace.mKey ? OfEntry( *inPlace.mKey, inDigest ) : inDigest );
    }

    std::unordered_map<const XPlistNode*, Digest> mOfContainers;
    std::vector<Digest> mOpen;
};

std::vector<Digest> Digests::ProfileOf( const XPlistNode* inNode ) const
{
    std::vector<Digest> profile;
    const __SafeCFPropertyList value( inNode );
    if ( const XPlistArray* const array = value.AsArray() )
    {
        for ( const XPlistNode* const element : array->Nodes() )
            profile.push_back( Of( element ) );
    }
    else if ( const XPlistDictionary* const dictionary = value.AsDictionary() )
    {
        for ( const auto& entry : dictionary->GetEntries() )
            profile.push_back( OfEntry( *entry.mKey, Of( entry.mValue ) ) );
    }
    std::sort( profile.begin(), profile.end() );
    return profile;
}

// One element as the alignment sees it. A long profile is cut: it only has to tell like from unlike.
struct Element
{
    Element( const Digests& inDigests, const XPlistNode* inNode )
        : mType( inNode->GetType() ),
          mDigest( inDigests.Of( inNode ) ),
          mProfile( inDigests.ProfileOf( inNode ) )
    {
        constexpr std::size_t kMostProfile = 32;
        mProfile.resize( std::min( mProfile.size(), kMostProfile ) );
    }

    XPlistType mType;
    Digest mDigest;
    std::vector<Digest> mProfile;
};

// What it is worth to take two elements for one. An equal pair outweighs a run of alike ones.
std::uint64_t WorthOf( const Element& inOld, const Element& inNew )
{
    constexpr std::uint64_t kEqual = 1'000;
    if ( inOld.mType != inNew.mType )
        return 0;
    if ( inOld.mDigest == inNew.mDigest )
        return kEqual;
    std::uint64_t shared = 0;
    for ( auto a = inOld.mProfile.begin(), b = inNew.mProfile.begin();
          a != inOld.mProfile.end() and b != inNew.mProfile.end(); )
    {
        if ( *a == *b )
            ++shared, ++a, ++b;
        else if ( *a < *b )
            ++a;
        else
            ++b;
    }
    return 1 + 2 * shared;
}

// An element of the old array, of the new one, or of both.
struct Pairing
{
    std::optional<std::size_t> mOld, mNew;
};

/// Pairs so that the worth of all pairs together is greatest and none cross: the longest common
/// subsequence, with alike elements counted in. The table holds the best worth of what is left of both.
std::vector<Pairing> Align( const std::vector<Element>& inOld, const std::vector<Element>& inNew )
{
    const std::size_t width = inNew.size() + 1;
    std::vector<std::uint32_t> best( ( inOld.size() + 1 ) * width );
    std::vector<std::uint16_t> worth( inOld.size() * inNew.size() );
    for ( std::size_t i = inOld.size(); i-- > 0; )
    {
        for ( std::size_t j = inNew.size(); j-- > 0; )
        {
            const std::uint64_t pair = WorthOf( inOld[i], inNew[j] );
            worth[i * inNew.size() + j] = std::uint16_t( pair );
            best[i * width + j] = std::max( { best[( i + 1 ) * width + j], best[i * width + j + 1],
                pair > 0 ? std::uint32_t( best[( i + 1 ) * width + j + 1] + pair ) : 0u } );
        }
    }

    std::vector<Pairing> result;
    std::size_t i = 0, j = 0;
    while ( i < inOld.size() and j < inNew.size() )
    {
        const std::uint32_t pair = worth[i * inNew.size() + j], here = best[i * width + j];
        if ( pair > 0 and here == best[( i + 1 ) * width + j + 1] + pair )
            result.push_back( { i++, j++ } );
        else if ( here == best[( i + 1 ) * width + j] )
            result.push_back( { i++, {} } );
        else
            result.push_back( { {}, j++ } );
    }
    while ( i < inOld.size() )
        result.push_back( { i++, {} } );
    while ( j < inNew.size() )
        result.push_back( { {}, j++ } );
    return result;
}

/// Between two pairs, what only went and what only came belong together in order: a value whose type changed.
std::vector<Pairing> PairLeftovers( const std::vector<Pairing>& inPairings )
{
    std::vector<Pairing> result;
    for ( std::size_t at = 0; at < inPairings.size(); )
    {
        std::vector<std::size_t> gone, come;
        for ( ; at < inPairings.size() and not( inPairings[at].mOld and inPairings[at].mNew ); ++at )
        {
            if ( inPairings[at].mOld )
                gone.push_back( *inPairings[at].mOld );
            else
                come.push_back( *inPairings[at].mNew );
        }
        for ( std::size_t i = 0; i < std::max( gone.size(), come.size() ); ++i )
            result.push_back( { i < gone.size() ? std::optional( gone[i] ) : std::nullopt,
                i < come.size() ? std::optional( come[i] ) : std::nullopt } );
        if ( at < inPairings.size() )
            result.push_back( inPairings[at++] );
    }
    return result;
}

/// The places, in both, of elements that each has exactly once: as many as stand in the same order in both.
std::vector<std::pair<std::size_t, std::size_t>> FindAnchors(
    const std::vector<Digest>& inOld, const std::vector<Digest>& inNew )
{
    struct Uses
    {
        std::size_t mOldCount = 0, mNewCount = 0, mOld = 0;
    };
    std::unordered_map<Digest, Uses> uses;
    for ( std::size_t i = 0; i < inOld.size(); ++i )
    {
        Uses& use = uses[inOld[i]];
        ++use.mOldCount;
        use.mOld = i;
    }
    for ( const Digest digest : inNew )
        ++uses[digest].mNewCount;

    // The longest run of growing places in the old array, by the cards of patience: ends[n] is the candidate at
    // which the best run of n + 1 ends, and each candidate knows the one before it in its run.
    constexpr std::size_t kNone = std::size_t( -1 );
    struct Candidate
    {
        std::size_t mOld, mNew, mBefore;
    };
    std::vector<Candidate> candidates;
    std::vector<std::size_t> ends;
    for ( std::size_t j = 0; j < inNew.size(); ++j )
    {
        const Uses& use = uses[inNew[j]];
        if ( use.mOldCount != 1 or use.mNewCount != 1 )
            continue;
        const auto end = std::lower_bound( ends.begin(), ends.end(), use.mOld,
            [&candidates]( std::size_t inEnd, std::size_t inPlace ) { return candidates[inEnd].mOld < inPlace; } );
        const std::size_t before = end == ends.begin() ? kNone : *std::prev( end );
        if ( end == ends.end() )
            ends.push_back( candidates.size() );
        else
            *end = candidates.size();
        candidates.push_back( { use.mOld, j, before } );
    }

    std::vector<std::pair<std::size_t, std::size_t>> anchors;
    for ( std::size_t at = ends.empty() ? kNone : ends.back(); at != kNone; at = candidates[at].mBefore )
        anchors.emplace_back( candidates[at].mOld, candidates[at].mNew );
    std::reverse( anchors.begin(), anchors.end() );
    return anchors;
}

class Comparison
{
public:
    Comparison(
        const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew, const XPlistDifferenceLimits& inLimits )
        : mLimits( inLimits ),
          mCellsLeft( inLimits.mMostCellsTogether )
    {
        mDigests.Add( inOld );
        mDigests.Add( inNew );
        mPending.push_back( { inOld.GetNode(), inNew.GetNode(), kRoot } );
    }

    XPlistDifferences Run()
    {
        while ( not mPending.empty() )
        {
            const Pair pair = mPending.back();
            mPending.pop_back();
            Compare( pair );
        }
        return std::move( mResult );
    }

private:
    static constexpr std::size_t kRoot = std::size_t( -1 );

    // A step and the number of the step before it.
    struct Step
    {
        std::size_t mBefore;
        const XPlistString* mKey;
        std::size_t mIndex, mNewIndex;
    };
    struct Pair
    {
        const XPlistNode* mOld; // null when added
        const XPlistNode* mNew; // null when removed
        std::size_t mStep;
    };

    void Compare( const Pair& inPair )
    {
        using Kind = XPlistDifference::Kind;
        if ( not inPair.mOld )
            return Report( Kind::kAdded, inPair );
        if ( not inPair.mNew )
            return Report( Kind::kRemoved, inPair );
        const bool isContainer = IsContainer( inPair.mOld ) and inPair.mOld->GetType() == inPair.mNew->GetType();
        // Digests that differ prove a difference, and save comparing the content of containers at every level.
        if ( ( not isContainer or mDigests.Of( inPair.mOld ) == mDigests.Of( inPair.mNew ) ) and
            __SafeCFPropertyList( inPair.mOld ).Equals( __SafeCFPropertyList( inPair.mNew ) ) )
            return;
        if ( not isContainer )
            return Report( Kind::kChanged, inPair );
        const std::size_t first = mPending.size();
        if ( inPair.mOld->GetType() == XPlistType::kDictionary )
            AddEntries( inPair );
        else
            AddElements( inPair );
        // The last that is pushed is compared first.
        std::reverse( mPending.begin() + std::ptrdiff_t( first ), mPending.end() );
    }

    void Report( XPlistDifference::Kind inKind, const Pair& inPair )
    {
        if ( mResult.mCount++ >= mLimits.mMostDifferences )
            return;
        std::vector<XPlistPathStep> path;
        for ( std::size_t step = inPair.mStep; step != kRoot; step = mSteps[step].mBefore )
            path.push_back( { CFContainer<XPlistString>::Share( mSteps[step].mKey ), mSteps[step].mIndex,
                mSteps[step].mNewIndex } );
        std::reverse( path.begin(), path.end() );
        mResult.mDifferences.push_back(
            { std::move( path ), inKind, __SafeCFPropertyList( inPair.mOld ), __SafeCFPropertyList( inPair.mNew ) } );
    }

    void Push( const XPlistNode* inOld, const XPlistNode* inNew, const Step& inStep )
    {
        mPending.push_back( { inOld, inNew, mSteps.size() } );
        mSteps.push_back( inStep );
    }

    // Both stand in the order of their keys.
    void AddEntries( const Pair& inPair )
    {
        const auto old = static_cast<const XPlistDictionary*>( inPair.mOld )->GetEntries();
        const auto now = static_cast<const XPlistDictionary*>( inPair.mNew )->GetEntries();
        std::size_t i = 0, j = 0;
        while ( i < old.size() or j < now.size() )
        {
            const int order = i == old.size() ? 1 : j == now.size() ? -1 : old[i].mKey->Compare( *now[j].mKey );
            const XPlistString* const key = order <= 0 ? old[i].mKey : now[j].mKey;
            const XPlistNode* const before = order <= 0 ? old[i++].mValue : nullptr;
            const XPlistNode* const after = order >= 0 ? now[j++].mValue : nullptr;
            if ( before != after )
                Push( before, after, { inPair.mStep, key, 0, 0 } );
        }
    }

    [[nodiscard]] bool LooksEqual( const XPlistNode* inOld, const XPlistNode* inNew ) const
    {
        return inOld == inNew or mDigests.Of( inOld ) == mDigests.Of( inNew );
    }

    void AddElements( const Pair& inPair )
    {
        const auto old = static_cast<const XPlistArray*>( inPair.mOld )->Nodes();
        const auto now = static_cast<const XPlistArray*>( inPair.mNew )->Nodes();
        const std::size_t shorter = std::min( old.size(), now.size() );
        std::size_t start = 0, end = 0;
        while ( start < shorter and LooksEqual( old[start], now[start] ) )
            ++start;
        while ( end < shorter - start and LooksEqual( old[old.size() - 1 - end], now[now.size() - 1 - end] ) )
            ++end;

        const auto push = [&]( std::optional<std::size_t> inOld, std::optional<std::size_t> inNew ) {
            const XPlistNode* const before = inOld ? old[*inOld] : nullptr;
            const XPlistNode* const after = inNew ? now[*inNew] : nullptr;
            if ( before != after )
                Push( before, after,
                    { inPair.mStep, nullptr, inOld.value_or( inNew.value_or( 0 ) ),
                        inNew.value_or( inOld.value_or( 0 ) ) } );
        };
        for ( std::size_t i = 0; i < start; ++i )
            push( i, i );
        for ( const Pairing& pairing : PairMiddle(
                  old.subspan( start, old.size() - start - end ), now.subspan( start, now.size() - start - end ) ) )
            push( pairing.mOld ? std::optional( *pairing.mOld + start ) : std::nullopt,
                pairing.mNew ? std::optional( *pairing.mNew + start ) : std::nullopt );
        for ( std::size_t i = end; i > 0; --i )
            push( old.size() - i, now.size() - i );
    }

    using Nodes = std::span<const XPlistNode* const>;

    // Elements that stand once in both arrays split what is too long to be aligned as a whole.
    [[nodiscard]] std::vector<Pairing> PairMiddle( Nodes inOld, Nodes inNew )
    {
        std::vector<std::pair<std::size_t, std::size_t>> anchors;
        if ( not CanAlign( inOld, inNew ) )
            anchors = FindAnchors( DigestsOf( inOld ), DigestsOf( inNew ) );
        anchors.emplace_back( inOld.size(), inNew.size() );
        std::vector<Pairing> result;
        std::size_t i = 0, j = 0;
        for ( const auto& [oldAnchor, newAnchor] : anchors )
        {
            for ( Pairing pairing :
                PairStretch( inOld.subspan( i, oldAnchor - i ), inNew.subspan( j, newAnchor - j ) ) )
            {
                if ( pairing.mOld )
                    *pairing.mOld += i;
                if ( pairing.mNew )
                    *pairing.mNew += j;
                result.push_back( pairing );
            }
            if ( oldAnchor < inOld.size() )
                result.push_back( { oldAnchor, newAnchor } );
            i = oldAnchor + 1;
            j = newAnchor + 1;
        }
        return result;
    }

    [[nodiscard]] bool CanAlign( Nodes inOld, Nodes inNew ) const
    {
        return inOld.empty() or inNew.empty() or
            inOld.size() <= std::min( mLimits.mMostCells, mCellsLeft ) / inNew.size();
    }

    [[nodiscard]] std::vector<Digest> DigestsOf( Nodes inNodes ) const
    {
        std::vector<Digest> result;
        for ( const XPlistNode* const node : inNodes )
            result.push_back( mDigests.Of( node ) );
        return result;
    }

    [[nodiscard]] std::vector<Pairing> PairStretch( Nodes inOld, Nodes inNew )
    {
        if ( inOld.empty() or inNew.empty() or not CanAlign( inOld, inNew ) )
        {
            std::vector<Pairing> byIndex;
            for ( std::size_t i = 0; i < std::max( inOld.size(), inNew.size() ); ++i )
                byIndex.push_back( { i < inOld.size() ? std::optional( i ) : std::nullopt,
                    i < inNew.size() ? std::optional( i ) : std::nullopt } );
            return byIndex;
        }
        mCellsLeft -= inOld.size() * inNew.size();
        std::vector<Element> old, now;
        for ( const XPlistNode* const node : inOld )
            old.emplace_back( mDigests, node );
        for ( const XPlistNode* const node : inNew )
            now.emplace_back( mDigests, node );
        return PairLeftovers( Align( old, now ) );
    }

    const XPlistDifferenceLimits mLimits;
    std::size_t mCellsLeft;
    Digests mDigests;
    std::vector<Pair> mPending;
    std::vector<Step> mSteps;
    XPlistDifferences mResult;
};
} // namespace

const char* NameOf( XPlistDifference::Kind inKind )
{
    constexpr const char* kNames[] = { "added", "removed", "changed" };
    static_assert( std::size( kNames ) == std::size_t( XPlistDifference::Kind::kChanged ) + 1 );
    return kNames[std::size_t( inKind )];
}

XPlistDifferences FindDifferences(
    const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew, const XPlistDifferenceLimits& inLimits )
{
    return Comparison( inOld, inNew, inLimits ).Run();
}
