#include "Platform/Linux/DesktopEntry.h"

#include "Platform/Linux/GLibHolders.h"

#include <algorithm>

namespace
{
constexpr const char* kGroup = G_KEY_FILE_DESKTOP_GROUP;
// Of these characters the rules say that a word that holds one must be quoted...
constexpr std::string_view kReserved = " \t\n\"'\\><~|&;$*?#()`";
// ...and of these that a backslash stands before them inside the quotes.
constexpr std::string_view kEscaped = "\"`$\\";

struct KeyFileFree
{
    void operator()( GKeyFile* inFile ) const { g_key_file_unref( inFile ); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileFree>;

std::string QuotedWord( std::string_view inWord )
{
    const bool isPlain = not inWord.empty() and inWord.find_first_of( kReserved ) == std::string_view::npos;
    std::string result = isPlain ? "" : "\"";
    for ( const char character : inWord )
    {
        if ( not isPlain and kEscaped.find( character ) != std::string_view::npos )
            result += '\\';
        if ( character == '%' ) // else it begins a field code
            result += '%';
        result += character;
    }
    return isPlain ? result : result + '"';
}

// Reads words one after the other.
class CommandReader
{
public:
    explicit CommandReader( std::string_view inCommand ) : mRest( inCommand ) {}

    // False at the end, or when a quote isn't closed.
    bool Next( std::string& outWord )
    {
        mRest.remove_prefix( std::min( mRest.find_first_not_of( " \t\n" ), mRest.size() ) );
        outWord.clear();
        mIsFieldCode = false;
        const bool isThere = not mRest.empty();
        while ( not mRest.empty() and not mIsBroken and mRest.front() != ' ' and mRest.front() != '\t' )
            Piece( outWord );
        return isThere and not mIsBroken;
    }
    // The word was one as "%U", which stands for files that nobody gave.
    [[nodiscard]] bool WasFieldCode() const { return mIsFieldCode; }
    [[nodiscard]] bool IsBroken() const { return mIsBroken; }

private:
    void Piece( std::string& ioWord )
    {
        if ( mRest.front() != '"' )
        {
            Character( ioWord );
            return;
        }
        mRest.remove_prefix( 1 );
        while ( not mRest.empty() and mRest.front() != '"' )
        {
            if ( mRest.front() == '\\' and mRest.size() > 1 )
                mRest.remove_prefix( 1 );
            Character( ioWord );
        }
        mIsBroken = mRest.empty();
        mRest.remove_prefix( mIsBroken ? 0 : 1 );
    }

    void Character( std::string& ioWord )
    {
        const char character = mRest.front();
        mRest.remove_prefix( 1 );
        if ( character != '%' )
        {
            ioWord += character;
            return;
        }
        if ( not mRest.starts_with( '%' ) )
            mIsFieldCode = true;
        else
            ioWord += '%';
        mRest.remove_prefix( std::min<std::size_t>( mRest.size(), 1 ) );
    }

    std::string_view mRest;
    bool mIsFieldCode = false, mIsBroken = false;
};
} // namespace

std::string DesktopEntry::QuotedCommand( const std::vector<std::string>& inWords )
{
    std::string command;
    for ( const std::string& word : inWords )
        command += ( command.empty() ? "" : " " ) + QuotedWord( word );
    return command;
}

std::optional<std::vector<std::string>> DesktopEntry::WordsOfCommand( std::string_view inCommand )
{
    CommandReader reader( inCommand );
    std::vector<std::string> words;
    for ( std::string word; reader.Next( word ); )
    {
        if ( not reader.WasFieldCode() or not word.empty() )
            words.push_back( word );
    }
    if ( reader.IsBroken() or words.empty() )
        return {};
    return words;
}

std::optional<DesktopEntry> DesktopEntry::Read( std::string_view inBytes )
{
    const KeyFile file( g_key_file_new() );
    if ( not g_key_file_load_from_data( file.get(), inBytes.data(), inBytes.size(), G_KEY_FILE_NONE, nullptr ) )
        return {};
    const auto text = [&]( const char* inKey ) {
        return GString_( g_key_file_get_string( file.get(), kGroup, inKey, nullptr ) );
    };
    const GString_ type = text( G_KEY_FILE_DESKTOP_KEY_TYPE ), command = text( G_KEY_FILE_DESKTOP_KEY_EXEC );
    const GString_ name(
        g_key_file_get_locale_string( file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr ) );
    const bool isHidden = g_key_file_get_boolean( file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr );
    if ( not type or std::string_view( type.get() ) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION or not command or not name or
        isHidden )
        return {};
    std::optional<std::vector<std::string>> words = WordsOfCommand( command.get() );
    if ( not words )
        return {};
    return DesktopEntry{ name.get(), std::move( *words ) };
}

std::optional<std::string> DesktopEntry::Write() const
{
    const std::string command = QuotedCommand( mCommand );
    if ( mCommand.empty() or command.find( '\0' ) != std::string::npos or command.find( '\n' ) != std::string::npos or
        not g_utf8_validate( mName.data(), gssize( mName.size() ), nullptr ) )
        return {};
    const KeyFile file( g_key_file_new() );
    g_key_file_set_string( file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION );
    g_key_file_set_string( file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_NAME, mName.c_str() );
    g_key_file_set_string( file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_EXEC, command.c_str() );
    g_key_file_set_boolean( file.get(), kGroup, G_KEY_FILE_DESKTOP_KEY_TERMINAL, FALSE );
    gsize length = 0;
    const GString_ bytes( g_key_file_to_data( file.get(), &length, nullptr ) );
    return std::string( bytes.get(), length );
}
