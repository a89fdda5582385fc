#include "Benchmarks/MacrosFileMaker.h"

#include <random>
#include <span>

namespace
{
constexpr const char16_t* kWords[] = { u"orchard", u"river", u"lantern", u"harvest", u"kitchen", u"ticket", u"garden",
    u"violin", u"paper", u"winter", u"market", u"bridge", u"engine", u"mirror", u"copper", u"signal", u"velvet",
    u"harbour", u"meadow", u"sketch", u"ledger", u"number", u"parcel", u"window", u"answer", u"column", u"folder",
    u"branch", u"season", u"pencil", u"quarter", u"thunder", u"blanket", u"carriage", u"invoice", u"reading",
    u"morning", u"evening", u"and", u"or", u"the", u"of", u"with", u"for", u"to" };
constexpr const char16_t* kForeign[] = { u"Bücher für Großmutter", u"crème brûlée à emporter", u"mañana por la niña",
    u"Зимний сад", u"小さな庭の花", u"“quoted” – with dashes…", u"café → 21 °C", u"Ελιές και ψωμί", u"🌿 leaves 🍂" };
constexpr const char16_t* kKinds[] = { u"InsertText", u"SetVariableToText", u"Pause", u"ExecuteShellScript",
    u"ActivateApplication", u"SimulateKeystroke", u"IfThenElse", u"Group", u"SelectMenuItem", u"Comment" };
constexpr const char16_t* kShellLines[] = { u"for entry in \"$1\"/*; do\n", u"  printf '%s\\n' \"${entry##*/}\"\n",
    u"done | sort -u > \"$HOME/lists/all.txt\"\n", u"test -s \"$HOME/lists/all.txt\" || exit 3\n",
    u"grep -c '^[a-z]' \"$HOME/lists/all.txt\"\n", u"date '+%H:%M on %d %B'\n" };

class Maker
{
public:
    __SafeCFPropertyList File( std::size_t inMacros )
    {
        constexpr std::size_t kMacrosOfGroup = 50;
        XMutableArray groups;
        for ( std::size_t made = 0; made < inMacros; made += kMacrosOfGroup )
            groups.Append( Group( std::min( kMacrosOfGroup, inMacros - made ) ) );
        XMutableDictionary file;
        file.Set( CFSTR( "MacroGroups" ), groups.Seal() );
        file.SetText( CFSTR( "MacroDefaultsVersion" ), u"11.0" );
        file.SetText( CFSTR( "Version" ), u"11.0" );
        file.SetReal( CFSTR( "PreferenceSavedDate" ), Date() );
        file.SetText( CFSTR( "PreferenceSaveUUID" ), UUID() );
        return file.Seal();
    }

private:
    __SafeCFPropertyList Group( std::size_t inMacros )
    {
        XMutableArray macros;
        for ( std::size_t i = 0; i < inMacros; ++i )
            macros.Append( Macro() );
        XMutableDictionary group;
        group.SetText( CFSTR( "UID" ), UUID() );
        group.SetText( CFSTR( "Name" ), Phrase( 2 ) );
        group.SetText( CFSTR( "Activate" ), u"Normal" );
        group.SetReal( CFSTR( "CreationDate" ), Date() );
        group.SetBoolean( CFSTR( "IsActive" ), true );
        group.Set( CFSTR( "Macros" ), macros.Seal() );
        return group.Seal();
    }

    __SafeCFPropertyList Macro()
    {
        XMutableDictionary macro;
        macro.SetText( CFSTR( "UID" ), UUID() );
        macro.SetText( CFSTR( "Name" ), Phrase( 4 ) );
        macro.SetReal( CFSTR( "CreationDate" ), Date() );
        macro.SetReal( CFSTR( "ModificationDate" ), Date() );
        macro.SetBoolean( CFSTR( "IsActive" ), Below( 10 ) > 0 );
        XMutableArray triggers;
        for ( std::uint64_t count = Below( 3 ); count > 0; --count )
            triggers.Append( Trigger() );
        macro.Set( CFSTR( "Triggers" ), triggers.Seal() );
        macro.Set( CFSTR( "Actions" ), Actions( 3 + Below( 9 ), 2 ) );
        // One in twenty has an icon of its own.
        if ( Below( 20 ) == 0 )
        {
            std::vector<std::uint8_t> icon( 900 + Below( 1500 ) );
            for ( std::uint8_t& byte : icon )
                byte = std::uint8_t( mRandom() );
            macro.Set( CFSTR( "CustomIconData" ), XPlistData::Make( icon ) );
        }
        return macro.Seal();
    }

