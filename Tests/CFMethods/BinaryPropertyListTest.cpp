// The binary codec as a stranger sees it: against itself, against two other programs that read and
// write the format, and against files that were put together by hand, most of them wrong.
#include "CFMethods/PropertyListCodec.h"
#include "Tests/CFMethods/BinaryPropertyListAssembler.h"
#include "Tests/CFMethods/CollidingKeys.h"
#include "Tests/CFMethods/RandomPropertyList.h"
#include "Tests/Support/AllocationCounter.h"
#include "Tests/Support/ScratchFolder.h"
#include "Tests/Support/SmallStack.h"

#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <numeric>

using Assembler = BinaryPropertyListAssembler;

namespace
{
struct Trailer
{
    explicit Trailer( std::string_view inBytes )
    {
        const auto number = [&]( std::size_t inAt, unsigned inSize ) {
            std::uint64_t value = 0;
            for ( unsigned i = 0; i < inSize; ++i )
                value = value << 8 | static_cast<unsigned char>( inBytes[inBytes.size() - 32 + inAt + i] );
            return value;
        };
        mOffsetSize = number( 6, 1 );
        mReferenceSize = number( 7, 1 );
        mCount = number( 8, 8 );
    }
    std::uint64_t mOffsetSize, mReferenceSize, mCount;
};

// What PropertyListJudge.py makes of the same value.
std::string Dump( const __SafeCFPropertyList& inValue )
{
    const auto hex = []( TextView inText ) {
        std::string digits;
        for ( const char16_t unit : inText )
            digits += fmt::format( "{:04x}", unsigned( unit ) );
        return digits;
    };
    std::string result;
    switch ( inValue.GetType() )
    {
    case XPlistType::kString:
        return "s" + hex( inValue.AsString()->GetText() );
    case XPlistType::kNumber:
    {
        const XPlistNumber& number = *inValue.AsNumber();
        if ( number.IsReal() )
            return fmt::format( "r{:016x}", number.Bits() );
        return number.IsUnsigned() ? fmt::format( "i{}", number.UnsignedValue() )
                                   : fmt::format( "i{}", number.SignedValue() );
    }
    case XPlistType::kBoolean:
        return inValue.AsBoolean()->GetValue() ? "b1" : "b0";
    case XPlistType::kDate:
        return fmt::format( "t{}", std::int64_t( inValue.AsDate()->GetSeconds() ) );
    case XPlistType::kData:
        for ( const std::uint8_t byte : inValue.AsData()->GetBytes() )
            result += fmt::format( "{:02x}", byte );
        return "x" + result;
    case XPlistType::kArray:
        for ( const XPlistNode* const node : inValue.AsArray()->Nodes() )
            result += Dump( __SafeCFPropertyList( node ) ) + "\n";
        return "[" + result + "]";
    default:
        for ( const auto& [key, value] : inValue.AsDictionary()->GetEntries() )
            result += hex( key->GetText() ) + "=" + Dump( __SafeCFPropertyList( value ) ) + "\n";
        return "{" + result + "}";
    }
}

XPlistReadResult Read( std::string_view inBytes, const XPlistLimits& inLimits = {} )
{
    return ReadBinaryPropertyList( AsBytes( inBytes ), inLimits );
}

// What keeps a refused file from being a mystery: fault or value, never both, never neither.
std::string FaultOf( const XPlistReadResult& inRead )
{
    EXPECT_EQ( inRead.mFault.has_value(), not inRead.mValue );
    return inRead.mFault ? inRead.mFault->mMessage : std::string();
}

__SafeCFPropertyList ArrayOf( std::size_t inCount, const std::function<__SafeCFPropertyList( std::size_t )>& inMake )
{
    XMutableArray array;
    for ( std::size_t i = 0; i < inCount; ++i )
        array.Append( inMake( i ) );
    return array.Seal();
}

// Containers and leaves at each length at which the form of a length changes.
__SafeCFPropertyList BorderLengths()
{
    XMutableArray all;
    for ( const std::size_t length : { 0u, 1u, 14u, 15u, 16u, 255u, 256u, 65535u, 65536u } )
    {
        all.Append( __SafeCFPropertyList::String( Text( length, u'a' ) ) );
        all.Append( __SafeCFPropertyList::String( Text( length, u'\u00E9' ) ) );
        all.Append( XPlistData::Make( std::vector<std::uint8_t>( length, std::uint8_t( 7 ) ) ) );
        all.Append( ArrayOf( length, []( std::size_t ) { return __SafeCFPropertyList::Boolean( true ); } ) );
        XMutableDictionary dictionary;
        for ( std::size_t i = 0; i < length; ++i )
            dictionary.SetInteger( XKey( std::to_string( i ) ), 5 );
        all.Append( dictionary.Seal() );
    }
    return all.Seal();
}

// An array that is written with exactly so many objects.
__SafeCFPropertyList ValueOfObjects( std::size_t inObjects )
{
    return ArrayOf( inObjects - 1, []( std::size_t i ) { return __SafeCFPropertyList::Integer( std::int64_t( i ) ); } );
}

bool RunQuietly( const std::string& inCommand )
{
    return std::system( ( inCommand + " >/dev/null 2>&1" ).c_str() ) == 0;
}
} // namespace

