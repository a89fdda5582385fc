#include "CFMethods/PropertyListText.h"

#include "CFMethods/PropertyListWalk.h"
#include "CFMethods/XMLPropertyListLeaf.h"

#include <bit>
#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace
{
constexpr std::size_t kMostIndentedLevels = 64;
constexpr std::size_t kBytesShown = 16;

// Control characters of both sets would command the terminal; direction marks make a text
// show as another one; the separators and the byte-order mark hide.
bool IsHazard( char16_t inUnit )
{
    return inUnit < 0x20 or ( inUnit >= 0x7F and inUnit <= 0x9F ) or inUnit == 0x061C or inUnit == 0x200E or
        inUnit == 0x200F or ( inUnit >= 0x2028 and inUnit <= 0x202E ) or ( inUnit >= 0x2066 and inUnit <= 0x2069 ) or
        inUnit == 0xFEFF;
}

void AppendEscaped( TextView inText, bool inQuoted, std::string& ioResult )
{
    // Runs that need nothing are converted together.
    std::size_t start = 0;
    const auto replace = [&]( std::size_t inAt, std::string_view inEscape ) {
        ioResult += UTF8FromText( inText.substr( start, inAt - start ) );
        ioResult += inEscape;
        start = inAt + 1;
    };
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        const char16_t unit = inText[i];
        if ( IsHighSurrogate( unit ) and i + 1 < inText.size() and IsLowSurrogate( inText[i + 1] ) )
            ++i;
        else if ( inQuoted and unit == u'\n' )
            replace( i, "\\n" );
        else if ( inQuoted and unit == u'\r' )
            replace( i, "\\r" );
        else if ( inQuoted and unit == u'\t' )
            replace( i, "\\t" );
        else if ( inQuoted and unit == u'"' )
            replace( i, "\\\"" );
        else if ( inQuoted and unit == u'\\' )
            replace( i, "\\\\" );
        else if ( IsHazard( unit ) or IsHighSurrogate( unit ) or IsLowSurrogate( unit ) )
            replace( i, fmt::format( "\\u{:04X}", unsigned( unit ) ) );
    }
    ioResult += UTF8FromText( inText.substr( start ) );
}

bool IsPlainASCII( std::string_view inText )
{
    return std::all_of( inText.begin(), inText.end(),
        []( char byte ) { return byte >= 0x20 and byte < 0x7F and byte != '"' and byte != '\\'; } );
}

bool IsIdentifier( const XPlistString& inKey )
{
    const auto isLetter = []( char byte ) {
        return ( byte >= 'a' and byte <= 'z' ) or ( byte >= 'A' and byte <= 'Z' ) or byte == '_';
    };
    const auto isPart = [&]( char byte ) { return isLetter( byte ) or ( byte >= '0' and byte <= '9' ); };
    if ( not inKey.IsASCII() or inKey.GetLength() == 0 )
        return false;
    const std::string_view key = inKey.ASCII();
    return isLetter( key[0] ) and std::all_of( key.begin(), key.end(), isPart );
}

std::string Counted( std::size_t inCount, std::string_view inOne )
{
    return fmt::format( "{} {}{}", inCount, inOne, inCount == 1 ? "" : "s" );
}

std::string ContainerText( const XPlistContainer& inContainer )
{
    const bool isArray = inContainer.GetType() == XPlistType::kArray;
    if ( inContainer.GetCount() == 0 )
        return isArray ? "empty array" : "empty dictionary";
    return isArray ? fmt::format( "array of {}", Counted( inContainer.GetCount(), "element" ) )
                   : fmt::format( "dictionary of {}", Counted( inContainer.GetCount(), "key" ) );
}

std::string DateText( double inSeconds )
{
    if ( auto text = ISODateText( inSeconds ) )
        return *std::move( text );
    char text[XMLPlistLeaf::kMostNumberLength];
    const char* const end = XMLPlistLeaf::FormatReal( text, inSeconds );
    return fmt::format(
        "date {} seconds after 2001-01-01T00:00:00Z", std::string_view( text, std::size_t( end - text ) ) );
}

