// RTF is a tree of groups in braces. A control word begins with a backslash and may have a number; everything else is
// text, in bytes of one code page. A group inherits what was set outside of it, and what it sets ends with it, so that
// the reader keeps a stack of the two settings that matter to a plain text: whether the group is text at all, and
// how many characters stand behind a \u for programs that don't know Unicode.
#include "Utility/Text/StyledText.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <unicode/ucnv.h>
#include <vector>

namespace
{
struct TextWord
{
    std::string_view mWord;
    char16_t mUnit;
};

constexpr TextWord kTextWords[] = {
    { "par", u'\n' },
    { "line", u'\n' },
    { "sect", u'\n' },
    { "page", u'\n' },
    { "row", u'\n' },
    { "nestrow", u'\n' },
    { "tab", u'\t' },
    { "cell", u'\t' },
    { "nestcell", u'\t' },
    { "emdash", u'\u2014' },
    { "endash", u'\u2013' },
    { "lquote", u'\u2018' },
    { "rquote", u'\u2019' },
    { "ldblquote", u'\u201C' },
    { "rdblquote", u'\u201D' },
    { "bullet", u'\u2022' },
    { "emspace", u'\u2003' },
    { "enspace", u'\u2002' },
    { "zwj", u'\u200D' },
    { "zwnj", u'\u200C' },
    { "ltrmark", u'\u200E' },
    { "rtlmark", u'\u200F' },
};

// Groups that begin with one of these hold no text of the document.
constexpr std::string_view kSkippedGroups[] = { "fonttbl", "colortbl", "stylesheet", "info", "pict", "objdata",
    "fldinst", "header", "headerl", "headerr", "headerf", "footer", "footerl", "footerr", "footerf", "filetbl",
    "listtable", "listoverridetable", "revtbl", "nonshppict", "NeXTGraphic", "xe", "tc" };

struct ConverterCloser
{
    void operator()( UConverter* inConverter ) const { ucnv_close( inConverter ); }
};

bool IsLetter( std::uint8_t inByte )
{
    return ( inByte >= 'a' and inByte <= 'z' ) or ( inByte >= 'A' and inByte <= 'Z' );
}

bool IsDigit( std::uint8_t inByte )
{
    return inByte >= '0' and inByte <= '9';
}

int HexDigit( std::uint8_t inByte )
{
    if ( IsDigit( inByte ) )
        return inByte - '0';
    const int letter = inByte | 0x20;
    return letter >= 'a' and letter <= 'f' ? letter - 'a' + 10 : -1;
}

class RTFReader
{
public:
    explicit RTFReader( std::span<const std::uint8_t> inData ) : mData( inData ) {}

    [[nodiscard]] Text Read()
    {
        while ( mAt < mData.size() )
        {
            const std::uint8_t byte = mData[mAt++];
            if ( byte == '{' )
                Open();
            else if ( byte == '}' )
                Close();
            else if ( byte == '\\' )
                ReadControl();
            else if ( byte != '\r' and byte != '\n' )
                AddByte( byte );
            if ( mGroups.empty() )
                break;
        }
        Flush();
        return std::move( mText );
    }

private:
    struct Group
    {
        bool mIsText = true;
        std::size_t mAlternatives = 1; // characters behind a \u
    };

    void Open()
    {
        Flush();
        mToSkip = 0;
        mGroups.push_back( mGroups.empty() ? Group() : mGroups.back() );
    }

    void Close()
    {
        Flush();
        mToSkip = 0;
        mGroups.pop_back();
    }

    void ReadControl()
    {
        if ( mAt == mData.size() )
            return;
        if ( IsLetter( mData[mAt] ) )
            ReadWord();
        else
            ReadSymbol( mData[mAt++] );
    }

    void ReadSymbol( std::uint8_t inSymbol )
    {
        switch ( inSymbol )
        {
        case '\'':
            if ( mData.size() - mAt >= 2 and HexDigit( mData[mAt] ) >= 0 and HexDigit( mData[mAt + 1] ) >= 0 )
            {
                AddByte( std::uint8_t( HexDigit( mData[mAt] ) * 16 + HexDigit( mData[mAt + 1] ) ) );
                mAt += 2;
            }
            break;
        case '*': // a group that only those read who know its word
            mGroups.back().mIsText = false;
            break;
        case '~':
            AddUnit( u'\u00A0' );
            break;
        case '_':
            AddUnit( u'\u2011' );
            break;
        case '\t':
            AddUnit( u'\t' );
            break;
        case '\r':
            mAt += mAt < mData.size() and mData[mAt] == '\n';
            [[fallthrough]];
        case '\n':
            AddUnit( u'\n' );
            break;
        case '\\':
        case '{':
        case '}':
            AddByte( inSymbol );
            break;
        default: // marks for hyphenation and indexes
            break;
        }
    }

