#include "Defines/KVPreferences.h"

#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVNotices.h"
#include "Defines/KVPreferenceDomain.h"
#include "Defines/SetAside.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/LogCapture.h"
#include "Tests/Support/ScratchFolder.h"
#include "Utility/Work/Clock.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XErrorHandlerTesting.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
constexpr KVPreferences::PreferenceID kSomeID{ KVPreferences::kEngineDomain, "Some" };

/// Settings in a folder of their own.
struct OwnSettings
{
    OwnSettings() { KVPreferences::UseFolder( mFolder.Path() ); }
    ~OwnSettings() { KVPreferences::UseFolder( {} ); }

    ScratchFolder mFolder;
};

/// An environment variable that has its old value again at the end.
class Variable
{
public:
    Variable( const char* inName, const std::string& inValue ) : mName( inName )
    {
        if ( const char* old = std::getenv( inName ) )
            mOld = old;
        if ( inValue.empty() )
            ::unsetenv( inName );
        else
            ::setenv( inName, inValue.c_str(), 1 );
    }
    ~Variable() { mOld ? ::setenv( mName, mOld->c_str(), 1 ) : ::unsetenv( mName ); }

private:
    const char* mName;
    std::optional<std::string> mOld;
};

void Put( const fs::path& inPath, std::string_view inText )
{
    std::ofstream( inPath, std::ios::binary ) << inText;
}

std::string Content( const fs::path& inPath )
{
    std::ifstream file( inPath, std::ios::binary );
    return { std::istreambuf_iterator<char>( file ), {} };
}

__SafeCFPropertyList ValueIn( const fs::path& inPath )
{
    const std::string content = Content( inPath );
    return ReadPropertyList( { reinterpret_cast<const std::uint8_t*>( content.data() ), content.size() } ).mValue;
}

__SafeCFPropertyList Integer( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

/// Many writes without waiting for a disk: what they leave is looked at by the same kernel.
class UnflushedCalls : public XFileCalls
{
public:
    int FSync( int ) override { return 0; }
};

/// Calls of which every write fails while told so, as on a full disk.
class FullDisk final : public UnflushedCalls
{
public:
    std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override
    {
        errno = ENOSPC;
        return mIsFull ? -1 : XFileCalls::Write( inFile, inBytes );
    }
    bool mIsFull = true;
};
} // namespace

TEST( KVPreferences, AValueOfAnotherTypeGivesTheDefaultAndStays )
{
    const OwnSettings settings;
    const __SafeCFPropertyList kValues[] = { Integer( 7 ), __SafeCFPropertyList::Boolean( true ),
        __SafeCFPropertyList::String( u"text" ), __SafeCFPropertyList( XMutableArray().Seal() ),
        __SafeCFPropertyList( XMutableDictionary().Seal() ) };
    for ( const auto& value : kValues )
    {
        ASSERT_TRUE( KVPreferences::Set( kSomeID, value ) );
        EXPECT_EQ( KVPreferences::Get( kSomeID, u"default" ) == TextView( u"text" ), value.AsString() != nullptr );
        bool flag = true;
        EXPECT_EQ( KVPreferences::Get( kSomeID, &flag, false ) == KVPreferences::kFound, value.AsBoolean() != nullptr );
        EXPECT_EQ( flag, value.AsBoolean() != nullptr );
        std::int64_t number = 0;
        EXPECT_EQ( KVPreferences::Get( kSomeID, &number, std::int64_t( -5 ) ), value.AsNumber() ? 0 : -1 );
        EXPECT_EQ( number, value.AsNumber() ? 7 : -5 );
        double real = 0;
        EXPECT_EQ( KVPreferences::Get( kSomeID, &real, 0.5 ), value.AsNumber() ? 0 : -1 );
        EXPECT_EQ( real, value.AsNumber() ? 7 : 0.5 );
        EXPECT_EQ( bool( KVPreferences::GetArray( kSomeID ) ), value.AsArray() != nullptr );
        EXPECT_EQ( KVPreferences::GetSet( kSomeID ).has_value(), value.AsArray() != nullptr );
        EXPECT_EQ( bool( KVPreferences::GetDictionary( kSomeID ) ), value.AsDictionary() != nullptr );
        EXPECT_EQ( KVPreferences::GetPropertyList( kSomeID ), value );
    }
    ASSERT_TRUE( KVPreferences::Remove( kSomeID ) );
    EXPECT_FALSE( KVPreferences::GetPropertyList( kSomeID ) );
    EXPECT_EQ( KVPreferences::Get( kSomeID, u"default" ), TextView( u"default" ) );
    EXPECT_LT( KVPreferences::Get( kSomeID, static_cast<bool*>( nullptr ), true ), 0 ); // asserts
}

