#include "Platform/Linux/PropertyListVariant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using Payload = CFContainer<XPlistDictionary>;

Payload With( const __SafeCFPropertyList& inValue )
{
    XMutableDictionary dictionary;
    dictionary.Set( CFSTR( "Value" ), inValue );
    return dictionary.Seal();
}

// By way of bytes, as it travels: what the maker built needn't be what a reader sees.
GVariantPtr Travelled( GVariant* inVariant )
{
    const gsize size = g_variant_get_size( inVariant );
    std::shared_ptr<char[]> bytes( new char[size + 16] );
    g_variant_store( inVariant, bytes.get() );
    GBytes* const copy = g_bytes_new( bytes.get(), size );
    GVariantPtr result = Owned( g_variant_new_from_bytes( g_variant_get_type( inVariant ), copy, FALSE ) );
    g_bytes_unref( copy );
    EXPECT_TRUE( g_variant_is_normal_form( result.get() ) );
    return result;
}

__SafeCFPropertyList RoundTrip( const Payload& inPayload, std::string& outFault )
{
    const GVariantPtr variant = PropertyListVariant::FromPayload( inPayload, outFault );
    if ( not variant )
        return {};
    return PropertyListVariant::ToPayload( Travelled( variant.get() ).get(), outFault );
}

// Arrays within arrays, and dictionaries in turn.
__SafeCFPropertyList Nested( int inDepth )
{
    __SafeCFPropertyList value = __SafeCFPropertyList::String( u"in the middle" );
    for ( int i = 0; i < inDepth; ++i )
    {
        if ( i % 2 == 0 )
        {
            value = With( value );
            continue;
        }
        XMutableArray array;
        array.Append( value );
        array.Append( __SafeCFPropertyList::Integer( i ) );
        value = array.Seal();
    }
    return value;
}
} // namespace

TEST( PropertyListVariant, EachKindOfValueComesBackAsItWas )
{
    const std::uint8_t bytes[] = { 0, 255, 0 };
    const std::pair<const char*, __SafeCFPropertyList> cases[] = {
        { "empty text", __SafeCFPropertyList::String( u"" ) },
        { "text", __SafeCFPropertyList::String( u"Ä\U0001F600\x2028 %s" ) },
        { "text with NUL", __SafeCFPropertyList::String( TextView( u"a\0b", 3 ) ) },
        { "lone surrogate", __SafeCFPropertyList::String( u"a\xD800z" ) },
        { "0", __SafeCFPropertyList::Integer( 0 ) },
        { "smallest", __SafeCFPropertyList::Integer( std::numeric_limits<std::int64_t>::min() ) },
        { "largest", __SafeCFPropertyList::Integer( std::numeric_limits<std::int64_t>::max() ) },
        { "unsigned", XPlistNumber::MakeUnsigned( std::numeric_limits<std::uint64_t>::max() ) },
        { "real", __SafeCFPropertyList::Real( 0.1 ) },
        { "whole real", __SafeCFPropertyList::Real( 2 ) },
        { "minus nothing", __SafeCFPropertyList::Real( -0.0 ) },
        { "no number", __SafeCFPropertyList::Real( std::nan( "" ) ) },
        { "true", __SafeCFPropertyList::Boolean( true ) },
        { "false", __SafeCFPropertyList::Boolean( false ) },
        { "date", XPlistDate::Make( 786000000.125 ) },
        { "data", XPlistData::Make( bytes ) },
        { "no data", XPlistData::Make( {} ) },
        { "empty array", XMutableArray().Seal() },
        { "empty dictionary", XMutableDictionary().Seal() },
    };
    for ( const auto& [name, value] : cases )
    {
        std::string fault;
        const Payload payload = With( value );
        EXPECT_TRUE( RoundTrip( payload, fault ) == __SafeCFPropertyList( payload ) ) << name << ": " << fault;
    }
}

TEST( PropertyListVariant, AnyDepthTravels )
{
    // On both sides of where the bus's own nesting ends.
    for ( const int depth : { 1, PropertyListVariant::kMaxDepth - 2, PropertyListVariant::kMaxDepth - 1,
              PropertyListVariant::kMaxDepth, PropertyListVariant::kMaxDepth + 1, 40, 900 } )
    {
        std::string fault;
        const Payload payload = With( Nested( depth ) );
        EXPECT_TRUE( RoundTrip( payload, fault ) == __SafeCFPropertyList( payload ) ) << depth << ": " << fault;
    }
}