    void ReadWord()
    {
        const std::size_t start = mAt;
        while ( mAt < mData.size() and IsLetter( mData[mAt] ) )
            ++mAt;
        const std::string_view word( reinterpret_cast<const char*>( mData.data() ) + start, mAt - start );
        const std::optional<std::int64_t> number = ReadNumber();
        if ( mAt < mData.size() and mData[mAt] == ' ' )
            ++mAt;
        if ( word == "bin" ) // raw bytes, braces among them
            mAt += std::min<std::size_t>(
                std::size_t( std::max<std::int64_t>( number.value_or( 0 ), 0 ) ), mData.size() - mAt );
        if ( mToSkip > 0 )
            --mToSkip;
        else
            DoWord( word, number );
    }

    [[nodiscard]] std::optional<std::int64_t> ReadNumber()
    {
        const bool negative = mAt + 1 < mData.size() and mData[mAt] == '-' and IsDigit( mData[mAt + 1] );
        std::size_t at = mAt + negative;
        if ( at == mData.size() or not IsDigit( mData[at] ) )
            return {};
        std::int64_t number = 0;
        for ( ; at < mData.size() and IsDigit( mData[at] ); ++at )
            number = std::min<std::int64_t>( number * 10 + ( mData[at] - '0' ), 0x7FFFFFFF );
        mAt = at;
        return negative ? -number : number;
    }

    void DoWord( std::string_view inWord, std::optional<std::int64_t> inNumber )
    {
        const auto text = std::find_if( std::begin( kTextWords ), std::end( kTextWords ),
            [inWord]( const TextWord& row ) { return row.mWord == inWord; } );
        if ( text != std::end( kTextWords ) )
            AddUnit( text->mUnit );
        else if ( inWord == "u" and inNumber )
        {
            AddUnit( char16_t( *inNumber ) ); // negative for units from 0x8000 on
            mToSkip = mGroups.back().mAlternatives;
        }
        else if ( inWord == "uc" )
            mGroups.back().mAlternatives = std::size_t( std::max<std::int64_t>( inNumber.value_or( 1 ), 0 ) );
        else if ( inWord == "ansicpg" and inNumber )
            SetCodePage( *inNumber == 65001 ? "UTF-8" : "cp" + std::to_string( *inNumber ) );
        else if ( inWord == "mac" )
            SetCodePage( "macintosh" );
        else if ( inWord == "pc" or inWord == "pca" )
            SetCodePage( inWord == "pc" ? "cp437" : "cp850" );
        else if ( std::find( std::begin( kSkippedGroups ), std::end( kSkippedGroups ), inWord ) !=
            std::end( kSkippedGroups ) )
            mGroups.back().mIsText = false;
    }

    void SetCodePage( std::string inName )
    {
        Flush();
        mCodePage = std::move( inName );
        mConverter.reset();
    }

    // A byte of the code page, which may be part of a character.
    void AddByte( std::uint8_t inByte )
    {
        if ( mToSkip > 0 )
            --mToSkip;
        else if ( mGroups.back().mIsText )
            mBytes.push_back( char( inByte ) );
    }

    void AddUnit( char16_t inUnit )
    {
        if ( mToSkip > 0 )
        {
            --mToSkip;
            return;
        }
        if ( not mGroups.back().mIsText )
            return;
        Flush();
        mText.push_back( inUnit );
    }

    void Flush()
    {
        if ( std::all_of( mBytes.begin(), mBytes.end(), []( char byte ) { return std::uint8_t( byte ) < 0x80; } ) )
            mText.append( mBytes.begin(), mBytes.end() );
        else
            Convert();
        mBytes.clear();
    }

    void Convert()
    {
        UErrorCode error = U_ZERO_ERROR;
        if ( not mConverter )
            mConverter.reset( ucnv_open( mCodePage.c_str(), &error ) );
        if ( not mConverter ) // a code page that nobody knows
        {
            error = U_ZERO_ERROR;
            mConverter.reset( ucnv_open( "windows-1252", &error ) );
        }
        if ( not mConverter )
            return;
        Text converted( mBytes.size() * 2 + 1, u'\0' );
        const std::int32_t length = ucnv_toUChars( mConverter.get(), converted.data(), std::int32_t( converted.size() ),
            mBytes.data(), std::int32_t( mBytes.size() ), &error );
        if ( U_SUCCESS( error ) )
            mText.append( converted, 0, std::size_t( length ) );
    }

    std::span<const std::uint8_t> mData;
    std::size_t mAt = 0;
    std::vector<Group> mGroups;
    std::size_t mToSkip = 0; // characters that say what a \u has said already
    std::string mBytes;      // text that isn't converted yet
    std::string mCodePage = "windows-1252";
    std::unique_ptr<UConverter, ConverterCloser> mConverter;
    Text mText;
};
} // namespace

std::optional<Text> kvr_plainTextFromRTF( std::span<const std::uint8_t> inData )
{
    constexpr std::string_view kBeginning = "{\\rtf";
    if ( inData.size() < kBeginning.size() or not std::equal( kBeginning.begin(), kBeginning.end(), inData.begin() ) )
        return {};
    return RTFReader( inData ).Read();
}
