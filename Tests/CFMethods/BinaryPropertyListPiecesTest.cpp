// A file out of pieces has the bytes of the whole value: the writer that knows nothing of pieces is the judge.
#include "CFMethods/BinaryPropertyListPieces.h"
#include "Tests/CFMethods/RandomPropertyList.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

namespace
{
// A value, once whole and once as the pieces that it was cut into.
struct Cut
{
    __SafeCFPropertyList mWhole;
    std::vector<XPlistPiecePtr> mPieces; // null closes a hole
};

class Cutter
{
public:
    Cutter( std::uint64_t inSeed, XPlistPieceEncoder& ioEncoder )
        : mRandom( inSeed ),
          mValues( inSeed, Options() ),
          mEncoder( ioEncoder )
    {}

    Cut Next( unsigned inDepth )
    {
        XMutableDictionary around;
        for ( std::size_t count = mRandom() % 5; count > 0; --count )
            around.Set( XText( mValues.String() ), mValues.Next() );
        Cut cut;
        if ( inDepth == 0 or mRandom() % 3 == 0 )
        {
            cut.mWhole = around.Seal();
            cut.mPieces.push_back( mEncoder.Encode( cut.mWhole ) );
            return cut;
        }
        const CFContainer<XPlistDictionary> others = around.Seal();
        const CFContainer<XPlistArray> hole = XMutableArray().Seal();
        cut.mPieces.push_back( mEncoder.Encode( With( *others, hole ), hole.GetCFRef() ) );
        XMutableArray children;
        for ( std::size_t count = mRandom() % 6; count > 0; --count )
        {
            Cut child = Next( inDepth - 1 );
            children.Append( child.mWhole );
            std::ranges::move( child.mPieces, std::back_inserter( cut.mPieces ) );
        }
        cut.mPieces.push_back( nullptr );
        cut.mWhole = With( *others, children.Seal() );
        return cut;
    }

private:
    static RandomPropertyListOptions Options()
    {
        RandomPropertyListOptions options;
        options.mMostDepth = 2;
        options.mMostElements = 4;
        return options;
    }
    // The hole stands first, last or between others, as its key falls among theirs.
    static __SafeCFPropertyList With( const XPlistDictionary& inOthers, const CFContainer<XPlistArray>& inArray )
    {
        XMutableDictionary dictionary;
        dictionary.SetAll( inOthers );
        dictionary.Set( CFSTR( "M" ), __SafeCFPropertyList( inArray ) );
        return dictionary.Seal();
    }

    std::mt19937_64 mRandom;
    RandomPropertyList mValues;
    XPlistPieceEncoder& mEncoder;
};

std::unique_ptr<XPlistPieceFile> FileOf(
    const std::vector<XPlistPiecePtr>& inPieces, const XPlistPieceEncoder& inEncoder )
{
    auto file = std::make_unique<XPlistPieceFile>( inEncoder );
    for ( const XPlistPiecePtr& piece : inPieces )
    {
        if ( piece )
            file->Add( piece );
        else
            file->EndHole();
    }
    return file;
}

void ExpectSame( const XBytes& inBytes, const __SafeCFPropertyList& inWhole, std::uint64_t inCase )
{
    const XBytes expected = WriteBinaryPropertyList( inWhole );
    EXPECT_TRUE( inBytes.View() == expected.View() ) << inCase << ": " << inBytes.size() << ", " << expected.size();
}

__SafeCFPropertyList Numbers( std::int64_t inFirst, std::int64_t inCount )
{
    XMutableArray numbers;
    for ( std::int64_t i = 0; i < inCount; ++i )
        numbers.Append( __SafeCFPropertyList::Integer( inFirst + i ) );
    return numbers.Seal();
}
} // namespace

TEST( BinaryPropertyListPieces, AFileOfPiecesHasTheBytesOfTheWholeValue )
{
    XPlistPieceEncoder encoder; // one for all, so that pieces stand beside many values that aren't theirs
    for ( std::uint64_t seed = 1; seed <= 500; ++seed )
    {
        const Cut cut = Cutter( seed, encoder ).Next( 3 );
        const auto file = FileOf( cut.mPieces, encoder );
        const std::size_t size = file->Measure();
        const XBytes bytes = file->Assemble();
        EXPECT_EQ( bytes.size(), size ) << seed;
        ExpectSame( bytes, cut.mWhole, seed );
        ASSERT_FALSE( HasFailure() );
    }
}

