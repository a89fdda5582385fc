#include "Actions/ActionLimits.h"
#include "App/MacrosFile.h"
#include "App/Verb.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowUndo.h"

#include <cerrno>

namespace
{
void LoadMacros()
{
    const std::filesystem::path path = MMacroPreferenceFile::MacrosFilePath();
    XFileContent content = ReadWholeFile( path, FileInput::kMostBytes );
    if ( content.mError and content.mError->mCode != ENOENT )
        throw FileTrouble( content.mError->Describe() );
    if ( not content.mError )
    {
        const XPlistReadResult properties = ReadPropertyList( content.mBytes.Span(), kActionsPlistLimits );
        if ( not properties.mValue )
            throw FileTrouble( QuotedPath( path.native() ) + " can't be understood as a property list" );
        MMacroDomain::Get()->LoadFromPropertyList( properties.mValue );
        MMacroPreferenceFile::UndoRedoMacroData( std::make_shared<MMacroFileData>( std::move( content.mBytes ) ) );
    }
    else
        MMacroPreferenceFile::SaveAllMacros();
    (void)MMacroDomain::Get()->GetDefaultMacroGroup();
}
} // namespace

ExitStatus EditorVerb::Run( VerbContext& ioContext )
{
    if ( ioContext.mIsInEditor )
        return RunInEditor( ioContext );
    MMacroDomain domain;
    LoadMacros();
    const ExitStatus status = RunInEditor( ioContext );
    MacrosWindowUndo::SaveAllMacrosIfNecessary();
    MMacroPreferenceFile::WaitForQueue();
    MacrosWindowUndo::Reset();
    return status;
}
