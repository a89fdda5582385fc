#include "Utility/Text/PathHelpers.h"

#include "Utility/Text/FileHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "Utility/Text/URLFields.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace
{
namespace fs = std::filesystem;

constexpr char16_t kSlash = u'/';

// The root alone keeps its slash.
TextView WithoutTrailingSlashes( TextView inPath )
{
    while ( inPath.size() > 1 and inPath.ends_with( kSlash ) )
        inPath.remove_suffix( 1 );
    return inPath;
}

TextView LastComponent( TextView inPath )
{
    inPath = WithoutTrailingSlashes( inPath );
    if ( inPath == u"/" )
        return inPath;
    const std::size_t slash = inPath.rfind( kSlash );
    return slash == TextView::npos ? inPath : inPath.substr( slash + 1 );
}

// The dot before the extension of a component, or npos.
std::size_t ExtensionDot( TextView inComponent )
{
    const std::size_t dot = inComponent.rfind( u'.' );
    if ( dot == TextView::npos or dot + 1 == inComponent.size() )
        return TextView::npos;
    const bool allDots = inComponent.substr( 0, dot ).find_first_not_of( u'.' ) == TextView::npos;
    return allDots ? TextView::npos : dot;
}

// The components, without empty ones; an absolute path's first is "/".
std::vector<TextView> Components( TextView inPath )
{
    std::vector<TextView> result;
    if ( inPath.starts_with( kSlash ) )
        result.push_back( inPath.substr( 0, 1 ) );
    for ( std::size_t at = 0; at < inPath.size(); )
    {
        const std::size_t end = std::min( inPath.find( kSlash, at ), inPath.size() );
        if ( end > at )
            result.push_back( inPath.substr( at, end - at ) );
        at = end + 1;
    }
    return result;
}

// The home folder of a user, of this one for an empty name.
std::optional<Text> HomeFolder( TextView inUser )
{
    if ( const char* home = std::getenv( "HOME" ); inUser.empty() and home and *home )
        return Text( WithoutTrailingSlashes( TextFromUTF8( home ) ) );

    if ( inUser.find( u'\0' ) != TextView::npos ) // the call below would see another, shorter name
        return {};
    const std::string user = UTF8FromText( inUser );
    std::vector<char> buffer( 16384 );
    passwd entry{};
    passwd* found = nullptr;
    if ( inUser.empty() )
        getpwuid_r( getuid(), &entry, buffer.data(), buffer.size(), &found );
    else
        getpwnam_r( user.c_str(), &entry, buffer.data(), buffer.size(), &found );
    if ( not found or not found->pw_dir )
        return {};
    return Text( WithoutTrailingSlashes( TextFromUTF8( found->pw_dir ) ) );
}

// As far as the path exists its links are followed; what doesn't exist is kept by its names.
std::optional<Text> WithLinksFollowed( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    if ( not path )
        return {};
    std::error_code error;
    const fs::path result = fs::weakly_canonical( *path, error );
    if ( error )
        return {};
    return TextFromUTF8( result.native() );
}

TextView WithoutLastComponent( TextView inPath )
{
    const TextView path = WithoutTrailingSlashes( inPath );
    const std::size_t slash = path.rfind( kSlash );
    if ( slash == TextView::npos )
        return {};
    return WithoutTrailingSlashes( path.substr( 0, std::max<std::size_t>( slash, 1 ) ) );
}

// A path that is too long for the system names nothing, and costs nothing to ask for.
bool IsLink( const Text& inPath )
{
    struct stat status;
    return inPath.size() < PATH_MAX and inPath.find( u'\0' ) == Text::npos and
        ::lstat( UTF8FromText( inPath ).c_str(), &status ) == 0 and S_ISLNK( status.st_mode );
}

// To the folder above: that of the target, where the folder is a link.
void GoUp( Text& ioPath )
{
    if ( IsLink( ioPath ) )
        ioPath = WithLinksFollowed( ioPath ).value_or( ioPath );
    ioPath.resize( WithoutLastComponent( ioPath ).size() );
}
} // namespace

bool kvr_pathIsAbsolute( TextView inPath )
{
    return inPath.starts_with( kSlash ) or inPath.starts_with( u'~' );
}

Text lastPathComponent( TextView inPath )
{
    return Text( LastComponent( inPath ) );
}

Text stringByDeletingLastPathComponent( TextView inPath )
{
    return Text( WithoutLastComponent( inPath ) );
}

