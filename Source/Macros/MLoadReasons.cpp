#include "Macros/MLoadReasons.h"

#include "Utility/Text/Format.h"

namespace
{
using Rule = MLoadRule;

// An element whose type isn't known: by its name, or for want of one.
MDropReason UnknownType(
    const XPlistDictionary& inElement, const XKey& inTypeKey, Rule inRule, const char16_t* inFormat )
{
    const XPlistString* const type = __SafeCFPropertyList( inElement.Find( inTypeKey ) ).AsString();
    if ( not type or type->GetLength() == 0 )
        return { Rule::kDroppedRequiredKey, kvr_format( u"its key “%@” is missing or no text", inTypeKey.Name() ) };
    return { inRule, kvr_format( inFormat, type->GetText() ) };
}

MDropReason WrongType( const __SafeCFPropertyList& inElement, TextView inReason )
{
    if ( inReason.ends_with( u"->IsCorrectTypeID()" ) )
        return { Rule::kDroppedWrongType,
            kvr_format( u"it is no dictionary, but of type %s", NameOf( inElement.GetType() ) ) };
    return { Rule::kDroppedWrongType, Text( inReason ) };
}

// Reads whose failed expression names no key.
constexpr struct
{
    TextView mReason;
    Rule mRule;
    TextView mText;
} kExpressions[] = {
    { u"dictionary->Get( CFSTR(\"SearchStrings\"), strings )", Rule::kDroppedUnknownGroup,
        u"it has neither a list “Macros”, as a group has, nor “SearchStrings”, as a smart group has" },
    { u"actions", Rule::kDroppedRequiredKey, u"its key “Actions” is missing or no array" },
    { u"actions && actions->IsCorrectTypeID()", Rule::kDroppedRequiredKey, u"a list of actions in it is no array" },
    { u"params", Rule::kDroppedRequiredKey, u"its key “PlugInParameters” is missing or no dictionary" },
    { u"gotExecuteType", Rule::kDroppedRequiredKey,
        u"its key “ExecuteType” is missing or none of the names that it knows" },
    { u"the trigger could never fire", Rule::kDroppedUselessTrigger, u"the trigger could never fire" },
};

MDropReason ReasonOfDictionary( const XPlistDictionary& inElement, TextView inListKey, TextView inReason )
{
    if ( inReason == u"good" and inListKey == u"ConditionList" )
        return UnknownType(
            inElement, CFSTR( "ConditionType" ), Rule::kDroppedUnknownCondition, u"no condition type is called “%@”" );
    if ( inListKey == u"CollectionList" )
        return UnknownType( inElement, CFSTR( "CollectionType" ), Rule::kDroppedUnknownCollection,
            u"no collection type is called “%@”" );
    if ( inReason == u"good" or inReason == u"action" )
        return UnknownType(
            inElement, CFSTR( "MacroActionType" ), Rule::kDroppedUnknownAction, u"no action type is called “%@”" );
    if ( inReason == u"false" )
        return UnknownType( inElement, CFSTR( "MacroTriggerType" ), Rule::kDroppedUnknownTrigger,
            u"no kind of trigger is called “%@”" );
    for ( const auto& [reason, rule, text] : kExpressions )
    {
        if ( inReason == reason )
            return { rule, Text( text ) };
    }
    constexpr TextView kRead = u"dictionary->Get( CFSTR(\"";
    if ( inReason.starts_with( kRead ) )
    {
        const TextView rest = inReason.substr( kRead.size() );
        return { Rule::kDroppedRequiredKey,
            kvr_format( u"its key “%@” is missing or of the wrong type", rest.substr( 0, rest.find( u'"' ) ) ) };
    }
    if ( inReason.ends_with( u"->IsCorrectTypeID()" ) )
        return { Rule::kDroppedRequiredKey, u"a part of it that must be a dictionary is none" };
    return { Rule::kChangedValue, u"it is left out: " + Text( inReason ) };
}
} // namespace

MDropReason DropReasonOf( const __SafeCFPropertyList& inElement, TextView inListKey, TextView inReason )
{
    const XPlistDictionary* const dictionary = inElement.AsDictionary();
    return dictionary ? ReasonOfDictionary( *dictionary, inListKey, inReason ) : WrongType( inElement, inReason );
}