TEST( KVPreferences, AnUnsignedValueThatDoesNotFitCountsAsMissing )
{
    const OwnSettings settings;
    const struct
    {
        std::int64_t mStored;
        std::uint32_t mRead;
    } kCases[] = { { 0, 0 }, { 4294967295, 4294967295u }, { 4294967296, 99 }, { -1, 99 }, { INT64_MAX, 99 } };
    for ( const auto& [stored, read] : kCases )
    {
        ASSERT_TRUE( KVPreferences::Set( kSomeID, stored ) );
        std::uint32_t value = 0;
        (void)KVPreferences::Get( kSomeID, &value, 99u );
        EXPECT_EQ( value, read ) << stored;
    }
    ASSERT_TRUE( KVPreferences::Set( kSomeID, 2.5 ) );
    std::uint32_t value = 0;
    EXPECT_LT( KVPreferences::Get( kSomeID, &value, 99u ), 0 );
    float real = 0;
    EXPECT_EQ( KVPreferences::Get( kSomeID, &real, 0.f ), 0 );
    EXPECT_EQ( real, 2.5f );
}

TEST( KVPreferences, ASetIsStoredAsAnArrayOfItsTexts )
{
    const OwnSettings settings;
    const std::set<Text> texts{ u"b", u"a", u"" };
    ASSERT_TRUE( KVPreferences::Set( kSomeID, texts ) );
    EXPECT_EQ( KVPreferences::GetArray( kSomeID )->GetCount(), 3u );
    EXPECT_EQ( KVPreferences::GetSet( kSomeID ), texts );
}

TEST( KVPreferences, EachDomainIsAPrivateFileThatOthersCanRead )
{
    const OwnSettings settings;
    constexpr KVPreferences::PreferenceID kEditor{ KVPreferences::kEditorDomain, "Key" };
    constexpr KVPreferences::PreferenceID kEngine{ KVPreferences::kEngineDomain, "Key" };
    ASSERT_TRUE( KVPreferences::Set( kEditor, u"editor" ) );
    ASSERT_TRUE( KVPreferences::Set( kEngine, u"engine" ) );
    for ( const char* name : { "editor", "engine" } )
    {
        const fs::path file = settings.mFolder.Path() / ( std::string( "com.tessarine.korvalen." ) + name + ".plist" );
        const auto value = ValueIn( file );
        ASSERT_TRUE( value.AsDictionary() ) << file;
        EXPECT_EQ( __SafeCFPropertyList( value.AsDictionary()->Find( CFSTR( "Key" ) ) ),
            __SafeCFPropertyList::String( TextFromASCII( name ) ) );
        struct stat status = {};
        ASSERT_EQ( ::stat( file.c_str(), &status ), 0 );
        EXPECT_EQ( status.st_mode & 0777, 0600u );
        EXPECT_EQ( Content( file ).substr( 0, 6 ), "bplist" );
    }
}