TEST( BinaryPropertyList, EveryValueSurvivesAndIsWrittenTheSameAgain )
{
    for ( unsigned seed = 1; seed <= 300; ++seed )
    {
        const __SafeCFPropertyList value = RandomPropertyList( seed ).Next();
        const XBytes bytes = WriteBinaryPropertyList( value );
        const XPlistReadResult read = ReadBinaryPropertyList( bytes.Span() );
        ASSERT_EQ( FaultOf( read ), "" ) << "seed " << seed;
        EXPECT_TRUE( read.mValue == value ) << "seed " << seed;
        EXPECT_TRUE( read.mNotes.empty() ) << "seed " << seed;
        // What was read holds other nodes, shares others and was made in another order.
        EXPECT_EQ( WriteBinaryPropertyList( read.mValue ).View(), bytes.View() ) << "seed " << seed;
    }
    const __SafeCFPropertyList large = ValueOfObjects( 70000 );
    EXPECT_TRUE( ReadBinaryPropertyList( WriteBinaryPropertyList( large ).Span() ).mValue == large );
    const __SafeCFPropertyList borders = BorderLengths();
    EXPECT_TRUE( ReadBinaryPropertyList( WriteBinaryPropertyList( borders ).Span() ).mValue == borders );
}

// plistlib keeps neither lone surrogates (its decoder is strict) nor fractions of microseconds, and
// writes 0.0 and -0.0 as whichever came first. Everything else has to come back from it, in a
// file of the same size: it stores equal leaves once as well, and picks the same widths.
TEST( BinaryPropertyList, PlistlibReadsWhatIsWrittenAndWritesWhatIsRead )
{
    const RandomPropertyListOptions kOptions{ .mLoneSurrogates = false, .mOddReals = false, .mAnyDates = false };
    std::vector<__SafeCFPropertyList> values = { BorderLengths(), ValueOfObjects( 70000 ) };
    for ( const std::size_t objects : { 255u, 256u, 257u, 65535u, 65536u, 65537u } )
        values.push_back( ValueOfObjects( objects ) );
    for ( unsigned seed = 1; seed <= 60; ++seed )
        values.push_back( RandomPropertyList( seed, kOptions ).Next() );

    const ScratchFolder folder;
    for ( std::size_t i = 0; i < values.size(); ++i )
        folder.Write( fmt::format( "{}.plist", i ), WriteBinaryPropertyList( values[i] ).View() );
    ASSERT_TRUE( RunQuietly( fmt::format(
        "python3 '{}/CFMethods/PropertyListJudge.py' '{}'", KORVALEN_TESTS_FOLDER, folder.Path().native() ) ) );
    for ( std::size_t i = 0; i < values.size(); ++i )
    {
        SCOPED_TRACE( fmt::format( "value {} (the first 8 are borders, the others seed {})", i, i - 7 ) );
        EXPECT_TRUE( folder.Read( fmt::format( "{}.dump", i ) ) == Dump( values[i] ) );
        const std::string ours = folder.Read( fmt::format( "{}.plist", i ) );
        const std::string back = folder.Read( fmt::format( "{}.back", i ) );
        ASSERT_GE( back.size(), 42u );
        EXPECT_TRUE( Read( back ).mValue == values[i] );
        EXPECT_EQ( Trailer( ours ).mCount, Trailer( back ).mCount );
        EXPECT_EQ( Trailer( ours ).mReferenceSize, Trailer( back ).mReferenceSize );
        EXPECT_EQ( Trailer( ours ).mOffsetSize, Trailer( back ).mOffsetSize );
        EXPECT_EQ( ours.size(), back.size() );
    }
}

