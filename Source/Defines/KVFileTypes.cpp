#include "Defines/KVFileTypes.h"

#include "CFMethods/PropertyListCodec.h"
#include "Platform/FileFacts.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <iterator>

namespace
{
using KVFileTypes::Path;
using Extensions = std::initializer_list<std::string_view>;
using Types = std::initializer_list<TextView>;

bool HasExtension( const Path& inPath, Extensions inExtensions )
{
    std::string extension = inPath.extension().native();
    if ( extension.empty() )
        return false;
    extension.erase( 0, 1 );
    for ( char& unit : extension )
        unit = unit >= 'A' and unit <= 'Z' ? char( unit + 0x20 ) : unit;
    return std::find( inExtensions.begin(), inExtensions.end(), extension ) != inExtensions.end();
}

bool HasType( const Path& inPath, Types inTypes )
{
    const XDesktopFileFacts& facts = Platform::Current().FileFacts();
    const std::optional<Text> type = facts.GetType( inPath );
    return type and std::any_of( inTypes.begin(), inTypes.end(), [&]( TextView other ) {
        return *type == other or facts.TypeConformsTo( *type, other );
    } );
}

bool IsDirectory( const Path& inPath )
{
    std::error_code ignored;
    return std::filesystem::is_directory( inPath, ignored );
}

bool IsPackage( const Path& inPath )
{
    return IsDirectory( inPath ) and
        ( HasType( inPath, { u"com.apple.package" } ) or
            HasExtension( inPath, { "app", "bundle", "framework", "rtfd", "scptd", "workflow" } ) );
}

// A text of the information file of a bundle; null without one.
XText BundleInformation( const Path& inPath, const XKey& inKey )
{
    constexpr std::size_t kMostBytes = 1 << 20; // an information file has a few thousand
    std::ifstream file( inPath / "Contents" / "Info.plist", std::ios::binary );
    std::vector<std::uint8_t> bytes( kMostBytes );
    file.read( reinterpret_cast<char*>( bytes.data() ), std::streamsize( bytes.size() ) );
    bytes.resize( std::size_t( std::max<std::streamsize>( file.gcount(), 0 ) ) );
    if ( bytes.empty() )
        return {};
    const XPlistReadResult information = ReadPropertyList( bytes );
    XText value;
    if ( const XPlistDictionary* dictionary = information.mValue.AsDictionary() )
        (void)dictionary->Get( inKey, value );
    return value;
}

// A script that was saved as an application says so by its creator code.
bool IsScriptApplication( const Path& inPath )
{
    if ( not HasExtension( inPath, { "app" } ) )
        return false;
    const XText signature = BundleInformation( inPath, CFSTR( "CFBundleSignature" ) );
    return signature == TextView( u"aplt" ) or signature == TextView( u"dplt" );
}
} // namespace

bool KVFileTypes::ShouldShowFolder( const Path& inPath )
{
    return IsDirectory( inPath ) and not IsPackage( inPath );
}

bool KVFileTypes::ShouldShowFileOrPackage( const Path& inPath )
{
    std::error_code ignored;
    return std::filesystem::exists( inPath, ignored ) and not ShouldShowFolder( inPath );
}

bool KVFileTypes::ShouldShowImage( const Path& inPath )
{
    return HasType( inPath, { u"public.image" } ) or HasExtension( inPath, { "png", "tiff", "tif", "jpeg", "jpg" } );
}

bool KVFileTypes::IsAppleScriptFilename( const Path& inPath )
{
    return HasType( inPath, { u"com.apple.applescript.text", u"com.apple.applescript.script" } ) or
        HasExtension( inPath, { "scpt", "scptd", "applescript" } ) or IsScriptApplication( inPath );
}

bool KVFileTypes::ShouldShowAppleScriptFilename( const Path& inPath )
{
    return IsAppleScriptFilename( inPath );
}

bool KVFileTypes::ShouldShowShellScriptFilename( const Path& inPath )
{
    return HasType( inPath, { u"public.shell-script" } ) or
        HasExtension( inPath, { "pl", "sh", "tcl", "tk", "py", "rb", "ruby" } );
}

bool KVFileTypes::ShouldShowSwiftScriptFilename( const Path& inPath )
{
    return HasType( inPath, { u"public.swift-source" } ) or HasExtension( inPath, { "swift" } );
}

bool KVFileTypes::ShouldShowJavaScriptFilename( const Path& inPath )
{
    return HasExtension( inPath, { "js", "javascript", "jscript" } );
}

bool KVFileTypes::ShouldShowTextFilename( const Path& inPath )
{
    return HasType( inPath, { u"public.text" } ) or HasExtension( inPath, { "txt", "text", "rtf", "rtfd", "md" } );
}

bool KVFileTypes::ShouldShowHTMLFilename( const Path& inPath )
{
    return HasType( inPath, { u"public.html" } ) or HasExtension( inPath, { "html", "htm", "xhtml" } );
}

bool KVFileTypes::ShouldShowTextFactoryFilename( const Path& inPath )
{
    return HasExtension( inPath, { "textfactory" } );
}

bool KVFileTypes::ShouldShowWorkflowFilename( const Path& inPath )
{
    return HasExtension( inPath, { "workflow" } );
}

bool KVFileTypes::ShouldShowApplication( const Path& inPath )
{
    return HasType( inPath, { u"com.apple.application" } ) or HasExtension( inPath, { "app" } );
}

XText KVFileTypes::BundleIdentifier( const Path& inPath )
{
    return BundleInformation( inPath, CFSTR( "CFBundleIdentifier" ) );
}
