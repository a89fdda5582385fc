// An editor within the test, and verbs run in it as it runs them for other processes: macros that the test says in a
// folder of their own, time turned by hand.
#pragma once

#include "App/Program.h"
#include "Defines/KVPreferences.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Tests/App/KorvalenRun.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Macros/MacroFixtures.h"

#include <filesystem>
#include <map>

class EditorRun
{
public:
    explicit EditorRun( const __SafeCFPropertyList& inFile )
    {
        KVPreferences::UseFolder( mFolder.Path() );
        MMacroPreferenceFile::Reset();
        MacrosWindowUndo::Reset();
        mDomain = std::make_unique<MMacroDomain>();
        const auto bytes = WriteBinaryPropertyList( With( inFile, { { "MacroPreferencesVersion", Int( 91 ) } } ) );
        MMacroPreferenceFile::UndoRedoMacroData(
            std::make_shared<MMacroFileData>( XBytes( std::string( bytes.View() ) ) ) );
        MMacroPreferenceFile::ReloadAllMacros();
        // What the test left to loading, such as the groups' toggles, is the same from now on.
        MMacroPreferenceFile::SaveAllMacros();
        mWorld.mWork.RunAll();
    }
    ~EditorRun()
    {
        mWorld.mWork.RunAll();
        MacrosWindowUndo::Reset();
        mDomain.reset();
        MMacroPreferenceFile::Reset();
        KVPreferences::UseFolder( {} );
    }
    EditorRun( const EditorRun& ) = delete;
    EditorRun& operator=( const EditorRun& ) = delete;

    KorvalenResult Run( const std::vector<std::string>& inArguments )
    {
        std::ostringstream output, errors;
        Output streams( output, errors, {} );
        const FileInput input( [this]( std::size_t ) {
            XFileContent content;
            content.mBytes = XBytes( mStandardInput );
            return content;
        } );
        ProgramPlace place;
        place.mIsInEditor = true;
        place.mWorkingFolder = mWorkingFolder.empty() ? mFolder.Path() : mWorkingFolder;
        const ExitStatus status = RunKorvalen( inArguments, input, streams, place );
        return { int( status ), output.str(), errors.str() };
    }
    /// Turns time until the save has been made.
    void Save() { mWorld.mWork.Advance( 1.5 ); }
    /// What the model would save.
    [[nodiscard]] __SafeCFPropertyList Model() { return WithoutStamps( mDomain->GetPropertyList() ); }
    [[nodiscard]] const std::filesystem::path& Folder() const { return mFolder.Path(); }
    /// Each file of the folder with its bytes.
    [[nodiscard]] std::map<std::string, std::string> Files() const
    {
        std::map<std::string, std::string> files;
        for ( const auto& entry : std::filesystem::recursive_directory_iterator( mFolder.Path() ) )
        {
            if ( entry.is_regular_file() )
            {
                std::ifstream file( entry.path(), std::ios::binary );
                files[entry.path().native()] = { std::istreambuf_iterator<char>( file ), {} };
            }
        }
        return files;
    }

    ManualWorld mWorld;
    std::string mStandardInput;
    std::filesystem::path mWorkingFolder; ///< of whoever asks; empty is the data folder

private:
    struct Application final : MMacroApplication
    {
        void HandleReloadMacros() override { MacrosWindowUndo::HandleReloadMacros(); }
        void SaveAllMacrosIfNecessary() override { MacrosWindowUndo::SaveAllMacrosIfNecessary(); }
        [[nodiscard]] bool NeedSaveAllMacros() const override { return MacrosWindowUndo::NeedSaveAllMacros(); }
    };

    Application mApplication;
    MMacroApplication::Scope mApplicationInUse{ mApplication };
    ScratchFolder mFolder;
    std::unique_ptr<MMacroDomain> mDomain;
};

/// The default group, two groups of which each has a macro "Same", and a smart group.
inline __SafeCFPropertyList MacrosOfEditorTests()
{
    return FileWith( {
        SmartGroupWith( u"S", { Str( u"name:two" ) }, { { "Name", Str( u"Finds" ) } } ),
        GroupWith( u"D", { MacroWith( u"d1", { { "Name", Str( u"In default" ) } } ) },
            { { "Name", Str( kvr_localized( u"hkDefaultMacroGroupName" ) ) } } ),
        GroupWith( u"A",
            { MacroWith( u"a1", { { "Name", Str( u"One" ) }, { "Actions", Array( { ExecuteMacro( u"a2" ) } ) } } ),
                MacroWith( u"a2", { { "Name", Str( u"Two" ) } } ),
                MacroWith( u"a3", { { "Name", Str( u"Same" ) }, { "IsActive", Bool( false ) } } ) },
            { { "Name", Str( u"Alpha" ) } } ),
        GroupWith( u"B", { MacroWith( u"b1", { { "Name", Str( u"Same" ) } } ) }, { { "Name", Str( u"Beta" ) } } ),
    } );
}
