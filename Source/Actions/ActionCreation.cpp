#include "Actions/ActionCreation.h"

#include "Actions/ASwitch.h"
#include "Actions/FlowControlActions.h"
#include "Actions/MacroActions.h"
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
// Made through the property-list form, which knows the keys of every type.
std::unique_ptr<HBaseAction> WithKeys( HActionType inType, XMutableDictionary& ioKeys )
{
    ioKeys.SetText( CFSTR( "MacroActionType" ), KeyOf( inType ) );
    return HBaseAction::CreateFromPropertyList( ioKeys.Seal() );
}

XText StoredPath( const std::filesystem::path& inPath )
{
    return XText( stringByAbbreviatingWithTildeInPath( TextFromUTF8( inPath.native() ) ) );
}

// A folder is opened by the desktop's file browser, whatever else may claim folders.
std::unique_ptr<HBaseAction> OpenFolder( const std::filesystem::path& inPath )
{
    XMutableDictionary keys;
    keys.SetText( CFSTR( "Path" ), StoredPath( inPath ) );
    keys.SetBoolean( CFSTR( "IsDefaultApplication" ), false );
    keys.Set( CFSTR( "Application" ), XApplicationIdentifier( u"Finder", u"com.apple.finder" ).CopyToPropertyList() );
    return WithKeys( HActionType::kOpen1File, keys );
}

std::unique_ptr<HBaseAction> OpenFile( const std::filesystem::path& inPath )
{
    XMutableDictionary keys;
    keys.SetText( CFSTR( "Path" ), StoredPath( inPath ) );
    keys.SetBoolean( CFSTR( "IsDefaultApplication" ), true );
    return WithKeys( HActionType::kOpen1File, keys );
}

std::unique_ptr<HBaseAction> ExecuteFile( HActionType inType, const std::filesystem::path& inPath )
{
    XMutableDictionary keys;
    keys.SetText( CFSTR( "Path" ), StoredPath( inPath ) );
    if ( inType != HActionType::kExecuteWorkflow )
        keys.SetBoolean( CFSTR( "UseText" ), false );
    return WithKeys( inType, keys );
}

std::unique_ptr<HBaseAction> Activate( TextView inName )
{
    XMutableDictionary keys;
    keys.Set( CFSTR( "Application" ), XApplicationIdentifier( XText( inName ), {} ).CopyToPropertyList() );
    return WithKeys( HActionType::kActivateApplication, keys );
}

struct ScriptKind
{
    bool ( *mIs )( const KVFileTypes::Path& inPath );
    HActionType mType;
};
constexpr ScriptKind kScriptKinds[] = {
    { KVFileTypes::ShouldShowSwiftScriptFilename, HActionType::kExecuteSwift },
    { KVFileTypes::ShouldShowJavaScriptFilename, HActionType::kExecuteJavaScriptForAutomation },
    { KVFileTypes::ShouldShowShellScriptFilename, HActionType::kExecuteShellScript },
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
    const auto executed = [&]( HActionType inType ) {
        return titled( u"kvActionForPathExecuteTitleFormat", name, ExecuteFile( inType, path ) );
    };

    if ( KVFileTypes::ShouldShowFolder( path ) )
        return titled( u"kvActionForPathOpenTitleFormat", name, OpenFolder( path ) );
    if ( KVFileTypes::ShouldShowAppleScriptFilename( path ) )
        return executed( HActionType::kExecuteAppleScript );
    if ( KVFileTypes::ShouldShowWorkflowFilename( path ) )
        return executed( HActionType::kExecuteWorkflow );
    std::error_code ignored;
    if ( KVFileTypes::ShouldShowApplication( path ) and std::filesystem::exists( path, ignored ) )
    {
        const Text application =
            TextFromUTF8( path.extension() == ".app" ? path.stem().native() : path.filename().native() );
        return titled( u"kvActionForPathActivateTitleFormat", application, Activate( application ) );
    }
    for ( const auto& [isKind, type] : kScriptKinds )
    {
        if ( isKind( path ) )
            return executed( type );
    }
    return titled( u"kvActionForPathOpenTitleFormat", name, OpenFile( path ) );
}
