// A reader of our own rather than the JSON library's: that one refuses the lone surrogates which
// property lists hold, and turns integers that are too large into floats. The open containers stand on
// a stack of frames, so depth costs no native stack; every byte is looked at a bounded number of times.
#include "App/PropertyListJSON.h"
#include "App/PropertyListJSONWords.h"
#include "CFMethods/PropertyListText.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <utility>

namespace
{
constexpr std::size_t kMostNotes = 100;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct Refusal
{
    std::string mMessage;
    std::size_t mOffset;
};

bool IsSpace( char inByte )
{
    return inByte == ' ' or inByte == '\t' or inByte == '\n' or inByte == '\r';
}

bool IsDigit( char inByte )
{
    return inByte >= '0' and inByte <= '9';
}

// A container that is being filled.
struct Frame
{
    bool mIsObject;
    std::size_t mOffset;
    XMutableArray mArray = {};
    XMutableDictionary mDictionary = {};
    XText mKey = {}; // of the value that comes next
    std::size_t mCount = 0;
    JSONWord mWord = JSONWord::kNone; // which bare word is among the keys
    JSONWord mNextWord = JSONWord::kNone;
    __SafeCFPropertyList mWordValue = {};
};

class Reader
{
public:
    Reader( std::string_view inText, const XPlistLimits& inLimits ) : mText( inText ), mLimits( inLimits ) {}

    XPlistJSONResult Read();

private:
    [[noreturn]] static void Refuse( std::string inMessage, std::size_t inOffset )
    {
        throw Refusal{ std::move( inMessage ), inOffset };
    }
    [[nodiscard]] char Peek() const { return mAt < mText.size() ? mText[mAt] : '\0'; }
    void SkipSpace()
    {
        while ( mAt < mText.size() and IsSpace( mText[mAt] ) )
            ++mAt;
    }
    [[noreturn]] void RefuseHere( std::string_view inExpected ) const;
    void Expect( char inByte, std::string_view inExpected );

    void ReadValue();
    void ReadKey();
    void Open( bool inIsObject );
    void Close();
    void Accept( __SafeCFPropertyList inValue );
    void AfterValue();

    __SafeCFPropertyList ReadWord();
    __SafeCFPropertyList ReadNumber();
    XText ReadString();
    void ReadEscape( Text& ioText );
    unsigned ReadHex();

    __SafeCFPropertyList SealDictionary( Frame& ioFrame );
    static __SafeCFPropertyList ValueOfWord( const Frame& inFrame );
    static __SafeCFPropertyList RealOfWord( const Frame& inFrame );