TEST( KVPreferences, TheFoldersFollowTheEnvironmentAndNeverLeaveIt )
{
    const ScratchFolder folder;
    const Variable home( "HOME", ( folder / "home" ).native() ), own( "KORVALEN_HOME", "" ),
        data( "XDG_DATA_HOME", "" ), config( "XDG_CONFIG_HOME", "relative/is/ignored" );
    KVPreferences::UseFolder( {} );
    EXPECT_EQ( KVPreferences::FolderPath(), folder / "home/.local/share/Korvalen" );
    EXPECT_EQ( KVPreferences::ConfigurationFolder(), folder / "home/.config/Korvalen" );
    EXPECT_TRUE( fs::is_directory( folder / "home/.local/share/Korvalen" ) );
    EXPECT_EQ( KVPreferences::FilePath( u"a" ), folder / "home/.local/share/Korvalen/a" );
    EXPECT_EQ( KVPreferences::FilePath( u"sub", u"a" ), folder / "home/.local/share/Korvalen/sub/a" );
    EXPECT_TRUE( fs::is_directory( folder / "home/.local/share/Korvalen/sub" ) );

    const Variable otherData( "XDG_DATA_HOME", ( folder / "data" ).native() );
    const struct
    {
        TextView mSetting;
        const char* mFolder;
    } kCases[] = { { u"Other", "Other" }, { u"..", "Korvalen" }, { u"a/b", "Korvalen" }, { u"", "Korvalen" } };
    for ( const auto& [setting, name] : kCases )
    {
        ASSERT_TRUE( KVPreferences::Set( KVPreferences::kPreferenceFolderNameID, XText( setting ) ) );
        KVPreferences::UseFolder( {} );
        EXPECT_EQ( KVPreferences::FolderPath(), folder.Path() / "data" / name ) << UTF8FromText( setting );
    }
    {
        const Variable given( "KORVALEN_HOME", ( folder / "given" ).native() );
        KVPreferences::UseFolder( {} );
        EXPECT_EQ( KVPreferences::FolderPath(), folder / "given" );
        EXPECT_EQ( KVPreferences::ConfigurationFolder(), folder / "given" );
        KVPreferences::UseFolder( folder / "explicit" );
        EXPECT_EQ( KVPreferences::FolderPath(), folder / "explicit" );
    }
    KVPreferences::UseFolder( {} );
}

TEST( KVPreferences, AnIdentityIsMadeOnceAndReplacedOnlyWhenBad )
{
    XSeededRandom random( 3 );
    const XRandom::Substitute substitute( random );
    ManualWorld world;
    const OwnSettings settings;
    const XText made = KVPreferences::MacUUID();
    EXPECT_EQ( made.GetLength(), 36u );
    EXPECT_EQ( KVPreferences::Get( KVPreferences::kMacUUIDID, u"" ), made );
    EXPECT_FALSE( KVPreferences::MacRemoteUUID() == made );
    const struct
    {
        Text mStored;
        bool mStays;
    } kCases[] = {
        { u"1234567", false },
        { u"12345678", true },
        { Text( 64, u'a' ), true },
        { Text( 65, u'a' ), false },
        { u"-------------Z", true },
        { u"1234567_", false },
        { u"1234567\n", false },
        { u"1234567\u00E9", false },
        { u"", false },
    };
    for ( const auto& [stored, stays] : kCases )
    {
        ASSERT_TRUE( KVPreferences::Set( KVPreferences::kMacUUIDID, XText( stored ) ) );
        KVPreferences::UseFolder( settings.mFolder.Path() ); // as after a new start
        (void)world.mLog.Take();
        KVNotices::AnswerAll();
        const XText now = KVPreferences::MacUUID();
        const bool isTold = not stays and not stored.empty();
        EXPECT_EQ( world.mLog.CountContaining( "Regenerating MacUUID" ), isTold );
        const auto notices = KVNotices::Unanswered();
        ASSERT_EQ( notices.size(), isTold );
        if ( isTold )
        {
            EXPECT_NE( notices[0].mText.find( stored ), Text::npos );
            EXPECT_NE( notices[0].mText.find( now.GetText() ), Text::npos );
        }
        EXPECT_EQ( now == TextView( stored ), stays ) << UTF8FromText( stored );
        EXPECT_EQ( KVPreferences::Get( KVPreferences::kMacUUIDID, u"" ), now );
        // Cached: what is stored later counts at the next start.
        ASSERT_TRUE( KVPreferences::Set( KVPreferences::kMacUUIDID, u"another-identity" ) );
        EXPECT_EQ( KVPreferences::MacUUID(), now );
    }
}