// libplist holds strings as C strings in UTF-8, so neither a null character nor a lone surrogate.
TEST( BinaryPropertyList, PlistutilReadsWhatIsWrittenAndWritesWhatIsRead )
{
    const RandomPropertyListOptions kOptions{ .mLoneSurrogates = false, .mNullCharacters = false };
    XMutableArray values;
    for ( unsigned seed = 1; seed <= 60; ++seed )
        values.Append( RandomPropertyList( seed, kOptions ).Next() );
    values.Append( BorderLengths() );
    const __SafeCFPropertyList all = values.Seal();
    const ScratchFolder folder;
    folder.Write( "ours.plist", WriteBinaryPropertyList( all ).View() );
    const std::string path = folder.Path().native();
    ASSERT_TRUE( RunQuietly( fmt::format( "plistutil -i '{0}/ours.plist' -f bin -o '{0}/theirs.plist'", path ) ) );
    const XPlistReadResult read = Read( folder.Read( "theirs.plist" ) );
    EXPECT_EQ( FaultOf( read ), "" );
    ASSERT_TRUE( read.mValue );
    const auto before = all.AsArray()->Nodes(), after = read.mValue.AsArray()->Nodes();
    ASSERT_EQ( before.size(), after.size() );
    for ( std::size_t i = 0; i < before.size(); ++i )
        EXPECT_TRUE( __SafeCFPropertyList( before[i] ) == __SafeCFPropertyList( after[i] ) ) << "seed " << i + 1;
}

TEST( BinaryPropertyList, EqualLeavesAreStoredOnceAndUnequalOnesApart )
{
    using Value = __SafeCFPropertyList;
    const std::uint8_t kByte[] = { '1' };
    const std::function<Value()> kMakers[] = {
        [] { return Value::String( u"1" ); },
        [] { return Value::String( u"\u0101" ); },
        [&] { return XPlistData::Make( kByte ); },
        [] { return Value::Integer( 1 ); },
        [] { return Value::Integer( -1 ); },
        [] { return XPlistNumber::MakeUnsigned( std::numeric_limits<std::uint64_t>::max() ); },
        [] { return Value::Real( 1.0 ); },
        [] { return Value::Real( 0.0 ); },
        [] { return Value::Real( -0.0 ); },
        [] { return Value::Real( std::numeric_limits<double>::quiet_NaN() ); },
        [] { return XPlistDate::Make( 1.0 ); },
        [] { return Value::Boolean( true ); },
        [] { return Value::Boolean( false ); },
    };
    XMutableArray array;
    for ( int round = 0; round < 3; ++round )
    {
        for ( const auto& make : kMakers )
            array.Append( make() );
    }
    // A key and a string of the same text are one object; the dictionary and the array are two more.
    XMutableDictionary dictionary;
    dictionary.SetText( CFSTR( "1" ), u"1" );
    array.Append( dictionary.Seal() );
    EXPECT_EQ( Trailer( WriteBinaryPropertyList( array.Seal() ).View() ).mCount, std::size( kMakers ) + 2 );
    // A container is written wherever it is held.
    const Value held = ArrayOf( 1, []( std::size_t ) { return Value::Integer( 1 ); } );
    EXPECT_EQ(
        Trailer( WriteBinaryPropertyList( ArrayOf( 3, [&]( std::size_t ) { return held; } ) ).View() ).mCount, 5u );
}

TEST( BinaryPropertyList, EveryFormThatOtherWritersUseIsRead )
{
    const auto number = []( std::int64_t inValue ) { return __SafeCFPropertyList::Integer( inValue ); };
    const auto leaf = []( std::string inObject ) { return Assembler{ .mObjects = { std::move( inObject ) } }.Bytes(); };
    const std::pair<std::string, __SafeCFPropertyList> kCases[] = {
        { leaf( "\x10\xFF" ), number( 255 ) },
        { leaf( "\x11\xFF\xFF" ), number( 65535 ) },
        { leaf( "\x12\xFF\xFF\xFF\xFF" ), number( 4294967295 ) },
        { leaf( "\x13" + BigEndian( ~std::uint64_t( 0 ), 8 ) ), number( -1 ) },
        { leaf( "\x14" + BigEndian( 0, 8 ) + BigEndian( 7, 8 ) ), number( 7 ) },
        { leaf( "\x14" + BigEndian( ~std::uint64_t( 0 ), 8 ) + BigEndian( ~std::uint64_t( 4 ), 8 ) ), number( -5 ) },
        { leaf( "\x14" + BigEndian( 0, 8 ) + BigEndian( ~std::uint64_t( 0 ), 8 ) ),
            XPlistNumber::MakeUnsigned( ~std::uint64_t( 0 ) ) },
        { leaf( "\x22" + BigEndian( std::bit_cast<std::uint32_t>( 1.5f ), 4 ) ), __SafeCFPropertyList::Real( 1.5 ) },
        { leaf( Assembler::Wide( u"ASCII" ) ), __SafeCFPropertyList::String( u"ASCII" ) },
        { leaf( "\x5F\x13" + BigEndian( 2, 8 ) + "ab" ), __SafeCFPropertyList::String( u"ab" ) },
        { leaf( "\x5F\x10\x02"
                "ab" ),
            __SafeCFPropertyList::String( u"ab" ) },
    };
    for ( const auto& [bytes, value] : kCases )
    {
        const XPlistReadResult read = Read( bytes );
        EXPECT_EQ( FaultOf( read ), "" ) << Dump( value );
        EXPECT_TRUE( read.mValue == value ) << Dump( value );
    }
    // Every width of offsets and references, odd ones included, and a root that isn't the first.
    for ( unsigned size = 1; size <= 8; ++size )
    {
        const Assembler file{ .mObjects = { "\x10\x07", Assembler::Array( { 0, 0, 2 }, size ),
                                  Assembler::ASCII( "z" ) },
            .mOffsetSize = size,
            .mReferenceSize = size,
            .mRoot = 1 };
        const XPlistReadResult read = Read( file.Bytes() );
        ASSERT_EQ( FaultOf( read ), "" ) << size;
        EXPECT_EQ( Dump( read.mValue ), "[i7\ni7\ns007a\n]" ) << size;
    }
}

