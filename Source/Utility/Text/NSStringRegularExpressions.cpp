#include "Utility/Text/NSStringRegularExpressions.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <unicode/uregex.h>
#include <unicode/ustring.h>
#include <unordered_map>

namespace
{
constexpr std::int32_t kTimeLimitTicks = 1000;
constexpr std::int32_t kStackLimitBytes = 8 << 20;
constexpr std::size_t kCacheLimit = 101;
constexpr const char* kLogTag = "RegEx";

std::uint32_t EngineFlags( RegexOptions inOptions )
{
    std::uint32_t flags = 0;
    if ( inOptions & RegexOptions::kCaseInsensitive )
        flags |= UREGEX_CASE_INSENSITIVE;
    if ( inOptions & RegexOptions::kAllowComments )
        flags |= UREGEX_COMMENTS;
    if ( inOptions & RegexOptions::kIgnoreMetacharacters )
        flags |= UREGEX_LITERAL;
    if ( inOptions & RegexOptions::kDotMatchesLineSeparators )
        flags |= UREGEX_DOTALL;
    if ( inOptions & RegexOptions::kAnchorsMatchLines )
        flags |= UREGEX_MULTILINE;
    if ( inOptions & RegexOptions::kUseUnixLineSeparators )
        flags |= UREGEX_UNIX_LINES;
    if ( inOptions & RegexOptions::kUseUnicodeWordBoundaries )
        flags |= UREGEX_UWORD;
    return flags;
}

struct CloseRegex
{
    void operator()( URegularExpression* inRegex ) const { uregex_close( inRegex ); }
};
using EngineRegex = std::unique_ptr<URegularExpression, CloseRegex>;

// A log line has no use for the thousandth unit of a pattern.
TextView Shown( TextView inPattern )
{
    return inPattern.substr( 0, 1000 );
}
} // namespace

// The engine's object holds both the pattern, which is shared, and the state of a match, which isn't: so the
// one in here is never matched with, and each call clones it.
class XRegularExpression
{
public:
    XRegularExpression( TextView inPattern, EngineRegex inEngine ) :
        mPattern( inPattern ), mEngine( std::move( inEngine ) )
    {}

    static std::shared_ptr<const XRegularExpression> Compile(
        TextView inPattern, RegexOptions inOptions, Text& outError )
    {
        if ( inPattern.size() > NSStringRegularExpressions::kMaxPatternLength )
        {
            outError = kvr_format( u"it has %lu units, the limit is %lu", inPattern.size(),
                NSStringRegularExpressions::kMaxPatternLength );
            return nullptr;
        }
        UErrorCode status = U_ZERO_ERROR;
        UParseError where{};
        EngineRegex engine( uregex_open( inPattern.data(), std::int32_t( inPattern.size() ), EngineFlags( inOptions ),
            &where, &status ) );
        if ( U_FAILURE( status ) )
        {
            outError = kvr_format( u"%s at line %d, offset %d", u_errorName( status ), where.line, where.offset );
            return nullptr;
        }
        return std::make_shared<XRegularExpression>( inPattern, std::move( engine ) );
    }

    /// A matcher over the text, with the limits set; null when the text is too long for the engine.
    EngineRegex MakeMatcher( TextView inText ) const
    {
        if ( inText.size() > std::size_t( std::numeric_limits<std::int32_t>::max() ) )
            return nullptr;
        UErrorCode status = U_ZERO_ERROR;
        EngineRegex matcher( uregex_clone( mEngine.get(), &status ) );
        uregex_setTimeLimit( matcher.get(), kTimeLimitTicks, &status );
        uregex_setStackLimit( matcher.get(), kStackLimitBytes, &status );
        // The engine refuses a null text, even one of no length.
        uregex_setText( matcher.get(), inText.empty() ? u"" : inText.data(), std::int32_t( inText.size() ), &status );
        if ( U_FAILURE( status ) )
            matcher.reset();
        return matcher;
    }

    const Text& GetPattern() const { return mPattern; }

    std::size_t GetCaptureCount() const
    {
        UErrorCode status = U_ZERO_ERROR;
        return std::size_t( uregex_groupCount( mEngine.get(), &status ) );
    }

    std::optional<std::size_t> GetCaptureNamed( TextView inName ) const
    {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t number = uregex_groupNumberFromName(
            mEngine.get(), inName.data(), std::int32_t( inName.size() ), &status );
        return U_SUCCESS( status ) ? std::optional( std::size_t( number ) ) : std::nullopt;
    }

private:
    Text mPattern;
    EngineRegex mEngine;
};

