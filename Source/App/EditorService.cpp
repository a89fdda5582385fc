#include "App/EditorService.h"

#include "App/EditorHost.h"
#include "App/Program.h"
#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <fmt/format.h>
#include <sstream>

namespace
{
/// The platform's services for a process that is no editor.
class PlatformForAMoment
{
public:
    explicit PlatformForAMoment( EditorHost* inHost ) : mHost( inHost )
    {
        if ( mHost )
            mHost->StartPlatform( KVPreferences::PlannedFolderPath(), KVPreferences::FolderIsGiven() );
    }
    ~PlatformForAMoment()
    {
        if ( mHost )
            mHost->StopPlatform();
    }
    PlatformForAMoment( const PlatformForAMoment& ) = delete;
    PlatformForAMoment& operator=( const PlatformForAMoment& ) = delete;

private:
    EditorHost* mHost;
};
} // namespace

std::optional<ExitStatus> AskTheEditor( VerbContext& ioContext, bool inWithStandardInput )
{
    XEditorService::Request request;
    request.mArguments = ioContext.mArguments;
    request.mWorkingFolder = ioContext.mWorkingFolder;
    request.mOutputIsTerminal = ioContext.mOutput.IsTerminal();
    request.mColours = not ioContext.mOutput.Sequence( Colour::kBold ).empty();
    if ( inWithStandardInput )
        request.mStandardInput = ioContext.mInput.Read( "-" ).View();
    const auto reply = Platform::Current().EditorService().Ask( KVPreferences::PlannedFolderPath(), request );
    if ( not reply )
        return {};
    ioContext.mOutput.Bytes( reply->mOutput );
    ioContext.mOutput.ErrorBytes( reply->mErrors );
    return ExitStatus( std::clamp( reply->mStatus, 0, 2 ) );
}

std::optional<ExitStatus> AskAnyEditor( VerbContext& ioContext )
{
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( KVPreferences::PlannedFolderPath(), facts ) != 0 )
        return {};
    const PlatformForAMoment platform( ioContext.mHost );
    return AskTheEditor( ioContext );
}

ExitStatus ComplainOfSilentEditor( Output& ioOutput, std::optional<std::int64_t> inHolder )
{
    ioOutput.Complain( fmt::format( "{}has the folder {} and can't be reached: there is no session bus, "
                                    "or it is just starting or ending; quit it, or try again in a moment",
        inHolder ? fmt::format( "another editor (process {}) ", *inHolder ) : std::string( "another editor " ),
        QuotedPath( KVPreferences::PlannedFolderPath().string() ) ) );
    return ExitStatus::kFailed;
}

XEditorService::Reply RunForOther( const XEditorService::Request& inRequest, EditorHost& ioHost )
{
    std::ostringstream output, errors;
    Output streams( output, errors, { inRequest.mOutputIsTerminal, inRequest.mColours } );
    const FileInput input( [&inRequest]( std::size_t ) {
        XFileContent content;
        content.mBytes = XBytes( inRequest.mStandardInput );
        return content;
    } );
    const ExitStatus status =
        RunKorvalen( inRequest.mArguments, input, streams, { &ioHost, true, inRequest.mWorkingFolder } );
    return { int( status ), output.str(), errors.str() };
}
