#include "Macros/MRevisions.h"

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroFileLoading.h"
#include "Macros/RevisionDates.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{
constexpr char16_t kFolder[] = u"Revisions Version 9", kFolderBefore[] = u"Revisions Version 8";
// What a crash leaves of the copy has another name, so that the next start doesn't take a part for the whole.
constexpr char16_t kFolderInTheMaking[] = u"Revisions Version 9 Being Copied";
constexpr std::string_view kExtension = ".plist";
constexpr std::size_t kFewest = 8;      // fewer are left alone
constexpr std::size_t kMostAtATime = 3; // as long as there aren't more than the next line says
constexpr std::size_t kMostRevisions = 21;

std::vector<Text> ListFolder( const std::filesystem::path& inFolder )
{
    std::vector<std::string> names;
    (void)XFileCalls::Current().ReadFolder( inFolder, names );
    std::vector<Text> dates;
    for ( const std::string& name : names )
    {
        if ( not name.ends_with( kExtension ) )
            continue;
        const Text date = TextFromUTF8( std::string_view( name ).substr( 0, name.size() - kExtension.size() ) );
        if ( MRevisions::IsDate( date ) )
            dates.push_back( date );
    }
    std::sort( dates.begin(), dates.end() );
    return dates;
}

std::filesystem::path PathIn( const std::filesystem::path& inFolder, TextView inDate )
{
    return inFolder / ( UTF8FromText( inDate ).append( kExtension ) );
}

bool Exists( const std::filesystem::path& inPath )
{
    XFileStatus facts;
    return XFileCalls::Current().GetLinkFacts( inPath, facts ) == 0;
}

/// The copy of the older revisions hasn't begun or, its folder being there, hasn't come to its end.
bool IsCopyWanted( const std::filesystem::path& inBefore, const std::filesystem::path& inMaking )
{
    return Exists( inMaking ) or ( Exists( inBefore ) and not Exists( MRevisions::Folder() ) );
}

std::optional<XFileError> RenameFolder( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
    if ( XFileCalls::Current().Rename( inFrom, inTo ) == 0 )
        return {};
    return XFileError{ "rename", inFrom, errno, std::strerror( errno ), {} };
}

/// Since an attempt that failed, revisions were saved: they stand, and the others come beside them.
std::optional<XFileError> MoveWhatIsMissing( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
    XFileCalls& calls = XFileCalls::Current();
    for ( const Text& date : ListFolder( inFrom ) )
    {
        const auto from = PathIn( inFrom, date );
        if ( calls.RenameToNew( from, PathIn( inTo, date ) ) != 0 and ( errno != EEXIST or calls.Unlink( from ) != 0 ) )
            return XFileError{ "move", from, errno, std::strerror( errno ), {} };
    }
    if ( calls.RemoveFolder( inFrom ) != 0 )
        return XFileError{ "remove", inFrom, errno, std::strerror( errno ), {} };
    return {};
}

/// The folder, and before it the one that says that older revisions have yet to be copied.
std::optional<XFileError> MakeRevisionsFolder()
{
    const auto making = KVPreferences::FilePath( kFolderInTheMaking );
    if ( IsCopyWanted( KVPreferences::FilePath( kFolderBefore ), making ) )
    {
        if ( auto error = MakeFolders( making ) )
            return error;
    }
    return MakeFolders( MRevisions::Folder() );
}

bool HoldsOtherBytes( const std::filesystem::path& inPath, std::span<const std::uint8_t> inBytes )
{
    const XFileContent there = MMacroFileLoading::ReadFile( inPath );
    if ( there.mError )
        return there.mError->mCode != ENOENT;
    const auto bytes = there.mBytes.Span();
    return bytes.size() != inBytes.size() or std::memcmp( bytes.data(), inBytes.data(), bytes.size() ) != 0;
}

// A clock that was set back, or an undo into yesterday, comes to a day that has its revision. A launch and a revert
// have theirs replaced each time, as is their sense.
bool KeepTheOneThatIsReplaced( TextView inDate, const MMacroFileDataPtr& inData )
{
    const auto path = MRevisions::PathOf( inDate );
    if ( inDate.starts_with( u"9999" ) or not HoldsOtherBytes( path, inData->Span() ) )
        return true;
    return not SetAside::KeepFile(
        SetAside::Kind::kRevision, path, u"another state of the day replaces the revision “" + Text( inDate ) + u"”" );
}
} // namespace

