// About thirty files that aren't what they should be, at each place where one comes in: its bytes are in Set Aside before
// anything replaces them, the user is told once, and the program goes on.
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MMacroSharing.h"
#include "Tests/Macros/MacrosFileWorld.h"
#include "XCAF/XException.h"

#include <sys/stat.h>

namespace
{
using namespace MMacroPreferenceFile;
using Kind = SetAside::Kind;

enum class Fault { kUnreadable, kWrongRoot, kInPart, kNewer };
struct BadFile
{
    std::string mWhat, mBytes;
    Fault mFault;
};

class BadMacrosFiles : public MacrosFileWorld
{
protected:
    static constexpr char kShare[] = "share.plist";

    static std::vector<BadFile> Files()
    {
        using enum Fault;
        const std::string whole = BytesOf( CurrentFile( u"Theirs" ) );
        std::vector<BadFile> files{ { "nothing", "", kUnreadable }, { "one byte", "b", kUnreadable },
            { "a byte 0", std::string( 1, '\0' ), kUnreadable }, { "zeros", std::string( 4096, '\0' ), kUnreadable },
            { "text", "these are no macros", kUnreadable }, { "a head alone", "bplist00", kUnreadable },
            { "bytes after the end", whole + "x", kUnreadable }, { "no head", "x" + whole, kUnreadable },
            { "XML that ends", "<plist><dict><key>MacroGroups</key><array>", kUnreadable },
            { "XML with crossed elements", "<plist><dict><key>MacroGroups</dict></key></plist>", kUnreadable },
            { "XML with an entity of its own",
                "<!DOCTYPE plist [<!ENTITY e \"x\">]><plist><dict><key>MacroGroups</key><array/></dict></plist>",
                kUnreadable },
            { "too deep", Deep( 20000 ), kUnreadable }, { "an array", BytesOf( Array( {} ) ), kWrongRoot },
            { "a text", BytesOf( Str( u"MacroGroups" ) ), kWrongRoot },
            { "a number", BytesOf( Int( 91 ) ), kWrongRoot },
            { "an empty dictionary", BytesOf( Dict( {} ) ), kWrongRoot },
            { "no groups", BytesOf( Dict( { { "Version", Str( u"0.0.1" ) } } ) ), kWrongRoot },
            { "groups in a text", BytesOf( Dict( { { "MacroGroups", Str( u"x" ) } } ) ), kWrongRoot },
            { "groups in a dictionary", BytesOf( Dict( { { "MacroGroups", Dict( {} ) } } ) ), kWrongRoot },
            { "a later form", BytesOf( CurrentFile( u"Theirs", { { "MacroPreferencesVersion", Int( 92 ) } } ) ),
                kNewer },
            { "the latest form",
                BytesOf( CurrentFile( u"Theirs", { { "MacroPreferencesVersion", Int( 4294967295 ) } } ) ), kNewer },
            { "only what is unknown", BytesOf( InPart( { Int( 7 ), Str( u"group" ) } ) ), kInPart },
            { "a group without macros", BytesOf( InPart( { Dict( { { "UID", Str( u"G-7" ) } } ) } ) ), kInPart },
            { "an unknown action",
                BytesOf( InPart( { GroupWith( u"G-8",
                    { MacroWith( u"M-8",
                        { { "Actions",
                            Array( { Dict( { { "MacroActionType", Str( u"Nonesuch" ) } } ) } ) } } ) } ) } ) ),
                kInPart },
            { "an unknown trigger",
                BytesOf( InPart( { GroupWith(
                    u"G-9", { MacroWith( u"M-9", { { "Triggers", Array( { Trigger( u"Nonesuch" ) } ) } } ) } ) } ) ),
                kInPart } };
        for ( std::size_t eighths = 1; eighths < 8; ++eighths )
            files.push_back( { "cut after eighths: " + std::to_string( eighths ),
                whole.substr( 0, whole.size() * eighths / 8 ), kUnreadable } );
        files.push_back( { "without its last byte", whole.substr( 0, whole.size() - 1 ), kUnreadable } );
        return files;
    }