TEST( BinaryPropertyList, EachFaultSaysWhatAndWhere )
{
    struct Case
    {
        const char* mName;
        std::string mBytes;
        const char* mFragment;
        std::uint64_t mOffset;
        std::optional<std::uint64_t> mObject = {};
    };
    // Object 1 of an array, which follows the array's two bytes: it begins at byte 10.
    const auto second = []( std::string inObject ) {
        return Assembler{ .mObjects = { Assembler::Array( { 1 } ), std::move( inObject ) } }.Bytes();
    };
    const auto leaf = []( auto inChange ) {
        Assembler file{ .mObjects = { "\x10\x07" } };
        inChange( file );
        return file.Bytes();
    };
    const auto object = [&]( std::string inObject ) { return second( std::move( inObject ) ); };
    const std::string whole = leaf( []( Assembler& ) {} );
    ASSERT_TRUE( Read( whole ).mValue );
    const std::uint64_t trailer = whole.size() - 32;
    const std::string_view kUnknown = "is unknown, or its number is cut off";

    std::vector<Case> cases = {
        { "empty", "", "too few", 0 },
        { "too short", whole.substr( 0, 41 ), "too few", 41 },
        { "another version", leaf( []( Assembler& f ) { f.mHeader = "bplist01"; } ), "header", 0 },
        { "another format", leaf( []( Assembler& f ) { f.mHeader = "<?xml ve"; } ), "header", 0 },
        { "offset size 0", leaf( []( Assembler& f ) { f.mFalseOffsetSize = 0; } ), "offset size is 0", trailer + 6 },
        { "offset size 9", leaf( []( Assembler& f ) { f.mFalseOffsetSize = 9; } ), "offset size is 9", trailer + 6 },
        { "reference size 0", leaf( []( Assembler& f ) { f.mFalseReferenceSize = 0; } ), "reference size is 0",
            trailer + 7 },
        { "reference size 9", leaf( []( Assembler& f ) { f.mFalseReferenceSize = 9; } ), "reference size is 9",
            trailer + 7 },
        { "no objects", leaf( []( Assembler& f ) { f.mFalseCount = 0; } ), "counts 0 objects", trailer + 8 },
        { "more objects than bytes", leaf( []( Assembler& f ) { f.mFalseCount = ~std::uint64_t( 0 ); } ),
            "which the file can't hold", trailer + 8 },
        { "one object more", leaf( []( Assembler& f ) { f.mFalseCount = 2; } ), "table of 2 offsets", trailer + 24 },
        { "root beyond", leaf( []( Assembler& f ) { f.mRoot = 1; } ), "root is object 1 of 1", trailer + 16 },
        { "root far beyond", leaf( []( Assembler& f ) { f.mRoot = ~std::uint64_t( 0 ); } ), "root is object",
            trailer + 16 },
        { "table in the header", leaf( []( Assembler& f ) { f.mFalseTable = 4; } ), "at byte 4", trailer + 24 },
        { "table beyond", leaf( []( Assembler& f ) { f.mFalseTable = ~std::uint64_t( 0 ); } ), "doesn't end at",
            trailer + 24 },
        { "gap before the trailer", leaf( []( Assembler& f ) { f.mBeforeTrailer = "gap"; } ), "doesn't end at",
            trailer + 3 + 24 },
        { "offset in the header", leaf( []( Assembler& f ) {
             f.mFalseOffsets = { { 0, 7 } };
         } ),
            "offset 7 lies", 10, 0 },
        { "offset in the table", leaf( []( Assembler& f ) {
             f.mFalseOffsets = { { 0, 10 } };
         } ),
            "offset 10 lies", 10, 0 },
        { "offset beyond", leaf( []( Assembler& f ) {
             f.mFalseOffsets = { { 0, 0xFFFFFFFF } };
         } ),
            "outside the objects", 10, 0 },
        { "reference beyond", Assembler{ .mObjects = { Assembler::Array( { 1, 9 } ), "\x09" } }.Bytes(),
            "names object 9 of 2", 10, 0 },
        { "null", object( std::string( 1, '\0' ) ), "0x00 is unknown", 10, 1 },
        { "fill byte", object( "\x0F" ), "0x0F is unknown", 10, 1 },
        { "integer of 32 bytes", object( "\x15" + std::string( 32, '\0' ) ), "0x15 is unknown", 10, 1 },
        { "integer cut off", object( "\x13\1\1\1\1\1\1\1" ), "the number goes beyond", 10, 1 },
        { "real of 2 bytes", object( "\x21\1\1" ), "0x21 is unknown", 10, 1 },
        { "float cut off", object( "\x22\1\1\1" ), kUnknown.data(), 10, 1 },
        { "real cut off", object( "\x23\1\1\1\1\1\1\1" ), kUnknown.data(), 10, 1 },
        { "date cut off", object( "\x33\1\1\1\1\1\1\1" ), kUnknown.data(), 10, 1 },
        { "date of 4 bytes", object( "\x32\1\1\1\1" ), "0x32 is unknown", 10, 1 },
        { "UID of an archive", object( "\x80\1" ), "a UID of a keyed archive", 10, 1 },
        { "set", object( "\xC0" ), "0xC0 is unknown", 10, 1 },
        { "128 bits that are no 64", object( "\x14" + BigEndian( 1, 8 ) + BigEndian( 0, 8 ) ), "128 bits", 10, 1 },
        { "128 negative bits", object( "\x14" + BigEndian( ~std::uint64_t( 0 ), 8 ) + BigEndian( 1, 8 ) ), "128 bits",
            10, 1 },
        { "byte above ASCII", object( Assembler::ASCII( "01234567\xE9" ) ), "byte 0xE9 in an ASCII string", 10 + 1 + 8,
            1 },
        { "string beyond",
            object( "\x52"
                    "a" ),
            "a length of 2 goes beyond", 10, 1 },
        { "wide string beyond", object( std::string( "\x61\0", 2 ) ), "a length of 1 goes beyond", 10, 1 },
        { "data beyond",
            object( "\x42"
                    "a" ),
            "a length of 2 goes beyond", 10, 1 },
        { "array beyond", object( "\xA2\1" ), "a length of 2 goes beyond", 10, 1 },
        { "dictionary beyond", object( "\xD1\1" ), "a length of 1 goes beyond", 10, 1 },
        { "count of 2^64-1", object( "\xAF\x13" + BigEndian( ~std::uint64_t( 0 ), 8 ) ), "goes beyond", 10, 1 },
        { "count whose bytes overflow", object( "\xDF\x13" + BigEndian( std::uint64_t( 1 ) << 63, 8 ) ), "goes beyond",
            10, 1 },
        { "length is no integer",
            object( "\x5F\x51"
                    "a" ),
            "the length isn't an integer", 11, 1 },
        { "length of 16 bytes", object( "\x5F\x14" + std::string( 16, '\0' ) ), "the length isn't an integer", 11, 1 },
        { "length is cut off", object( "\x5F\x11\1" ), "the length isn't an integer", 11, 1 },
        { "length is missing", object( "\x5F" ), "the length isn't an integer", 11, 1 },
        { "key is a number", Assembler{ .mObjects = { Assembler::Dictionary( { 1, 1 } ), "\x10\x07" } }.Bytes(),
            "its key, object 1, isn't a string", 9, 0 },
        { "key is its dictionary", Assembler{ .mObjects = { Assembler::Dictionary( { 0, 0 } ) } }.Bytes(),
            "its key, object 0, isn't a string", 9, 0 },
        { "key is damaged", Assembler{ .mObjects = { Assembler::Dictionary( { 1, 1 } ), "\x51\xFF" } }.Bytes(),
            "byte 0xFF", 12, 1 },
        { "array of itself", Assembler{ .mObjects = { Assembler::Array( { 0 } ) } }.Bytes(), "a cycle", 9, 0 },
        { "cycle of three",
            Assembler{ .mObjects = { Assembler::Array( { 1 } ), Assembler::Dictionary( { 3, 2 } ),
                           Assembler::Array( { 3, 0 } ), Assembler::ASCII( "k" ) } }
                .Bytes(),
            "holds object 0", 14, 2 },
        { "depth 1001", NestedArrays( 1001 ), "depth exceeds the limit of 1000", 8 + 5 * 1000, 1000 },
        { "bomb", DoublingBomb( 22 ), "exceeds the limit of", 8, 0 },
    };
    for ( const Case& row : cases )
    {
        const XPlistReadResult read = Read( row.mBytes );
        ASSERT_NE( FaultOf( read ), "" ) << row.mName;
        EXPECT_NE( read.mFault->mMessage.find( row.mFragment ), std::string::npos )
            << row.mName << ": " << read.mFault->mMessage;
        EXPECT_EQ( read.mFault->mOffset, row.mOffset ) << row.mName;
        EXPECT_EQ( read.mFault->mObject, row.mObject ) << row.mName;
        EXPECT_EQ( read.mFormat, XPlistFormat::kBinary ) << row.mName;
    }
}