namespace
{
using RegexPointer = std::shared_ptr<const XRegularExpression>;

class Cache
{
public:
    RegexPointer Get( TextView inPattern, RegexOptions inOptions )
    {
        Text key = Text( inPattern ) + kvr_format( u"-%ld", std::int64_t( inOptions ) );
        {
            const std::lock_guard lock( mMutex );
            if ( const auto found = mEntries.find( key ); found != mEntries.end() )
                return found->second;
        }
        // Compiled outside of the lock: nobody waits for somebody else's pattern.
        Text error;
        RegexPointer regex = XRegularExpression::Compile( inPattern, inOptions, error );
        if ( not Insert( std::move( key ), regex ) )
            return regex;
        if ( not regex )
            XErrorHandler::PrivateMaybeLogFormat(
                kLogTag, "Invalid regular expression %@ (error: %@)", Shown( inPattern ), error );
        return regex;
    }

private:
    // False if another thread was first.
    bool Insert( Text inKey, const RegexPointer& inRegex )
    {
        const std::lock_guard lock( mMutex );
        if ( mEntries.contains( inKey ) )
            return false;
        if ( mEntries.size() >= kCacheLimit )
            mEntries.clear();
        mEntries.emplace( std::move( inKey ), inRegex );
        return true;
    }

    std::mutex mMutex;
    std::unordered_map<Text, RegexPointer> mEntries; // null for a pattern that failed
};

std::vector<std::optional<TextRange>> CapturesOf( URegularExpression* inMatcher, std::size_t inCaptureCount )
{
    std::vector<std::optional<TextRange>> captures( inCaptureCount + 1 );
    for ( std::size_t i = 0; i <= inCaptureCount; ++i )
    {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t start = uregex_start( inMatcher, std::int32_t( i ), &status );
        const std::int32_t end = uregex_end( inMatcher, std::int32_t( i ), &status );
        if ( U_SUCCESS( status ) and start >= 0 )
            captures[i] = TextRange{ std::size_t( start ), std::size_t( end - start ) };
    }
    return captures;
}

std::vector<RegexMatch> FindMatches( const XRegularExpression& inRegex, TextView inText,
    std::optional<TextRange> inRange, std::size_t inMaximum )
{
    std::vector<RegexMatch> matches;
    const EngineRegex matcher = inRegex.MakeMatcher( inText );
    if ( not matcher )
        return matches;
    UErrorCode status = U_ZERO_ERROR;
    if ( inRange )
    {
        const TextRange range = inRange->ClippedTo( inText.size() );
        uregex_setRegion( matcher.get(), std::int32_t( range.mLocation ), std::int32_t( range.End() ), &status );
    }
    const std::size_t captureCount = inRegex.GetCaptureCount();
    while ( matches.size() < inMaximum and uregex_findNext( matcher.get(), &status ) and U_SUCCESS( status ) )
        matches.emplace_back( inText, CapturesOf( matcher.get(), captureCount ) );
    if ( U_FAILURE( status ) )
    {
        XErrorHandler::PrivateMaybeLogFormat( kLogTag,
            "Stopped regular expression %@ on %lu characters (error: %s)", Shown( inRegex.GetPattern() ),
            inText.size(), u_errorName( status ) );
        // Half of the matches would make half of a replacement.
        matches.clear();
    }
    return matches;
}

// A replacement text, taken apart once for all matches.
class Template
{
public:
    Template( TextView inTemplate, const XRegularExpression& inRegex ) : mTemplate( inTemplate ), mRegex( inRegex )
    {
        while ( mAt < mTemplate.size() )
        {
            const char16_t unit = mTemplate[mAt++];
            if ( unit == u'\\' )
                TakeEscape();
            else if ( unit == u'$' )
                TakeReference();
            else
                Literal( unit );
        }
    }

    Text For( const RegexMatch& inMatch ) const
    {
        Text result;
        for ( const Piece& piece : mPieces )
        {
            result += piece.mLiteral;
            if ( piece.mCapture )
                result += inMatch.GetText( *piece.mCapture );
        }
        return result;
    }

private:
    // A literal, and the capture behind it.
    struct Piece
    {
        Text mLiteral;
        std::optional<std::size_t> mCapture;
    };

    void Literal( char16_t inUnit )
    {
        if ( mPieces.empty() or mPieces.back().mCapture )
            mPieces.emplace_back();
        mPieces.back().mLiteral += inUnit;
    }

    void Capture( std::size_t inCapture )
    {
        if ( mPieces.empty() or mPieces.back().mCapture )
            mPieces.emplace_back();
        mPieces.back().mCapture = inCapture;
    }

