// Actions nested as deep as anybody could want, in every way that actions hold others: through bytes, clones,
// searches and back.
#include "Actions/ActionLimits.h"
#include "App/FileInput.h"
#include "MacroFixtures.h"
#include "Utility/Search/StringSearchee.h"

namespace
{
constexpr int kDepth = 500;

using Wrap = __SafeCFPropertyList ( * )( const __SafeCFPropertyList& inInner );

const __SafeCFPropertyList& NoConditions()
{
    static const auto gNone = Dict( { { "ConditionListMatch", Str( u"All" ) }, { "ConditionList", Array( {} ) } } );
    return gNone;
}

__SafeCFPropertyList TimedAction( TextView inType, std::initializer_list<PlistEntry> inEntries )
{
    return With( With( Dict( inEntries ), "MacroActionType", Str( inType ) ), "TimeOutAbortsMacro", Bool( true ) );
}

const std::pair<const char*, Wrap> kContainers[] = {
    { "group",
        []( const auto& inInner ) {
            return TimedAction( u"Group", { { "Actions", Array( { inInner } ) } } );
        } },
    { "then",
        []( const auto& inInner ) {
            return TimedAction( u"IfThenElse",
                { { "Conditions", NoConditions() }, { "ThenActions", Array( { inInner } ) },
                    { "ElseActions", Array( {} ) } } );
        } },
    { "else",
        []( const auto& inInner ) {
            return TimedAction( u"IfThenElse",
                { { "Conditions", NoConditions() }, { "ThenActions", Array( {} ) },
                    { "ElseActions", Array( { inInner } ) } } );
        } },
    { "case",
        []( const auto& inInner ) {
            return ActionDict( u"Switch",
                { { "Source", Str( u"Clipboard" ) },
                    { "CaseEntries",
                        Array( { Dict( { { "ConditionType", Str( u"Is" ) }, { "TestValue", Str( u"x" ) },
                            { "Actions", Array( { inInner } ) } } ) } ) } } );
        } },
};

__SafeCFPropertyList Nested( Wrap inWrap )
{
    __SafeCFPropertyList action =
        TimedAction( u"Pause", { { "Time", Str( u"innermost" ) }, { "Unit", Str( u"Seconds" ) } } );
    for ( int i = 0; i < kDepth; ++i )
        action = inWrap( action );
    return action;
}
} // namespace

TEST( DeepNesting, LoadsClonesSearchesAndSavesInBothForms )
{
    for ( const auto& [name, wrap] : kContainers )
    {
        SCOPED_TRACE( name );
        const auto nested = Nested( wrap );
        const auto file = Dict( { { "MacroGroups",
            Array( { GroupWith( u"G", { MacroWith( u"M", { { "Actions", Array( { nested } ) } } ) } ) } ) } } );
        const XPlistWriteResult xml = WriteXMLPropertyList( file );
        ASSERT_FALSE( xml.mFault );
        const XBytes binary = WriteBinaryPropertyList( file );
        for ( const XBytes* bytes : { &binary, &xml.mBytes } )
        {
            const XPlistReadResult read = ReadPropertyList( bytes->Span(), kActionsPlistLimits );
            ASSERT_FALSE( read.mFault ) << read.mFault->Describe();
            MMacroDomain domain;
            domain.LoadFromPropertyList( read.mValue );
            auto* const macro = MMacroSerializedObject::FindObjectByUID( XText( TextView( u"M" ) ) )->GetAsMacro();
            ASSERT_NE( macro, nullptr );
            HBaseAction& action = *macro->GetActionList()->GetAction( 0 );
            EXPECT_EQ( Saved( action ), nested );
            EXPECT_EQ( Saved( *action.Clone() ), nested );

            StringSearchee searchee;
            macro->AddMatchStrings( searchee );
            EXPECT_TRUE( std::ranges::any_of(
                searchee.GetElements(), []( const auto& element ) { return element.mText == u"innermost"; } ) );
            const auto copied = action.GetActionXML();
            ASSERT_TRUE( copied );
            const auto pasted = HBaseAction::CreateFromActionXML( *copied );
            ASSERT_NE( pasted, nullptr );
            EXPECT_EQ( action.CompareFields( *pasted ), 0 );
        }
    }
}