TEST( BinaryPropertyList, TooManyObjectsForTheReferencesAreRefused )
{
    Assembler file{ .mObjects = { Assembler::Array( { 1, 1 } ) } };
    while ( file.mObjects.size() < 256 )
        file.mObjects.push_back( "\x09" );
    EXPECT_EQ( FaultOf( Read( file.Bytes() ) ), "" );
    file.mObjects.push_back( "\x09" );
    EXPECT_NE(
        FaultOf( Read( file.Bytes() ) ).find( "references of 1 bytes can't name 257 objects" ), std::string::npos );
}

TEST( BinaryPropertyList, LimitsAreAcceptedAndOneBeyondIsRefusedOnASmallStack )
{
    RunOnSmallStack( [] {
        const XPlistReadResult deepest = Read( NestedArrays( 1000 ) );
        EXPECT_EQ( FaultOf( deepest ), "" );
        EXPECT_TRUE(
            ReadBinaryPropertyList( WriteBinaryPropertyList( deepest.mValue ).Span() ).mValue == deepest.mValue );
        EXPECT_NE( FaultOf( Read( NestedArrays( 1001 ) ) ), "" );
        EXPECT_EQ( FaultOf( Read( NestedArrays( 3 ), { .mMaxDepth = 3 } ) ), "" );
        EXPECT_NE( FaultOf( Read( NestedArrays( 3 ), { .mMaxDepth = 2 } ) ), "" );
        EXPECT_NE( FaultOf( Read( NestedArrays( 200000 ), {} ) ), "" );
    } );
    const std::string file = NestedArrays( 3 );
    EXPECT_EQ( FaultOf( Read( file, { .mMaxBytes = file.size() } ) ), "" );
    const XPlistReadResult large = Read( file, { .mMaxBytes = file.size() - 1 } );
    EXPECT_NE( FaultOf( large ).find( fmt::format( "exceeds the limit of {}", file.size() - 1 ) ), std::string::npos );
}

