// A whole editor's macros file in a folder of its own: the queues and the clock turned by hand, a disk that fails when
// told so, and an application that reloads as the real one does.
#pragma once

#include "Defines/KVNotices.h"
#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Macros/ImportedLibraries.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MRevisions.h"
#include "Macros/RevisionDates.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XFileWriting.h"

#include <cerrno>
#include <set>

/// The system's disk without waiting for it. Of the calls that change something the n-th fails, alone or with all after it.
class FaultyDisk : public XFileCalls
{
public:
    int mFailFrom = 0; ///< 0 for never; counted from 1
    bool mOnlyOnce = false;
    int mCode = ENOSPC;
    std::filesystem::path mUnreadable; ///< opening it for reading fails
    int mCount = 0;

    int Open( const std::filesystem::path& inPath, OpenFor inPurpose ) override
    {
        if ( inPurpose == OpenFor::kRead and inPath == mUnreadable )
        {
            errno = EACCES;
            return -1;
        }
        return inPurpose == OpenFor::kCreateNew and Fails() ? -1 : XFileCalls::Open( inPath, inPurpose );
    }
    std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override
    {
        return Fails() ? -1 : XFileCalls::Write( inFile, inBytes );
    }
    int FSync( int ) override { return Fails() ? -1 : 0; }
    int Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override
    {
        return Fails() ? -1 : XFileCalls::Rename( inFrom, inTo );
    }
    int RenameToNew( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override
    {
        return Fails() ? -1 : XFileCalls::RenameToNew( inFrom, inTo );
    }
    int MakeFolder( const std::filesystem::path& inPath ) override
    {
        return Fails() ? -1 : XFileCalls::MakeFolder( inPath );
    }

private:
    bool Fails()
    {
        ++mCount;
        const bool fails = mFailFrom > 0 and ( mOnlyOnce ? mCount == mFailFrom : mCount >= mFailFrom );
        errno = fails ? mCode : errno;
        return fails;
    }
};

class MacrosFileWorld : public testing::Test, protected MMacroApplication
{
protected:
    static constexpr char kMacrosFile[] = "Korvalen Macros.plist";
    static constexpr double kDay = 86400;

    MacrosFileWorld()
    {
        XErrorHandler::ResetForTesting();
        KVPreferences::UseFolder( mFolder.Path() );
        mPlatform.SetAlerts( mAlerts );
        mPlatform.SetProcessNotifier( mNotifier );
        mPlatformInUse.emplace( mPlatform );
        MMacroPreferenceFile::Reset();
    }
    ~MacrosFileWorld() override
    {
        mDomain.reset();
        MMacroPreferenceFile::Reset();
        KVPreferences::UseFolder( {} );
        XErrorHandler::ResetForTesting();
    }

    void HandleReloadMacros() override
    {
        ++mReloads;
        MMacroPreferenceFile::ReloadAllMacros();
    }
    void terminate() override { mHasEnded = true; }

    /// As the program does, with everything run that it leaves on queues.
    void Start( bool inRunAll = true )
    {
        mDomain.reset();
        MMacroPreferenceFile::Reset();
        mDomain = std::make_unique<MMacroDomain>();
        MMacroPreferenceFile::InitialLoadAllMacros();
        if ( inRunAll )
            mWorld.mWork.RunAll();
    }
    void StartWith( const __SafeCFPropertyList& inFile )
    {
        mFolder.Write( kMacrosFile, BytesOf( inFile ) );
        Start();
    }
    void Save()
    {
        MMacroPreferenceFile::SaveAllMacros();
        mWorld.mWork.RunAll();
    }
    /// An edit that shows in the file.
    void AddGroup( TextView inName )
    {
        const InsertionScope insertion;
        auto group = std::make_unique<MMacroGroup>();
        group->SetName( inName );
        mDomain->InsertMacroGroup( std::move( group ) );
    }
    [[nodiscard]] bool HasGroup( TextView inName ) const { return mDomain->MacroGroupWithNameExists( inName ); }