std::string DataText( std::span<const std::uint8_t> inBytes, bool inFull )
{
    std::string result = fmt::format( "data of {}", Counted( inBytes.size(), "byte" ) );
    if ( inBytes.empty() )
        return result;
    if ( inFull )
        return result + ": " + Base64Text( inBytes );
    result += ':';
    for ( std::size_t i = 0; i < std::min( inBytes.size(), kBytesShown ); ++i )
        fmt::format_to( std::back_inserter( result ), "{}{:02X}", i % 4 == 0 ? " " : "", inBytes[i] );
    return inBytes.size() > kBytesShown ? result + " …" : result;
}

// Everything but containers; strings whole.
std::string LeafText( const __SafeCFPropertyList& inValue, bool inFullData )
{
    if ( const XPlistString* const string = inValue.AsString() )
        return QuotedText( *string );
    if ( const XPlistNumber* const number = inValue.AsNumber() )
        return NumberText( *number );
    if ( const XPlistBoolean* const boolean = inValue.AsBoolean() )
        return boolean->GetValue() ? "true" : "false";
    if ( const XPlistDate* const date = inValue.AsDate() )
        return DateText( date->GetSeconds() );
    if ( const XPlistData* const data = inValue.AsData() )
        return DataText( data->GetBytes(), inFullData );
    return "nothing";
}

class Printer
{
public:
    explicit Printer( const XPlistPrintOptions& inOptions ) : mOptions( inOptions ) {}

    void Leaf( const __SafeCFPropertyList& inValue, const XPlistPlace& inPlace )
    {
        BeginLine( inPlace );
        mText += LeafText( inValue, mOptions.mFullData );
        mText += '\n';
    }
    bool Enter( const XPlistContainer& inContainer, const XPlistPlace& inPlace )
    {
        const bool isOpened = inPlace.mDepth < mOptions.mMostDepth;
        BeginLine( inPlace );
        mText += ContainerText( inContainer );
        mText += isOpened or inContainer.GetCount() == 0 ? "\n" : " …\n";
        return isOpened;
    }
    void Leave( const XPlistContainer&, const XPlistPlace& ) {}

    std::string TakeText() { return std::move( mText ); }

private:
    void BeginLine( const XPlistPlace& inPlace )
    {
        if ( inPlace.mDepth == 0 )
            return;
        mText.append( 2 * std::min( inPlace.mDepth, kMostIndentedLevels ), ' ' );
        mText += mOptions.mBeforeKey;
        if ( not inPlace.mKey )
            fmt::format_to( std::back_inserter( mText ), "[{}]", inPlace.mIndex );
        else if ( IsIdentifier( *inPlace.mKey ) )
            mText += inPlace.mKey->ASCII();
        else
            mText += QuotedText( *inPlace.mKey );
        mText += mOptions.mAfterKey;
        mText += ": ";
    }

    const XPlistPrintOptions& mOptions;
    std::string mText;
};
} // namespace

std::string ShownText( TextView inText )
{
    std::string result;
    AppendEscaped( inText, false, result );
    return result;
}

std::string ShownText( std::string_view inUTF8 )
{
    return ShownText( TextView( TextFromUTF8( inUTF8 ) ) );
}

std::string QuotedText( TextView inText )
{
    std::string result = "\"";
    AppendEscaped( inText, true, result );
    return result += '"';
}

std::string QuotedText( const XPlistString& inText )
{
    if ( not inText.IsASCII() )
        return QuotedText( inText.Wide() );
    if ( not IsPlainASCII( inText.ASCII() ) )
        return QuotedText( TextView( inText.GetText() ) );
    std::string result;
    result.reserve( inText.GetLength() + 2 );
    result += '"';
    result += inText.ASCII();
    return result += '"';
}