// A container that was read already adds its height where it is held again.
TEST( BinaryPropertyList, DepthCountsThroughSharedContainers )
{
    for ( const std::uint64_t tail : { 499u, 500u } )
    {
        // Object 0 holds first the head of a chain of arrays, then a chain that ends in that head.
        Assembler file{ .mReferenceSize = 2 };
        const std::uint64_t head = 1, chain = 501, last = chain + tail;
        file.mObjects.push_back( Assembler::Array( { head, chain }, 2 ) );
        for ( std::uint64_t i = head; i < chain; ++i )
            file.mObjects.push_back(
                Assembler::Array( i + 1 < chain ? std::vector{ i + 1 } : std::vector<std::uint64_t>{}, 2 ) );
        for ( std::uint64_t i = chain; i < last; ++i )
            file.mObjects.push_back( Assembler::Array( { i + 1 < last ? i + 1 : head }, 2 ) );
        EXPECT_EQ( FaultOf( Read( file.Bytes() ) ).empty(), tail == 499 ) << tail;
    }
}

TEST( BinaryPropertyList, SharedContainersWithinTheBoundAreRead )
{
    // 100 dictionaries that hold one array: expanded it is 100 of them.
    std::vector<std::uint64_t> references( 100, 1 );
    const Assembler file{ .mObjects = { Assembler::Array( references ), Assembler::Dictionary( { 2, 3 } ),
                              Assembler::ASCII( "k" ), Assembler::Array( { 2, 2, 2 } ) } };
    const XPlistReadResult read = Read( file.Bytes() );
    ASSERT_EQ( FaultOf( read ), "" );
    EXPECT_EQ( read.mValue.AsArray()->GetCount(), 100u );
    EXPECT_EQ( Trailer( WriteBinaryPropertyList( read.mValue ).View() ).mCount, 1 + 100 + 1 + 100u );
}

