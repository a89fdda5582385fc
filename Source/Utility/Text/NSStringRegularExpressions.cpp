#include "Utility/Text/NSStringRegularExpressions.h"

#include "Utility/Text/StringHelpers.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <unicode/uregex.h>
#include <unordered_map>

namespace
{
constexpr std::int32_t kTimeLimitTicks = 1000;
constexpr std::int32_t kStackLimitBytes = 8 << 20;
constexpr std::size_t kCacheLimit = 101;
constexpr std::size_t kMaxSets = 2000, kMaxSetsIgnoringCase = 200;
constexpr double kBaseSeconds = 1.0, kSecondsPerUnit = 1e-6;
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

bool IgnoresCase( TextView inPattern, RegexOptions inOptions )
{
    if ( inOptions & RegexOptions::kCaseInsensitive )
        return true;
    // As a flag, "(?i)" or "(?xi:" or "(?i-x:".
    for ( std::size_t at = inPattern.find( u"(?" ); at != TextView::npos; at = inPattern.find( u"(?", at ) )
    {
        at += 2;
        while ( at < inPattern.size() and inPattern[at] >= u'a' and inPattern[at] <= u'z' )
        {
            if ( inPattern[at++] == u'i' )
                return true;
        }
    }
    return false;
}

// Counted without parsing: an escaped bracket that is counted too is far from the limit.
std::size_t CountSets( TextView inPattern )
{
    std::size_t count = 0;
    for ( std::size_t i = 0; i < inPattern.size(); ++i )
    {
        const bool property = inPattern[i] == u'p' or inPattern[i] == u'P';
        count += inPattern[i] == u'[' or ( property and i > 0 and inPattern[i - 1] == u'\\' );
    }
    return count;
}

// Why a pattern isn't even compiled; the engine has no limits of its own there.
std::optional<Text> Refusal( TextView inPattern, RegexOptions inOptions )
{
    constexpr std::size_t kMaxLength = NSStringRegularExpressions::kMaxPatternLength;
    if ( inPattern.size() > kMaxLength )
        return kvr_format( u"it has %lu units, the limit is %lu", inPattern.size(), kMaxLength );
    const std::size_t sets = CountSets( inPattern );
    const std::size_t limit = IgnoresCase( inPattern, inOptions ) ? kMaxSetsIgnoringCase : kMaxSets;
    if ( sets > limit and not( inOptions & RegexOptions::kIgnoreMetacharacters ) )
        return kvr_format( u"it has %lu character sets, the limit is %lu", sets, limit );
    return {};
}

// The limit of time for what the engine doesn't count.
class Deadline
{
public:
    explicit Deadline( std::size_t inTextLength )
        : mEnd( XClock::Current().MonotonicSeconds() + kBaseSeconds + kSecondsPerUnit * double( inTextLength ) )
    {}

    void Install( URegularExpression* inMatcher, UErrorCode& ioStatus )
    {
        uregex_setMatchCallback( inMatcher, OnTick, this, &ioStatus );
        uregex_setFindProgressCallback( inMatcher, OnStart, this, &ioStatus );
    }

private:
    bool IsBefore() const { return XClock::Current().MonotonicSeconds() < mEnd; }

    static UBool U_CALLCONV OnTick( const void* inDeadline, std::int32_t )
    {
        return static_cast<const Deadline*>( inDeadline )->IsBefore();
    }

    // Each place where a match could begin; most cost less than a look at the clock.
    static UBool U_CALLCONV OnStart( const void* inDeadline, std::int64_t )
    {
        const auto* deadline = static_cast<const Deadline*>( inDeadline );
        return ++deadline->mStarts % 1024 != 0 or deadline->IsBefore();
    }

    double mEnd;
    mutable std::uint32_t mStarts = 0;
};
} // namespace

// The engine's object holds both the pattern, which is shared, and the state of a match, which isn't: so the
// one in here is never matched with, and each call clones it.
class XRegularExpression
{
public:
    XRegularExpression( TextView inPattern, EngineRegex inEngine )
        : mPattern( inPattern ),
          mEngine( std::move( inEngine ) )
    {}

