#include "CFMethods/PropertyListDifference.h"

#include "Tests/CFMethods/RandomPropertyList.h"

#include <gtest/gtest.h>

namespace
{
using Kind = XPlistDifference::Kind;

__SafeCFPropertyList Integers( std::initializer_list<std::int64_t> inValues )
{
    XMutableArray array;
    for ( const std::int64_t value : inValues )
        array.Append( __SafeCFPropertyList::Integer( value ) );
    return array.Seal();
}

std::string Told( const XPlistDifferences& inDifferences )
{
    std::string result;
    for ( const XPlistDifference& difference : inDifferences.mDifferences )
    {
        const auto side = difference.mKind == Kind::kAdded ? XPlistSide::kNew : XPlistSide::kOld;
        const char sign = difference.mKind == Kind::kAdded ? '+' : difference.mKind == Kind::kRemoved ? '-' : '~';
        result += sign + PathText( difference.mPath, side ) + " ";
    }
    return result;
}

/// Makes the new value out of the old one and the differences: what they say is all that differs.
__SafeCFPropertyList Patched(
    const __SafeCFPropertyList& inOld, std::span<const XPlistDifference> inDifferences, std::size_t inDepth = 0 )
{
    if ( inDifferences.empty() )
        return inOld;
    if ( inDifferences[0].mPath.size() == inDepth )
        return inDifferences[0].mNew;
    const auto isSameStep = [&]( const XPlistDifference& a, const XPlistDifference& b ) {
        const XPlistPathStep &x = a.mPath[inDepth], &y = b.mPath[inDepth];
        const bool aAdds = a.mKind == Kind::kAdded and a.mPath.size() == inDepth + 1;
        const bool bAdds = b.mKind == Kind::kAdded and b.mPath.size() == inDepth + 1;
        return x.mKey == y.mKey and x.mIndex == y.mIndex and x.mNewIndex == y.mNewIndex and aAdds == bAdds;
    };
    XMutableDictionary dictionary;
    std::vector<__SafeCFPropertyList> kept;
    std::vector<std::pair<std::size_t, __SafeCFPropertyList>> placed;
    if ( inOld.AsDictionary() )
        dictionary.SetAll( *inOld.AsDictionary() );
    else
    {
        for ( const XPlistNode* const node : inOld.AsArray()->Nodes() )
            kept.emplace_back( node );
    }
    for ( std::size_t start = 0; start < inDifferences.size(); )
    {
        std::size_t end = start + 1;
        while ( end < inDifferences.size() and isSameStep( inDifferences[start], inDifferences[end] ) )
            ++end;
        const auto group = inDifferences.subspan( start, end - start );
        const XPlistPathStep& step = group[0].mPath[inDepth];
        const bool isHere = group[0].mPath.size() == inDepth + 1;
        __SafeCFPropertyList before;
        if ( not( isHere and group[0].mKind == Kind::kAdded ) )
            before = inOld.AsDictionary() ? __SafeCFPropertyList( inOld.AsDictionary()->Find( step.mKey ) )
                                          : inOld.AsArray()->GetValueAt( step.mIndex );
        const __SafeCFPropertyList after = isHere ? group[0].mNew : Patched( before, group, inDepth + 1 );
        if ( inOld.AsDictionary() )
            dictionary.Set( step.mKey, after );
        else
        {
            if ( before )
                kept[step.mIndex] = nullptr;
            if ( after )
                placed.emplace_back( step.mNewIndex, after );
        }
        start = end;
    }
    if ( inOld.AsDictionary() )
        return dictionary.Seal();
    // The untouched elements fill, in order, the places that nothing else has.
    std::erase_if( kept, []( const auto& value ) { return not value; } );
    XMutableArray array;
    std::size_t nextKept = 0, nextPlaced = 0;
    while ( nextKept < kept.size() or nextPlaced < placed.size() )
    {
        if ( nextPlaced < placed.size() and placed[nextPlaced].first == array.GetCount() )
            array.Append( placed[nextPlaced++].second );
        else if ( nextKept < kept.size() )
            array.Append( kept[nextKept++] );
        else
            return nullptr;
    }
    return array.Seal();
}
} // namespace