    void TakeEscape()
    {
        if ( mAt == mTemplate.size() ) // a last back slash has nothing to make literal
            return;
        const char16_t unit = mTemplate[mAt++];
        const int digits = unit == u'u' ? 4 : unit == u'U' ? 8 : 0;
        if ( const auto character = digits ? TakeHex( digits ) : std::nullopt )
        {
            char16_t units[2];
            std::int32_t length = 0;
            UErrorCode status = U_ZERO_ERROR;
            const auto scalar = UChar32( *character );
            u_strFromUTF32( units, 2, &length, &scalar, 1, &status );
            for ( std::int32_t i = 0; U_SUCCESS( status ) and i < length; ++i )
                Literal( units[i] );
        }
        else
            Literal( unit );
    }

    std::optional<std::uint32_t> TakeHex( int inDigits )
    {
        if ( mTemplate.size() - mAt < std::size_t( inDigits ) )
            return {};
        std::uint32_t value = 0;
        for ( int i = 0; i < inDigits; ++i )
        {
            const char16_t unit = mTemplate[mAt + std::size_t( i )];
            const std::size_t digit = TextView( u"0123456789abcdef" ).find( char16_t( unit | 0x20 ) );
            if ( digit == TextView::npos or ( unit < u'0' ) )
                return {};
            value = value * 16 + std::uint32_t( digit );
        }
        // A half of a pair in digits counts as it stands.
        if ( value > 0x10FFFF )
            return {};
        mAt += std::size_t( inDigits );
        return value;
    }

    void TakeReference()
    {
        if ( mAt < mTemplate.size() and mTemplate[mAt] == u'{' )
            return TakeName();
        if ( not IsDigit() )
            return Literal( u'$' );
        // One digit always counts; further ones as long as there is such a capture.
        const std::size_t count = mRegex.GetCaptureCount();
        auto number = std::size_t( mTemplate[mAt++] - u'0' );
        while ( IsDigit() and number * 10 + std::size_t( mTemplate[mAt] - u'0' ) <= count )
            number = number * 10 + std::size_t( mTemplate[mAt++] - u'0' );
        Capture( number ); // beyond the last it gives nothing
    }

    void TakeName()
    {
        const std::size_t end = mTemplate.find( u'}', mAt );
        const auto capture = end == TextView::npos
            ? std::nullopt
            : mRegex.GetCaptureNamed( mTemplate.substr( mAt + 1, end - mAt - 1 ) );
        if ( not capture )
            return Literal( u'$' ); // no capture of that name: it stays as typed
        Capture( *capture );
        mAt = end + 1;
    }

    bool IsDigit() const { return mAt < mTemplate.size() and mTemplate[mAt] >= u'0' and mTemplate[mAt] <= u'9'; }

    TextView mTemplate;
    const XRegularExpression& mRegex;
    std::size_t mAt = 0;
    std::vector<Piece> mPieces;
};

// Every operation begins here, so that each call shows in the log. The text itself never does: it may be a secret.
RegexPointer RegexFor( const char* inOperation, TextView inText, TextView inRegex, RegexOptions inOptions )
{
    XErrorHandler::PrivateMaybeLogFormat( kLogTag, "%s %@ options %ld on %lu characters", inOperation,
        Shown( inRegex ), std::int64_t( inOptions ), inText.size() );
    return NSStringRegularExpressions::RegularExpressionWithPattern( inRegex, inOptions );
}

std::vector<RegexMatch> Find( const char* inOperation, TextView inText, TextView inRegex, RegexOptions inOptions,
    std::size_t inMaximum, std::optional<TextRange> inRange = {} )
{
    const RegexPointer regex = RegexFor( inOperation, inText, inRegex, inOptions );
    return regex ? FindMatches( *regex, inText, inRange, inMaximum ) : std::vector<RegexMatch>();
}

constexpr std::size_t kAllMatches = std::size_t( -1 );

// The text with its matches replaced; what the maker leaves alone isn't counted.
template<class Maker>
Text Replaced( TextView inText, const std::vector<RegexMatch>& inMatches, std::size_t& outCount, const Maker& inMaker )
{
    Text result;
    std::size_t at = 0;
    outCount = 0;
    for ( const RegexMatch& match : inMatches )
    {
        const std::optional<Text> replacement = inMaker( match );
        if ( not replacement )
            continue;
        const TextRange range = match.GetRange();
        result += inText.substr( at, range.mLocation - at );
        result += *replacement;
        at = range.End();
        ++outCount;
    }
    result += inText.substr( at );
    return result;
}

Text ReplacedByTemplate( const char* inOperation, TextView inText, TextView inRegex, TextView inTemplate,
    RegexOptions inOptions, std::optional<TextRange> inRange, std::size_t& outCount )
{
    outCount = 0;
    const RegexPointer regex = RegexFor( inOperation, inText, inRegex, inOptions );
    if ( not regex )
        return Text( inText );
    const Template replacement( inTemplate, *regex );
    return Replaced( inText, FindMatches( *regex, inText, inRange, kAllMatches ), outCount,
        [&]( const RegexMatch& inMatch ) { return std::optional( replacement.For( inMatch ) ); } );
}
} // namespace