    static std::shared_ptr<const XRegularExpression> Compile(
        TextView inPattern, RegexOptions inOptions, Text& outError )
    {
        if ( auto refusal = Refusal( inPattern, inOptions ) )
        {
            outError = std::move( *refusal );
            return nullptr;
        }
        UErrorCode status = U_ZERO_ERROR;
        UParseError where{};
        EngineRegex engine( uregex_open(
            inPattern.data(), std::int32_t( inPattern.size() ), EngineFlags( inOptions ), &where, &status ) );
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
        const std::int32_t number =
            uregex_groupNumberFromName( mEngine.get(), inName.data(), std::int32_t( inName.size() ), &status );
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

using Visitor = std::function<bool( const RegexMatch& inMatch )>;

bool Enumerate(
    const XRegularExpression& inRegex, TextView inText, std::optional<TextRange> inRange, const Visitor& inVisitor )
{
    const EngineRegex matcher = inRegex.MakeMatcher( inText );
    if ( not matcher )
        return false;
    UErrorCode status = U_ZERO_ERROR;
    Deadline deadline( inText.size() );
    deadline.Install( matcher.get(), status );
    if ( inRange )
    {
        const TextRange range = inRange->ClippedTo( inText.size() );
        uregex_setRegion( matcher.get(), std::int32_t( range.mLocation ), std::int32_t( range.End() ), &status );
    }
    while ( uregex_findNext( matcher.get(), &status ) and U_SUCCESS( status ) )
    {
        if ( not inVisitor( RegexMatch( inText, matcher.get() ) ) )
            return true;
    }
    if ( U_SUCCESS( status ) )
        return true;
    XErrorHandler::PrivateMaybeLogFormat( kLogTag, "Stopped regular expression %@ on %lu characters (error: %s)",
        Shown( inRegex.GetPattern() ), inText.size(), u_errorName( status ) );
    return false;
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
            // Halves of a pair stay as they are, so that two of them make a character.
            Text units;
            kvr_appendCharacter( units, *character );
            for ( const char16_t part : units )
                Literal( part );
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
            const int digit = kvr_hexValue( mTemplate[mAt + std::size_t( i )] );
            if ( digit < 0 )
                return {};
            value = value * 16 + std::uint32_t( digit );
        }
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
        // Only what a name may hold is looked at: many "${" that nothing closes would each search the rest.
        std::size_t end = mAt + 1;
        while ( end < mTemplate.size() and IsNameUnit( mTemplate[end] ) )
            ++end;
        const bool closed = end < mTemplate.size() and mTemplate[end] == u'}';
        const auto capture =
            closed ? mRegex.GetCaptureNamed( mTemplate.substr( mAt + 1, end - mAt - 1 ) ) : std::nullopt;
        if ( not capture )
            return Literal( u'$' ); // no capture of that name: it stays as typed
        Capture( *capture );
        mAt = end + 1;
    }

    static bool IsNameUnit( char16_t inUnit )
    {
        return ( inUnit >= u'0' and inUnit <= u'9' ) or ( inUnit >= u'A' and inUnit <= u'Z' ) or
            ( inUnit >= u'a' and inUnit <= u'z' );
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
    XErrorHandler::PrivateMaybeLogFormat( kLogTag, "%s %@ options %ld on %lu characters", inOperation, Shown( inRegex ),
        std::int64_t( inOptions ), inText.size() );
    return NSStringRegularExpressions::RegularExpressionWithPattern( inRegex, inOptions );
}

bool Enumerate( const char* inOperation, TextView inText, TextView inRegex, RegexOptions inOptions,
    std::optional<TextRange> inRange, const Visitor& inVisitor )
{
    const RegexPointer regex = RegexFor( inOperation, inText, inRegex, inOptions );
    return not regex or Enumerate( *regex, inText, inRange, inVisitor );
}

// Shows the first match only. A match that was found is whole, whatever limit lies ahead.
void VisitFirst( const char* inOperation, TextView inText, TextView inRegex, RegexOptions inOptions,
    std::optional<TextRange> inRange, const std::function<void( const RegexMatch& inMatch )>& inVisitor )
{
    static_cast<void>( Enumerate( inOperation, inText, inRegex, inOptions, inRange, [&]( const RegexMatch& inMatch ) {
        inVisitor( inMatch );
        return false;
    } ) );
}

// Replaces in the text, unless the search is stopped on its way: half a replacement is worse than none. Gives the count
// of replacements; a match that the maker leaves alone isn't one.
std::size_t Replace( Text& ioText, const XRegularExpression& inRegex, std::optional<TextRange> inRange,
    const RegexReplacementBlock& inMaker )
{
    const TextView text = ioText;
    Text result;
    std::size_t at = 0, count = 0;
    const bool whole = Enumerate( inRegex, text, inRange, [&]( const RegexMatch& inMatch ) {
        if ( const std::optional<Text> replacement = inMaker( inMatch ) )
        {
            const TextRange range = inMatch.GetRange();
            result += text.substr( at, range.mLocation - at );
            result += *replacement;
            at = range.End();
            ++count;
        }
        return true;
    } );
    if ( not whole or count == 0 )
        return 0;
    result += text.substr( at );
    ioText = std::move( result );
    return count;
}
} // namespace

std::optional<TextRange> RegexMatch::GetRange( std::size_t inCapture ) const
{
    auto* engine = static_cast<URegularExpression*>( mEngine );
    if ( inCapture > GetCaptureCount() )
        return {};
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t start = uregex_start( engine, std::int32_t( inCapture ), &status );
    const std::int32_t end = uregex_end( engine, std::int32_t( inCapture ), &status );
    if ( U_FAILURE( status ) or start < 0 )
        return {};
    return TextRange{ std::size_t( start ), std::size_t( end - start ) };
}

TextView RegexMatch::GetText( std::size_t inCapture ) const
{
    const auto range = GetRange( inCapture );
    return range ? mText.substr( range->mLocation, range->mLength ) : TextView();
}

