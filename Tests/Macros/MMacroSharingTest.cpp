#include "Macros/MMacroSharing.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Support/ScratchFolder.h"

#include <set>

namespace
{
/// Edits wait for their save until somebody asks.
struct EditingApplication final : MMacroApplication
{
    void SaveAllMacrosIfNecessary() override
    {
        if ( std::exchange( mNeedsSave, false ) )
            MMacroPreferenceFile::SaveAllMacros();
    }
    [[nodiscard]] bool NeedSaveAllMacros() const override { return mNeedsSave; }
    bool mNeedsSave = false;
};

std::string BytesOf( const __SafeCFPropertyList& inValue )
{
    return std::string( WriteBinaryPropertyList( inValue ).View() );
}

std::string SharedBytes( TextView inVersion = u"0.1" )
{
    return BytesOf( Dict( { { "MacroGroups", Array( { GroupWith( u"SHARED", {} ) } ) },
        { "MacroPreferencesVersion", Int( 91 ) }, { "Version", Str( inVersion ) } } ) );
}

struct Sharing : testing::Test
{
    Sharing()
    {
        KVPreferences::UseFolder( mFolder.Path() );
        mPlatform.SetProcessNotifier( mNotifier );
        mPlatform.SetAlerts( mAlerts );
        mDomain.LoadFromPropertyList( Dict( { { "MacroGroups", Array( { GroupWith( u"OURS", {} ) } ) } } ) );
        MMacroPreferenceFile::SaveAllMacros();
        MMacroPreferenceFile::WaitForQueue();
        mOurs = MacrosFile();
        mNotifier.mPosts.clear();
    }
    ~Sharing() override { KVPreferences::UseFolder( {} ); }

    [[nodiscard]] std::string MacrosFile() const { return mFolder.Read( "Korvalen Macros.plist" ); }
    /// Joins, with what happens on the main queue afterwards.
    Text Open( const char* inName )
    {
        Text result = MMacroSharing::StartSharingOpen( mFolder / inName );
        mWorld.mWork.RunAll();
        return result;
    }
    /// The names posted, but for those that tell of the macros file.
    [[nodiscard]] std::string Posts() const
    {
        std::string names;
        for ( const auto& [name, info] : mNotifier.mPosts )
            names += name == u"KV_LoadMacroFiles" ? std::string() : UTF8FromText( name ) + ";";
        return names;
    }
    [[nodiscard]] std::set<std::string> Copies( SetAside::Kind inKind ) const
    {
        std::set<std::string> copies;
        for ( const auto& entry : SetAside::List( inKind ) )
            copies.insert( mFolder.Read( "Set Aside/" + entry.mPath.filename().native() ) );
        return copies;
    }

    ScratchFolder mFolder;
    ManualWorld mWorld;
    ManualSleep mSleep{ mWorld.mClock };
    FakeProcessNotifier mNotifier;
    FakeAlerts mAlerts;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
    EditingApplication mApplication;
    MMacroApplication::Scope mScope{ mApplication };
    MMacroDomain mDomain;
    std::string mOurs;
};
} // namespace

TEST_F( Sharing, JoiningReplacesOurMacrosOfWhichACopyStaysAside )
{
    mFolder.Write( "share", SharedBytes() );
    mApplication.mNeedsSave = true;
    EXPECT_EQ( Open( "share" ), u"" );
    EXPECT_FALSE( mApplication.mNeedsSave ) << "edits that wait are among the macros that are set aside";
    EXPECT_EQ( MacrosFile(), SharedBytes() );
    EXPECT_EQ( mFolder.Read( "share" ), SharedBytes() );
    EXPECT_EQ( MMacroSharing::SharedFile().GetUTF8(), mFolder / "share" );
    EXPECT_TRUE( MMacroSharing::IsSharing() );
    EXPECT_EQ( Posts(), "KV_StartSharing;" );
    const auto copies = Copies( SetAside::Kind::kReceived );
    ASSERT_EQ( copies.size(), 1u );
    EXPECT_NE( copies.begin()->find( "OURS" ), std::string::npos );

    MMacroSharing::StopSharing();
    EXPECT_TRUE( MMacroSharing::SharedFile().IsNull() );
    EXPECT_FALSE( MMacroSharing::IsSharing() );
    EXPECT_EQ( Posts(), "KV_StartSharing;KV_StopSharing;" );
    EXPECT_EQ( MacrosFile(), SharedBytes() );
}

TEST_F( Sharing, AMacrosFileThatWasChangedBehindOurBackIsSetAsideToo )
{
    mFolder.Write( "share", SharedBytes() );
    mFolder.Write( "Korvalen Macros.plist", "another program wrote this" );
    EXPECT_EQ( Open( "share" ), u"" );
    EXPECT_EQ( Copies( SetAside::Kind::kReceived ), std::set<std::string>( { mOurs, "another program wrote this" } ) );
}