    __SafeCFPropertyList Trigger()
    {
        XMutableDictionary trigger;
        if ( Below( 3 ) == 0 )
        {
            trigger.SetText( CFSTR( "MacroTriggerType" ), u"TypedString" );
            trigger.SetText( CFSTR( "TypedString" ), Pick( std::span( kWords ) ) );
            trigger.SetBoolean( CFSTR( "SimulateDeletes" ), true );
            trigger.SetBoolean( CFSTR( "OnlyAfterWordBreak" ), false );
            return trigger.Seal();
        }
        trigger.SetText( CFSTR( "MacroTriggerType" ), u"HotKey" );
        trigger.SetInteger( CFSTR( "KeyCode" ), std::int64_t( Below( 127 ) ) );
        trigger.SetInteger( CFSTR( "Modifiers" ), std::int64_t( Below( 4 ) * 256 ) ); // of command and shift
        trigger.SetText( CFSTR( "FireType" ), u"Pressed" );
        return trigger.Seal();
    }

    __SafeCFPropertyList Actions( std::uint64_t inCount, unsigned inDepth )
    {
        XMutableArray actions;
        for ( ; inCount > 0; --inCount )
            actions.Append( Action( inDepth ) );
        return actions.Seal();
    }

    __SafeCFPropertyList Action( unsigned inDepth )
    {
        const TextView kind = Pick( std::span( kKinds ) );
        XMutableDictionary action;
        action.SetText( CFSTR( "MacroActionType" ), Text( kind ) );
        action.SetInteger( CFSTR( "ActionUID" ), mNextAction++ );
        if ( Below( 4 ) == 0 )
            action.SetText( CFSTR( "ActionName" ), Phrase( 3 ) );
        if ( Below( 12 ) == 0 )
            action.SetBoolean( CFSTR( "IsActive" ), false );
        if ( kind == u"IfThenElse" or kind == u"Group" )
        {
            const std::uint64_t count = inDepth > 0 ? 1 + Below( 4 ) : 0;
            action.Set( CFSTR( "Actions" ), Actions( count, inDepth - ( count > 0 ) ) );
            action.SetReal( CFSTR( "TimeOutPeriod" ), 99.0 );
            action.SetBoolean( CFSTR( "TimeOutAbortsMacro" ), true );
        }
        else if ( kind == u"ExecuteShellScript" )
        {
            Text script = u"#!/bin/sh\n# " + Phrase( 8 ) + u"\n";
            for ( std::uint64_t lines = 4 + Below( 12 ); lines > 0; --lines )
                script += Pick( std::span( kShellLines ) );
            action.SetText( CFSTR( "Text" ), script );
            action.SetBoolean( CFSTR( "UseText" ), true );
            action.SetText( CFSTR( "DisplayKind" ), u"None" );
        }
        else if ( kind == u"Pause" )
            action.SetText( CFSTR( "Time" ), TextFromASCII( std::to_string( Below( 90 ) / 10.0 ) ) );
        else if ( kind == u"SimulateKeystroke" )
        {
            action.SetInteger( CFSTR( "KeyCode" ), std::int64_t( Below( 127 ) ) );
            action.SetInteger( CFSTR( "Modifiers" ), std::int64_t( Below( 64 ) * 256 ) );
            action.SetReal( CFSTR( "ReleaseAfter" ), double( Below( 1000 ) ) / 64 );
        }
        else
        {
            action.SetText( CFSTR( "Text" ), Phrase( 10 + Below( 30 ) ) );
            action.SetText( CFSTR( "Variable" ), Phrase( 1 ) );
        }
        return action.Seal();
    }

    std::uint64_t Below( std::uint64_t inLimit ) { return mRandom() % inLimit; }

    TextView Pick( std::span<const char16_t* const> inTexts ) { return inTexts[Below( inTexts.size() )]; }

    Text Phrase( std::uint64_t inWords )
    {
        Text phrase( Pick( std::span( kWords ) ) );
        for ( std::uint64_t i = 1; i < inWords; ++i )
            phrase.append( u" " ).append( Pick( std::span( kWords ) ) );
        if ( Below( 12 ) == 0 )
            phrase.append( u" " ).append( Pick( std::span( kForeign ) ) );
        return phrase;
    }

    double Date() { return 600000000.0 + double( Below( 100000000000 ) ) / 1000; }

    Text UUID()
    {
        Text text;
        for ( int i = 0; i < 36; ++i )
            text += i == 8 or i == 13 or i == 18 or i == 23 ? u'-' : u"0123456789ABCDEF"[Below( 16 )];
        return text;
    }

    std::mt19937_64 mRandom{ 20 };
    std::int64_t mNextAction = 1000;
};
} // namespace

__SafeCFPropertyList MakeMacrosFile( std::size_t inMacros )
{
    return Maker().File( inMacros );
}
