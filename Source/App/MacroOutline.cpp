#include "App/MacroOutline.h"

#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "Actions/HClausesInDescription.h"
#include "App/MacrosFile.h"
#include "Macros/MMacro.h"
#include "Utility/Text/KeystrokeText.h"

#include <fmt/format.h>

namespace
{
// Deeper lines are indented as those at this level, so that an outline stays in proportion to its macro.
constexpr std::size_t kDeepestIndent = 40;

std::string Indent( std::size_t inLevel )
{
    return std::string( 2 * std::min( inLevel, kDeepestIndent ), ' ' );
}

// A description may be a long text; an outline has one line for each action.
std::string OneLine( const Text& inText )
{
    constexpr std::size_t kMostUnits = 100;
    Text line;
    for ( const char16_t unit : inText )
        line += unit == u'\n' or unit == u'\r' or unit == u'\t' ? u' ' : unit;
    if ( line.size() > kMostUnits )
    {
        line.resize( IsHighSurrogate( line[kMostUnits - 1] ) ? kMostUnits - 1 : kMostUnits );
        line += u'…';
    }
    return UTF8FromText( line );
}

// What the action does. Several conditions or collections would be too much for a line, and are lines of their own; but
// a title of the user's stands for all of it.
void PrintDescription( const HBaseAction& inAction, std::size_t inLevel, Output& ioOutput )
{
    const auto* const described =
        IsEmpty( inAction.GetActionName() ) ? dynamic_cast<const HClausesInDescription*>( &inAction ) : nullptr;
    const std::vector<Text> clauses = described ? described->GetClauses() : std::vector<Text>();
    ioOutput.Text( clauses.empty() ? OneLine( inAction.GetActionDescriptionString() )
                                   : OneLine( described->GetDescriptionBeforeClauses() ) + ":" );
    ioOutput.Line( inAction.IsActive() ? "" : " (disabled)", Colour::kYellow );
    for ( const Text& clause : clauses )
        ioOutput.Line( Indent( inLevel + 1 ) + "- " + OneLine( clause ) );
}

void PrintActions( const HActionList& inActions, std::size_t inLevel, Output& ioOutput )
{
    std::size_t number = 0;
    inActions.DoForEveryAction( [&]( const HBaseAction& action ) {
        ioOutput.Text( Indent( inLevel ) + fmt::format( "{}. ", ++number ), Colour::kCyan );
        PrintDescription( action, inLevel, ioOutput );
        action.DoForEverySubActionList( [&]( const HActionList::Words& makeWords, const HActionList& list ) {
            const Text words = makeWords();
            if ( not words.empty() )
                ioOutput.Line( Indent( inLevel + 1 ) + OneLine( words ) + ":", Colour::kCyan );
            PrintActions( list, inLevel + ( words.empty() ? 1 : 2 ), ioOutput );
        } );
    } );
}

void PrintHead( const MMacroSerializedObject& inObject, Output& ioOutput )
{
    ioOutput.Text( PlaceOf( inObject ), Colour::kBold );
    ioOutput.Text(
        fmt::format( "  {}, {}", UTF8FromText( inObject.SerializedObjectKindName() ), inObject.GetUID().GetUTF8() ) );
    ioOutput.Line( inObject.IsActive() ? "" : " (disabled)", Colour::kYellow );
}

void PrintMacro( const MMacro& inMacro, Output& ioOutput )
{
    const TTriggerList& triggers = inMacro.GetTriggerList();
    ioOutput.Line( triggers.GetCount() > 0 ? "  Triggered by:" : "  Triggered by nothing but other macros" );
    triggers.DoForEveryValue( [&ioOutput]( const TBaseTrigger& trigger ) {
        ioOutput.Line( "    - " + OneLine( trigger.GetDescription() ) );
    } );
    ioOutput.Line( inMacro.GetActionList()->Empty() ? "  Does nothing" : "  Does:" );
    PrintActions( *inMacro.GetActionList(), 2, ioOutput );
}

Text HotKeyText( const MMacroGroup& inGroup )
{
    return kvr_keystrokeText( std::int32_t( inGroup.GetKeyCode() ), std::int32_t( inGroup.GetModifiers() ) );
}

void PrintGroup( const MMacroGroup& inGroup, Output& ioOutput )
{
    ioOutput.Line( "  " + UTF8FromText( inGroup.GetActivateDisplayText() ) );
    ioOutput.Line( "  " + UTF8FromText( inGroup.GetTarget().GetDescription() ) );
    if ( inGroup.GetWindowCondition().GetType() != FrontWindowConditionType::kAlways )
        ioOutput.Line( "  " + UTF8FromText( inGroup.GetWindowCondition().GetDescription() ) );
    if ( inGroup.GetKeyCode() != MMacroGroup::kNoKeyCode )
        ioOutput.Line( "  Hot key: " + UTF8FromText( HotKeyText( inGroup ) ) );
    if ( not inGroup.GetDisabledMacs().empty() )
        ioOutput.Line( "  Disabled on " + Counted( inGroup.GetDisabledMacs().size(), "computer" ) );
    ioOutput.Line( "  " + Counted( inGroup.GetMacroCount(), "macro" ) );
    for ( const MMacro* const macro : LoadedMacros::GetMacros( inGroup ) )
        ioOutput.Line(
            fmt::format( "    {}{}", UTF8FromText( macro->GetName() ), macro->IsActive() ? "" : " (disabled)" ) );
}

__SafeCFPropertyList ActionsAsValue( const HActionList& inActions )
{
    XMutableArray array;
    inActions.DoForEveryAction( [&array]( const HBaseAction& action ) {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "type" ), KeyOf( action.GetActionType() ) );
        facts.SetText( CFSTR( "title" ), action.GetActionTitle() );
        facts.SetText( CFSTR( "description" ), action.GetActionDescriptionString() );
        facts.SetBoolean( CFSTR( "active" ), action.IsActive() );
        XMutableArray lists;
        action.DoForEverySubActionList( [&lists]( const HActionList::Words& makeWords, const HActionList& list ) {
            XMutableDictionary fact;
            fact.SetText( CFSTR( "words" ), makeWords() );
            fact.Set( CFSTR( "actions" ), ActionsAsValue( list ) );
            lists.Append( fact.Seal() );
        } );
        if ( lists.GetCount() > 0 )
            facts.Set( CFSTR( "lists" ), lists.Seal() );
        array.Append( facts.Seal() );
    } );
    return array.Seal();
}

