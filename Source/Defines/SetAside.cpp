// A file's name is its kind, "2024-03-01T09-05-59Z", a number of 6 digits or more, and 16 hexadecimal digits.
#include "Defines/SetAside.h"

#include "Defines/KVPreferences.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <mutex>
#include <sha2.h>
#include <system_error>

namespace
{
using SetAside::Entry;
using SetAside::Kind;

constexpr std::size_t kDigestDigits = 16, kMostNumberDigits = 18;
constexpr std::size_t kMostFileBytes = std::size_t( 2 ) << 30;
constexpr double kTemporarySeconds = 3600.0; // nobody writes one file for so long
constexpr std::uint32_t kFolderMode = 0700;
constexpr auto kEpoch = std::chrono::sys_days( std::chrono::year( 2001 ) / 1 / 1 );
constexpr double k2001 = 978307200; // in seconds since 1970

std::string Digest( std::span<const std::uint8_t> inBytes )
{
    char digits[SHA256_DIGEST_STRING_LENGTH] = {};
    return std::string( SHA256Data( inBytes.data(), inBytes.size(), digits ) ).substr( 0, kDigestDigits );
}

std::string UTCName( XAbsoluteTime inTime )
{
    // A clock may say anything; names have four digits for the year.
    constexpr auto kFirst = std::chrono::sys_days( std::chrono::year( 1 ) / 1 / 1 ) - kEpoch;
    constexpr auto kLast = std::chrono::sys_days( std::chrono::year( 9999 ) / 12 / 31 ) - kEpoch;
    const double seconds = std::clamp( std::floor( inTime ), double( std::chrono::seconds( kFirst ).count() ),
        double( std::chrono::seconds( kLast ).count() ) );
    const auto time = kEpoch + std::chrono::seconds( std::int64_t( seconds ) );
    const auto day = std::chrono::floor<std::chrono::days>( time );
    const std::chrono::year_month_day date( day );
    const std::chrono::hh_mm_ss clock( time - day );
    return fmt::format( "{:04}-{:02}-{:02}T{:02}-{:02}-{:02}Z", int( date.year() ), unsigned( date.month() ),
        unsigned( date.day() ), clock.hours().count(), clock.minutes().count(), clock.seconds().count() );
}

/// A number of digits alone: no sign, no blank.
std::optional<std::uint64_t> NumberFrom( std::string_view inDigits )
{
    std::uint64_t number = 0;
    const char* const end = inDigits.data() + inDigits.size();
    if ( inDigits.empty() or inDigits.size() > kMostNumberDigits or
        inDigits.find_first_not_of( "0123456789" ) != std::string_view::npos or
        std::from_chars( inDigits.data(), end, number ).ptr != end )
        return {};
    return number;
}

std::optional<XAbsoluteTime> TimeFromName( std::string_view inName )
{
    constexpr std::string_view kForm = "0000-00-00T00-00-00Z"; // a digit where it has a 0
    if ( inName.size() != kForm.size() )
        return {};
    for ( std::size_t i = 0; i < kForm.size(); ++i )
    {
        if ( kForm[i] == '0' ? inName[i] < '0' or inName[i] > '9' : inName[i] != kForm[i] )
            return {};
    }
    const auto Part = [inName]( std::size_t inStart, std::size_t inLength ) {
        return unsigned( *NumberFrom( inName.substr( inStart, inLength ) ) );
    };
    const std::chrono::year_month_day date{ std::chrono::year( int( Part( 0, 4 ) ) ),
        std::chrono::month( Part( 5, 2 ) ), std::chrono::day( Part( 8, 2 ) ) };
    const unsigned hour = Part( 11, 2 ), minute = Part( 14, 2 ), second = Part( 17, 2 );
    if ( not date.ok() or hour > 23 or minute > 59 or second > 59 )
        return {};
    return double( std::chrono::seconds( std::chrono::sys_days( date ) - kEpoch ).count() ) + hour * 3600.0 +
        minute * 60.0 + second;
}

/// Cuts the last word off a name; empty when there is none.
std::string_view TakeLastWord( std::string_view& ioName )
{
    const std::size_t blank = ioName.rfind( ' ' );
    if ( blank == std::string_view::npos )
        return {};
    const std::string_view word = ioName.substr( blank + 1 );
    ioName.remove_suffix( ioName.size() - blank );
    return word;
}

std::filesystem::path NameOf( Kind inKind, XAbsoluteTime inTime, std::uint64_t inNumber, const std::string& inDigest )
{
    return fmt::format(
        "{} {} {:06} {}", SetAside::kKindNames[std::size_t( inKind )], UTCName( inTime ), inNumber, inDigest );
}

/// Absent for what we didn't put there: another name, or not a file.
std::optional<Entry> EntryFromFile( const std::filesystem::path& inPath )
{
    const std::string name = inPath.filename().native();
    std::string_view rest = name;
    const std::string_view digest = TakeLastWord( rest );
    const auto number = NumberFrom( TakeLastWord( rest ) );
    const auto time = TimeFromName( TakeLastWord( rest ) );
    const auto kind = std::find( std::begin( SetAside::kKindNames ), std::end( SetAside::kKindNames ), rest );
    XFileStatus facts;
    if ( digest.size() != kDigestDigits or digest.find_first_not_of( "0123456789abcdef" ) != std::string_view::npos or
        not number or not time or kind == std::end( SetAside::kKindNames ) or
        XFileCalls::Current().GetLinkFacts( inPath, facts ) != 0 or facts.mKind != XFileStatus::Kind::kRegular )
        return {};
    return Entry{ inPath, Kind( kind - std::begin( SetAside::kKindNames ) ), *time, std::string( digest ), facts.mSize,
        *number };
}

std::mutex& gMutex()
{
    static std::mutex gTheMutex;
    return gTheMutex;
}

/// The recovery snapshot that this run has made.
struct OurRecovery
{
    explicit OurRecovery( XWork& ) {}
    std::filesystem::path mPath; // under the mutex
};

bool IsFolderOfItsOwn( const std::filesystem::path& inFolder )
{
    XFileStatus facts;
    return XFileCalls::Current().GetLinkFacts( inFolder, facts ) == 0 and facts.mKind == XFileStatus::Kind::kFolder;
}

std::vector<std::string> NamesInFolder()
{
    std::vector<std::string> names;
    // What a link leads to isn't ours to cull.
    if ( IsFolderOfItsOwn( SetAside::Folder() ) )
        (void)XFileCalls::Current().ReadFolder( SetAside::Folder(), names );
    return names;
}

std::vector<Entry> ListLocked()
{
    std::vector<Entry> entries;
    const auto folder = SetAside::Folder();
    for ( const std::string& name : NamesInFolder() )
    {
        if ( auto entry = EntryFromFile( folder / name ) )
            entries.push_back( std::move( *entry ) );
    }
    std::stable_sort( entries.begin(), entries.end(), []( const Entry& a, const Entry& b ) {
        return a.mNumber != b.mNumber ? a.mNumber > b.mNumber : a.mTime > b.mTime;
    } );
    return entries;
}

void RemoveLocked( const Entry& inEntry )
{
    if ( XFileCalls::Current().Unlink( inEntry.mPath ) != 0 and errno != ENOENT )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't remove %@", inEntry.mPath );
}

std::optional<XFileError> PrepareFolder()
{
    XFileCalls& calls = XFileCalls::Current();
    const auto folder = SetAside::Folder();
    if ( auto error = MakeFolders( folder ) )
        return error;
    if ( not IsFolderOfItsOwn( folder ) )
        return XFileError{ "use folder", folder, 0, "it is a link", {} };
    const XOpenFile file = XOpenFile::Open( folder, XFileCalls::OpenFor::kFolder, calls );
    XFileStatus facts;
    if ( file and calls.GetFacts( file.Get(), facts ) == 0 and facts.mMode != kFolderMode )
        (void)calls.ChangeMode( file.Get(), kFolderMode );
    return {};
}

/// Gives bytes that are there already their new name. False when they aren't, or are damaged.
bool RenameSame( const std::vector<Entry>& inEntries, Kind inKind, const std::string& inDigest,
    std::span<const std::uint8_t> inBytes, const std::filesystem::path& inPath )
{
    return std::any_of( inEntries.begin(), inEntries.end(), [&]( const Entry& entry ) {
        if ( entry.mKind != inKind or entry.mDigest != inDigest or entry.mSize != inBytes.size() )
            return false;
        const XFileContent content = ReadWholeFile( entry.mPath, kMostFileBytes );
        return not content.mError and std::ranges::equal( content.mBytes.Span(), inBytes ) and
            XFileCalls::Current().Rename( entry.mPath, inPath ) == 0;
    } );
}

void ReplaceOlderRecoveries( const std::vector<Entry>& inOlder, const Entry& inNew )
{
    auto& ours = XWork::Current().Shared<OurRecovery>().mPath;
    for ( const Entry& entry : inOlder )
    {
        // The same bytes have the new name already.
        if ( entry.mKind != Kind::kRecovery or entry.mDigest == inNew.mDigest )
            continue;
        if ( entry.mPath == ours )
            RemoveLocked( entry );
        else
            (void)XFileCalls::Current().RenameToNew(
                entry.mPath, SetAside::Folder() / NameOf( Kind::kUnsaved, entry.mTime, entry.mNumber, entry.mDigest ) );
    }
    ours = inNew.mPath;
}

/// Takes out the oldest while there are too many bytes, and then what is only old.
void CullLocked( std::size_t inMostAged )
{
    auto entries = ListLocked();
    std::uint64_t bytes = 0;
    for ( const Entry& entry : entries )
        bytes += entry.mSize;
    const double now = XClock::Current().Now();
    while ( entries.size() > SetAside::kFewest )
    {
        const Entry& oldest = entries.back();
        if ( bytes <= SetAside::kMostBytes )
        {
            if ( inMostAged == 0 or not( now - oldest.mTime > SetAside::kKeepSeconds ) )
                return;
            --inMostAged;
        }
        bytes -= oldest.mSize;
        RemoveLocked( oldest );
        entries.pop_back();
    }
}

void RemoveTemporaries()
{
    XFileCalls& calls = XFileCalls::Current();
    for ( const std::string& name : NamesInFolder() )
    {
        XFileStatus facts;
        const auto path = SetAside::Folder() / name;
        if ( name.starts_with( XAtomicFile::kTemporaryPrefix ) and calls.GetLinkFacts( path, facts ) == 0 and
            facts.mKind == XFileStatus::Kind::kRegular and
            XClock::Current().Now() - ( double( facts.mModifiedSeconds ) - k2001 ) > kTemporarySeconds )
            (void)calls.Unlink( path );
    }
}

/// A new name for each that is kept, even when the clock stands still.
Entry NewEntry( const std::vector<Entry>& inOlder, Kind inKind, std::string inDigest, std::uint64_t inSize )
{
    Entry entry{ {}, inKind, XClock::Current().Now(), std::move( inDigest ), inSize,
        inOlder.empty() ? 1 : inOlder.front().mNumber + 1 };
    entry.mPath = SetAside::Folder() / NameOf( inKind, entry.mTime, entry.mNumber, entry.mDigest );
    return entry;
}

/// Makes the moves into and out of a folder outlast a power cut, where the volume can.
void SyncFolder( const std::filesystem::path& inFolder )
{
    XFileCalls& calls = XFileCalls::Current();
    const XOpenFile folder = XOpenFile::Open( inFolder, XFileCalls::OpenFor::kFolder, calls );
    if ( not folder or calls.FSync( folder.Get() ) != 0 )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't sync folder %@", inFolder );
}

std::optional<XFileError> Failed( XFileError inError, TextView inReason )
{
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't set aside %@: %@", inReason, inError.Describe() );
    return inError;
}
} // namespace