TEST( KVPreferences, EachConstantNamesTheKeyThatIsStored )
{
    const struct
    {
        KVPreferences::PreferenceID mID;
        const char *mConstant, *mKey;
        std::string_view mDomain;
    } kCases[] = {
        { KVPreferences::kiPhoneAccessEnabledID, "kiPhoneAccessEnabledID", "iPhoneAccessEnabled",
            KVPreferences::kEditorDomain },
        { KVPreferences::kAlert_LocationID, "kAlert_LocationID", "Alert_Location", KVPreferences::kEngineDomain },
        { KVPreferences::kSaveRecentApplicationsID, "kSaveRecentApplicationsID", "SaveRecentApplicationsID",
            KVPreferences::kEngineDomain },
        { KVPreferences::kDepricatedStatusMenuDisplayTypeID, "kDepricatedStatusMenuDisplayTypeID",
            "StatusMenuDisplayType", KVPreferences::kEngineDomain },
        { KVPreferences::kStatusMenuDisplayType2ID, "kStatusMenuDisplayType2ID", "StatusMenuDisplayType2",
            KVPreferences::kEngineDomain },
        { KVPreferences::kDefunctFixFinderSelectionBugID, "kDefunctFixFinderSelectionBugID", "FixFinderSelectionBug",
            KVPreferences::kEngineDomain },
    };
    for ( const auto& [id, constant, key, domain] : kCases )
    {
        EXPECT_EQ( id.Key().Name(), key );
        EXPECT_EQ( id.Domain(), domain );
        const auto* const row = KVPreferences::FindPreference( key );
        ASSERT_TRUE( row ) << key;
        EXPECT_EQ( row->mConstant, constant );
        EXPECT_EQ( row->mID.Domain(), domain );
    }
    EXPECT_EQ( KVPreferences::FindPreference( "WebServerHTTPPort" )->mDefault, "4490" );
    EXPECT_FALSE( KVPreferences::FindPreference( "webserverhttpport" ) );
}

TEST( KVPreferences, AutoShowIsOneSettingOverTwo )
{
    const OwnSettings settings;
    using enum KVPreferences::AutoShow;
    EXPECT_EQ( KVPreferences::GetAutoShow(), kActions );
    for ( const auto value : { kNothing, kInsertActionByName, kActions, kInsertActionByName, kNothing } )
    {
        KVPreferences::SetAutoShow( value );
        EXPECT_EQ( KVPreferences::GetAutoShow(), value );
    }
    KVPreferences::SetBoolean( KVPreferences::kAutoShowActionsID, true );
    KVPreferences::SetBoolean( KVPreferences::kAutoShowInsertActionByNameID, true );
    EXPECT_EQ( KVPreferences::GetAutoShow(), kInsertActionByName );
}

TEST( KVPreferences, TheLogReadsItsSettingsAndADamagedFileDoesNotStopIt )
{
    const OwnSettings settings;
    XErrorHandler::ResetForTesting();
    KVPreferences::Start();
    Put( settings.mFolder / "com.tessarine.korvalen.editor.plist", "damaged" );
    {
        LogCapture lines;
        EXPECT_FALSE( XErrorHandler::MaybeShouldLog( "SomeTag" ) ); // reads, and logs the damage meanwhile
        EXPECT_EQ( lines.Take().size(), 1u );
    }
    ASSERT_TRUE( KVPreferences::Set( KVPreferences::kDebugID, u"OtherTag SomeTag" ) );
    XErrorHandler::ResetForTesting();
    KVPreferences::Start();
    EXPECT_TRUE( XErrorHandler::MaybeShouldLog( "SomeTag" ) );
    EXPECT_FALSE( XErrorHandler::MaybeShouldLog( "ThirdTag" ) );
    XErrorHandler::ResetForTesting();
}

TEST( KVPreferences, ALogLineOfAFailedWriteMayReadSettings )
{
    const OwnSettings settings;
    fs::create_directory( settings.mFolder / "com.tessarine.korvalen.engine.plist" ); // in the way
    int lines = 0;
    XErrorHandler::SetSinkForTesting( [&]( bool, TextView ) {
        ++lines;
        EXPECT_TRUE( KVPreferences::GetBoolean( KVPreferences::kAutoShowActionsID, true ) );
    } );
    EXPECT_FALSE( KVPreferences::Set( kSomeID, Integer( 1 ) ) );
    const int before = lines;
    EXPECT_FALSE( KVPreferences::WriteUnsaved() );
    XErrorHandler::SetSinkForTesting( {} );
    EXPECT_GT( lines, before );
}