TEST( BinaryPropertyList, WhatIsReadButNotKeptIsNoted )
{
    Assembler file{ .mObjects = { Assembler::Dictionary( { 1, 2, 3, 4, 5, 6 } ), Assembler::ASCII( "k" ),
                        Assembler::Wide( u"k" ), Assembler::ASCII( "a" ), "\x10\1", Assembler::Array( { 1 } ),
                        "\x10\3" } };
    XPlistReadResult read = Read( file.Bytes() );
    ASSERT_EQ( FaultOf( read ), "" );
    EXPECT_EQ( Dump( read.mValue ), "{0061=i3\n006b=[s006b\n]\n}" ) << "the last of equal keys counts";
    ASSERT_EQ( read.mNotes.size(), 1u );
    EXPECT_NE( read.mNotes[0].mMessage.find( "object 0 has 1 keys twice" ), std::string::npos )
        << read.mNotes[0].mMessage;
    EXPECT_EQ( read.mNotes[0].mOffset, 9u );

    file.mObjects.push_back( "\x10\7" );
    read = Read( file.Bytes() );
    ASSERT_EQ( read.mNotes.size(), 2u );
    EXPECT_NE( read.mNotes[1].mMessage.find( "1 of 8 objects" ), std::string::npos ) << read.mNotes[1].mMessage;
    EXPECT_EQ( read.mNotes[1].mOffset, file.Table() );
}

TEST( BinaryPropertyList, NotesAreAtMostAHundred )
{
    Assembler file{ .mReferenceSize = 2 };
    std::vector<std::uint64_t> references;
    for ( std::uint64_t i = 0; i < 150; ++i )
        references.push_back( 3 + i );
    file.mObjects = { Assembler::Array( references, 2 ), Assembler::ASCII( "k" ), "\x09" };
    for ( int i = 0; i < 150; ++i )
        file.mObjects.push_back( Assembler::Dictionary( { 1, 1, 2, 2 }, 2 ) );
    file.mObjects.push_back( "\x08" );
    const XPlistReadResult read = Read( file.Bytes() );
    ASSERT_EQ( FaultOf( read ), "" );
    EXPECT_EQ( read.mNotes.size(), 100u );
}

// Long keys are sorted at the end, by their place among all of the file; the order has to be the same.
TEST( BinaryPropertyList, LongKeysThatBeginAlikeAreSortedAsShortOnesAre )
{
    const std::string prefix( 100, 'p' );
    const Assembler file{ .mObjects = { Assembler::Array( { 1, 2 } ),
                              Assembler::Dictionary( { 3, 4, 5, 6, 7, 7, 7, 7 } ),
                              Assembler::Dictionary( { 5, 3, 8, 5, 7, 7, 7, 3 } ), Assembler::ASCII( prefix + "c" ),
                              Assembler::ASCII( prefix + "a" ), Assembler::ASCII( prefix + "b" ),
                              Assembler::ASCII( "q" ), "\x10\x07", Assembler::Wide( TextFromASCII( prefix + "b" ) ) } };
    const XPlistReadResult read = Read( file.Bytes() );
    ASSERT_EQ( FaultOf( read ), "" );
    XMutableDictionary first, second;
    for ( const char* const name : { "a", "b", "c" } )
        first.SetInteger( XKey( prefix + name ), 7 );
    first.SetInteger( CFSTR( "q" ), 7 );
    second.SetText( XKey( prefix + "b" ), TextFromASCII( prefix + "c" ) );
    second.SetInteger( XKey( prefix + "c" ), 7 );
    EXPECT_TRUE( read.mValue.AsArray()->GetValueAt( 0 ) == __SafeCFPropertyList( first.Seal() ) );
    EXPECT_EQ( Dump( read.mValue.AsArray()->GetValueAt( 1 ) ).find( "=i7" ) != std::string::npos, true );
    EXPECT_EQ( read.mNotes.size(), 1u );
}