std::filesystem::path SetAside::Folder()
{
    return KVPreferences::FilePath( u"Set Aside" );
}

std::optional<XFileError> SetAside::Keep(
    Kind inKind, std::span<const std::uint8_t> inBytes, TextView inReason, Entry* outEntry )
{
    const std::scoped_lock lock( gMutex() );
    if ( auto error = PrepareFolder() )
        return Failed( std::move( *error ), inReason );

    const auto older = ListLocked();
    Entry entry = NewEntry( older, inKind, Digest( inBytes ), inBytes.size() );
    if ( not RenameSame( older, inKind, entry.mDigest, inBytes, entry.mPath ) )
    {
        if ( auto error = XAtomicFile::Write( entry.mPath, inBytes, XAtomicFile::Links::kReplace ) )
            return Failed( std::move( *error ), inReason );
    }
    XErrorHandler::PrivateMaybeLogFormat( "always", "Set aside as %@: %@", entry.mPath, inReason );

    if ( inKind == Kind::kRecovery )
        ReplaceOlderRecoveries( older, entry );
    CullLocked( 0 );
    if ( outEntry )
        *outEntry = std::move( entry );
    return {};
}

std::optional<XFileError> SetAside::KeepFile( Kind inKind, const std::filesystem::path& inFile, TextView inReason )
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( inFile, facts ) != 0 )
    {
        const int code = errno;
        if ( code == ENOENT )
            return {};
        return Failed( { "look at", inFile, code, std::generic_category().message( code ), {} }, inReason );
    }
    // A pipe would be waited for until somebody writes into it.
    if ( facts.mKind != XFileStatus::Kind::kRegular )
        return Failed( { "read", inFile, 0, "it isn't a regular file", {} }, inReason );
    const XFileContent content = ReadWholeFile( inFile, kMostFileBytes );
    if ( content.mError )
    {
        if ( content.mError->mCode == ENOENT )
            return {};
        return Failed( *content.mError, inReason );
    }
    return Keep( inKind, content.mBytes.Span(), inReason );
}

std::optional<XFileError> SetAside::MoveFile( Kind inKind, const std::filesystem::path& inFile, TextView inReason )
{
    const std::scoped_lock lock( gMutex() );
    if ( auto error = PrepareFolder() )
        return Failed( std::move( *error ), inReason );
    const Entry entry = NewEntry( ListLocked(), inKind, std::string( kDigestDigits, '0' ), 0 );
    if ( XFileCalls::Current().RenameToNew( inFile, entry.mPath ) != 0 )
    {
        const int code = errno;
        if ( code == ENOENT )
            return {};
        return Failed( { "move", inFile, code, std::generic_category().message( code ), {} }, inReason );
    }
    SyncFolder( Folder() );
    SyncFolder( inFile.parent_path() );
    XErrorHandler::PrivateMaybeLogFormat( "always", "Set aside as %@: %@", entry.mPath, inReason );
    return {};
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
    RemoveLocked( inEntry );
}

void SetAside::Cull()
{
    const std::scoped_lock lock( gMutex() );
    RemoveTemporaries();
    CullLocked( kMostAgedAtOnce );
}
