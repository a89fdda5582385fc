#include "App/AskEditor.h"

#include "Defines/KVPreferences.h"
#include "Platform/EditorService.h"
#include "Platform/Platform.h"

std::optional<ExitStatus> AskEditor( VerbContext& ioContext )
{
    Output& output = ioContext.mOutput;
    XEditorService::Request request{ ioContext.mArguments, ioContext.mWorkingFolder, {}, output.IsTerminal(),
        not output.Sequence( Colour::kBold ).empty() };
    const auto reply = Platform::Current().EditorService().Ask( KVPreferences::PlannedFolderPath(), request );
    if ( not reply )
        return {};
    output.Bytes( reply->mOutput );
    output.ErrorBytes( reply->mErrors );
    return ExitStatus( reply->mStatus );
}