std::filesystem::path MRevisions::Folder()
{
    return KVPreferences::FilePath( kFolder );
}

std::filesystem::path MRevisions::PathOf( TextView inDate )
{
    return PathIn( Folder(), inDate );
}

bool MRevisions::IsDate( TextView inDate )
{
    constexpr TextView kForm = u"0000_00_00";
    if ( inDate.size() != kForm.size() )
        return false;
    for ( std::size_t i = 0; i < kForm.size(); ++i )
    {
        if ( kForm[i] == u'_' ? inDate[i] != u'_' : ( inDate[i] < u'0' or inDate[i] > u'9' ) )
            return false;
    }
    return true;
}

std::vector<Text> MRevisions::List()
{
    return ListFolder( Folder() );
}

MMacroFileDataPtr MRevisions::Read( TextView inDate )
{
    if ( not IsDate( inDate ) )
        return nullptr;
    XFileContent content = MMacroFileLoading::ReadFile( PathOf( inDate ) );
    if ( content.mError )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't read revision: %@", content.mError->Describe() );
        return nullptr;
    }
    return std::make_shared<const MMacroFileData>( std::move( content.mBytes ) );
}

void MRevisions::PrivateSaveRevision( TextView inDate, const MMacroFileDataPtr& inData )
{
    // The date may come from a file, and must not lead out of the folder.
    if ( not inData or not IsDate( inDate ) )
        return;
    const auto path = PathOf( inDate );
    if ( RevisionDates::IsBeforeVersionSaveDate( inDate ) and Exists( path ) )
        return;
    auto error = MakeRevisionsFolder();
    if ( not error and not KeepTheOneThatIsReplaced( inDate, inData ) )
        error = XFileError{ "keep", path, 0, "it couldn't be set aside", {} };
    if ( not error )
        error = XAtomicFile::Write( path, inData->Span(), XAtomicFile::Links::kReplace );
    if ( error )
    {
        XErrorBeep( "Preference revision write failed with exception\n" );
        XErrorHandler::PrivateMaybeLogFormat( "always", "Revision %@: %@", inDate, error->Describe() );
    }
}

void MRevisions::DeleteRevision( TextView inDate, Keep inKeep )
{
    const auto path = PathOf( inDate );
    if ( inKeep == Keep::kInSetAside and
        SetAside::KeepFile( SetAside::Kind::kRevision, path, u"the revision “" + Text( inDate ) + u"” goes" ) )
        return;
    if ( XFileCalls::Current().Unlink( path ) != 0 and errno != ENOENT )
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "Can't delete revision %@: %s", inDate, std::strerror( errno ) );
}

void MRevisions::Cull( Keep inKeep )
{
    auto dates = List();
    if ( dates.size() < kFewest )
        return;
    RevisionDates::RemoveAnyUncullableRevisions( dates );
    std::size_t deleted = 0;
    while (
        dates.size() - deleted > kMostRevisions or ( deleted < kMostAtATime and dates.size() - deleted >= kFewest ) )
        DeleteRevision( dates[deleted++], inKeep );
}

void MRevisions::CopyFromVersion8()
{
    const auto before = KVPreferences::FilePath( kFolderBefore ),
               making = KVPreferences::FilePath( kFolderInTheMaking );
    if ( not IsCopyWanted( before, making ) )
        return;
    auto error = MakeFolders( making );
    for ( const Text& date : ListFolder( before ) )
    {
        if ( error )
            break;
        const XFileContent content = MMacroFileLoading::ReadFile( PathIn( before, date ) );
        // One that can't be read stays where it is; the others come across.
        if ( content.mError )
            XErrorHandler::PrivateMaybeLogFormat( "always", "Can't copy revision: %@", content.mError->Describe() );
        else
            error = XAtomicFile::Write( PathIn( making, date ), content.mBytes.Span(), XAtomicFile::Links::kReplace );
    }
    if ( not error )
        error = Exists( Folder() ) ? MoveWhatIsMissing( making, Folder() ) : RenameFolder( making, Folder() );
    if ( error )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't copy older revisions: %@", error->Describe() );
}
