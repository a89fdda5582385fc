#include "Utility/Search/TypeAhead.h"

#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Text/TextCompare.h"
#include "Utility/Work/Clock.h"

#include <vector>

namespace
{
// The rest of a word and a gap; or the rest of a hump of a name such as "aboutCard".
constexpr TextView kBlankPattern = u"\\E([[:Letter:][:Number:]]*[^[:Letter:][:Number:]]+|"
                                   u"(?-i:[[:LowercaseLetter:][:Number:]]*(?![[:LowercaseLetter:]])))\\Q";

bool EndsTyping( char16_t inUnit )
{
    return inUnit < 0x20 or inUnit == 0x7F or ( inUnit >= 0xF700 and inUnit <= 0xF8FF );
}
} // namespace

void TypeAhead::addCharacterIgnoringModifiers( TextView inCharacters )
{
    const double now = XClock::Current().MonotonicSeconds();
    if ( now - mLastTime > mAllowedSeconds )
        mText.clear();
    mLastTime = now;
    for ( const char16_t unit : inCharacters )
    {
        if ( EndsTyping( unit ) )
            mText.clear();
        else if ( unit != u' ' or not mText.empty() )
            mText += unit;
    }
}

void TypeAhead::checkClearModifiers( std::uint32_t inModifiers )
{
    if ( inModifiers & mClearModifiers )
        mText.clear();
}

Text TypeAhead::Pattern() const
{
    Text pattern = u"^(?i:\\Q";
    for ( std::size_t i = 0; i < mText.size(); ++i )
    {
        if ( mText[i] == u' ' )
            pattern += kBlankPattern;
        else if ( mText[i] == u'\\' ) // a typed "\E" would end the quotation
            pattern += u"\\E\\\\\\Q";
        else
            pattern += mText[i];
    }
    return pattern + u"\\E)";
}

std::optional<std::size_t> TypeAhead::bestMatch( std::size_t inCount, const TextFunction& usingFunction ) const
{
    const Text pattern = mSpaceMagic and mText.find( u' ' ) != Text::npos ? Pattern() : Text();
    struct Best
    {
        std::optional<std::size_t> mIndex;
        Text mText;

        void Take( std::size_t inIndex, const Text& inText, int inSign )
        {
            if ( mIndex and localizedCaseInsensitiveCompare( inText, mText ) * inSign >= 0 )
                return;
            mIndex = inIndex;
            mText = inText;
        }
    } matching, behind, before;
    for ( std::size_t i = 0; i < inCount; ++i )
    {
        const Text text = usingFunction( i );
        if ( not pattern.empty() and isMatchedByRegex( text, pattern ) )
            matching.Take( i, text, 1 );
        if ( localizedCaseInsensitiveCompare( text, mText ) >= 0 )
            behind.Take( i, text, 1 );
        else
            before.Take( i, text, -1 );
    }
    return matching.mIndex ? matching.mIndex : behind.mIndex ? behind.mIndex : before.mIndex;
}