    /// Everything as it would be found by another start; the user has seen what there was.
    void Anew( TextView inGroup )
    {
        mDomain.reset();
        (void)KVPreferences::Remove( KVPreferences::kMacroSharingFileID );
        MMacroPreferenceFile::SetBeginAnew( false );
        StartWith( CurrentFile( inGroup ) );
        Save();
        for ( const SetAside::Entry& entry : SetAside::List() )
            SetAside::Remove( entry );
        KVNotices::AnswerAll();
        mAlerts.mNotifications.clear();
    }
    void ExpectToldOnce( const std::string& inWhat, TextView inIdentifier )
    {
        EXPECT_EQ( mAlerts.mNotifications.size(), 1u ) << inWhat;
        const auto notices = KVNotices::Unanswered();
        ASSERT_EQ( notices.size(), 1u ) << inWhat << ", "
                                        << UTF8FromText( notices.empty() ? Text() : notices[0].mIdentifier );
        EXPECT_EQ( UTF8FromText( notices[0].mIdentifier ), UTF8FromText( inIdentifier ) ) << inWhat;
        EXPECT_FALSE( notices[0].mPath.empty() ) << inWhat;
        EXPECT_NE( UTF8FromText( notices[0].mText ).find( notices[0].mPath.native() ), std::string::npos ) << inWhat;
        EXPECT_EQ( notices[0].mText.find( u"can’t be read: ." ), Text::npos ) << inWhat << ": no reason";
    }
    static TextView NoticeOf( Fault inFault, TextView inUnreadable )
    {
        return inFault == Fault::kInPart ? u"MacrosFileInPart"
            : inFault == Fault::kNewer   ? u"MacrosFileNewer"
                                         : inUnreadable;
    }
    static bool IsTaken( const BadFile& inFile )
    {
        return inFile.mFault == Fault::kInPart or inFile.mFault == Fault::kNewer;
    }

private:
    static __SafeCFPropertyList InPart( std::initializer_list<__SafeCFPropertyList> inElements )
    {
        return With( CurrentFile( u"x" ), { { "MacroGroups", Array( inElements ) } } );
    }
    static std::string Deep( int inLevels )
    {
        std::string bytes = "<plist><dict><key>MacroGroups</key>";
        for ( int i = 0; i < inLevels; ++i )
            bytes += "<array>";
        for ( int i = 0; i < inLevels; ++i )
            bytes += "</array>";
        return bytes + "</dict></plist>";
    }
};
} // namespace

TEST_F( BadMacrosFiles, AStartKeepsItTellsOnceAndRuns )
{
    for ( const BadFile& file : Files() )
    {
        SCOPED_TRACE( file.mWhat );
        Anew( u"Mine" );
        mFolder.Write( kMacrosFile, file.mBytes );
        if ( file.mFault == Fault::kWrongRoot )
        {
            EXPECT_THROW( Start(), XException );
            mWorld.mWork.RunAll();
            FinalSaveAllMacros();
            EXPECT_EQ( MacrosFile(), file.mBytes );
            ExpectToldOnce( file.mWhat, u"MacrosFileWrongRoot" );
            mDomain.reset();
            MMacroPreferenceFile::Reset();
            mDomain = std::make_unique<MMacroDomain>();
            MMacroPreferenceFile::SetBeginAnew( true );
            InitialLoadAllMacros();
            mWorld.mWork.RunAll();
            EXPECT_TRUE( KVNotices::IsUnanswered( u"MacrosFileUnreadable" ) );
        }
        else
        {
            Start();
            ExpectToldOnce( file.mWhat, NoticeOf( file.mFault, u"MacrosFileUnreadable" ) );
        }
        EXPECT_TRUE( SetAsideAs( Kind::kMacrosFile ).contains( file.mBytes ) );
        Save();
        EXPECT_TRUE( At( Parsed( MacrosFile() ), "MacroGroups" ).AsArray() );
        // What was saved is whole, unless its version goes on saying that it is a newer one's.
        const std::size_t told = mAlerts.mNotifications.size(), kept = SetAside::List().size();
        MMacroPreferenceFile::SetBeginAnew( false );
        Start();
        EXPECT_EQ( mAlerts.mNotifications.size(), told );
        if ( file.mFault != Fault::kNewer )
        {
            EXPECT_EQ( SetAside::List().size(), kept );
        }
    }
}

