#include "App/PropertyListJSON.h"
#include "App/PropertyListJSONWords.h"
#include "CFMethods/PropertyListText.h"
#include "CFMethods/PropertyListWalk.h"

#include <bit>
#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace
{
constexpr std::size_t kMostIndentedLevels = 64;

std::string RealJSON( double inValue )
{
    if ( std::isfinite( inValue ) )
        return NumberText( *XPlistNumber::MakeReal( inValue ) );
    std::string word = inValue > 0 ? "inf" : "-inf";
    if ( std::isnan( inValue ) )
    {
        const auto bits = std::bit_cast<std::uint64_t>( inValue );
        word = bits == kPlainNaN ? "nan" : fmt::format( "nan:{:016X}", bits );
    }
    return fmt::format( "{{\"$real\": \"{}\"}}", word );
}

std::string LeafJSON( const __SafeCFPropertyList& inValue )
{
    if ( const XPlistString* const string = inValue.AsString() )
        return QuotedText( *string );
    if ( const XPlistBoolean* const boolean = inValue.AsBoolean() )
        return boolean->GetValue() ? "true" : "false";
    if ( const XPlistNumber* const number = inValue.AsNumber() )
        return number->IsReal() ? RealJSON( number->RealValue() ) : NumberText( *number );
    if ( const XPlistDate* const date = inValue.AsDate() )
    {
        const auto text = ISODateText( date->GetSeconds() );
        return fmt::format( "{{\"$date\": {}}}", text ? "\"" + *text + "\"" : RealJSON( date->GetSeconds() ) );
    }
    return "{\"$data\": \"" + Base64Text( inValue.AsData()->GetBytes() ) + "\"}";
}

class Writer
{
public:
    void Leaf( const __SafeCFPropertyList& inValue, const XPlistPlace& inPlace )
    {
        BeginValue( inPlace );
        mText += LeafJSON( inValue );
    }
    bool Enter( const XPlistContainer& inContainer, const XPlistPlace& inPlace )
    {
        BeginValue( inPlace );
        mText += inContainer.GetType() == XPlistType::kArray ? '[' : '{';
        return true;
    }
    void Leave( const XPlistContainer& inContainer, const XPlistPlace& inPlace )
    {
        if ( inContainer.GetCount() > 0 )
            NewLine( inPlace.mDepth );
        mText += inContainer.GetType() == XPlistType::kArray ? ']' : '}';
    }

    std::string TakeText()
    {
        mText += '\n';
        return std::move( mText );
    }

private:
    void NewLine( std::size_t inDepth )
    {
        mText += '\n';
        mText.append( 2 * std::min( inDepth, kMostIndentedLevels ), ' ' );
    }
    void BeginValue( const XPlistPlace& inPlace )
    {
        if ( inPlace.mIndex > 0 )
            mText += ',';
        if ( inPlace.mDepth > 0 )
            NewLine( inPlace.mDepth );
        if ( not inPlace.mKey )
            return;
        const bool isEscaped = inPlace.mKey->IsASCII() and JSONWordOf( inPlace.mKey->ASCII() ).mDollars > 0;
        mText += isEscaped ? fmt::format( "\"${}\"", inPlace.mKey->ASCII() ) : QuotedText( *inPlace.mKey );
        mText += ": ";
    }

    std::string mText;
};
} // namespace

std::string WritePropertyListJSON( const __SafeCFPropertyList& inValue )
{
    Writer writer;
    WalkPropertyList( inValue, writer );
    return writer.TakeText();
}