TEST( KVPreferenceDomain, EachReadSeesWhatAnotherWroteLast )
{
    const ScratchFolder folder;
    UnflushedCalls calls;
    KVPreferenceDomain ours( folder / "d.plist", {}, calls ), theirs( folder / "d.plist", {}, calls );
    EXPECT_FALSE( ours.Get( CFSTR( "Key" ) ) );
    // Many in a row, of one length, within a tick of the file system's clock.
    for ( int i = 100; i < 300; ++i )
    {
        ASSERT_TRUE( theirs.Set( CFSTR( "Key" ), Integer( i ) ) );
        if ( i % 2 )
        {
            ASSERT_EQ( ours.Get( CFSTR( "Key" ) ), Integer( i ) );
        }
    }
    fs::remove( folder / "d.plist" );
    EXPECT_FALSE( ours.Get( CFSTR( "Key" ) ) );
}

TEST( KVPreferenceDomain, TwoProcessesAndTwoThreadsLoseNothing )
{
    const ScratchFolder folder;
    UnflushedCalls calls;
    constexpr int kCount = 300;
    const auto setMany = [&]( KVPreferenceDomain& ioDomain, const std::string& inPrefix ) {
        bool isDone = true;
        for ( int i = 0; i < kCount; ++i )
            isDone = ioDomain.Set( XKey( inPrefix + std::to_string( i ) ), Integer( i ) ) and isDone;
        return isDone;
    };
    const pid_t other = ::fork();
    if ( other == 0 )
    {
        KVPreferenceDomain domain( folder / "d.plist", {}, calls );
        ::_exit( setMany( domain, "other" ) ? 0 : 1 );
    }
    KVPreferenceDomain domain( folder / "d.plist", {}, calls );
    {
        std::jthread thread( [&] { EXPECT_TRUE( setMany( domain, "second" ) ); } );
        EXPECT_TRUE( setMany( domain, "first" ) );
    }
    int status = -1;
    ASSERT_EQ( ::waitpid( other, &status, 0 ), other );
    EXPECT_EQ( status, 0 );
    for ( const char* prefix : { "other", "first", "second" } )
        for ( int i = 0; i < kCount; ++i )
            EXPECT_EQ( domain.Get( XKey( prefix + std::to_string( i ) ) ), Integer( i ) ) << prefix << i;
}

TEST( KVPreferences, AFailedWriteIsTriedAgainLaterAndLaterAndToldAtTheEnd )
{
    ManualWorld world;
    FakeAlerts alerts;
    Platform platform;
    platform.SetAlerts( alerts );
    const Platform::Substitute inUse( platform );
    FullDisk disk;
    const XFileCalls::Substitute calls( disk );
    const OwnSettings settings;
    EXPECT_FALSE( KVPreferences::Set( kSomeID, u"x" ) );
    EXPECT_FALSE( KVPreferences::Set( kSomeID, u"y" ) ); // waits with the first
    std::vector<double> delays;
    for ( double last = 0; delays.size() < 11; )
    {
        ASSERT_TRUE( world.mWork.AdvanceToNextWakeUp() );
        world.mWork.RunAll();
        delays.push_back( world.mClock.MonotonicSeconds() - std::exchange( last, world.mClock.MonotonicSeconds() ) );
    }
    EXPECT_EQ( delays, ( std::vector<double>{ 1, 2, 4, 8, 16, 32, 64, 128, 256, 300, 300 } ) );
    KVPreferences::Finish();
    EXPECT_EQ( alerts.mAlerts.size(), 1u );

    disk.mIsFull = false;
    world.mWork.Advance( 301 );
    KVPreferenceDomain others( settings.mFolder / "com.tessarine.korvalen.engine.plist" );
    EXPECT_EQ( others.Get( kSomeID.Key() ), __SafeCFPropertyList::String( u"y" ) );
    EXPECT_EQ( world.mWork.CountWakeUps(), 0u );
    KVPreferences::Finish();
    EXPECT_EQ( alerts.mAlerts.size(), 1u );
}

