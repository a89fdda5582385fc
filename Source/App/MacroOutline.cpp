#include "App/MacroOutline.h"

#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "Actions/HClausesInDescription.h"
#include "App/MacrosFile.h"
#include "Macros/MMacro.h"
#include "Triggers/TimeTriggers.h"
#include "Utility/Cron/CronParser.h"
#include "Utility/Text/DisplayStrings.h"
#include "Utility/Text/KeystrokeText.h"
#include "Utility/Text/XHTMLEntities.h"

#include <algorithm>
#include <fmt/format.h>

namespace
{
// Deeper lines are indented as those at this level, so that an outline stays in proportion to its macro.
constexpr std::size_t kDeepestIndent = 40;

std::string Indent( std::size_t inLevel )
{
    return std::string( 2 * std::min( inLevel, kDeepestIndent ), ' ' );
}

// A description may be a long text; an outline has one line for it, which tells how much it leaves out.
std::string OneLine( const Text& inText )
{
    constexpr std::size_t kMostUnits = 200;
    Text line;
    for ( const char16_t unit : TextView( inText ).substr( 0, kMostUnits ) )
        line += unit == u'\n' or unit == u'\r' or unit == u'\t' ? u' ' : unit;
    if ( inText.size() <= kMostUnits )
        return UTF8FromText( line );
    if ( IsHighSurrogate( line.back() ) )
        line.pop_back();
    const auto cut = std::size_t( std::ranges::count_if(
        TextView( inText ).substr( line.size() ), []( char16_t unit ) { return not IsLowSurrogate( unit ); } ) );
    return UTF8FromText( line ) + fmt::format( "… (and {})", Counted( cut, "more character" ) );
}

// What an action tells beside its description is made for a page: lines with a tag at the end of each.
std::vector<Text> LinesOfHTML( const Text& inHTML )
{
    constexpr TextView kLineEnd = u"<br />";
    std::vector<Text> lines;
    for ( std::size_t at = 0; at < inHTML.size(); )
    {
        const std::size_t end = std::min( inHTML.find( kLineEnd, at ), inHTML.size() );
        if ( end > at )
            lines.push_back( XHTMLEntities::GetDecoded( TextView( inHTML ).substr( at, end - at ) ) );
        at = end + kLineEnd.size();
    }
    return lines;
}

// How the action differs from others of its type in what happens when it takes too long or fails.
void AddSettings( const HBaseAction& inAction, std::vector<Text>& ioLines )
{
    const auto add = [&ioLines]( const std::string& line ) { ioLines.push_back( TextFromUTF8( line ) ); };
    if ( inAction.HasTimeOut() )
    {
        const double period = inAction.GetTimeOutPeriod();
        if ( period > 0 and period != inAction.DefaultTimeOutPeriod() )
            add( "Times out after " + UTF8FromText( stringWithTimeInSeconds( period ) ) + "." );
        if ( not inAction.GetTimeOutAbortsMacro() )
            add( "When it times out, the macro goes on." );
        if ( inAction.GetNotifyOnTimeOut() != inAction.GetTimeOutAbortsMacro() )
            add( inAction.GetNotifyOnTimeOut() ? "Notifies when it times out." : "Times out without a notification." );
    }
    if ( inAction.ActionCanFail() )
    {
        if ( inAction.GetStopOnFailure() != inAction.DefaultStopOnFailure() )
            add(
                inAction.GetStopOnFailure() ? "When it fails, the macro stops." : "When it fails, the macro goes on." );
        if ( not inAction.GetNotifyOnFailure() )
            add( "Fails without a notification." );
    }
}

// "File: a.txt" says nothing new beside “a.txt”.
bool Repeats( TextView inDescription, const Text& inLine )
{
    constexpr TextView kColon = u": ";
    const std::size_t colon = inLine.find( kColon );
    if ( colon == Text::npos )
        return false;
    const Text quoted = u"“" + inLine.substr( colon + kColon.size() ) + u"”";
    return inDescription.find( quoted ) != TextView::npos;
}

std::vector<Text> DetailsOf( const HBaseAction& inAction )
{
    std::vector<Text> lines = LinesOfHTML( inAction.GetActionExtraHTML() );
    const Text description = inAction.GetActionDescriptionDefaultString();
    std::erase_if( lines, [&description]( const Text& line ) { return Repeats( description, line ); } );
    AddSettings( inAction, lines );
    return lines;
}

// Several conditions or collections would be too much for a line, and get lines of their own.
std::vector<Text> ClausesOf( const HBaseAction& inAction )
{
    const auto* const described = dynamic_cast<const HClausesInDescription*>( &inAction );
    return described ? described->GetClauses() : std::vector<Text>();
}

// What the user calls the action, and what it does, of which the clauses will follow.
Text HeadOf( const HBaseAction& inAction, const std::vector<Text>& inClauses )
{
    const Text description = inClauses.empty()
        ? inAction.GetActionDescriptionDefaultString()
        : dynamic_cast<const HClausesInDescription&>( inAction ).GetDescriptionBeforeClauses() + u":";
    const XText& name = inAction.GetActionName();
    if ( IsEmpty( name ) )
        return description;
    // The words of a group only say that it is one.
    return inAction.GetActionType() == HActionType::kGroup ? name.GetText()
                                                           : name.GetText() + u" (" + description + u")";
}

// "disabled, purple"
std::string MarksOf( const HBaseAction& inAction )
{
    std::string marks = inAction.IsActive() ? "" : "disabled";
    if ( inAction.GetActionColor() != ActionColor::Type::kNone )
        marks += ( marks.empty() ? "" : ", " ) +
            UTF8FromText( ActionColor::ToAppleScriptString( inAction.GetActionColor() ) );
    return marks.empty() ? "" : " (" + marks + ")";
}

void PrintActions( const HActionList& inActions, std::size_t inLevel, Output& ioOutput );

void PrintListsOf( const HBaseAction& inAction, std::size_t inLevel, Output& ioOutput )
{
    inAction.DoForEverySubActionList( [&]( const HActionList::Words& makeWords, const HActionList& list ) {
        const Text words = makeWords();
        if ( not words.empty() )
            ioOutput.Line( Indent( inLevel ) + OneLine( words ) + ( list.Empty() ? ": nothing" : ":" ), Colour::kCyan );
        PrintActions( list, inLevel + ( words.empty() ? 0 : 1 ), ioOutput );
    } );
}

void PrintAction( const HBaseAction& inAction, std::size_t inNumber, std::size_t inLevel, Output& ioOutput )
{
    const std::vector<Text> clauses = ClausesOf( inAction );
    const std::string number = fmt::format( "{}. ", inNumber );
    const std::string below = Indent( inLevel ) + std::string( number.size(), ' ' );
    ioOutput.Text( Indent( inLevel ) + number, Colour::kCyan );
    ioOutput.Text( OneLine( HeadOf( inAction, clauses ) ) );
    ioOutput.Line( MarksOf( inAction ), Colour::kYellow );
    for ( const Text& clause : clauses )
        ioOutput.Line( below + "- " + OneLine( clause ) );
    for ( const Text& detail : DetailsOf( inAction ) )
        ioOutput.Line( below + OneLine( detail ) );
    if ( not IsEmpty( inAction.GetActionNotes() ) )
        ioOutput.Line( below + "Note: " + OneLine( inAction.GetActionNotes().GetText() ), Colour::kYellow );
    PrintListsOf( inAction, inLevel + 1, ioOutput );
}

void PrintActions( const HActionList& inActions, std::size_t inLevel, Output& ioOutput )
{
    std::size_t number = 0;
    inActions.DoForEveryAction(
        [&]( const HBaseAction& action ) { PrintAction( action, ++number, inLevel, ioOutput ); } );
}

// The times of a cron trigger in words as well, which few people read from the expression.
Text DescriptionOf( const TBaseTrigger& inTrigger )
{
    Text description = inTrigger.GetDescription();
    CronParser::Entry entry;
    const auto* const cron = dynamic_cast<const TCronTrigger*>( &inTrigger );
    if ( cron and not CronParser::ParseString( cron->GetCron().GetText(), entry ) )
        description += u": " + CronParser::DisplayEntryValue( entry );
    return description;
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
        ioOutput.Line( "    - " + OneLine( DescriptionOf( trigger ) ) );
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

void SetTexts( const XKey& inKey, const std::vector<Text>& inTexts, XMutableDictionary& ioFacts )
{
    if ( inTexts.empty() )
        return;
    XMutableArray texts;
    for ( const Text& text : inTexts )
        texts.Append( XText( text ) );
    ioFacts.Set( inKey, texts.Seal() );
}

void AddFactsBesideDescription( const HBaseAction& inAction, XMutableDictionary& ioFacts )
{
    if ( not IsEmpty( inAction.GetActionName() ) )
        ioFacts.SetText( CFSTR( "does" ), inAction.GetActionDescriptionDefaultString() );
    SetTexts( inAction.GetActionType() == HActionType::kFor ? CFSTR( "collections" ) : CFSTR( "conditions" ),
        ClausesOf( inAction ), ioFacts );
    SetTexts( CFSTR( "details" ), DetailsOf( inAction ), ioFacts );
    if ( not IsEmpty( inAction.GetActionNotes() ) )
        ioFacts.SetText( CFSTR( "notes" ), inAction.GetActionNotes() );
    if ( inAction.GetActionColor() != ActionColor::Type::kNone )
        ioFacts.SetText( CFSTR( "colour" ), ActionColor::ToAppleScriptString( inAction.GetActionColor() ) );
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
        AddFactsBesideDescription( action, facts );
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
        facts.SetText( CFSTR( "description" ), DescriptionOf( trigger ) );
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
