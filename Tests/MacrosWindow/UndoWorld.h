// A world with one group of macros, whose name stands for all edits, and a data folder of its own.
#pragma once

#include "Defines/KVPreferences.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/SavedStates.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Support/ScratchFolder.h"
#include "Tests/Support/StoppingFileCalls.h"

class UndoWorld : public testing::Test, protected MMacroApplication
{
protected:
    UndoWorld()
    {
        KVPreferences::UseFolder( mFolder.Path() );
        MacrosWindowUndo::Reset();
        mDomain.emplace();
        mDomain->LoadFromPropertyList( FileWith( { GroupWith( u"G", {}, { { "Name", Str( u"start" ) } } ) },
            { { "MacroPreferencesVersion", Int( 91 ) } } ) );
        MMacroPreferenceFile::SaveAllMacros();
        mWorld->mWork.RunAll();
    }
    ~UndoWorld() override
    {
        MacrosWindowUndo::Reset();
        mDomain.reset();
        mWorld.reset();
        KVPreferences::UseFolder( {} );
    }

    void HandleReloadMacros() override { MacrosWindowUndo::HandleReloadMacros(); }

    void Edit( const std::optional<Text>& inTitle, TextView inName )
    {
        MMacroGroup* const group = MMacroSerializedObject::FindMacroGroupByUID( u"G" );
        ASSERT_TRUE( group );
        group->SetName( inName );
        MacrosWindowChange change;
        change.mType = MacrosWindowChangeType::kMacroGroupChanged;
        change.mObjects.insert( group );
        MacrosWindowInterface::NoteChange( inTitle, change );
    }
    void EditAndSave( TextView inTitle, TextView inName )
    {
        Edit( Text( inTitle ), inName );
        Advance( 1 );
    }
    void Advance( double inSeconds ) { mWorld->mWork.Advance( inSeconds ); }

    static std::string Model()
    {
        const MMacroGroup* const group = MMacroSerializedObject::FindMacroGroupByUID( u"G" );
        return group ? UTF8FromText( group->GetName() ) : "none";
    }
    /// The same of the bytes of a macros file.
    static std::string NameIn( std::string_view inBytes )
    {
        const auto properties = ReadPropertyList( XBytes( inBytes ).Span() );
        if ( not properties.mValue )
            return "unreadable";
        return UTF8FromText( TextAt( At( properties.mValue, "MacroGroups" ).AsArray()->GetValueAt( 0 ), "Name" ) );
    }
    [[nodiscard]] std::string File() const { return NameIn( mFolder.Read( "Korvalen Macros.plist" ) ); }
    [[nodiscard]] std::vector<std::string> SetAsideNames( SetAside::Kind inKind ) const
    {
        std::vector<std::string> names;
        for ( const SetAside::Entry& entry : SetAside::List( inKind ) )
            names.push_back( NameIn( mFolder.Read( entry.mPath.lexically_relative( mFolder.Path() ) ) ) );
        return names;
    }
    static std::string UndoTitle()
    {
        const auto item = MacrosWindowUndo::ValidateUndo();
        return UTF8FromText( item.mTitle ) + ( item.mIsEnabled ? "" : " (off)" );
    }
    static std::string RedoTitle()
    {
        const auto item = MacrosWindowUndo::ValidateRedo();
        return UTF8FromText( item.mTitle ) + ( item.mIsEnabled ? "" : " (off)" );
    }

    /// The process dies here: what queues hold is lost.
    void Die()
    {
        const XAbsoluteTime now = mWorld->mClock.Now();
        MacrosWindowUndo::Reset();
        mDomain.reset();
        mWorld.reset();
        mWorld = std::make_unique<ManualWorld>();
        mWorld->mClock.SetNow( now + 10 );
    }
    /// And starts again with what is on disk.
    void Start()
    {
        mDomain.emplace();
        MMacroPreferenceFile::UndoRedoMacroData(
            std::make_shared<const MMacroFileData>( XBytes( mFolder.Read( "Korvalen Macros.plist" ) ) ) );
        MMacroPreferenceFile::ReloadAllMacros();
        MacrosWindowUndo::LoadPersistentStacks();
    }
    void Restart()
    {
        mWorld->mWork.RunAll();
        Die();
        Start();
    }

    StoppingFileCalls mCalls;
    XFileCalls::Substitute mCallsInUse{ mCalls };
    ScratchFolder mFolder;
    std::unique_ptr<ManualWorld> mWorld = std::make_unique<ManualWorld>();
    XSeededRandom mRandom{ 1 };
    XRandom::Substitute mRandomInUse{ mRandom };
    MMacroApplication::Scope mApplicationInUse{ *this };
    std::optional<MMacroDomain> mDomain;
};
