#include "Utility/Text/Quoting.h"

#include <string_view>

namespace
{
void AppendHex( Text& ioText, unsigned inValue, int inDigits )
{
    for ( int shift = ( inDigits - 1 ) * 4; shift >= 0; shift -= 4 )
        ioText += u"0123456789ABCDEF"[( inValue >> shift ) & 0xF];
}

// The letter behind the back slash, or 0.
char16_t JavaScriptEscape( char16_t inUnit )
{
    switch ( inUnit )
    {
    case u'"':
    case u'\\':
        return inUnit;
    case u'\b':
        return u'b';
    case u'\t':
        return u't';
    case u'\n':
        return u'n';
    case u'\v':
        return u'v';
    case u'\f':
        return u'f';
    case u'\r':
        return u'r';
    default:
        return 0;
    }
}
} // namespace

std::optional<Text> shellQuotedArgument( TextView inText )
{
    Text result = u"'";
    for ( const char16_t unit : inText )
    {
        if ( unit == 0 )
            return {};
        if ( unit == u'\'' )
            result += u"'\"'\"'";
        else
            result += unit;
    }
    return result + u'\'';
}

Text kvr_appleScriptQuotedArgument( TextView inText )
{
    Text result = u"\"";
    for ( const char16_t unit : inText )
    {
        if ( unit == u'\\' or unit == u'"' )
            result += u'\\';
        result += unit;
    }
    return result + u'"';
}

Text kvr_javaScriptQuotedArgument( TextView inText )
{
    Text result;
    result.reserve( inText.size() + 2 );
    result += u'"';
    for ( const char16_t unit : inText )
    {
        if ( const char16_t escape = JavaScriptEscape( unit ) )
        {
            result += u'\\';
            result += escape;
        }
        else if ( unit < 0x20 or unit >= 0x7F )
        {
            result += u"\\u";
            AppendHex( result, unit, 4 );
        }
        else
            result += unit;
    }
    return result + u'"';
}

Text swiftQuotedString( TextView inText )
{
    Text result = u"\"";
    for ( const char16_t unit : inText )
    {
        if ( unit < 0x20 or unit == u'\\' or unit == u'\'' or unit == u'"' )
        {
            result += u"\\u{";
            AppendHex( result, unit, 2 );
            result += u'}';
        }
        else
            result += unit;
    }
    return result + u'"';
}