void AddMacro( const MMacro& inMacro, XMutableDictionary& ioFacts )
{
    if ( const MMacroGroup* const group = inMacro.GetOwningGroup() )
        ioFacts.SetText( CFSTR( "group" ), group->GetName() );
    XMutableArray triggers;
    inMacro.GetTriggerList().DoForEveryValue( [&triggers]( const TBaseTrigger& trigger ) {
        XMutableDictionary facts;
        facts.Set(
            CFSTR( "kind" ), XPlistString::MakeASCII( kTriggerTypeNames[std::size_t( trigger.GetTriggerType() )] ) );
        facts.SetText( CFSTR( "description" ), trigger.GetDescription() );
        triggers.Append( facts.Seal() );
    } );
    ioFacts.Set( CFSTR( "triggers" ), triggers.Seal() );
    ioFacts.Set( CFSTR( "actions" ), ActionsAsValue( *inMacro.GetActionList() ) );
}
} // namespace

void PrintOutline( const MMacroSerializedObject& inObject, Output& ioOutput )
{
    PrintHead( inObject, ioOutput );
    if ( const MMacro* const macro = inObject.GetAsMacro() )
        PrintMacro( *macro, ioOutput );
    else if ( const MMacroGroup* const group = inObject.GetAsMacroGroup() )
        PrintGroup( *group, ioOutput );
    else if ( const MMacroSmartGroup* const smartGroup = inObject.GetAsMacroSmartGroup() )
    {
        ioOutput.Line( "  Finds macros that match any of:" );
        for ( const XText& string : smartGroup->GetSearchStrings() )
            ioOutput.Line( "    - " + OneLine( string.GetText() ) );
    }
}

__SafeCFPropertyList OutlineAsValue( const MMacroSerializedObject& inObject )
{
    XMutableDictionary facts;
    facts.SetText( CFSTR( "kind" ), inObject.SerializedObjectKindName() );
    facts.SetText( CFSTR( "name" ), inObject.GetName() );
    facts.SetText( CFSTR( "uid" ), inObject.GetUID() );
    facts.SetBoolean( CFSTR( "active" ), inObject.IsActive() );
    if ( const MMacro* const macro = inObject.GetAsMacro() )
        AddMacro( *macro, facts );
    else if ( const MMacroGroup* const group = inObject.GetAsMacroGroup() )
    {
        facts.SetText( CFSTR( "activation" ), group->GetActivateDisplayText() );
        facts.SetText( CFSTR( "target" ), group->GetTarget().GetDescription() );
        if ( group->GetKeyCode() != MMacroGroup::kNoKeyCode )
            facts.SetText( CFSTR( "hotKey" ), HotKeyText( *group ) );
        XMutableArray macros;
        for ( const MMacro* const member : LoadedMacros::GetMacros( *group ) )
            macros.Append( OutlineAsValue( *member ) );
        facts.Set( CFSTR( "macros" ), macros.Seal() );
    }
    else if ( const MMacroSmartGroup* const smartGroup = inObject.GetAsMacroSmartGroup() )
    {
        XMutableArray strings;
        for ( const XText& string : smartGroup->GetSearchStrings() )
            strings.Append( string );
        facts.Set( CFSTR( "searchStrings" ), strings.Seal() );
    }
    return facts.Seal();
}