TEST( PropertyListVariant, NothingIsAnEmptyDictionary )
{
    std::string fault;
    const __SafeCFPropertyList result = RoundTrip( nullptr, fault );
    ASSERT_TRUE( result.AsDictionary() ) << fault;
    EXPECT_EQ( result.AsDictionary()->GetCount(), 0u );
}

TEST( PropertyListVariant, WhatIsTooLargeIsRefusedOnBothSides )
{
    std::string fault;
    const std::vector<std::uint8_t> bytes( PropertyListVariant::kMaxBytes - 100 ), more( bytes.size() + 200 );
    EXPECT_TRUE( RoundTrip( With( XPlistData::Make( bytes ) ), fault ) ) << fault;
    EXPECT_FALSE( PropertyListVariant::FromPayload( With( XPlistData::Make( more ) ), fault ) );
    EXPECT_EQ( fault, "it is larger than 16 MiB" );

    const GVariantPtr large = Owned( g_variant_new_parsed(
        "{'Value': <%@ay>}", g_variant_new_fixed_array( G_VARIANT_TYPE_BYTE, more.data(), more.size(), 1 ) ) );
    EXPECT_FALSE( PropertyListVariant::ToPayload( large.get(), fault ) );
    EXPECT_EQ( fault, "it is larger than 16 MiB" );
}

TEST( PropertyListVariant, AValueThatIsSharedAMillionTimesIsRefusedBeforeItFillsTheMemory )
{
    __SafeCFPropertyList value = __SafeCFPropertyList::String( u"sixteen letters." );
    for ( int i = 0; i < 9; ++i ) // 10 to the 9th
    {
        XMutableArray array;
        for ( int j = 0; j < 10; ++j )
            array.Append( value );
        value = array.Seal();
    }
    std::string fault;
    EXPECT_FALSE( PropertyListVariant::FromPayload( With( value ), fault ) );
    EXPECT_EQ( fault, "it is larger than 16 MiB" );
}

TEST( PropertyListVariant, OnlyTheFormsThatItWritesAreRead )
{
    constexpr const char* kRefused[] = { "'text'", "@as []", "{'a': 1}", "{'a': <1>}", "{'a': <byte 1>}",
        "{'a': <@as ['b']>}", "{'a': <@a{ss} {}>}", "{'a': <@o '/x'>}", "{'a': <@g 's'>}", "{'a': <<'b'>>}",
        "{'a': <(1.0, 2.0)>}", "{'a': <@mi nothing>}", "{'a': <[<1>]>}", "{'a': <{'b': <int16 1>}>}", "{1: <'text'>}",
        "{'a': <(b'bplist00',)>}" };
    for ( const char* const text : kRefused )
    {
        GErrorHolder error;
        const GVariantPtr variant( g_variant_parse( nullptr, text, nullptr, nullptr, error.Out() ) );
        ASSERT_TRUE( variant ) << text << ": " << error.Message();
        std::string fault;
        EXPECT_FALSE( PropertyListVariant::ToPayload( variant.get(), fault ) ) << text;
        EXPECT_FALSE( fault.empty() ) << text;
    }
}

TEST( PropertyListVariant, DeeperThanItWritesIsRefusedAndSoIsADamagedEncodedValue )
{
    GVariant* value = g_variant_new_string( "in the middle" );
    GVariant* encoded = g_variant_new( "(@ay)", g_variant_new_fixed_array( G_VARIANT_TYPE_BYTE, "bplist00x", 9, 1 ) );
    for ( int i = 0; i < PropertyListVariant::kMaxDepth; ++i )
    {
        value = g_variant_new_array( G_VARIANT_TYPE_VARIANT, std::array{ g_variant_new_variant( value ) }.data(), 1 );
        if ( i + 1 < PropertyListVariant::kMaxDepth )
            encoded =
                g_variant_new_array( G_VARIANT_TYPE_VARIANT, std::array{ g_variant_new_variant( encoded ) }.data(), 1 );
    }
    std::string fault;
    const GVariantPtr deep = Owned( g_variant_new_parsed( "{'Value': <%*>}", value ) );
    EXPECT_FALSE( PropertyListVariant::ToPayload( deep.get(), fault ) );
    EXPECT_EQ( fault, "it is nested too deeply" );
    const GVariantPtr damaged = Owned( g_variant_new_parsed( "{'Value': <%*>}", encoded ) );
    EXPECT_FALSE( PropertyListVariant::ToPayload( damaged.get(), fault ) );
    EXPECT_TRUE( fault.starts_with( "an encoded value can't be read: " ) ) << fault;
}