namespace
{
// Files whose bytes are few and whose values would be many, if the reader let them.
std::vector<std::pair<const char*, std::string>> Bombs()
{
    std::vector<std::pair<const char*, std::string>> bombs = { { "doubling arrays", DoublingBomb( 22 ) },
        { "more doubling arrays", DoublingBomb( 900 ) }, { "deep arrays", NestedArrays( 100000 ) } };
    const auto overlapping = []( std::string inObject, std::size_t inCount ) {
        Assembler file{ .mReferenceSize = 2 };
        std::vector<std::uint64_t> references( inCount );
        for ( std::size_t i = 0; i < inCount; ++i )
            references[i] = i + 1;
        file.mObjects = { Assembler::Array( references, 2 ), std::move( inObject ) };
        for ( std::size_t i = 2; i <= inCount; ++i )
        {
            file.mObjects.push_back( "" );
            file.mFalseOffsets.push_back( { i, file.OffsetOf( 1 ) } );
        }
        return file.Bytes();
    };
    bombs.emplace_back(
        "many offsets of one string", overlapping( Assembler::ASCII( std::string( 65536, 's' ) ), 5000 ) );
    bombs.emplace_back( "many offsets of one text", overlapping( Assembler::Wide( Text( 32768, u'\u0101' ) ), 5000 ) );
    bombs.emplace_back( "many offsets of one data", overlapping( Assembler::Data( 65536 ), 5000 ) );
    bombs.emplace_back( "many offsets of one array",
        overlapping( Assembler::Array( std::vector<std::uint64_t>( 30000, 5000 ), 2 ), 5000 ) );

    // Keys of one hash crowd the table of keys, so that the long one, which is then used often, finds no room.
    constexpr std::uint64_t kCrowd = 150, kUses = 3000, kCrowded = 2 + kUses, kLong = kCrowded + kCrowd;
    Assembler file{ .mReferenceSize = 2 };
    std::vector<std::uint64_t> uses( 1 + kUses ), crowd( 2 * kCrowd, kLong + 1 );
    std::iota( uses.begin(), uses.end(), 1 );
    std::iota( crowd.begin(), crowd.begin() + kCrowd, kCrowded );
    file.mObjects = { Assembler::Array( uses, 2 ), Assembler::Dictionary( crowd, 2 ) };
    for ( std::uint64_t i = 0; i < kUses; ++i )
        file.mObjects.push_back( Assembler::Dictionary( { kLong, kLong + 1 }, 2 ) );
    for ( const Text& name : CollidingKeys( kCrowd, 12345 ) )
        file.mObjects.push_back( Assembler::Wide( name ) );
    file.mObjects.push_back( Assembler::Wide( CollidingKeys( 1, 12345, Text( 20000, u'l' ) )[0] ) );
    file.mObjects.push_back( "\x09" );
    bombs.emplace_back( "one long key that can't be shared", file.Bytes() );
    return bombs;
}
} // namespace

TEST( BinaryPropertyList, NoFileTakesMoreMemoryThanItsSizeAllows )
{
    if ( not AllocationCounter::kWorks )
        GTEST_SKIP() << "nothing is counted under a sanitizer";
    std::vector<std::pair<const char*, std::string>> files = Bombs();
    const auto add = [&files]( const char* inName, const __SafeCFPropertyList& inValue ) {
        files.emplace_back( inName, std::string( WriteBinaryPropertyList( inValue ).View() ) );
    };
    // What is honest but made of the smallest objects costs the most for a byte.
    add( "small integers", ValueOfObjects( 200000 ) );
    add( "empty arrays", ArrayOf( 200000, []( std::size_t ) { return XMutableArray().Seal(); } ) );
    XMutableDictionary keys;
    for ( int i = 0; i < 100000; ++i )
        keys.SetBoolean( XKey( std::to_string( i ) ), true );
    add( "short keys", keys.Seal() );
    for ( const auto& [name, bytes] : files )
    {
        const AllocationCounter counter;
        {
            const XPlistReadResult read = Read( bytes );
            EXPECT_LE( counter.PeakBytes(), 64 * bytes.size() + ( std::size_t( 16 ) << 20 ) ) << name;
        }
    }
}

TEST( BinaryPropertyList, EveryAllocationMayFailWithoutALeakOrACrash )
{
    if ( not AllocationCounter::kWorks )
        GTEST_SKIP() << "no allocation can be refused under a sanitizer";
    Assembler doubled{ .mObjects = { Assembler::Dictionary( { 1, 2, 1, 3, 4, 3 } ), Assembler::ASCII( "k" ),
                           Assembler::Wide( u"k\u0101" ), Assembler::Array( { 4, 4 } ), Assembler::Data( 5 ) } };
    RandomPropertyList random( 11, { .mLongLengths = false } );
    const std::string files[] = { doubled.Bytes(), NestedArrays( 40 ), DoublingBomb( 22 ),
        std::string(
            WriteBinaryPropertyList( ArrayOf( 12, [&random]( std::size_t ) { return random.Next(); } ) ).View() ) };
    for ( const std::string& bytes : files )
    {
        const bool whole = not Read( bytes ).mFault;
        for ( std::size_t after = 0;; ++after )
        {
            AllocationCounter counter;
            counter.FailAfter( after );
            try
            {
                const XPlistReadResult read = Read( bytes );
                counter.StopFailing();
                EXPECT_EQ( whole, not read.mFault );
                if ( counter.Allocations() <= after )
                    break;
            }
            catch ( const std::bad_alloc& )
            {
                counter.StopFailing();
                // The table of keys may have grown, which stays.
                EXPECT_LE( counter.LiveBytes(), 0 ) << after;
            }
        }
    }
}
