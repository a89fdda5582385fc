#include "App/EditorService.h"
#include "App/EditorSession.h"
#include "App/Verb.h"
#include "Defines/KVPreferences.h"

#include <algorithm>
#include <fmt/format.h>

ExitStatus EditorVerb::Run( VerbContext& ioContext )
{
    if ( ioContext.mIsInEditor )
    {
        Prepare( ioContext );
        return RunInEditor( ioContext );
    }
    try
    {
        EditorSession session( ioContext.mHost );
        if ( not session.TakeFolder() )
        {
            const auto status = AskTheEditor( ioContext, ReadsStandardInput() );
            return status ? *status : ComplainOfSilentEditor( ioContext.mOutput, session.Holder() );
        }
        Prepare( ioContext );
        KVAppDelegate::Options options;
        options.mIsForOneVerb = true;
        session.Start( options );
        const ExitStatus status = RunInEditor( ioContext );
        session.Stop();
        return status;
    }
    catch ( const EditorTrouble& trouble )
    {
        ioContext.mOutput.Complain( trouble.what() );
        return ExitStatus::kFailed;
    }
}