    static std::string BytesOf( const __SafeCFPropertyList& inFile )
    {
        return std::string( WriteBinaryPropertyList( inFile ).View() );
    }
    static MMacroFileDataPtr DataOf( std::string_view inBytes )
    {
        return std::make_shared<const MMacroFileData>( XBytes( inBytes ) );
    }
    static __SafeCFPropertyList Parsed( std::string_view inBytes )
    {
        return ReadPropertyList( XBytes( inBytes ).Span() ).mValue;
    }
    /// A file with nothing to do, which is recognised by the name of its group.
    static __SafeCFPropertyList CurrentFile( TextView inGroup, std::initializer_list<PlistEntry> inMore = {} )
    {
        return With(
            FileWith( { GroupWith( u"G-1", {}, { { "Name", Str( inGroup ) } } ),
                          GroupWith( u"G-2", {}, { { "Name", Str( kvr_localized( u"hkDefaultMacroGroupName" ) ) } } ) },
                { { "MacroPreferencesVersion", Int( 91 ) }, { "MacroDefaultsVersion", Int( 91 ) },
                    { "PreferenceSavedDate", Str( u"2023_03_01" ) }, { "PreferenceSaveUUID", Str( u"SAVE" ) },
                    { "Version", Str( u"0.0.1" ) } } ),
            inMore );
    }
    [[nodiscard]] std::string MacrosFile() const { return mFolder.Read( kMacrosFile ); }
    [[nodiscard]] std::string Revision( const std::string& inDate ) const
    {
        return mFolder.Read( "Revisions Version 9/" + inDate + ".plist" );
    }
    [[nodiscard]] std::vector<Text> Revisions() const { return MMacroPreferenceFile::Revisions(); }
    void WriteRevision( const std::string& inDate, std::string_view inBytes ) const
    {
        std::filesystem::create_directories( mFolder / "Revisions Version 9" );
        mFolder.Write( "Revisions Version 9/" + inDate + ".plist", inBytes );
    }
    /// The bytes of everything of a kind.
    [[nodiscard]] static std::multiset<std::string> SetAsideAs( SetAside::Kind inKind )
    {
        std::multiset<std::string> result;
        for ( const SetAside::Entry& entry : SetAside::List( inKind ) )
        {
            const XFileContent content = ReadWholeFile( entry.mPath, 1 << 30, XFileCalls::System() );
            result.emplace( content.mBytes.View() );
        }
        return result;
    }
    [[nodiscard]] std::size_t PostsOf( TextView inName ) const
    {
        return std::size_t( std::count_if( mNotifier.mPosts.begin(), mNotifier.mPosts.end(),
            [&]( const auto& post ) { return post.first == inName; } ) );
    }
    [[nodiscard]] std::size_t TemporaryFiles() const
    {
        std::size_t count = 0;
        for ( const auto& entry : std::filesystem::recursive_directory_iterator( mFolder.Path() ) )
            count += entry.path().filename().native().starts_with( XAtomicFile::kTemporaryPrefix );
        return count;
    }
    void Share( const std::string& inName ) const
    {
        (void)KVPreferences::Set(
            KVPreferences::kMacroSharingFileID, XText( TextFromUTF8( ( mFolder.Path() / inName ).native() ) ) );
    }

    ScratchFolder mFolder;
    FaultyDisk mDisk;
    XFileCalls::Substitute mDiskInUse{ mDisk };
    ManualWorld mWorld;
    XSeededRandom mRandom{ 7 };
    XRandom::Substitute mRandomInUse{ mRandom };
    FakeAlerts mAlerts;
    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    std::optional<Platform::Substitute> mPlatformInUse;
    MMacroApplication::Scope mApplicationInUse{ *this };
    std::unique_ptr<MMacroDomain> mDomain;
    int mReloads = 0;
    bool mHasEnded = false;
};
