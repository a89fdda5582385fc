#include "CFMethods/XSerialMap.h"

#include <gtest/gtest.h>

namespace
{
// A value that knows its map, as a macro knows its group.
struct Member
{
    Member( XSerialMap<int, Member*>& ioMap, int inKey, int& ioAlive ) : mMap( ioMap ), mKey( inKey ), mAlive( ioAlive )
    {
        mMap.SetValue( inKey, this );
        ++mAlive;
    }
    ~Member()
    {
        mMap.RemoveValue( mKey );
        --mAlive;
    }
    XSerialMap<int, Member*>& mMap;
    int mKey;
    int& mAlive;
};
} // namespace

TEST( XSerialMap, ValuesComeInTheOrderOfTheirKeysAndMayLeaveMeanwhile )
{
    XSerialMap<int, int> map;
    for ( const int key : { 3, 1, 2 } )
        map.SetValue( key, key * 10 );
    map.SetValue( 2, 21 );
    EXPECT_EQ( map.GetValues(), ( std::vector<int>{ 10, 21, 30 } ) );

    std::vector<int> seen;
    map.ApplyBlock( [&]( int value ) {
        seen.push_back( value );
        map.RemoveValue( value / 10 );
    } );
    EXPECT_EQ( seen, ( std::vector<int>{ 10, 21, 30 } ) );
    EXPECT_EQ( map.GetCount(), 0u );
}

TEST( XSerialMap, ValuesGoWithAMapThatOwnsThemEvenIfEachTakesItselfOut )
{
    int alive = 0;
    {
        XSerialMap<int, Member*> map( true );
        for ( const int key : { 1, 2, 3 } )
            new Member( map, key, alive );
        map.RemoveAllValues();
        EXPECT_EQ( alive, 0 );
        EXPECT_EQ( map.GetCount(), 0u );
        new Member( map, 4, alive );
    }
    EXPECT_EQ( alive, 0 );

    XSerialMap<int, Member*> borrower;
    const Member member( borrower, 1, alive );
    borrower.RemoveAllValues();
    EXPECT_EQ( alive, 1 );
}