TEST_F( BadMacrosFiles, AtTheShareItIsKeptBeforeOursIsWrittenThere )
{
    for ( const BadFile& file : Files() )
    {
        SCOPED_TRACE( file.mWhat );
        Anew( u"Mine" );
        mFolder.Write( kShare, file.mBytes );
        Share( kShare );
        Start();
        EXPECT_EQ( HasGroup( u"Mine" ), not IsTaken( file ) );
        ExpectToldOnce( file.mWhat, NoticeOf( file.mFault, u"ShareFileUnreadable" ) );
        Save();
        EXPECT_TRUE( SetAsideAs( IsTaken( file ) ? Kind::kMacrosFile : Kind::kShareFile ).contains( file.mBytes ) );
        EXPECT_EQ( mFolder.Read( kShare ), MacrosFile() );
    }
}

TEST_F( BadMacrosFiles, ComingInItIsKeptAndTakenOnlyAsFarAsItIsUnderstood )
{
    for ( const BadFile& file : Files() )
    {
        SCOPED_TRACE( file.mWhat );
        Anew( u"Mine" );
        const std::string ours = MacrosFile();
        mFolder.Write( "Korvalen Macros From Shared.plist", file.mBytes );
        ProcessSharingIncomingChange();
        mWorld.mWork.RunAll();
        ExpectToldOnce( file.mWhat, NoticeOf( file.mFault, u"ShareFileUnreadable" ) );
        EXPECT_TRUE( SetAsideAs( IsTaken( file ) ? Kind::kMacrosFile : Kind::kShareFile ).contains( file.mBytes ) );
        EXPECT_EQ( MacrosFile(), IsTaken( file ) ? file.mBytes : ours );
        EXPECT_EQ( SetAsideAs( Kind::kReceived ).contains( ours ), IsTaken( file ) );
        EXPECT_EQ( HasGroup( u"Mine" ), not IsTaken( file ) );
    }
}

TEST_F( BadMacrosFiles, JoinedOrRevertedToItChangesNothingUnlessItIsUnderstoodInPart )
{
    for ( const BadFile& file : Files() )
    {
        SCOPED_TRACE( file.mWhat );
        Anew( u"Mine" );
        const std::string ours = MacrosFile();
        mFolder.Write( kShare, file.mBytes );
        EXPECT_EQ( MMacroSharing::StartSharingOpen( mFolder / kShare ).empty(), IsTaken( file ) );
        mWorld.mWork.RunAll();
        EXPECT_EQ( MMacroSharing::IsSharing(), IsTaken( file ) );
        EXPECT_EQ( MacrosFile(), IsTaken( file ) ? file.mBytes : ours );
        EXPECT_EQ( mFolder.Read( kShare ), file.mBytes );
        EXPECT_EQ( SetAsideAs( Kind::kReceived ).contains( ours ), IsTaken( file ) );

        Anew( u"Mine" );
        const std::string before = MacrosFile();
        WriteRevision( "2011_01_01", file.mBytes );
        EXPECT_EQ( RevertToRevision( u"2011_01_01" ), IsTaken( file ) );
        mWorld.mWork.RunAll();
        EXPECT_EQ( MacrosFile(), IsTaken( file ) ? file.mBytes : before );
        EXPECT_EQ( Revision( "9999_01_02" ), IsTaken( file ) ? before : std::string() );
        EXPECT_EQ( SetAsideAs( Kind::kMacrosFile ).contains( file.mBytes ), IsTaken( file ) );
        std::filesystem::remove_all( mFolder / "Revisions Version 9" );
    }
}

