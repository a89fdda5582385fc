#include "Collections/LinesIn.h"

#include "XCAF/XErrorHandler.h"

LinesIn::LinesIn( const XText& initWithString )
    : mHasString( not initWithString.IsNull() ),
      mString( initWithString.GetText() )
{}

std::optional<Text> LinesIn::nextLine()
{
    XAssertText( mHasString, "false" );
    if ( mPosition >= mString.size() )
        return {};
    const std::size_t start = mPosition;
    const std::size_t end = mString.find_first_of( u"\r\n", start );
    if ( end == Text::npos )
    {
        mPosition = mString.size();
        return mString.substr( start );
    }
    const bool isPair = mString.compare( end, 2, u"\r\n" ) == 0;
    mPosition = end + ( isPair ? 2 : 1 );
    return mString.substr( start, end - start );
}

std::optional<Text> LinesIn::nextObject()
{
    std::optional<Text> line = nextLine();
    while ( line and line->empty() and not mIncludeBlank )
        line = nextLine();
    return line;
}