Text stringByAppendingPathComponent( TextView inPath, TextView inComponent )
{
    while ( inComponent.starts_with( kSlash ) and not inPath.empty() )
        inComponent.remove_prefix( 1 );
    inComponent = WithoutTrailingSlashes( inComponent );
    Text result( WithoutTrailingSlashes( inPath ) );
    if ( inComponent.empty() )
        return result;
    if ( not result.empty() and not result.ends_with( kSlash ) )
        result += kSlash;
    return result += inComponent;
}

Text pathExtension( TextView inPath )
{
    const TextView component = LastComponent( inPath );
    const std::size_t dot = ExtensionDot( component );
    return dot == TextView::npos ? Text() : Text( component.substr( dot + 1 ) );
}

Text stringByDeletingPathExtension( TextView inPath )
{
    const TextView path = WithoutTrailingSlashes( inPath );
    const TextView component = LastComponent( path );
    const std::size_t dot = ExtensionDot( component );
    if ( dot == TextView::npos )
        return Text( path );
    return Text( path.substr( 0, path.size() - ( component.size() - dot ) ) );
}

Text stringByExpandingTildeInPath( TextView inPath )
{
    if ( not inPath.starts_with( u'~' ) )
        return Text( WithoutTrailingSlashes( inPath ) );
    const std::size_t slash = std::min( inPath.find( kSlash ), inPath.size() );
    const auto home = HomeFolder( inPath.substr( 1, slash - 1 ) );
    return home ? stringByAppendingPathComponent( *home, inPath.substr( slash ) )
                : Text( WithoutTrailingSlashes( inPath ) );
}

Text stringByAbbreviatingWithTildeInPath( TextView inPath )
{
    const TextView path = WithoutTrailingSlashes( inPath );
    const auto home = HomeFolder( {} );
    // A home at the root would make every path its own.
    if ( not home or home->size() < 2 or not path.starts_with( *home ) )
        return Text( path );
    const TextView rest = path.substr( home->size() );
    if ( not rest.empty() and not rest.starts_with( kSlash ) )
        return Text( path );
    return u'~' + Text( rest );
}

Text stringByResolvingSymlinksInPath( TextView inPath )
{
    const Text path = stringByExpandingTildeInPath( inPath );
    // A relative path stays one: where it would start from isn't said.
    if ( not path.starts_with( kSlash ) )
        return stringByStandardizingPath( path );
    return Text( WithoutTrailingSlashes( WithLinksFollowed( path ).value_or( path ) ) );
}

Text stringByStandardizingPath( TextView inPath )
{
    const Text path = stringByExpandingTildeInPath( inPath );
    const bool absolute = path.starts_with( kSlash );
    Text result;
    for ( const TextView component : Components( path ) )
    {
        if ( component == u"." )
            continue;
        if ( component == u".." and absolute )
            GoUp( result );
        else
        {
            // In place: a copy of the path for each component would take the square of the path's length.
            if ( not result.empty() and not result.ends_with( kSlash ) )
                result += kSlash;
            result += component;
        }
    }
    return result.empty() and not path.empty() ? Text( u"." ) : result;
}

bool kvr_nameHasAppSuffix( TextView inName )
{
    return inName.size() > 4 and kvr_caseInsensitiveIsEqualToString( inName.substr( inName.size() - 4 ), u".app" );
}

Text kvr_nameWithoutAppSuffix( TextView inName )
{
    return Text( kvr_nameHasAppSuffix( inName ) ? inName.substr( 0, inName.size() - 4 ) : inName );
}

Text kvr_saferFileName( TextView inName )
{
    Text result( inName );
    for ( char16_t& unit : result )
    {
        if ( TextView( u"!,;:/\\\r\n" ).find( unit ) != TextView::npos )
            unit = u'-';
    }
    return result;
}

Text urlForPath( TextView inPath )
{
    const auto path = kvr_fileSystemPath( inPath );
    if ( not path )
        return {};
    std::error_code error;
    const fs::path absolute = fs::absolute( *path, error );
    Text text = error ? Text( inPath ) : TextFromUTF8( absolute.native() );
    if ( not text.ends_with( kSlash ) and kvr_existsDirectory( text ) )
        text += kSlash;
    // What a path of a URL may hold besides letters and digits; ";" and "?" would begin something else.
    return u"file://" + kvr_percentEncodeExcept( text, "/-._~!$&'()*+,=:@" );
}

int pathStandardCompare( TextView inPath, TextView inOther )
{
    const auto components = Components( inPath ), others = Components( inOther );
    for ( std::size_t i = 0; i < std::min( components.size(), others.size() ); ++i )
    {
        if ( const int order = localizedStandardCompare( components[i], others[i] ) )
            return order;
    }
    return components.size() < others.size() ? -1 : components.size() > others.size() ? 1 : 0;
}