std::size_t RegexMatch::GetCaptureCount() const
{
    UErrorCode status = U_ZERO_ERROR;
    return std::size_t( uregex_groupCount( static_cast<URegularExpression*>( mEngine ), &status ) );
}

std::shared_ptr<const XRegularExpression> NSStringRegularExpressions::RegularExpressionWithPattern(
    TextView inPattern, RegexOptions inOptions )
{
    if ( inPattern.empty() )
        return nullptr;
    static Cache gCache;
    return gCache.Get( inPattern, inOptions );
}

bool NSStringRegularExpressions::EnumerateMatches( TextView inText, TextView inRegex, RegexOptions inOptions,
    std::optional<TextRange> inRange, const std::function<bool( const RegexMatch& inMatch )>& inVisitor )
{
    return Enumerate( "EnumerateMatches", inText, inRegex, inOptions, inRange, inVisitor );
}

bool isMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    bool matched = false;
    VisitFirst( "isMatchedByRegex", inText, inRegex, inOptions, {}, [&]( const RegexMatch& ) { matched = true; } );
    return matched;
}

std::optional<TextRange> rangeOfRegex(
    TextView inText, TextView inRegex, RegexOptions inOptions, std::optional<TextRange> inRange, std::size_t inCapture )
{
    std::optional<TextRange> result;
    VisitFirst( "rangeOfRegex", inText, inRegex, inOptions, inRange,
        [&]( const RegexMatch& inMatch ) { result = inMatch.GetRange( inCapture ); } );
    return result;
}

std::optional<Text> stringByMatching( TextView inText, TextView inRegex, RegexOptions inOptions, std::size_t inCapture )
{
    std::optional<Text> result;
    VisitFirst( "stringByMatching", inText, inRegex, inOptions, {}, [&]( const RegexMatch& inMatch ) {
        if ( inMatch.GetRange( inCapture ) )
            result = inMatch.GetText( inCapture );
    } );
    return result;
}

std::vector<Text> stringsMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    std::vector<Text> result;
    const bool whole =
        Enumerate( "stringsMatchedByRegex", inText, inRegex, inOptions, {}, [&]( const RegexMatch& inMatch ) {
            result.emplace_back( inMatch.GetText() );
            return true;
        } );
    return whole ? std::move( result ) : std::vector<Text>();
}

std::vector<Text> captureComponentsMatchedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    std::vector<Text> result;
    VisitFirst( "captureComponentsMatchedByRegex", inText, inRegex, inOptions, {}, [&]( const RegexMatch& inMatch ) {
        for ( std::size_t i = 0; i <= inMatch.GetCaptureCount(); ++i )
            result.emplace_back( inMatch.GetText( i ) );
    } );
    return result;
}

std::vector<Text> componentsSeparatedByRegex( TextView inText, TextView inRegex, RegexOptions inOptions )
{
    std::vector<Text> result;
    std::size_t at = 0;
    const bool whole =
        Enumerate( "componentsSeparatedByRegex", inText, inRegex, inOptions, {}, [&]( const RegexMatch& inMatch ) {
            const TextRange range = inMatch.GetRange();
            if ( range.mLength > 0 )
            {
                result.emplace_back( inText.substr( at, range.mLocation - at ) );
                at = range.End();
            }
            return true;
        } );
    if ( not whole )
        return { Text( inText ) };
    result.emplace_back( inText.substr( at ) );
    return result;
}

Text stringByReplacingOccurrencesOfRegex(
    TextView inText, TextView inRegex, TextView inTemplate, RegexOptions inOptions )
{
    Text result( inText );
    kvr_slow_replaceOccurrencesOfRegex( result, inRegex, inTemplate, inOptions );
    return result;
}

Text kvr_stringByReplacingOccurrencesOfRegex(
    TextView inText, TextView inRegex, const RegexReplacementBlock& withStringFromBlock, RegexOptions inOptions )
{
    Text result( inText );
    kvr_slow_replaceOccurrencesOfRegex( result, inRegex, withStringFromBlock, inOptions );
    return result;
}

std::size_t kvr_slow_replaceOccurrencesOfRegex(
    Text& ioText, TextView inRegex, TextView inTemplate, RegexOptions inOptions, std::optional<TextRange> inRange )
{
    const RegexPointer regex = RegexFor( "replaceOccurrencesOfRegex", ioText, inRegex, inOptions );
    if ( not regex )
        return 0;
    const Template replacement( inTemplate, *regex );
    return Replace( ioText, *regex, inRange, [&]( const RegexMatch& inMatch ) { return replacement.For( inMatch ); } );
}

std::size_t kvr_slow_replaceOccurrencesOfRegex( Text& ioText, TextView inRegex, const RegexReplacementBlock& usingBlock,
    RegexOptions inOptions, std::optional<TextRange> inRange )
{
    const RegexPointer regex = RegexFor( "replaceOccurrencesOfRegex", ioText, inRegex, inOptions );
    return regex ? Replace( ioText, *regex, inRange, usingBlock ) : 0;
}
