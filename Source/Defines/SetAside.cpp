// A file's name is its kind, "2024-03-01T09-05-59Z" and 16 hexadecimal digits.
#include "Defines/SetAside.h"

#include "Defines/KVPreferences.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <mutex>
#include <sha2.h>

namespace
{
constexpr std::size_t kDigestDigits = 16;
constexpr std::size_t kMostFileBytes = std::size_t( 2 ) << 30;
constexpr auto kEpoch = std::chrono::sys_days( std::chrono::year( 2001 ) / 1 / 1 );

std::string Digest( std::span<const std::uint8_t> inBytes )
{
    char digits[SHA256_DIGEST_STRING_LENGTH] = {};
    return std::string( SHA256Data( inBytes.data(), inBytes.size(), digits ) ).substr( 0, kDigestDigits );
}

std::string UTCName( XAbsoluteTime inTime )
{
    const auto time = kEpoch + std::chrono::seconds( std::int64_t( std::floor( inTime ) ) );
    const auto day = std::chrono::floor<std::chrono::days>( time );
    const std::chrono::year_month_day date( day );
    const std::chrono::hh_mm_ss clock( time - day );
    return fmt::format( "{:04}-{:02}-{:02}T{:02}-{:02}-{:02}Z", int( date.year() ), unsigned( date.month() ),
        unsigned( date.day() ), clock.hours().count(), clock.minutes().count(), clock.seconds().count() );
}

std::optional<XAbsoluteTime> TimeFromName( const std::string& inName )
{
    int year = 0;
    unsigned month = 0, day = 0, hour = 0, minute = 0, second = 0;
    int used = 0;
    if ( std::sscanf(
             inName.c_str(), "%4d-%2u-%2uT%2u-%2u-%2uZ%n", &year, &month, &day, &hour, &minute, &second, &used ) != 6 or
        std::size_t( used ) != inName.size() )
        return {};
    const std::chrono::year_month_day date{ std::chrono::year( year ), std::chrono::month( month ),
        std::chrono::day( day ) };
    if ( not date.ok() )
        return {};
    return double( std::chrono::seconds( std::chrono::sys_days( date ) - kEpoch ).count() ) + hour * 3600.0 +
        minute * 60.0 + second;
}

std::optional<SetAside::Entry> EntryFromFile( const std::filesystem::path& inPath )
{
    const std::string name = inPath.filename().native();
    const std::size_t digest = name.rfind( ' ' );
    const std::size_t time =
        digest == std::string::npos or digest == 0 ? std::string::npos : name.rfind( ' ', digest - 1 );
    if ( time == std::string::npos )
        return {};
    const auto kind =
        std::find( std::begin( SetAside::kKindNames ), std::end( SetAside::kKindNames ), name.substr( 0, time ) );
    const auto when = TimeFromName( name.substr( time + 1, digest - time - 1 ) );
    XFileStatus facts;
    if ( kind == std::end( SetAside::kKindNames ) or not when or
        XFileCalls::Current().GetLinkFacts( inPath, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
        return {};
    return SetAside::Entry{ inPath, SetAside::Kind( kind - std::begin( SetAside::kKindNames ) ), *when,
        name.substr( digest + 1 ), facts.mSize };
}

std::mutex& gMutex()
{
    static std::mutex gTheMutex;
    return gTheMutex;
}

std::vector<SetAside::Entry> ListLocked()
{
    std::vector<std::string> names;
    std::vector<SetAside::Entry> entries;
    const auto folder = SetAside::Folder();
    (void)XFileCalls::Current().ReadFolder( folder, names );
    for ( const std::string& name : names )
    {
        if ( auto entry = EntryFromFile( folder / name ) )
            entries.push_back( std::move( *entry ) );
    }
    std::stable_sort( entries.begin(), entries.end(),
        []( const SetAside::Entry& a, const SetAside::Entry& b ) { return a.mTime > b.mTime; } );
    return entries;
}
} // namespace

std::filesystem::path SetAside::Folder()
{
    return KVPreferences::FilePath( u"Set Aside" );
}

std::optional<XFileError> SetAside::Keep( Kind inKind, std::span<const std::uint8_t> inBytes, TextView inReason )
{
    const std::scoped_lock lock( gMutex() );
    const auto folder = Folder();
    auto error = MakeFolders( folder );
    const std::string digest = Digest( inBytes );
    const auto path = folder /
        fmt::format( "{} {} {}", kKindNames[std::size_t( inKind )], UTCName( XClock::Current().Now() ), digest );
    if ( not error )
        error = XAtomicFile::Write( path, inBytes, XAtomicFile::Links::kReplace );
    if ( error )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't set aside %@: %@", inReason, error->Describe() );
        return error;
    }
    // The older copy of the same bytes goes once the newer one is safe.
    for ( const Entry& entry : ListLocked() )
    {
        if ( entry.mKind == inKind and entry.mDigest == digest and entry.mPath != path )
            (void)XFileCalls::Current().Unlink( entry.mPath );
    }
    XErrorHandler::PrivateMaybeLogFormat( "always", "Set aside as %@: %@", path, inReason );
    return {};
}

std::optional<XFileError> SetAside::KeepFile( Kind inKind, const std::filesystem::path& inFile, TextView inReason )
{
    const XFileContent content = ReadWholeFile( inFile, kMostFileBytes );
    if ( content.mError )
    {
        if ( content.mError->mCode == ENOENT )
            return {};
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Can't set aside %@: %@", inReason, content.mError->Describe() );
        return content.mError;
    }
    return Keep( inKind, content.mBytes.Span(), inReason );
}

std::vector<SetAside::Entry> SetAside::List()
{
    const std::scoped_lock lock( gMutex() );
    return ListLocked();
}

std::vector<SetAside::Entry> SetAside::List( Kind inKind )
{
    auto entries = List();
    std::erase_if( entries, [inKind]( const Entry& entry ) { return entry.mKind != inKind; } );
    return entries;
}

void SetAside::Remove( const Entry& inEntry )
{
    const std::scoped_lock lock( gMutex() );
    if ( XFileCalls::Current().Unlink( inEntry.mPath ) != 0 and errno != ENOENT )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't remove %@", inEntry.mPath );
}

void SetAside::Cull()
{
    auto entries = List();
    std::uint64_t bytes = 0;
    for ( const Entry& entry : entries )
        bytes += entry.mSize;
    const double now = XClock::Current().Now();
    while ( entries.size() > kFewest and ( bytes > kMostBytes or now - entries.back().mTime > kKeepSeconds ) )
    {
        bytes -= entries.back().mSize;
        Remove( entries.back() );
        entries.pop_back();
    }
}