TEST_F( BadMacrosFiles, AReloadOfItKeepsTheMacrosAndTheBytes )
{
    for ( const BadFile& file : Files() )
    {
        SCOPED_TRACE( file.mWhat );
        Anew( u"Mine" );
        UndoRedoMacroData( DataOf( file.mBytes ) );
        ReloadAllMacros();
        mWorld.mWork.RunAll();
        EXPECT_EQ( HasGroup( u"Mine" ), not IsTaken( file ) );
        ExpectToldOnce( file.mWhat, NoticeOf( file.mFault, u"MacrosLoadFailed" ) );
        Save();
        EXPECT_TRUE( SetAsideAs( Kind::kMacrosFile ).contains( file.mBytes ) );
        EXPECT_TRUE( At( Parsed( MacrosFile() ), "MacroGroups" ).AsArray() );
    }
}

TEST_F( BadMacrosFiles, WhatIsNoFileAtAllIsMovedOutOfTheWay )
{
    const auto path = mFolder / kMacrosFile;
    const struct
    {
        const char* mWhat;
        std::function<void()> mMake;
    } kCases[] = {
        { "a folder", [&] { std::filesystem::create_directory( path ); } },
        { "a pipe that nobody writes into", [&] { ASSERT_EQ( ::mkfifo( path.c_str(), 0600 ), 0 ); } },
        { "a huge file",
            [&] {
                mFolder.Write( kMacrosFile, "x" );
                std::filesystem::resize_file( path, std::uintmax_t( 3 ) << 30 );
            } },
        { "a link to a folder",
            [&] {
                std::filesystem::create_directories( mFolder / "elsewhere" );
                std::filesystem::create_symlink( mFolder / "elsewhere", path );
            } },
    };
    for ( const bool isShared : { false, true } )
    {
        for ( const auto& [what, make] : kCases )
        {
            SCOPED_TRACE( what );
            Anew( u"Mine" );
            std::filesystem::remove_all( path );
            make();
            const auto type = std::filesystem::symlink_status( path ).type();
            if ( isShared )
            {
                mFolder.Write( kShare, BytesOf( CurrentFile( u"Theirs" ) ) );
                Share( kShare );
            }
            Start();
            ExpectToldOnce( what, u"MacrosFileUnreadable" );
            EXPECT_EQ( HasGroup( u"Theirs" ), isShared );
            EXPECT_EQ( std::filesystem::symlink_status( mFolder / "Korvalen Macros Unreadable.plist" ).type(), type );
            EXPECT_TRUE( At( Parsed( MacrosFile() ), "MacroGroups" ).AsArray() );
            std::filesystem::remove_all( mFolder / "Korvalen Macros Unreadable.plist" );
        }
    }
}