std::shared_ptr<const XRegularExpression> NSStringRegularExpressions::RegularExpressionWithPattern(
    TextView inPattern, RegexOptions inOptions )
{
    if ( inPattern.empty() )
        return nullptr;
    static Cache gCache;
    return gCache.Get( inPattern, inOptions );
}

std::vector<RegexMatch> NSStringRegularExpressions::MatchesOfRegex( TextView inText, TextView inRegex,
    RegexOptions inOptions, std::optional<TextRange> inRange, std::size_t inMaximum )
{
    return Find( "MatchesOfRegex", inText, inRegex, inOptions, inMaximum, inRange );
}

bool isMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    return not Find( "isMatchedByRegex", inText, inRegex, inOptions, 1 ).empty();
}

std::optional<TextRange> rangeOfRegex( TextView inText, TextView inRegex, RegexOptions inOptions,
    std::optional<TextRange> inRange, std::size_t inCapture )
{
    const auto matches = Find( "rangeOfRegex", inText, inRegex, inOptions, 1, inRange );
    return matches.empty() ? std::nullopt : matches.front().GetRange( inCapture );
}

std::optional<Text> stringByMatching(
    TextView inText, TextView inRegex, RegexOptions inOptions, std::size_t inCapture )
{
    const auto matches = Find( "stringByMatching", inText, inRegex, inOptions, 1 );
    if ( matches.empty() or not matches.front().GetRange( inCapture ) )
        return {};
    return Text( matches.front().GetText( inCapture ) );
}

std::vector<Text> stringsMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    std::vector<Text> result;
    for ( const RegexMatch& match : Find( "stringsMatchedByRegex", inText, inRegex, inOptions, kAllMatches ) )
        result.emplace_back( match.GetText() );
    return result;
}

std::vector<Text> captureComponentsMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    std::vector<Text> result;
    for ( const RegexMatch& match : Find( "captureComponentsMatchedByRegex", inText, inRegex, inOptions, 1 ) )
    {
        for ( std::size_t i = 0; i <= match.GetCaptureCount(); ++i )
            result.emplace_back( match.GetText( i ) );
    }
    return result;
}

std::vector<Text> componentsSeparatedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    std::vector<Text> result;
    std::size_t at = 0;
    for ( const RegexMatch& match : Find( "componentsSeparatedByRegex", inText, inRegex, inOptions, kAllMatches ) )
    {
        const TextRange range = match.GetRange();
        if ( range.mLength == 0 )
            continue;
        result.emplace_back( inText.substr( at, range.mLocation - at ) );
        at = range.End();
    }
    result.emplace_back( inText.substr( at ) );
    return result;
}

Text stringByReplacingOccurrencesOfRegex(
    TextView inText, TextView inRegex, TextView inTemplate, RegexOptions inOptions )
{
    std::size_t count = 0;
    return ReplacedByTemplate(
        "stringByReplacingOccurrencesOfRegex", inText, inRegex, inTemplate, inOptions, {}, count );
}

Text kvr_stringByReplacingOccurrencesOfRegex( TextView inText, TextView inRegex,
    const RegexReplacementBlock& withStringFromBlock, RegexOptions inOptions )
{
    std::size_t count = 0;
    return Replaced( inText,
        Find( "kvr_stringByReplacingOccurrencesOfRegex", inText, inRegex, inOptions, kAllMatches ), count,
        withStringFromBlock );
}

std::size_t kvr_slow_replaceOccurrencesOfRegex( Text& ioText, TextView inRegex, TextView inTemplate,
    RegexOptions inOptions, std::optional<TextRange> inRange )
{
    std::size_t count = 0;
    ioText = ReplacedByTemplate(
        "kvr_slow_replaceOccurrencesOfRegex", ioText, inRegex, inTemplate, inOptions, inRange, count );
    return count;
}

std::size_t kvr_slow_replaceOccurrencesOfRegex( Text& ioText, TextView inRegex,
    const RegexReplacementBlock& usingBlock, RegexOptions inOptions, std::optional<TextRange> inRange )
{
    std::size_t count = 0;
    ioText = Replaced( ioText,
        Find( "kvr_slow_replaceOccurrencesOfRegex", ioText, inRegex, inOptions, kAllMatches, inRange ), count,
        usingBlock );
    return count;
}
