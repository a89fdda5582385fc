#include "Platform/Linux/PropertyListVariant.h"

#include "CFMethods/PropertyListCodec.h"

#include <cstring>
#include <optional>

namespace
{
using PropertyListVariant::kMaxBytes;
using PropertyListVariant::kMaxDepth;

constexpr const char* kTooLarge = "it is larger than 16 MiB";

GVariant* BytesVariant( std::span<const std::uint8_t> inBytes )
{
    return g_variant_new_fixed_array( G_VARIANT_TYPE_BYTE, inBytes.data(), inBytes.size(), 1 );
}

std::span<const std::uint8_t> BytesOf( GVariant* inVariant )
{
    gsize count = 0;
    const void* const bytes = g_variant_get_fixed_array( inVariant, &count, 1 );
    return { static_cast<const std::uint8_t*>( bytes ), count };
}

// The UTF-8 of a text that may stand in a message as such.
std::optional<std::string> PlainText( const XPlistString& inText )
{
    const Text text = inText.GetText();
    if ( text.find( u'\0' ) != Text::npos or FindLoneSurrogate( text ) )
        return {};
    return UTF8FromText( text );
}

class Writer
{
public:
    GVariant* Dictionary( const XPlistDictionary& inDictionary, int inDepth )
    {
        GVariantBuilder builder;
        g_variant_builder_init( &builder, G_VARIANT_TYPE_VARDICT );
        for ( const auto& [key, value] : inDictionary.GetEntries() )
        {
            const std::optional<std::string> name = PlainText( *key );
            if ( not name )
                Fail( "a key holds NUL or a lone surrogate" );
            if ( not mFault.empty() )
                break;
            g_variant_builder_add( &builder, "{sv}", name->c_str(), Value( *value, inDepth + 1 ) );
        }
        return g_variant_builder_end( &builder );
    }

    [[nodiscard]] const std::string& Fault() const { return mFault; }

private:
    GVariant* Array( const XPlistArray& inArray, int inDepth )
    {
        GVariantBuilder builder;
        g_variant_builder_init( &builder, G_VARIANT_TYPE( "av" ) );
        for ( const XPlistNode* const node : inArray.Nodes() )
        {
            if ( not mFault.empty() )
                break;
            g_variant_builder_add( &builder, "v", Value( *node, inDepth + 1 ) );
        }
        return g_variant_builder_end( &builder );
    }

    GVariant* String( const XPlistString& inString )
    {
        Spend( inString.GetLength() );
        if ( const std::optional<std::string> text = PlainText( inString ) )
            return g_variant_new_string( text->c_str() );
        const Text units = inString.GetText();
        return g_variant_new_fixed_array( G_VARIANT_TYPE_UINT16, units.data(), units.size(), sizeof( char16_t ) );
    }

    static GVariant* Number( const XPlistNumber& inNumber )
    {
        if ( inNumber.IsReal() )
            return g_variant_new_double( inNumber.RealValue() );
        if ( inNumber.IsUnsigned() )
            return g_variant_new_uint64( inNumber.UnsignedValue() );
        return g_variant_new_int64( inNumber.SignedValue() );
    }

    // A value that stands at so many containers' depth, were it one itself.
    GVariant* Value( const XPlistNode& inNode, int inDepth )
    {
        Spend( 1 );
        const __SafeCFPropertyList value( &inNode );
        switch ( inNode.GetType() )
        {
        case XPlistType::kString:
            return String( *value.AsString() );
        case XPlistType::kNumber:
            return Number( *value.AsNumber() );
        case XPlistType::kBoolean:
            return g_variant_new_boolean( value.AsBoolean()->GetValue() );
        case XPlistType::kDate:
            return g_variant_new( "(d)", value.AsDate()->GetSeconds() );
        case XPlistType::kData:
            Spend( value.AsData()->GetBytes().size() );
            return BytesVariant( value.AsData()->GetBytes() );
        case XPlistType::kArray:
            return inDepth > kMaxDepth ? Encoded( value ) : Array( *value.AsArray(), inDepth );
        case XPlistType::kDictionary:
            return inDepth > kMaxDepth ? Encoded( value ) : Dictionary( *value.AsDictionary(), inDepth );
        }
        Fail( "it holds a value of no known type" );
        return g_variant_new_boolean( FALSE );
    }

    GVariant* Encoded( const __SafeCFPropertyList& inValue )
    {
        const XBytes bytes = WriteBinaryPropertyList( inValue );
        Spend( bytes.size() );
        return g_variant_new( "(@ay)", BytesVariant( bytes.Span() ) );
    }

    // A shared value counts wherever it stands, so a small file could fill the memory: the size is watched on the way.
    void Spend( std::size_t inBytes )
    {
        mSpent += inBytes;
        if ( mSpent > kMaxBytes )
            Fail( kTooLarge );
    }
    void Fail( const char* inFault )
    {
        if ( mFault.empty() )
            mFault = inFault;
    }

