#include "Tests/App/SimulatedEditor.h"

#include "Defines/KVNotices.h"
#include "Macros/HTimeSaved.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Tests/Macros/MacroFixtures.h"
#include "XCAF/XErrorHandler.h"

#include <array>
#include <cstdlib>
#include <semaphore.h>
#include <unistd.h>

namespace
{
/// The system's name of the lock on incoming files. It outlasts processes, so every test program has one of its own.
std::string LockName()
{
    const std::string number = std::to_string( ::getpid() );
    return "/KV" + std::string( 11 - number.size(), 'T' ) + number;
}

MMacro* TheMacro()
{
    return MMacroSerializedObject::FindMacroByUID( TextView( SimulatedEditor::kMacroUID ) );
}
} // namespace

bool SimulatedEditor::IsLongRun()
{
    const char* const given = std::getenv( "KORVALEN_LONG_TESTS" );
    return given and *given;
}

std::string SimulatedEditor::BytesWith( TextView inName )
{
    const auto group = GroupWith( u"G-1", { MacroWith( kMacroUID, { { "Name", Str( inName ) } } ) } );
    const auto defaultGroup =
        GroupWith( u"G-2", {}, { { "Name", Str( kvr_localized( u"hkDefaultMacroGroupName" ) ) } } );
    const auto file = FileWith( { group, defaultGroup },
        { { "MacroPreferencesVersion", Int( 91 ) }, { "MacroDefaultsVersion", Int( 91 ) },
            { "PreferenceSavedDate", Str( u"2023_03_09" ) }, { "PreferenceSaveUUID", Str( u"SAVE" ) },
            { "Version", Str( u"0.0.1" ) } } );
    return std::string( WriteBinaryPropertyList( file ).View() );
}

std::string SimulatedEditor::NameIn( std::string_view inBytes )
{
    const auto file = ReadPropertyList( XBytes( inBytes ).Span() ).mValue;
    if ( not file )
        return "unreadable";
    if ( not file.AsDictionary() or not At( file, "MacroGroups" ).AsArray() )
        return "no macros file";
    for ( const XPlistNode* const group : At( file, "MacroGroups" ).AsArray()->Nodes() )
    {
        const auto macros = At( __SafeCFPropertyList( group ), "Macros" );
        for ( std::size_t i = 0; macros.AsArray() and i < macros.AsArray()->GetCount(); ++i )
        {
            const auto macro = macros.AsArray()->GetValueAt( i );
            if ( TextAt( macro, "UID" ) == kMacroUID )
                return UTF8FromText( TextAt( macro, "Name" ) );
        }
    }
    return "none";
}

std::shared_ptr<SimulatedDisk> SimulatedEditor::DiskWith( TextView inName )
{
    auto disk = std::make_shared<SimulatedDisk>();
    disk->Put( kMacrosFile, BytesWith( inName ) );
    disk->Put( "/share/.folder", "" );
    SimulatedEditor editor( *disk );
    (void)editor.Start();
    (void)KVPreferences::Set( KVPreferences::kMacroSharingLockSemaphoreNameID, XText( TextFromUTF8( LockName() ) ) );
    editor.Quit();
    disk->SyncAll();
    disk->Restart();
    return disk;
}

SimulatedEditor::SimulatedEditor( SimulatedDisk& ioDisk, XFileCalls* inCalls )
    : mDisk( ioDisk ),
      mCallsInUse( inCalls ? *inCalls : ioDisk )
{
    mAlerts.mButton = 1; // goes on after a save that failed
    mPlatform.SetAlerts( mAlerts );
    mPlatform.SetProcessNotifier( mNotifier );
}

SimulatedEditor::~SimulatedEditor()
{
    Die();
    ::sem_unlink( LockName().c_str() );
}

bool SimulatedEditor::Start()
{
    Die();
    mDisk.Restart();
    mDisk.SetFault( std::exchange( mFaultOfStart, {} ) );
    XErrorHandler::ResetForTesting();
    mWorld = std::make_unique<ManualWorld>();
    mWorld->mClock.SetNow( mNow );
    mSleep = std::make_unique<ManualSleep>( mWorld->mClock );
    KVPreferences::UseFolder( kFolder );
    mLock.emplace();
    if ( mLock->TryTake() != XKernelLock::Result::kTaken )
        return false;
    KVAppDelegate::Options options;
    options.mIsForOneVerb = true;
    mDelegate = std::make_unique<KVAppDelegate>( options, mSubsystems, [] {} );
    mDelegate->applicationWillFinishLaunching();
    MMacroPreferenceFile::InitialEngineFinishedRelaunching();
    RunAll();
    return true;
}

void SimulatedEditor::Quit()
{
    mDelegate->applicationWillTerminate();
    Die();
}

void SimulatedEditor::Die()
{
    if ( not mWorld )
        return;
    // What the destructors would still write isn't written by a process that is gone.
    mDisk.Kill();
    mNow = mWorld->mClock.Now();
    HTimeSaved::Stop();
    mDelegate.reset();
    mLock.reset();
    mSleep.reset();
    mWorld.reset();
    KVPreferences::UseFolder( {} );
    mAlerts.mAlerts.clear();
    mDisk.Restart();
}

void SimulatedEditor::Wait( double inSeconds )
{
    if ( mWorld )
        mWorld->mWork.Advance( inSeconds );
    mNow = mWorld ? mWorld->mClock.Now() : mNow + inSeconds;
}

void SimulatedEditor::SetNow( double inNow )
{
    mNow = inNow;
    if ( mWorld )
        mWorld->mClock.SetNow( inNow );
}

void SimulatedEditor::Rename( TextView inName )
{
    MMacro* const macro = TheMacro();
    if ( not macro )
        return;
    macro->SetName( inName );
    MacrosWindowChange change;
    change.mType = MacrosWindowChangeType::kMacroChanged;
    change.mObjects.insert( macro );
    MacrosWindowInterface::NoteChange( Text( u"Rename" ), change );
}

std::string SimulatedEditor::Model()
{
    const MMacro* const macro = TheMacro();
    return macro ? UTF8FromText( macro->GetName() ) : "none";
}

bool SimulatedEditor::IsMacroEnabled()
{
    const MMacro* const macro = TheMacro();
    return macro and macro->IsActive();
}

std::size_t SimulatedEditor::CountFailedSaves() const
{
    return mWorld->mLog.CountContaining( "Preference write failed with error" );
}

std::string SimulatedEditor::Complaints() const
{
    constexpr std::array<std::string_view, 11> kWords{ "Can't", "can't", "couldn't", "failed", "Failed", "damaged",
        "Assertion", "is gone", "error", "Exception", "begins anew" };
    std::string result;
    for ( const std::string& line : mWorld->mLog.Lines() )
    {
        if ( std::any_of( kWords.begin(), kWords.end(),
                 [&]( std::string_view word ) { return line.find( word ) != std::string::npos; } ) )
            result += line + "\n";
    }
    for ( const auto& notice : KVNotices::Unanswered() )
        result += "notice " + UTF8FromText( notice.mIdentifier ) + ": " + UTF8FromText( notice.mText ) + "\n";
    return result;
}