    std::string_view mText;
    const XPlistLimits mLimits;
    std::size_t mAt = 0;
    bool mValueComes = true; // otherwise a comma or the end of the innermost container does
    std::vector<Frame> mStack;
    __SafeCFPropertyList mRoot;
    std::vector<XPlistNote> mNotes;
};

void Reader::RefuseHere( std::string_view inExpected ) const
{
    if ( mAt >= mText.size() )
        Refuse( fmt::format( "the JSON ends where {} should stand", inExpected ), mText.size() );
    const auto byte = static_cast<unsigned char>( mText[mAt] );
    const std::string found =
        byte > 0x20 and byte < 0x7F ? fmt::format( "'{}'", mText[mAt] ) : fmt::format( "byte 0x{:02X}", byte );
    Refuse( fmt::format( "{} stands where {} should", found, inExpected ), mAt );
}

void Reader::Expect( char inByte, std::string_view inExpected )
{
    if ( Peek() != inByte or mAt >= mText.size() )
        RefuseHere( inExpected );
    ++mAt;
}

XPlistJSONResult Reader::Read()
{
    if ( mText.size() > mLimits.mMaxBytes )
        Refuse( fmt::format( "the size exceeds the limit of {} bytes", mLimits.mMaxBytes ), mLimits.mMaxBytes );
    if ( mText.starts_with( kByteOrderMark ) )
        mAt = kByteOrderMark.size();
    SkipSpace();
    do
    {
        if ( mValueComes )
            ReadValue();
        else
            AfterValue();
    } while ( mValueComes or not mStack.empty() );
    SkipSpace();
    if ( mAt < mText.size() )
        RefuseHere( "the end of the JSON" );
    return { std::move( mRoot ), std::nullopt, std::move( mNotes ) };
}

// A leaf is accepted; of a container only the bracket is read, and its first value comes next.
void Reader::ReadValue()
{
    const char next = Peek();
    if ( next == '{' or next == '[' )
        Open( next == '{' );
    else if ( next == '"' )
        Accept( ReadString() );
    else if ( next == '-' or IsDigit( next ) )
        Accept( ReadNumber() );
    else
        Accept( ReadWord() );
}

void Reader::Open( bool inIsObject )
{
    // An object that is too deep may still be a word for a leaf ({"$date": {"$real": "nan"}} is the deepest of
    // them); that shows when it closes.
    if ( mStack.size() >= mLimits.mMaxDepth + ( inIsObject ? 2 : 0 ) )
        Refuse( fmt::format( "the depth exceeds the limit of {}", mLimits.mMaxDepth ), mAt );
    mStack.push_back( { inIsObject, mAt++ } );
    SkipSpace();
    mValueComes = Peek() != ( inIsObject ? '}' : ']' );
    if ( mValueComes and inIsObject )
        ReadKey();
}

void Reader::ReadKey()
{
    if ( Peek() != '"' )
        RefuseHere( "a key in quotes" );
    XText key = ReadString();
    SkipSpace();
    Expect( ':', "':'" );
    SkipSpace();

    Frame& frame = mStack.back();
    frame.mNextWord = JSONWord::kNone;
    if ( key.GetString()->IsASCII() )
    {
        const std::string_view name = key.GetString()->ASCII();
        const JSONWordKey word = JSONWordOf( name );
        if ( word.mDollars == 1 )
            frame.mNextWord = word.mWord;
        else if ( word.mDollars > 1 )
            key = XPlistString::MakeASCII( name.substr( 1 ) );
    }
    frame.mKey = std::move( key );
}

void Reader::AfterValue()
{
    SkipSpace();
    const Frame& frame = mStack.back();
    if ( Peek() == ( frame.mIsObject ? '}' : ']' ) )
    {
        ++mAt;
        Close();
        return;
    }
    Expect( ',', frame.mIsObject ? "',' or '}'" : "',' or ']'" );
    SkipSpace();
    mValueComes = true;
    if ( frame.mIsObject )
        ReadKey();
}

void Reader::Accept( __SafeCFPropertyList inValue )
{
    mValueComes = false;
    if ( mStack.empty() )
    {
        mRoot = std::move( inValue );
        return;
    }
    Frame& frame = mStack.back();
    ++frame.mCount;
    if ( not frame.mIsObject )
        frame.mArray.Append( std::move( inValue ) );
    else
    {
        if ( frame.mNextWord != JSONWord::kNone )
        {
            frame.mWord = frame.mNextWord;
            frame.mWordValue = inValue;
        }
        frame.mDictionary.Set( frame.mKey, std::move( inValue ) );
    }
}

void Reader::Close()
{
    Frame frame = std::move( mStack.back() );
    mStack.pop_back();
    if ( not frame.mIsObject )
        Accept( frame.mArray.Seal() );
    else if ( frame.mWord == JSONWord::kNone )
        Accept( SealDictionary( frame ) );
    else
        Accept( ValueOfWord( frame ) );
}

__SafeCFPropertyList Reader::SealDictionary( Frame& ioFrame )
{
    if ( mStack.size() >= mLimits.mMaxDepth )
        Refuse( fmt::format( "the depth exceeds the limit of {}", mLimits.mMaxDepth ), ioFrame.mOffset );
    CFContainer<XPlistDictionary> dictionary = ioFrame.mDictionary.Seal();
    const std::size_t doubled = ioFrame.mCount - dictionary->GetCount();
    if ( doubled > 0 and mNotes.size() < kMostNotes )
        mNotes.push_back(
            { fmt::format( "an object has {} keys twice; the last of each counts", doubled ), ioFrame.mOffset } );
    return dictionary;
}

__SafeCFPropertyList Reader::RealOfWord( const Frame& inFrame )
{
    const XPlistString* const string = inFrame.mWordValue.AsString();
    const std::string word = string ? string->GetUTF8() : std::string();
    if ( word == "inf" or word == "-inf" )
        return __SafeCFPropertyList::Real(
            word == "inf" ? std::numeric_limits<double>::infinity() : -std::numeric_limits<double>::infinity() );
    std::uint64_t bits = kPlainNaN;
    const bool hasBits = word.starts_with( "nan:" );
    if ( hasBits )
    {
        const char* const end = word.data() + word.size();
        const auto [stop, error] = std::from_chars( word.data() + 4, end, bits, 16 );
        if ( error != std::errc() or stop != end )
            bits = 0;
    }
    if ( ( word != "nan" and not hasBits ) or not std::isnan( std::bit_cast<double>( bits ) ) )
        Refuse( "the value of \"$real\" isn't \"nan\", \"inf\", \"-inf\" or the bits of a NaN as in "
                "\"nan:7FF8000000000001\"",
            inFrame.mOffset );
    return __SafeCFPropertyList::Real( std::bit_cast<double>( bits ) );
}

__SafeCFPropertyList Reader::ValueOfWord( const Frame& inFrame )
{
    const std::string_view word = kJSONWords[std::size_t( inFrame.mWord )];
    if ( inFrame.mCount != 1 )
        Refuse( fmt::format( "\"${0}\" stands beside other keys; write \"$${0}\" for a key of that name", word ),
            inFrame.mOffset );
    if ( inFrame.mWord == JSONWord::kReal )
        return RealOfWord( inFrame );
    const XPlistString* const string = inFrame.mWordValue.AsString();
    if ( inFrame.mWord == JSONWord::kData )
    {
        CFContainer<XPlistData> data = string ? DataOfBase64( string->GetUTF8() ) : nullptr;
        if ( not data )
            Refuse( "the value of \"$data\" isn't base64 in quotes", inFrame.mOffset );
        return data;
    }
    const XPlistNumber* const number = inFrame.mWordValue.AsNumber();
    const auto seconds = string ? DateOfISOText( string->GetUTF8() )
        : number                ? std::optional( number->AsReal() )
                                : std::nullopt;
    if ( not seconds )
        Refuse( "the value of \"$date\" is neither a date as in \"2024-01-31T09:30:00Z\" nor seconds since 2001",
            inFrame.mOffset );
    return XPlistDate::Make( *seconds );
}

__SafeCFPropertyList Reader::ReadWord()
{
    for ( const std::string_view word : { "true", "false" } )
    {
        if ( mText.substr( mAt ).starts_with( word ) )
        {
            mAt += word.size();
            return __SafeCFPropertyList::Boolean( word == "true" );
        }
    }
    if ( mText.substr( mAt ).starts_with( "null" ) )
        Refuse( "null has no counterpart in a property list", mAt );
    RefuseHere( "a value" );
}

__SafeCFPropertyList Reader::ReadNumber()
{
    const std::size_t start = mAt;
    const auto takeDigits = [this] {
        if ( not IsDigit( Peek() ) )
            RefuseHere( "a digit" );
        while ( IsDigit( Peek() ) )
            ++mAt;
    };
    const bool isNegative = Peek() == '-';
    mAt += isNegative ? 1 : 0;
    const std::size_t first = mAt;
    takeDigits();
    if ( mText[first] == '0' and mAt > first + 1 )
        Refuse( "a number begins with 0", start );
    bool isReal = false;
    if ( Peek() == '.' )
    {
        isReal = true;
        ++mAt;
        takeDigits();
    }
    if ( Peek() == 'e' or Peek() == 'E' )
    {
        isReal = true;
        ++mAt;
        mAt += Peek() == '+' or Peek() == '-' ? 1 : 0;
        takeDigits();
    }

    const char *const begin = mText.data() + start, *const end = mText.data() + mAt;
    if ( isReal )
    {
        double value = 0;
        // What is too small to be told from 0 is out of range as well, and would come back as another value.
        if ( std::from_chars( begin, end, value ).ec != std::errc() )
            Refuse( "a number is beyond the range of a 64-bit float", start );
        return __SafeCFPropertyList::Real( value );
    }
    std::int64_t value = 0;
    if ( std::from_chars( begin, end, value ).ec == std::errc() )
        return __SafeCFPropertyList::Integer( value );
    std::uint64_t large = 0;
    if ( isNegative or std::from_chars( begin, end, large ).ec != std::errc() )
        Refuse( "an integer is beyond the range of 64 bits; with \".0\" behind it, it is a real", start );
    return XPlistNumber::MakeUnsigned( large );
}

unsigned Reader::ReadHex()
{
    unsigned value = 0;
    const std::string_view digits = mText.substr( std::min( mAt, mText.size() ), 4 );
    const auto [stop, error] = std::from_chars( digits.data(), digits.data() + digits.size(), value, 16 );
    if ( digits.size() < 4 or error != std::errc() or stop != digits.data() + 4 )
        Refuse( "\\u is followed by something else than four hexadecimal digits", mAt );
    mAt += 4;
    return value;
}

// Each escape is one UTF-16 unit, so pairs join by themselves and lone ones stay alone.
void Reader::ReadEscape( Text& ioText )
{
    constexpr std::string_view kNames = "\"\\/bfnrt";
    constexpr std::u16string_view kUnits = u"\"\\/\b\f\n\r\t";
    const std::size_t start = mAt++;
    const char name = Peek();
    const std::size_t known = kNames.find( name );
    if ( mAt < mText.size() and known != kNames.npos )
    {
        ++mAt;
        ioText += kUnits[known];
    }
    else if ( name == 'u' )
    {
        ++mAt;
        ioText += char16_t( ReadHex() );
    }
    else
        Refuse( "a backslash is followed by something else than \" \\ / b f n r t or u", start );
}

XText Reader::ReadString()
{
    const std::size_t start = mAt++;
    Text text;
    bool isASCII = true;
    for ( ;; )
    {
        const std::size_t run = mAt;
        while ( mAt < mText.size() and mText[mAt] != '"' and mText[mAt] != '\\' and
            static_cast<unsigned char>( mText[mAt] ) >= 0x20 )
            isASCII &= static_cast<unsigned char>( mText[mAt++] ) < 0x80;
        const std::string_view bytes = mText.substr( run, mAt - run );
        if ( Peek() == '"' and run == start + 1 and isASCII )
        {
            ++mAt;
            return XPlistString::MakeASCII( bytes );
        }
        const std::optional<Text> units = TextFromStrictUTF8( bytes );
        if ( not units )
            Refuse( "a string isn't well-formed UTF-8", run );
        text += *units;
        if ( mAt >= mText.size() )
            Refuse( "a string has no end", start );
        if ( mText[mAt] == '"' )
            break;
        if ( mText[mAt] != '\\' )
            Refuse( fmt::format( "control character 0x{:02X} in a string; write it as \\u{:04X}",
                        unsigned( mText[mAt] ), unsigned( mText[mAt] ) ),
                mAt );
        ReadEscape( text );
    }
    ++mAt;
    return XPlistString::Make( text );
}

XPlistFault FaultAt( std::string_view inText, Refusal inRefusal )
{
    const std::string_view before = inText.substr( 0, inRefusal.mOffset );
    const std::size_t lastBreak = before.rfind( '\n' );
    XPlistFault fault;
    fault.mMessage = std::move( inRefusal.mMessage );
    fault.mOffset = inRefusal.mOffset;
    fault.mLine = 1 + std::uint64_t( std::count( before.begin(), before.end(), '\n' ) );
    fault.mColumn = lastBreak == before.npos ? before.size() + 1 : before.size() - lastBreak;
    return fault;
}
} // namespace

XPlistJSONResult ReadPropertyListJSON( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits )
{
    const std::string_view text( reinterpret_cast<const char*>( inBytes.data() ), inBytes.size() );
    try
    {
        return Reader( text, inLimits ).Read();
    }
    catch ( Refusal& refusal )
    {
        XPlistJSONResult result;
        result.mFault = FaultAt( text, std::move( refusal ) );
        return result;
    }
}

bool BeginsAsJSON( std::span<const std::uint8_t> inBytes )
{
    std::string_view text( reinterpret_cast<const char*>( inBytes.data() ), inBytes.size() );
    // Wide text has a zero byte in its first unit, and is XML's.
    if ( text.starts_with( "bplist" ) or ( text.size() > 1 and ( text[0] == '\0' or text[1] == '\0' ) ) )
        return false;
    if ( text.starts_with( kByteOrderMark ) )
        text.remove_prefix( kByteOrderMark.size() );
    while ( not text.empty() and IsSpace( text[0] ) )
        text.remove_prefix( 1 );
    return not text.empty() and std::string_view( "{[\"-0123456789tfn" ).find( text[0] ) != std::string_view::npos;
}
