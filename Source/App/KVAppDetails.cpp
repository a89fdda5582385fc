#include "App/KVAppDetails.h"

#include "Defines/KVPreferences.h"
#include "Defines/TrashFile.h"
#include "Platform/Platform.h"
#include "Platform/RunningApplications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace
{
constexpr TextView kFolderName = u"Running Engine Details";
constexpr double k2001 = 978307200;
constexpr double kSameTime = 3.5011993304578937e-07; // three times the rounding of a time of today

bool IsAllDigits( const std::string& inName )
{
    return not inName.empty() and inName.find_first_not_of( "0123456789" ) == std::string::npos;
}

/// Absent for a number that no process has.
std::optional<std::int64_t> ProcessFromName( const std::string& inName )
{
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars( inName.data(), inName.data() + inName.size(), number );
    if ( error != std::errc() )
        return {};
    return number;
}

void DeleteFile( const std::filesystem::path& inPath )
{
    if ( XFileCalls::Current().Unlink( inPath ) != 0 )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't remove %@: %s", inPath, std::strerror( errno ) );
}
} // namespace

KVAppDetails KVAppDetails::ForExecutable( const std::filesystem::path& inExecutable )
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( inExecutable, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
        return {};
    return { double( facts.mModifiedSeconds ) - k2001 + double( facts.mModifiedNanoseconds ) * 1e-9,
        std::int64_t( facts.mSize ) };
}

KVAppDetails KVAppDetails::GetCurrent()
{
    const auto engine = Platform::Current().RunningApplications().EngineExecutable();
    return engine ? ForExecutable( *engine ) : KVAppDetails();
}

KVAppDetails KVAppDetails::GetAppDetailsFromEngine( std::int64_t inProcessIdentifier )
{
    const auto file = FileFor( inProcessIdentifier );
    XFileStatus facts;
    if ( XFileCalls::Current().GetLinkFacts( file, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
        return {};
    const XFileContent content = ReadWholeFile( file, kBytes );
    return content.mError ? KVAppDetails() : FromBytes( content.mBytes.Span() );
}

std::filesystem::path KVAppDetails::FileFor( std::int64_t inProcessIdentifier )
{
    return KVPreferences::FilePath( kFolderName, TextFromASCII( std::to_string( inProcessIdentifier ) ) );
}

KVAppDetails::Bytes KVAppDetails::ToBytes() const
{
    Bytes bytes;
    std::memcpy( bytes.data(), &mModificationTime, sizeof( mModificationTime ) );
    std::memcpy( bytes.data() + sizeof( mModificationTime ), &mSize, sizeof( mSize ) );
    return bytes;
}

KVAppDetails KVAppDetails::FromBytes( std::span<const std::uint8_t> inBytes )
{
    KVAppDetails details;
    static_assert( sizeof( details.mModificationTime ) + sizeof( details.mSize ) == kBytes );
    if ( inBytes.size() != kBytes )
        return {};
    std::memcpy( &details.mModificationTime, inBytes.data(), sizeof( details.mModificationTime ) );
    std::memcpy( &details.mSize, inBytes.data() + sizeof( details.mModificationTime ), sizeof( details.mSize ) );
    return std::isfinite( details.mModificationTime ) and details.mSize >= 0 ? details : KVAppDetails();
}

void KVAppDetails::Start()
{
    const auto folder = KVPreferences::FilePath( kFolderName );
    std::vector<std::string> names;
    if ( XFileCalls::Current().ReadFolder( folder, names ) != 0 )
        return; // no engine has been here yet
    for ( const std::string& name : names )
    {
        const auto process = ProcessFromName( name );
        if ( not IsAllDigits( name ) )
        {
            XErrorHandler::PrivateMaybeLogFormat( "display", "Unknown file %@/%@, trashing", folder, name );
            kvr_trashOrSetAside( folder / name, u"a file among those that running engines leave" );
        }
        else if ( not process or not Platform::Current().RunningApplications().ProcessExists( *process ) )
        {
            XErrorHandler::PrivateMaybeLogFormat( "display", "Delete old file %@/%@", folder, name );
            DeleteFile( folder / name );
        }
    }
}

bool KVAppDetails::Same( const KVAppDetails& inOther ) const
{
    return mSize == inOther.mSize and std::abs( mModificationTime - inOther.mModificationTime ) <= kSameTime;
}
