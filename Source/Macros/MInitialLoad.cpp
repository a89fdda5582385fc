// The first load, whose steps and their order decide what is written at a start, and what isn't: a load that changed
// nothing writes nothing. The comments number the steps.
#include "Defines/KVNotices.h"
#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Defines/XFileSemaphoreLock.h"
#include "Macros/MDefaultLibraries.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileAlerts.h"
#include "Macros/MMacroFileLoading.h"
#include "Macros/MMacroFileSaving.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MMacroSharing.h"
#include "Macros/MRevisions.h"
#include "Macros/RevisionDates.h"
#include "Macros/SavedStates.h"
#include "Macros/SpotlightExport.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace
{
using namespace MMacroFileAlerts;
using namespace MMacroFileSaving;

// What older programs wrote: their versions said less than the default sets that they had been given.
std::uint32_t NormalizedVersion( std::uint32_t inPreferencesVersion, std::uint32_t inDefaultsVersion )
{
    if ( inPreferencesVersion < 40 )
        return inDefaultsVersion != 0 ? 35 : 0;
    if ( inPreferencesVersion == 40 )
        return inDefaultsVersion < 2 ? 43 : 44;
    return inPreferencesVersion;
}

class InitialLoad
{
public:
    InitialLoad() : mDomain( *MMacroDomain::Get() ) {}
    void Run();

private:
    [[nodiscard]] bool ReadSharedFile();
    void ReadLocalFile();
    void ParseAndLoad();
    [[nodiscard]] bool MayBeginAnew() const;
    void KeepUnreadableFile( TextView inReason, bool inIsOutOfReach = false ) const;
    void UpgradeVersions();
    void SaveIfNeeded();
    void SeeToRevisions() const;

    static void NeedSave() { MMacroPreferenceFile::SetLoadAllMacrosNeedsSave(); }

    MMacroDomain& mDomain;
    const std::filesystem::path mLocalFile = MMacroPreferenceFile::MacrosFilePath();
    std::filesystem::path mSource = mLocalFile;
    MMacroFileDataPtr mData;          // of the file that the model is loaded from; null without one
    __SafeCFPropertyList mProperties; // of a shared file, which is parsed before it is taken
    MMacroFileDataPtr mLocalBefore;   // the local file, when a shared one takes its place and differs
    bool mLocalDiffers = false;       // from the shared file that was taken, or isn't there
    bool mWasGood = false;            // everything was read and understood
};

void FolderPermissionTest()
{
    const auto file = KVPreferences::FilePath( u"Korvalen Test Write" );
    if ( const auto error = XAtomicFile::Write( file, {}, XAtomicFile::Links::kReplace ) )
        WriteFailed( *error, KVPreferences::FolderPath() );
    (void)XFileCalls::Current().Unlink( file );
}

// What an older version has left behind. It may be there from an earlier upgrade, of another file.
bool BackUp( const MMacroFileData& inData )
{
    const auto file = KVPreferences::FilePath( u"Korvalen Macros Saved Version 8.plist" );
    const XFileContent there = MMacroFileLoading::ReadFile( file );
    if ( not there.mError and std::ranges::equal( there.mBytes.Span(), inData.Span() ) )
        return true;
    if ( not there.mError and
        SetAside::Keep( SetAside::Kind::kMacrosFile, there.mBytes.Span(), u"a later upgrade replaces its backup" ) )
        return false;
    return not XAtomicFile::Write( file, inData.Span(), XAtomicFile::Links::kReplace );
}

// A file whose bytes nobody can get at is kept itself, under another name beside it.
std::optional<XFileError> MoveAway( const std::filesystem::path& inFile )
{
    constexpr int kMostNames = 100;
    for ( int number = 1;; ++number )
    {
        auto name = inFile.stem();
        name += number == 1 ? " Unreadable" : " Unreadable " + std::to_string( number );
        name += inFile.extension();
        if ( XFileCalls::Current().RenameToNew( inFile, inFile.parent_path() / name ) == 0 )
            return std::nullopt;
        if ( errno == ENOENT )
            return std::nullopt; // gone by now
        if ( errno != EEXIST or number == kMostNames )
            return XFileError{ "rename", inFile, errno, std::strerror( errno ), {} };
    }
}

void InitialLoad::Run()
{
    HoldEngineBack();                                                   // 1.
    MRevisions::CopyFromVersion8();                                     // 2.
    MMacroSharedIncomingFileLock::InitializeSharingLockSemaphoreName(); // 3.
    NeedSave();                                                         // 4.
    mDomain.SetLastSaveDate( RevisionDates::BeforeCurrentVersionSaveDate() );
    if ( not ReadSharedFile() )           // 5.
        ReadLocalFile();                  // 6.
    ParseAndLoad();                       // 7.
    UpgradeVersions();                    // 8. to 11.
    (void)mDomain.GetDefaultMacroGroup(); // 12.
    if ( mDomain.SetTimesIfNotSet() )     // 13.
        NeedSave();
    SaveIfNeeded();                            // 14.
    SeeToRevisions();                          // 15. to 17.
    SpotlightExport::ExportToSpotlightIndex(); // 18.
}

bool InitialLoad::ReadSharedFile()
{
    const XText shared = KVPreferences::Get( KVPreferences::kMacroSharingFileID, XText() );
    if ( IsEmpty( shared ) )
        return false;
    (void)XFileCalls::Current().Unlink( KVPreferences::FilePath( u"Korvalen Macros From Shared.plist" ) );
    const std::filesystem::path path = shared.GetUTF8();
    XFileContent content = MMacroFileLoading::ReadFile( path );
    if ( content.mError )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "Shared macros file: %@", content.mError->Describe() );
        if ( content.mError->mCode != ENOENT )
            Post( kShareFileUnreadable, path, TextFromUTF8( content.mError->mReason ) );
        return false;
    }
    auto data = std::make_shared<const MMacroFileData>( std::move( content.mBytes ) );
    std::string reason;
    const auto verdict = MMacroFileLoading::JudgeSharedFile( data, mProperties, reason );
    // Half a file, or none of ours: the read hasn't worked. Before we write there, it is set aside as never seen.
    if ( verdict == MMacroFileLoading::SharedFile::kUnreadable )
        Post( kShareFileUnreadable, path, TextFromUTF8( reason ) );
    else if ( verdict == MMacroFileLoading::SharedFile::kNewer )
    {
        SetSharingDisabledBecauseOfNewerVersion( true );
        SharedFileIsNewer();
    }
    if ( verdict != MMacroFileLoading::SharedFile::kTaken )
    {
        mProperties = nullptr;
        return false;
    }
    NoteSharedFileRead( data );
    mData = std::move( data );
    mSource = path;
    XFileContent local = MMacroFileLoading::ReadFile( mLocalFile );
    mLocalDiffers = local.mError or not std::ranges::equal( local.mBytes.Span(), mData->Span() );
    if ( local.mError and local.mError->mCode != ENOENT )
        KeepUnreadableFile( TextFromUTF8( local.mError->mReason ), true );
    else if ( mLocalDiffers and not local.mError )
        mLocalBefore = std::make_shared<const MMacroFileData>( std::move( local.mBytes ) );
    NeedSave();
    return true;
}

