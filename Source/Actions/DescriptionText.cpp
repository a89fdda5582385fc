#include "Actions/DescriptionText.h"

#include "Actions/ActionFieldParts.h"
#include "Macros/MMacroSerializedObject.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/XHTMLEntities.h"

#include <algorithm>

namespace
{
constexpr std::size_t kExcerptLength = 60;

void ReplaceAll( Text& ioText, TextView inWhat, TextView inWith )
{
    for ( std::size_t at = 0; ( at = ioText.find( inWhat, at ) ) != Text::npos; at += inWith.size() )
        ioText.replace( at, inWhat.size(), inWith );
}

bool IsLineEndOrTab( char16_t inUnit )
{
    return ( inUnit >= u'\t' and inUnit <= u'\r' ) or inUnit == u'\u0085' or inUnit == u'\u2028' or inUnit == u'\u2029';
}
} // namespace

Text kvr_excerpt( const XText& inText )
{
    if ( inText.IsNull() )
        return {};
    // Unit by unit: the text that is cut may be a book.
    const XPlistString& whole = *inText.GetString();
    const bool isLonger = whole.GetLength() > kExcerptLength;
    std::size_t length = std::min( whole.GetLength(), kExcerptLength );
    length -= isLonger and IsHighSurrogate( whole.UnitAt( length - 1 ) );
    Text text;
    for ( std::size_t i = 0; i < length; ++i )
    {
        const char16_t unit = whole.UnitAt( i );
        const bool isSecondOfLineEnd = unit == u'\n' and i > 0 and whole.UnitAt( i - 1 ) == u'\r';
        if ( not isSecondOfLineEnd )
            text += IsLineEndOrTab( unit ) ? u' ' : unit;
    }
    if ( isLonger )
        text += u'…';
    return text;
}

Text kvr_fileName( const XText& inPath )
{
    if ( inPath.IsNull() )
        return {};
    const Text path = inPath.GetText();
    const std::size_t end = path.find_last_not_of( u'/' );
    if ( end == Text::npos )
        return path;
    const std::size_t slash = path.find_last_of( u'/', end );
    return path.substr( slash == Text::npos ? 0 : slash + 1, end - ( slash == Text::npos ? 0 : slash + 1 ) + 1 );
}

Text kvr_wikiName( Text inTitle )
{
    ReplaceAll( inTitle, u",", u" " );
    ReplaceAll( inTitle, u"/", u" or " );
    // Twice, as four blanks can come of the two steps before.
    ReplaceAll( inTitle, u"  ", u" " );
    ReplaceAll( inTitle, u"  ", u" " );
    ReplaceAll( inTitle, u" ", u"_" );
    return inTitle;
}

Text kvr_extraHTMLLine( TextView inFormatKey, TextView inValue )
{
    return inValue.empty() ? Text() : kvr_localizedFormat( inFormatKey, encodeHTML( inValue ) );
}

Text kvr_extraHTMLLineIf( bool inApplies, TextView inKey )
{
    return inApplies ? kvr_localized( inKey ) : Text();
}

Text kvr_withApplication( const Text& inDescription, const ApplicationTarget& inTarget )
{
    const Text application = inTarget.GetApplicationName();
    if ( application.empty() )
        return inDescription;
    return kvr_localizedFormat( u"kvActionInApplicationDescriptionFormat", inDescription, application );
}

Text kvr_macroName( const XText& inUID )
{
    const MMacroSerializedObject* macro = MMacroSerializedObject::FindObjectByUID( inUID );
    return macro ? macro->GetUnambiguousName() : MMacroSerializedObject::GetUnknownUnambiguousName();
}

Text kvr_macroGroupName( const XText& inUID )
{
    const MMacroSerializedObject* group = MMacroSerializedObject::FindObjectByUID( inUID );
    return group ? group->GetUnambiguousName() : kvr_localized( u"kvMacroGroupUnknownUnambiguousName" );
}

Text kvr_withDestination( TextView inDescription, const ActionTextDestination& inDestination )
{
    if ( inDestination.GetSourceType() == ActionTextSourceType::kSource )
        return Text( inDescription );
    if ( inDestination.GetSourceType() == ActionTextSourceType::kNothing )
        return kvr_localizedFormat( u"kvActionTextDestinationNothingDescriptionFormat", inDescription );
    return kvr_localizedFormat( u"kvActionTextDestinationDescriptionFormat", inDescription,
        TextView( inDestination.GetActionDescriptionString() ) );
}

Text kvr_commandDescription( TextView inFamily, TextView inCommand, const XText& inArgument )
{
    const Text withArgument = kvr_format( "%@%@ArgumentDescriptionFormat", inFamily, inCommand );
    if ( inArgument.IsEmpty() or not kvr_hasLocalized( withArgument ) )
        return kvr_localized( kvr_format( "%@%@Description", inFamily, inCommand ) );
    return kvr_localizedFormat( withArgument, TextView( kvr_excerpt( inArgument ) ) );
}