TEST( PropertyListDifference, TheDifferencesMakeTheNewValueOutOfTheOld )
{
    for ( std::uint64_t seed = 1; seed <= 3000; ++seed )
    {
        RandomPropertyListOptions options;
        options.mLongLengths = false;
        options.mMostDepth = 3;
        options.mMostElements = 4;
        RandomPropertyList random( seed, options );
        const __SafeCFPropertyList common = random.Next(), another = random.Next();
        const auto mixed = [&] {
            XMutableArray array;
            for ( int i = 0; i < 4; ++i )
                array.Append( random.Below( 2 ) == 0 ? common : random.Next() );
            array.Append( another );
            return array.Seal();
        };
        const __SafeCFPropertyList old = mixed(), now = mixed();
        XPlistDifferenceLimits limits;
        limits.mMostCells = seed % 3 == 0 ? 0 : seed % 3 == 1 ? 4 : 1'000'000; // by index and around anchors as well
        const XPlistDifferences differences = FindDifferences( old, now, limits );
        EXPECT_EQ( differences.mCount == 0, old == now ) << "seed " << seed;
        ASSERT_EQ( Patched( old, differences.mDifferences ), now ) << "seed " << seed << ": " << Told( differences );
    }
}

TEST( PropertyListDifference, ElementsAreAlignedBeforeTheyAreCompared )
{
    const struct
    {
        __SafeCFPropertyList mOld, mNew;
        const char* mTold;
    } kCases[] = {
        { Integers( { 1, 2, 3 } ), Integers( { 0, 1, 2, 3 } ), "+.[0] " },
        { Integers( { 1, 2, 3 } ), Integers( { 1, 3 } ), "-.[1] " },
        { Integers( { 1, 2, 3, 4, 5 } ), Integers( { 2, 3, 9, 4, 5, 6 } ), "-.[0] +.[2] +.[5] " },
        { Integers( { 1, 2, 3 } ), Integers( { 1, 9, 3 } ), "~.[1] " },
        { Integers( {} ), Integers( { 1 } ), "+.[0] " },
        { Integers( { 1 } ), __SafeCFPropertyList::Integer( 1 ), "~. " },
    };
    for ( const auto& [old, now, told] : kCases )
        EXPECT_EQ( Told( FindDifferences( old, now ) ), told );
}

TEST( PropertyListDifference, EditsFarApartInALongArrayStaySingle )
{
    const auto numbers = []( bool inIsEdited ) {
        XMutableArray array;
        for ( std::int64_t i = 0; i < 20'000; ++i )
        {
            if ( inIsEdited and i == 3 )
                array.Append( __SafeCFPropertyList::Integer( -1 ) );
            if ( not inIsEdited or i != 9'000 )
                array.Append( __SafeCFPropertyList::Integer( inIsEdited and i == 15'000 ? -2 : i ) );
        }
        return array.Seal();
    };
    EXPECT_EQ( Told( FindDifferences( numbers( false ), numbers( true ) ) ), "+.[3] -.[9000] ~.[15000] " );
}

TEST( PropertyListDifference, BeyondTheLimitsItIsCountedOrComparedByIndex )
{
    XMutableArray zeros, ones;
    for ( int i = 0; i < 3000; ++i )
    {
        zeros.Append( __SafeCFPropertyList::Integer( i ) );
        ones.Append( __SafeCFPropertyList::Integer( -1 - i ) );
    }
    XPlistDifferenceLimits limits;
    limits.mMostDifferences = 10;
    const XPlistDifferences differences = FindDifferences( zeros.Seal(), ones.Seal(), limits );
    EXPECT_EQ( differences.mCount, 3000u );
    EXPECT_EQ( differences.mDifferences.size(), 10u );
    EXPECT_EQ( differences.mDifferences[9].mKind, Kind::kChanged );
}

TEST( PropertyListDifference, ADeepValueIsComparedWithoutADeepStack )
{
    const auto deep = []( std::int64_t inInnermost ) {
        __SafeCFPropertyList value = __SafeCFPropertyList::Integer( inInnermost );
        for ( int i = 0; i < 20'000; ++i )
        {
            XMutableArray array;
            array.Append( value );
            value = array.Seal();
        }
        return value;
    };
    const XPlistDifferences differences = FindDifferences( deep( 1 ), deep( 2 ) );
    ASSERT_EQ( differences.mCount, 1u );
    EXPECT_EQ( differences.mDifferences[0].mPath.size(), 20'000u );
    EXPECT_EQ( FindDifferences( deep( 1 ), deep( 1 ) ).mCount, 0u );
}