TEST_F( BadMacrosFiles, AMacrosFileThatIsALinkStaysOneAndItsTargetIsReplaced )
{
    const auto target = mFolder / "elsewhere.plist";
    const std::string theirs = BytesOf( CurrentFile( u"Theirs" ) );
    for ( const bool dangles : { false, true } )
    {
        Anew( u"Mine" );
        std::filesystem::rename( mFolder / kMacrosFile, target );
        if ( dangles )
            std::filesystem::remove( target );
        std::filesystem::create_symlink( target, mFolder / kMacrosFile );
        const auto expectWritten = [&]( const char* inWhat ) {
            EXPECT_TRUE( std::filesystem::is_symlink( mFolder / kMacrosFile ) ) << inWhat;
            EXPECT_TRUE( std::filesystem::is_regular_file( std::filesystem::symlink_status( target ) ) ) << inWhat;
            EXPECT_EQ( mFolder.Read( "elsewhere.plist" ),
                std::string( SavedData()->Span().begin(), SavedData()->Span().end() ) )
                << inWhat;
        };
        Start();
        expectWritten( "a start" );
        Save();
        expectWritten( "a save" );
        UndoRedoMacroData( DataOf( theirs ) );
        expectWritten( "an undo" );
        Save();
        EXPECT_TRUE( SaveRemoteMacroShareFileData( DataOf( theirs ) ) );
        expectWritten( "a received file" );
        WriteRevision( "2011_01_01", theirs );
        Save();
        EXPECT_TRUE( RevertToRevision( u"2011_01_01" ) );
        mWorld.mWork.RunAll();
        expectWritten( "a revert" );
        std::filesystem::remove( mFolder / kMacrosFile );
        std::filesystem::remove( target );
    }

    // An unreadable target is kept, and the file begins anew behind the link.
    mFolder.Write( "elsewhere.plist", "garbage" );
    std::filesystem::create_symlink( target, mFolder / kMacrosFile );
    Start();
    EXPECT_TRUE( SetAsideAs( Kind::kMacrosFile ).contains( "garbage" ) );
    EXPECT_TRUE( std::filesystem::is_symlink( mFolder / kMacrosFile ) );
    EXPECT_TRUE( Parsed( mFolder.Read( "elsewhere.plist" ) ) );
}

TEST_F( BadMacrosFiles, LinksPlantedAtTheOtherNamesAreNotWrittenThrough )
{
    mFolder.Write( "victim", "untouched" );
    std::filesystem::create_directory( mFolder / "Revisions Version 9" );
    for ( const std::string name :
        { "Korvalen Macros Saved Version 8.plist", "Korvalen Test Write", "Korvalen Macros From Shared.plist",
            "Revisions Version 9/9999_01_01.plist", "Revisions Version 9/9999_01_02.plist",
            "Revisions Version 9/9999_01_03.plist", "Revisions Version 9/2023_03_01.plist" } )
        std::filesystem::create_symlink( mFolder / "victim", mFolder.Path() / name );
    Share( "no such share" );
    StartWith( CurrentFile( u"Mine", { { "MacroPreferencesVersion", Int( 90 ) } } ) );
    StartWith( CurrentFile( u"Mine" ) );
    Save();
    EXPECT_TRUE( SaveRemoteMacroShareFileData( DataOf( BytesOf( CurrentFile( u"Theirs" ) ) ) ) );
    EXPECT_TRUE( RevertToRevision( u"9999_01_03" ) );
    mWorld.mWork.RunAll();
    EXPECT_EQ( mFolder.Read( "victim" ), "untouched" );
    EXPECT_NE( Revision( "9999_01_01" ), "untouched" );
    EXPECT_NE( Revision( "9999_01_03" ), "untouched" );
}

TEST_F( BadMacrosFiles, NobodyElseReadsWhatIsWrittenWhateverTheUmask )
{
    const auto before = ::umask( 0 );
    StartWith( CurrentFile( u"Mine", { { "MacroPreferencesVersion", Int( 90 ) } } ) );
    std::filesystem::remove( mFolder / kMacrosFile );
    Start();
    mWorld.mClock.Advance( kDay );
    Save();
    EXPECT_TRUE( CopyMacroShareFileToRemote( mFolder / kShare ) );
    EXPECT_TRUE( SaveRemoteMacroShareFileData( DataOf( BytesOf( CurrentFile( u"Theirs" ) ) ) ) );
    UndoRedoMacroData( DataOf( "garbage" ) );
    ReloadAllMacros();
    mWorld.mWork.RunAll();
    ::umask( before );
    std::size_t files = 0;
    for ( const auto& entry : std::filesystem::recursive_directory_iterator( mFolder.Path() ) )
    {
        // The engine writes there as a member of the group.
        if ( entry.path().filename() == "Korvalen Enable Overrides" )
            continue;
        EXPECT_EQ( unsigned( entry.status().permissions() ), entry.is_directory() ? 0700u : 0600u ) << entry.path();
        ++files;
    }
    EXPECT_GE( files, 12u );
    EXPECT_FALSE( SetAside::List().empty() );
}