    std::size_t mSpent = 0;
    std::string mFault;
};

class Reader
{
public:
    CFContainer<XPlistDictionary> Dictionary( GVariant* inVariant, int inDepth )
    {
        XMutableDictionary dictionary;
        GVariantIter iterator;
        g_variant_iter_init( &iterator, inVariant );
        const char* key = nullptr;
        GVariant* next = nullptr;
        while ( mFault.empty() and g_variant_iter_next( &iterator, "{&sv}", &key, &next ) )
        {
            const GVariantPtr value( next );
            dictionary.Set( XText( XPlistString::MakeUTF8( key ) ), Value( value.get(), inDepth + 1 ) );
        }
        return dictionary.Seal();
    }

    std::string mFault;

private:
    CFContainer<XPlistArray> Array( GVariant* inVariant, int inDepth )
    {
        XMutableArray array;
        GVariantIter iterator;
        g_variant_iter_init( &iterator, inVariant );
        GVariant* next = nullptr;
        while ( mFault.empty() and g_variant_iter_next( &iterator, "v", &next ) )
        {
            const GVariantPtr value( next );
            array.Append( Value( value.get(), inDepth + 1 ) );
        }
        return array.Seal();
    }

    __SafeCFPropertyList Value( GVariant* inVariant, int inDepth )
    {
        const std::string_view type = g_variant_get_type_string( inVariant );
        if ( type == "s" )
        {
            gsize length = 0;
            const char* const text = g_variant_get_string( inVariant, &length );
            return XPlistString::MakeUTF8( { text, length } );
        }
        if ( type == "x" )
            return __SafeCFPropertyList::Integer( g_variant_get_int64( inVariant ) );
        if ( type == "t" )
            return XPlistNumber::MakeUnsigned( g_variant_get_uint64( inVariant ) );
        if ( type == "d" )
            return __SafeCFPropertyList::Real( g_variant_get_double( inVariant ) );
        if ( type == "b" )
            return __SafeCFPropertyList::Boolean( g_variant_get_boolean( inVariant ) );
        if ( type == "ay" )
            return XPlistData::Make( BytesOf( inVariant ) );
        if ( type == "aq" )
            return Units( inVariant );
        if ( type == "(d)" )
            return Date( inVariant );
        if ( type == "(ay)" )
            return Encoded( inVariant, inDepth );
        return Container( inVariant, type, inDepth );
    }

    __SafeCFPropertyList Container( GVariant* inVariant, std::string_view inType, int inDepth )
    {
        if ( inType != "av" and inType != "a{sv}" )
            return Refuse( "it holds a value of the type \"" + std::string( inType ) + "\"" );
        if ( inDepth > kMaxDepth )
            return Refuse( "it is nested too deeply" );
        if ( inType == "av" )
            return Array( inVariant, inDepth );
        return Dictionary( inVariant, inDepth );
    }

    static __SafeCFPropertyList Units( GVariant* inVariant )
    {
        gsize count = 0;
        const void* const units = g_variant_get_fixed_array( inVariant, &count, sizeof( char16_t ) );
        Text text( count, u'\0' );
        if ( count > 0 )
            std::memcpy( text.data(), units, count * sizeof( char16_t ) );
        return __SafeCFPropertyList::String( text );
    }

    static __SafeCFPropertyList Date( GVariant* inVariant )
    {
        double seconds = 0;
        g_variant_get( inVariant, "(d)", &seconds );
        return XPlistDate::Make( seconds );
    }

    __SafeCFPropertyList Encoded( GVariant* inVariant, int inDepth )
    {
        // Only where a container may no longer stand, so that each value has one form.
        if ( inDepth <= kMaxDepth )
            return Refuse( "it holds an encoded value where a plain one could stand" );
        const GVariantPtr bytes( g_variant_get_child_value( inVariant, 0 ) );
        XPlistReadResult result = ReadBinaryPropertyList( BytesOf( bytes.get() ), { .mMaxBytes = kMaxBytes } );
        if ( result.mFault )
            return Refuse( "an encoded value can't be read: " + result.mFault->Describe() );
        return result.mValue;
    }

    __SafeCFPropertyList Refuse( std::string inFault )
    {
        if ( mFault.empty() )
            mFault = std::move( inFault );
        return {};
    }
};
} // namespace

GVariantPtr PropertyListVariant::FromPayload( const CFContainer<XPlistDictionary>& inPayload, std::string& outFault )
{
    Writer writer;
    GVariantPtr variant = Owned(
        inPayload ? writer.Dictionary( *inPayload, 1 ) : g_variant_new_array( G_VARIANT_TYPE( "{sv}" ), nullptr, 0 ) );
    outFault = writer.Fault();
    if ( outFault.empty() and g_variant_get_size( variant.get() ) > kMaxBytes )
        outFault = kTooLarge;
    return outFault.empty() ? std::move( variant ) : nullptr;
}

CFContainer<XPlistDictionary> PropertyListVariant::ToPayload( GVariant* inVariant, std::string& outFault )
{
    outFault.clear();
    if ( not g_variant_is_of_type( inVariant, G_VARIANT_TYPE_VARDICT ) )
        outFault = std::string( "it is of the type \"" ) + g_variant_get_type_string( inVariant ) + "\"";
    else if ( g_variant_get_size( inVariant ) > kMaxBytes )
        outFault = kTooLarge;
    if ( not outFault.empty() )
        return nullptr;
    Reader reader;
    CFContainer<XPlistDictionary> payload = reader.Dictionary( inVariant, 1 );
    outFault = std::move( reader.mFault );
    return outFault.empty() ? payload : nullptr;
}