TEST( KVPreferenceDomain, ADamagedFileReadsAsEmptyAndIsKeptBeforeTheFirstWrite )
{
    const ScratchFolder folder;
    const fs::path file = folder / "d.plist";
    const std::string notADictionary( WriteBinaryPropertyList( Integer( 1 ) ).View() );
    for ( const std::string& damaged :
        { std::string( "bplist00 is not all" ), std::string( 3, '\0' ), std::string(), notADictionary } )
    {
        LogCapture lines;
        Put( file, damaged );
        std::vector<std::string> kept;
        KVPreferenceDomain* self = nullptr;
        KVPreferenceDomain domain(
            file, [&]( const fs::path& inFile, std::span<const std::uint8_t> inBytes, const std::string& inReason ) {
                EXPECT_EQ( inFile, file );
                EXPECT_EQ( Content( file ), damaged );
                EXPECT_NE( inReason, "" );
                EXPECT_EQ( self->Get( CFSTR( "Key" ) ), Integer( 1 ) ) << "what logs may read settings";
                kept.emplace_back( inBytes.begin(), inBytes.end() );
                return std::optional<XFileError>();
            } );
        self = &domain;
        EXPECT_FALSE( domain.Get( CFSTR( "Key" ) ) );
        EXPECT_TRUE( domain.Set( CFSTR( "Key" ), nullptr ) ); // nothing to remove, so nothing to write
        EXPECT_EQ( Content( file ), damaged );
        EXPECT_TRUE( kept.empty() );

        EXPECT_TRUE( domain.Set( CFSTR( "Key" ), Integer( 1 ) ) );
        EXPECT_TRUE( domain.Set( CFSTR( "Key" ), Integer( 2 ) ) );
        EXPECT_EQ( domain.Get( CFSTR( "Key" ) ), Integer( 2 ) );
        EXPECT_EQ( kept, std::vector<std::string>{ damaged } );
        EXPECT_EQ( lines.Take().size(), 1u ); // why it can't be understood
    }
}

TEST( KVPreferenceDomain, ADamagedFileThatCannotBeKeptIsNotReplaced )
{
    const ScratchFolder folder;
    const fs::path file = folder / "d.plist";
    Put( file, "damaged" );
    bool isFull = true;
    KVPreferenceDomain domain( file, [&]( const fs::path&, std::span<const std::uint8_t>, const std::string& ) {
        return isFull ? std::optional( XFileError{ "write", "aside", ENOSPC, "no space", {} } ) : std::nullopt;
    } );
    for ( int i = 0; i < 2; ++i )
    {
        EXPECT_FALSE( domain.Set( CFSTR( "Key" ), Integer( i ) ) );
        EXPECT_EQ( Content( file ), "damaged" );
        EXPECT_EQ( domain.Get( CFSTR( "Key" ) ), Integer( i ) );
    }
    isFull = false;
    EXPECT_TRUE( domain.WriteUnsaved() );
    EXPECT_EQ( KVPreferenceDomain( file ).Get( CFSTR( "Key" ) ), Integer( 1 ) );
}

TEST( KVPreferenceDomain, WhoeverMendsADamagedFileFirstMakesTheValueThatBothUse )
{
    const ScratchFolder folder;
    const fs::path file = folder / "d.plist";
    Put( file, "damaged" );
    KVPreferenceDomain domain( file, [&]( const fs::path&, std::span<const std::uint8_t>, const std::string& ) {
        fs::remove( file );
        EXPECT_TRUE( KVPreferenceDomain( file ).Set( CFSTR( "Name" ), Integer( 1 ) ) ); // another process
        return std::optional<XFileError>();
    } );
    const auto MakeIfMissing = []( const __SafeCFPropertyList& inOld ) { return inOld ? inOld : Integer( 2 ); };
    EXPECT_EQ( domain.Change( CFSTR( "Name" ), MakeIfMissing ), Integer( 1 ) );
    EXPECT_EQ( KVPreferenceDomain( file ).Get( CFSTR( "Name" ) ), Integer( 1 ) );
    EXPECT_TRUE( domain.Set( CFSTR( "Other" ), Integer( 3 ) ) );
    EXPECT_EQ( domain.Get( CFSTR( "Name" ) ), Integer( 1 ) );
}