std::optional<std::string> ISODateText( double inSeconds )
{
    // Minus zero is the one finite date whose text would come back as another.
    if ( not std::isfinite( inSeconds ) or std::abs( inSeconds ) > XMLPlistLeaf::kMostDateSeconds or
        ( inSeconds == 0 and std::signbit( inSeconds ) ) )
        return std::nullopt;
    char text[XMLPlistLeaf::kMostDateLength];
    return std::string( text, XMLPlistLeaf::FormatDate( text, inSeconds ) );
}

std::optional<double> DateOfISOText( std::string_view inText )
{
    try
    {
        const auto date = CFContainer<XPlistNode>::Adopt( XMLPlistLeaf::MakeDate( inText ) );
        return static_cast<const XPlistDate&>( *date ).GetSeconds();
    }
    catch ( const XMLPlistRefusal& )
    {
        return std::nullopt;
    }
}

std::string Base64Text( std::span<const std::uint8_t> inBytes )
{
    std::string result( ( inBytes.size() + 2 ) / 3 * 4, '\0' );
    char* out = result.data();
    for ( std::size_t i = 0; i < inBytes.size(); i += 3, out += 4 )
        XMLPlistLeaf::EncodeTriple( out, inBytes.data() + i, std::min<std::size_t>( inBytes.size() - i, 3 ) );
    return result;
}

CFContainer<XPlistData> DataOfBase64( std::string_view inText )
{
    try
    {
        return CFContainer<XPlistData>::Adopt( static_cast<const XPlistData*>( XMLPlistLeaf::MakeData( inText ) ) );
    }
    catch ( const XMLPlistRefusal& )
    {
        return nullptr;
    }
}

std::string NumberText( const XPlistNumber& inNumber )
{
    if ( not inNumber.IsReal() )
        return inNumber.IsUnsigned() ? std::to_string( inNumber.UnsignedValue() )
                                     : std::to_string( inNumber.SignedValue() );
    char text[XMLPlistLeaf::kMostNumberLength];
    return { text, XMLPlistLeaf::FormatReal( text, inNumber.RealValue() ) };
}

std::string BriefText( const __SafeCFPropertyList& inValue, std::size_t inMostUnits )
{
    if ( const XPlistArray* const array = inValue.AsArray() )
        return ContainerText( *array );
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
        return ContainerText( *dictionary );
    const XPlistString* const string = inValue.AsString();
    if ( not string or string->GetLength() <= inMostUnits )
        return LeafText( inValue, false );
    Text beginning;
    for ( std::size_t i = 0; i < inMostUnits; ++i )
        beginning += string->UnitAt( i );
    // A pair is never cut in two: half of it would show as an escape that the text doesn't hold.
    if ( not beginning.empty() and IsHighSurrogate( beginning.back() ) )
        beginning.pop_back();
    return QuotedText( TextView( beginning ) ) + "…";
}

std::string PrintPropertyList( const __SafeCFPropertyList& inValue, const XPlistPrintOptions& inOptions )
{
    Printer printer( inOptions );
    WalkPropertyList( inValue, printer );
    return printer.TakeText();
}

std::string PathText( std::span<const XPlistPathStep> inPath, XPlistSide inSide )
{
    std::string result;
    for ( const XPlistPathStep& step : inPath )
    {
        const bool isIdentifier = not step.mKey.IsNull() and IsIdentifier( *step.mKey.GetString() );
        if ( isIdentifier or result.empty() )
            result += '.';
        if ( isIdentifier )
            result += step.mKey.GetString()->ASCII();
        else if ( not step.mKey.IsNull() )
            result += "[" + QuotedText( *step.mKey.GetString() ) + "]";
        else
            result += fmt::format( "[{}]", inSide == XPlistSide::kOld ? step.mIndex : step.mNewIndex );
    }
    return result.empty() ? "." : result;
}