TEST( BinaryPropertyListPieces, ReferencesAreAsWideAsTheWholeFileNeedsThem )
{
    for ( const std::int64_t count : { 1, 100, 251, 252, 253, 254, 255, 65533, 65534, 65535, 70000 } )
    {
        XPlistPieceEncoder encoder;
        const CFContainer<XPlistArray> hole = XMutableArray().Seal();
        XPlistPieceFile file( encoder );
        XMutableArray root, whole, children;
        root.Append( hole );
        file.Add( encoder.Encode( root.Seal(), hole.GetCFRef() ) );
        for ( const std::int64_t first : { std::int64_t( 0 ), count / 2, std::int64_t( 0 ) } )
        {
            const auto numbers = Numbers( first, first == 0 ? count / 2 : count - count / 2 );
            file.Add( encoder.Encode( numbers ) );
            children.Append( numbers );
        }
        file.EndHole();
        whole.Append( children.Seal() );
        file.Measure();
        ExpectSame( file.Assemble(), whole.Seal(), std::uint64_t( count ) );
    }
}

TEST( BinaryPropertyListPieces, LongEqualTextsOfSeveralPiecesAreStoredOnce )
{
    for ( const std::size_t length : { 200u, 252u, 253u, 254u, 300u, 5000u } )
    {
        for ( const char16_t unit : { u'a', u'é' } )
        {
            XPlistPieceEncoder encoder;
            const CFContainer<XPlistArray> hole = XMutableArray().Seal();
            XPlistPieceFile file( encoder );
            XMutableArray root, whole, children;
            root.Append( hole );
            file.Add( encoder.Encode( root.Seal(), hole.GetCFRef() ) );
            for ( int i = 0; i < 3; ++i )
            {
                XMutableArray child;
                child.Append( __SafeCFPropertyList::String( Text( length, unit ) ) );
                child.Append( __SafeCFPropertyList::String( Text( length, unit ) + u"b" ) );
                const __SafeCFPropertyList value = child.Seal();
                file.Add( encoder.Encode( value ) );
                children.Append( value );
            }
            file.EndHole();
            whole.Append( children.Seal() );
            file.Measure();
            EXPECT_EQ( file.GetLeafCount(), 2u );
            ExpectSame( file.Assemble(), whole.Seal(), length );
        }
    }
}

TEST( BinaryPropertyListPieces, AMeasuredFileIsPutTogetherElsewhereWhileTheEncoderGoesOnOrIsGone )
{
    auto encoder = std::make_unique<XPlistPieceEncoder>();
    Cut cut = Cutter( 3, *encoder ).Next( 3 );
    const auto file = FileOf( cut.mPieces, *encoder );
    file->Measure();
    cut.mPieces.clear();
    XBytes bytes, again;
    std::thread other( [&] { bytes = file->Assemble(); } );
    for ( std::uint64_t seed = 100; seed < 150; ++seed )
        static_cast<void>( Cutter( seed, *encoder ).Next( 3 ) );
    encoder->StartAnew();
    encoder.reset();
    other.join();
    again = file->Assemble();
    ExpectSame( bytes, cut.mWhole, 1 );
    ExpectSame( again, cut.mWhole, 2 );
}

TEST( BinaryPropertyListPieces, NoPieceServesBeyondAStartAnewOrAtAnotherEncoder )
{
    XPlistPieceEncoder encoder, other;
    const XPlistPiecePtr piece = encoder.Encode( Numbers( 0, 3 ) );
    EXPECT_TRUE( encoder.IsValid( piece ) );
    EXPECT_FALSE( encoder.IsValid( nullptr ) );
    EXPECT_FALSE( other.IsValid( piece ) );
    EXPECT_TRUE( piece->Equals( *encoder.Encode( Numbers( 0, 3 ) ) ) );
    EXPECT_FALSE( piece->Equals( *encoder.Encode( Numbers( 0, 4 ) ) ) );
    EXPECT_FALSE( piece->Equals( *encoder.Encode( Numbers( 1, 3 ) ) ) );
    encoder.StartAnew();
    EXPECT_EQ( encoder.GetLeafCount(), 0u );
    EXPECT_FALSE( encoder.IsValid( piece ) );
    EXPECT_TRUE( encoder.IsValid( encoder.Encode( Numbers( 0, 3 ) ) ) );
}

TEST( BinaryPropertyListPieces, DepthCostsNoStack )
{
    __SafeCFPropertyList value = Numbers( 0, 1 );
    for ( int depth = 0; depth < 200000; ++depth )
    {
        XMutableArray array;
        array.Append( value );
        value = array.Seal();
    }
    XPlistPieceEncoder encoder;
    XPlistPieceFile file( encoder );
    file.Add( encoder.Encode( value ) );
    file.Measure();
    ExpectSame( file.Assemble(), value, 0 );
}