TEST_F( Sharing, AFileThatCantBeTakenChangesNothing )
{
    const std::string whole = SharedBytes();
    const struct
    {
        const char* mWhat;
        std::string mBytes;
        TextView mResult;
    } kCases[] = {
        { "nothing", "", u"failed to read file" },
        { "garbage", "garbage", u"failed to read file" },
        { "half copied", whole.substr( 0, whole.size() / 2 ), u"failed to read file" },
        { "another property list", BytesOf( Dict( { { "Version", Str( u"0.1" ) } } ) ), u"failed to read file" },
        { "no list of groups", BytesOf( Dict( { { "Version", Str( u"0.1" ) }, { "MacroGroups", Str( u"x" ) } } ) ),
            u"failed to read file" },
        { "an array", BytesOf( Array( {} ) ), u"failed to read file" },
        { "a newer version", SharedBytes( u"99.0" ), u"shared file is from a newer version" },
        { "a newer version in another form", BytesOf( Dict( { { "Version", Str( u"99.0" ) } } ) ),
            u"shared file is from a newer version" },
    };
    EXPECT_EQ( Open( "missing" ), u"failed to read file" );
    for ( const auto& [what, bytes, result] : kCases )
    {
        mFolder.Write( "share", bytes );
        EXPECT_EQ( Open( "share" ), result ) << what;
        EXPECT_EQ( MacrosFile(), mOurs ) << what;
        EXPECT_EQ( mFolder.Read( "share" ), bytes ) << what;
        EXPECT_FALSE( MMacroSharing::IsSharing() ) << what;
    }
    EXPECT_EQ( Posts(), "" );
    EXPECT_TRUE( Copies( SetAside::Kind::kReceived ).empty() );
}

TEST_F( Sharing, WithoutACopyOfOurMacrosNothingIsReplaced )
{
    mFolder.Write( "share", SharedBytes() );
    std::filesystem::remove_all( mFolder / "Set Aside" );
    mFolder.Write( "Set Aside", "a file in the way" );
    EXPECT_NE( Open( "share" ), u"" );
    EXPECT_EQ( MacrosFile(), mOurs );
    EXPECT_FALSE( MMacroSharing::IsSharing() );
}

TEST_F( Sharing, StartingAFileGivesItOurMacros )
{
    EXPECT_TRUE( MMacroSharing::StartSharingCreate( mFolder / "share" ) );
    EXPECT_EQ( mFolder.Read( "share" ), mOurs );
    EXPECT_EQ( MMacroSharing::SharedFile().GetUTF8(), mFolder / "share" );
    EXPECT_EQ( Posts(), "KV_StartSharing;" );
}

TEST_F( Sharing, AFileThatCantBeWrittenStartsNothing )
{
    EXPECT_FALSE( MMacroSharing::StartSharingCreate( mFolder / "no folder" / "share" ) );
    EXPECT_FALSE( MMacroSharing::IsSharing() );
    EXPECT_EQ( Posts(), "" );
    EXPECT_EQ( mWorld.mLog.CountContaining( "CopyMacroShareFileToRemote failed" ), 1u );
    EXPECT_FALSE( mAlerts.mSounds.empty() );
}

TEST_F( Sharing, ASharingThatGoesOnIsAssertedAndEndsFirst )
{
    mFolder.Write( "second", SharedBytes() );
    EXPECT_TRUE( MMacroSharing::StartSharingCreate( mFolder / "first" ) );
    EXPECT_EQ( Open( "second" ), u"" );
    EXPECT_EQ( mWorld.mLog.CountAssertions( "!IsSharing()" ), 1u );
    EXPECT_EQ( Posts(), "KV_StartSharing;KV_StopSharing;KV_StartSharing;" );
    EXPECT_EQ( mFolder.Read( "first" ), mOurs ) << "what is received isn't sent back";
    EXPECT_EQ( Open( "missing" ), u"failed to read file" );
    EXPECT_FALSE( MMacroSharing::IsSharing() );
}

TEST_F( Sharing, TheLockOfIncomingFilesHasItsNameFromItsSetting )
{
    MMacroSharedIncomingFileLock::InitializeSharingLockSemaphoreName();
    const std::string name = KVPreferences::Get( KVPreferences::kMacroSharingLockSemaphoreNameID, u"" ).GetUTF8();
    EXPECT_EQ( name.size(), 14u );
    const double start = mWorld.mClock.MonotonicSeconds();
    {
        const MMacroSharedIncomingFileLock lock;
    }
    const MMacroSharedIncomingFileLock again;
    EXPECT_EQ( mWorld.mClock.MonotonicSeconds(), start );
    ::sem_unlink( name.c_str() );
}