TEST( KVPreferences, ADamagedFileIsSetAsideAndToldOnce )
{
    ManualWorld world;
    FakeAlerts alerts;
    Platform platform;
    platform.SetAlerts( alerts );
    const Platform::Substitute inUse( platform );
    const OwnSettings settings;
    for ( const std::string_view domain : { KVPreferences::kEditorDomain, KVPreferences::kEngineDomain } )
    {
        KVNotices::AnswerAll();
        alerts.mNotifications.clear();
        const fs::path file = settings.mFolder.Path() / ( std::string( domain ) + ".plist" );
        const std::string damaged = "damaged " + std::string( domain );
        Put( file, damaged );
        const KVPreferences::PreferenceID id{ domain, "Some" };
        EXPECT_TRUE( KVPreferences::Set( id, u"a" ) );
        EXPECT_TRUE( KVPreferences::Set( id, u"b" ) );
        world.mWork.RunAll();
        EXPECT_EQ( KVPreferences::Get( id, u"" ), TextView( u"b" ) );
        const auto kept = SetAside::List( SetAside::Kind::kPreferences );
        ASSERT_GE( kept.size(), 1u );
        EXPECT_EQ( Content( kept[0].mPath ), damaged );
        const auto notices = KVNotices::Unanswered();
        ASSERT_EQ( notices.size(), 1u );
        EXPECT_EQ( notices[0].mPath, file );
        for ( const std::string& part : { file.native(), kept[0].mPath.native() } )
            EXPECT_NE( notices[0].mText.find( TextFromUTF8( part ) ), Text::npos ) << part;
        EXPECT_EQ( alerts.mNotifications.size(), 1u );
    }
}

TEST( KVPreferenceDomain, WhatCannotBeReadIsNeitherWaitedForNorReplaced )
{
    const ScratchFolder folder;
    ASSERT_EQ( ::mkfifo( ( folder / "pipe.plist" ).c_str(), 0600 ), 0 );
    fs::create_directory( folder / "folder.plist" );
    for ( const char* name : { "pipe.plist", "folder.plist" } )
    {
        KVPreferenceDomain domain( folder / name );
        EXPECT_FALSE( domain.Get( CFSTR( "Key" ) ) );
        EXPECT_FALSE( domain.Set( CFSTR( "Key" ), Integer( 1 ) ) );
        EXPECT_EQ( domain.Get( CFSTR( "Key" ) ), Integer( 1 ) );
        EXPECT_FALSE( fs::is_regular_file( folder / name ) );
    }
}

TEST( KVPreferenceDomain, AValueThatCouldNotBeWrittenHoldsAndGoesWithTheNextWrite )
{
    const ScratchFolder folder;
    const fs::path file = folder / "d.plist";
    KVPreferenceDomain others( file );
    ASSERT_TRUE( others.Set( CFSTR( "Old" ), Integer( 1 ) ) );
    const std::string before = Content( file );
    FullDisk disk;
    KVPreferenceDomain domain( file, {}, disk );
    EXPECT_FALSE( domain.Set( CFSTR( "New" ), Integer( 2 ) ) );
    EXPECT_FALSE( domain.Set( CFSTR( "Old" ), nullptr ) );
    EXPECT_FALSE( domain.WriteUnsaved() );
    EXPECT_EQ( domain.Get( CFSTR( "New" ) ), Integer( 2 ) );
    EXPECT_FALSE( domain.Get( CFSTR( "Old" ) ) );
    EXPECT_EQ( Content( file ), before );

    disk.mIsFull = false;
    EXPECT_TRUE( domain.Set( CFSTR( "Third" ), Integer( 3 ) ) );
    EXPECT_TRUE( domain.WriteUnsaved() );
    EXPECT_EQ( others.Get( CFSTR( "New" ) ), Integer( 2 ) );
    EXPECT_EQ( others.Get( CFSTR( "Third" ) ), Integer( 3 ) );
    EXPECT_FALSE( others.Get( CFSTR( "Old" ) ) );
}

TEST( KVPreferenceDomain, PlantedLinksAreNotFollowedForWriting )
{
    const ScratchFolder folder;
    const fs::path victim = folder / "victim";
    Put( victim, "bplist00 precious" );
    fs::create_symlink( victim, folder / "d.plist" );
    KVPreferenceDomain domain(
        folder / "d.plist", []( const fs::path&, std::span<const std::uint8_t>, const std::string& ) {
            return std::optional<XFileError>();
        } );
    EXPECT_TRUE( domain.Set( CFSTR( "Key" ), Integer( 1 ) ) );
    EXPECT_EQ( Content( victim ), "bplist00 precious" );
    EXPECT_FALSE( fs::is_symlink( folder / "d.plist" ) );

    fs::create_symlink( victim, folder / "locked.plist.lock" );
    KVPreferenceDomain locked( folder / "locked.plist" );
    EXPECT_FALSE( locked.Set( CFSTR( "Key" ), Integer( 1 ) ) );
    EXPECT_FALSE( fs::exists( folder / "locked.plist" ) );
}