void InitialLoad::ReadLocalFile()
{
    XFileContent content = MMacroFileLoading::ReadFile( mLocalFile );
    if ( not content.mError )
    {
        mData = std::make_shared<const MMacroFileData>( std::move( content.mBytes ) );
        return;
    }
    if ( content.mError->mCode != ENOENT )
        KeepUnreadableFile( TextFromUTF8( content.mError->mReason ), true );
}

// Its bytes are nowhere else.
void InitialLoad::KeepUnreadableFile( TextView inReason, bool inIsOutOfReach ) const
{
    RequireBeforeWriting( [file = mLocalFile, inIsOutOfReach] {
        return inIsOutOfReach
            ? MoveAway( file )
            : SetAside::KeepFile( SetAside::Kind::kMacrosFile, file, u"the macros file can't be read" );
    } );
    Post( kMacrosFileUnreadable, mLocalFile, inReason );
}

bool InitialLoad::MayBeginAnew() const
{
    if ( MMacroPreferenceFile::BeginsAnew() )
        return true;
    // The first start that ends so says why; the one after it asks.
    return KVNotices::IsUnanswered( kMacrosFileWrongRoot ) and AskToBeginAnew( mLocalFile );
}

void InitialLoad::ParseAndLoad()
{
    if ( not mData )
        return;
    std::string reason;
    auto properties = std::exchange( mProperties, nullptr );
    if ( not properties )
        properties = MMacroFileLoading::Parse( mData, reason );
    if ( not properties )
    {
        mData = nullptr;
        return KeepUnreadableFile( TextFromUTF8( reason ) );
    }
    (void)MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave();
    try
    {
        mWasGood = MMacroFileLoading::Load( properties, mData, mSource );
    }
    catch ( const XException& exception )
    {
        if ( not MayBeginAnew() )
        {
            Post( kMacrosFileWrongRoot, mLocalFile, exception.GetMessage() );
            // The program ends now, and its end saves.
            MMacroFileLoading::LatchSavingOff();
            throw;
        }
        KVNotices::Answer( kMacrosFileWrongRoot );
        mData = nullptr;
        NeedSave();
        return KeepUnreadableFile( u"it is a property list, but no macros file" );
    }
    KVNotices::Answer( kMacrosFileWrongRoot );
    if ( mDomain.GetMacroPreferencesVersion() < MMacroDomain::kCurrentMacroPreferencesVersion and not BackUp( *mData ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Failed to backup old preference file" );
}

void InitialLoad::UpgradeVersions()
{
    constexpr std::uint32_t kCurrent = MMacroDomain::kCurrentMacroPreferencesVersion;
    // 8.
    mDomain.SetMacroPreferencesVersion(
        NormalizedVersion( mDomain.GetMacroPreferencesVersion(), mDomain.GetMacroDefaultsVersion() ) );
    // 9. and 10.
    const auto needed = MDefaultLibraries::CheckAdditions( mDomain.GetMacroPreferencesVersion() );
    if ( not needed.empty() )
    {
        MDefaultLibraries::Add( needed, mDomain );
        NeedSave();
    }
    // 11.
    if ( mDomain.GetMacroPreferencesVersion() < kCurrent )
    {
        mDomain.SetMacroDefaultsVersion( kCurrent );
        mDomain.SetMacroPreferencesVersion( kCurrent );
        NeedSave();
    }
}

void InitialLoad::SaveIfNeeded()
{
    if ( MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave() )
    {
        // The first save knows of no state before it, so that what was loaded would be in no revision.
        if ( mData )
            SavedStates::KeepSoon( mData );
        if ( mLocalBefore )
            SetAsideBeforeWriting( SetAside::Kind::kReceived, mLocalBefore, u"a shared file replaces the macros file" );
        XErrorHandler::PrivateMaybeLogFormat( "always", "Loading made changes, initiating immediate save" );
        return MMacroPreferenceFile::SaveAllMacros();
    }
    // The engine reads the local file, so that the bytes of a shared one have to get there; as received ones, or each
    // start of each computer would bring all others a change that is none.
    if ( mLocalDiffers )
        SaveMacroData( nullptr, mData, Change::kReceived, Afterwards::kNothing );
    else
        SetLastSaved( mData );
    XWork::Current().MainQueue()->Async( FolderPermissionTest );
}

void InitialLoad::SeeToRevisions() const
{
    using enum MRevisions::Keep;
    // 15. It may be the only good state that there is.
    MRevisions::DeleteRevision( RevisionDates::GetBeforeRevertSaveDate(), mWasGood ? kNothing : kInSetAside );
    // 16. As long as nobody knows that a file was lost, so are those that might replace it.
    MRevisions::Cull( KVNotices::IsUnanswered( kMacrosFileUnreadable ) ? kInSetAside : kNothing );
    // 17.
    Queue().Async( [data = LastSaved(), date = mDomain.GetLastSaveDate().GetText()] {
        MRevisions::PrivateSaveRevision( RevisionDates::BeforeCurrentVersionSaveDate(), data );
        if ( date != RevisionDates::GetCurrentSaveDate() )
            MRevisions::PrivateSaveRevision( date, data );
        MRevisions::PrivateSaveRevision( RevisionDates::GetThisLaunchSaveDate(), data );
    } );
}

} // namespace

void MMacroPreferenceFile::InitialLoadAllMacros()
{
    XAssert( MMacroDomain::Get() );
    if ( not MMacroDomain::Get() )
        return;
    InitialLoad().Run();
}
