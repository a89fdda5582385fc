#include "Actions/ActionCreation.h"

#include "Actions/ASwitch.h"
#include "Actions/ApplicationActions.h"
#include "Actions/FlowControlActions.h"
#include "Actions/MacroActions.h"
#include "Actions/OpenActions.h"
#include "Actions/ScriptActions.h"
#include "Defines/KVFileTypes.h"
#include "Macros/MMacro.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/PathHelpers.h"
#include "XCAF/XApplicationIdentifier.h"

namespace
{
EngroupResult OneList( std::unique_ptr<HOneListAction> inAction )
{
    std::shared_ptr<HActionList> list = inAction->GetActionList();
    return { std::move( inAction ), std::move( list ) };
}

EngroupResult IfThenElse( bool inThen )
{
    auto action = std::make_unique<AIfThenElse>();
    std::shared_ptr<HActionList> list = inThen ? action->GetThenActionList() : action->GetElseActionList();
    return { std::move( action ), std::move( list ) };
}

EngroupResult Switch()
{
    auto action = std::make_unique<ASwitch>();
    std::shared_ptr<HActionList> list = action->AppleScriptGetCaseEntryList()->GetCaseEntry( 0 )->GetSharedActionList();
    return { std::move( action ), std::move( list ) };
}

EngroupResult NewMacro( EngroupSelector& inSelector )
{
    MMacro* macro = inSelector.newMacroForEngroup();
    if ( not macro )
        return {};
    auto action = std::make_unique<AExecuteMacro>();
    action->SetMacroUID( macro->GetUID() );
    return { std::move( action ), macro->GetActionList() };
}
} // namespace

EngroupResult CreateActionForForEngroup( EngroupSelector& inSelector, EngroupSelection inSelection )
{
    switch ( inSelection )
    {
    case EngroupSelection::kFor:
        return OneList( std::make_unique<AFor>() );
    case EngroupSelection::kGroup:
        return OneList( std::make_unique<AGroup>() );
    case EngroupSelection::kIfThen:
        return IfThenElse( true );
    case EngroupSelection::kIfElse:
        return IfThenElse( false );
    case EngroupSelection::kRepeat:
        return OneList( std::make_unique<ARepeat>() );
    case EngroupSelection::kSwitch:
        return Switch();
    case EngroupSelection::kUntil:
        return OneList( std::make_unique<AUntil>() );
    case EngroupSelection::kWhile:
        return OneList( std::make_unique<AWhile>() );
    case EngroupSelection::kNewMacro:
        return NewMacro( inSelector );
    }
    return {};
}

// A dropped file

namespace
{
XText StoredPath( const std::filesystem::path& inPath )
{
    return XText( stringByAbbreviatingWithTildeInPath( TextFromUTF8( inPath.native() ) ) );
}

std::unique_ptr<AOpen1File> OpenFile( const std::filesystem::path& inPath )
{
    auto action = std::make_unique<AOpen1File>();
    action->SetPath( StoredPath( inPath ) );
    return action;
}

// A folder is opened by the desktop's file browser, whatever else may claim folders.
std::unique_ptr<HBaseAction> OpenFolder( const std::filesystem::path& inPath )
{
    auto action = OpenFile( inPath );
    action->SetApplication( XApplicationIdentifier( u"Finder", u"com.apple.finder" ) );
    return action;
}

template<class Action>
std::unique_ptr<HBaseAction> Execute( const std::filesystem::path& inPath )
{
    auto action = std::make_unique<Action>();
    action->SetPath( StoredPath( inPath ) );
    return action;
}

std::unique_ptr<HBaseAction> Activate( const std::filesystem::path& inPath, TextView inName )
{
    auto action = std::make_unique<AActivateApplication>();
    action->SetApplication( XApplicationIdentifier( XText( inName ), KVFileTypes::BundleIdentifier( inPath ) ) );
    return action;
}

struct ScriptKind
{
    bool ( *mIs )( const KVFileTypes::Path& inPath );
    std::unique_ptr<HBaseAction> ( *mMake )( const std::filesystem::path& inPath );
};
constexpr ScriptKind kScriptKinds[] = {
    { KVFileTypes::ShouldShowSwiftScriptFilename, Execute<AExecuteSwiftScript> },
    { KVFileTypes::ShouldShowJavaScriptFilename, Execute<AExecuteJavaScriptForAutomation> },
    { KVFileTypes::ShouldShowShellScriptFilename, Execute<AExecuteShellScript> },
};
} // namespace

std::unique_ptr<HBaseAction> CreateActionForDraggedPath( const std::filesystem::path& inPath, Text& outTitle )
{
    // "/a/b/" names what "/a/b" names.
    const std::filesystem::path path = inPath.has_filename() ? inPath : inPath.parent_path();
    const Text name = TextFromUTF8( path.has_filename() ? path.filename().native() : path.native() );
    const auto titled = [&]( const char16_t* inFormatKey, TextView inName, std::unique_ptr<HBaseAction> inAction ) {
        outTitle = kvr_localizedFormat( inFormatKey, inName );
        return inAction;
    };
    const auto executed = [&]( std::unique_ptr<HBaseAction> inAction ) {
        return titled( u"kvActionForPathExecuteTitleFormat", name, std::move( inAction ) );
    };

    if ( KVFileTypes::ShouldShowFolder( path ) )
        return titled( u"kvActionForPathOpenTitleFormat", name, OpenFolder( path ) );
    if ( KVFileTypes::ShouldShowAppleScriptFilename( path ) )
        return executed( Execute<AExecuteAppleScript>( path ) );
    if ( KVFileTypes::ShouldShowWorkflowFilename( path ) )
        return executed( Execute<AExecuteWorkflow>( path ) );
    std::error_code ignored;
    if ( KVFileTypes::ShouldShowApplication( path ) and std::filesystem::exists( path, ignored ) )
    {
        const Text application =
            TextFromUTF8( path.extension() == ".app" ? path.stem().native() : path.filename().native() );
        return titled( u"kvActionForPathActivateTitleFormat", application, Activate( path, application ) );
    }
    for ( const auto& [isKind, make] : kScriptKinds )
    {
        if ( isKind( path ) )
            return executed( make( path ) );
    }
    return titled( u"kvActionForPathOpenTitleFormat", name, OpenFile( path ) );
}
