#include "App/FileInput.h"

#include "App/Output.h"
#include "App/PropertyListJSON.h"

#include <cerrno>
#include <fmt/format.h>
#include <iterator>

namespace
{
// What the user can do about it.
std::string AdviceFor( const XFileContent& inContent )
{
    if ( inContent.mFacts.mKind == XFileStatus::Kind::kFolder or inContent.mError->mCode == EISDIR )
        return "; name a file in it";
    switch ( inContent.mError->mCode )
    {
    case ENOENT:
    case ENOTDIR:
        return "; check the name and the folder";
    case EACCES:
    case EPERM:
        return "; ask its owner for permission to read it";
    case ELOOP:
        return "; name the file that the links should lead to";
    default:
        return "";
    }
}

std::string SentenceFor( const std::string& inPath, const XFileContent& inContent )
{
    const bool isTooLarge = inContent.mError->mCode == 0 and inContent.mFacts.mKind != XFileStatus::Kind::kFolder and
        inContent.mFacts.mSize > FileInput::kMostBytes;
    if ( isTooLarge )
        return fmt::format( "{} is larger than the limit of {} MiB; split it first", QuotedPath( inPath ),
            FileInput::kMostBytes >> 20 );
    return fmt::format(
        "can't read {}: {}{}", QuotedPath( inPath ), inContent.mError->mReason, AdviceFor( inContent ) );
}
} // namespace

XBytes FileInput::Read( const std::string& inPath ) const
{
    XFileContent content = inPath == "-" ? mReadStandardInput( kMostBytes ) : ReadWholeFile( inPath, kMostBytes );
    if ( content.mError )
        throw FileTrouble( SentenceFor( inPath, content ) );
    if ( content.mBytes.size() == 0 )
        throw FileTrouble( fmt::format( "{} is empty; a property list has at least one value", QuotedPath( inPath ) ) );
    return std::move( content.mBytes );
}

const char* NameOf( PropertyListInput::Format inFormat )
{
    constexpr const char* kNames[] = { "binary", "xml", "json" };
    static_assert( std::size( kNames ) == std::size_t( PropertyListInput::Format::kJSON ) + 1 );
    return kNames[std::size_t( inFormat )];
}

PropertyListInput ReadAnyPropertyList( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits )
{
    using enum PropertyListInput::Format;
    const auto describe = []( const std::optional<XPlistFault>& inFault ) {
        return inFault ? std::optional( inFault->Describe() ) : std::nullopt;
    };
    if ( BeginsAsJSON( inBytes ) )
    {
        XPlistJSONResult json = ReadPropertyListJSON( inBytes, inLimits );
        return { std::move( json.mValue ), describe( json.mFault ), std::move( json.mNotes ), kJSON };
    }
    XPlistReadResult read = ReadPropertyList( inBytes, inLimits );
    return { std::move( read.mValue ), describe( read.mFault ), std::move( read.mNotes ),
        read.mFormat == XPlistFormat::kBinary ? kBinary : kXML };
}

PropertyListInput ReadPropertyListFile(
    const FileInput& inInput, const std::string& inPath, const XPlistLimits& inLimits )
{
    const XBytes bytes = inInput.Read( inPath );
    PropertyListInput input = ReadAnyPropertyList( bytes.Span(), inLimits );
    if ( input.mFault )
    {
        const bool isJSON = input.mFormat == PropertyListInput::Format::kJSON;
        throw FileTrouble( fmt::format( "{} can't be understood as {}: {}; {}", QuotedPath( inPath ),
            isJSON ? "JSON" : "a property list", *input.mFault,
            isJSON ? "mend it there" : "if it is meant to be one, it is damaged: try another copy" ) );
    }
    return input;
}
