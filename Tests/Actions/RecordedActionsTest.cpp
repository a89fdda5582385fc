// Neighbouring actions of a recording that become one, and those that mustn't.
#include "ActionTestSupport.h"

#include "Actions/KeyboardActions.h"

namespace
{
__SafeCFPropertyList Int( std::int64_t inValue )
{
    return __SafeCFPropertyList::Integer( inValue );
}

using Action = __SafeCFPropertyList;

// What two become; null when they stay two.
Action Merged( const Action& inFirst, const Action& inSecond )
{
    const auto first = HBaseAction::CreateFromPropertyList( inFirst );
    const auto second = HBaseAction::CreateFromPropertyList( inSecond );
    const auto merged = first->Merge( *second );
    EXPECT_EQ( Saved( *first ), Reloaded( inFirst ) );
    EXPECT_EQ( Saved( *second ), Reloaded( inSecond ) );
    return merged ? Saved( *merged ) : Action();
}

Action Typed( TextView inText )
{
    return ActionDict( u"InsertText", { { "Text", Str( inText ) } } );
}

constexpr int kShift = 512, kCommand = 256;

Action Key( int inKeyCode, int inModifiers = 0, TextView inPress = u"PressAndRelease" )
{
    return ActionDict( u"SimulateKeystroke",
        { { "KeyCode", Int( inKeyCode ) }, { "Modifiers", Int( inModifiers ) }, { "Press", Str( inPress ) } } );
}

const PlistEntry kApplication = { "TargetApplication", Dict( { { "Name", Str( u"Notes" ) } } ) };

Action Mouse( TextView inAction, TextView inRelative, TextView inX, TextView inY )
{
    return ActionDict( u"MouseMoveAndClick",
        { { "Action", Str( inAction ) }, { "Relative", Str( inRelative ) },
            { "HorizontalPositionExpression", Str( inX ) }, { "VerticalPositionExpression", Str( inY ) } } );
}

Action Window( TextView inAction, TextView inX, TextView inY )
{
    return ActionDict( u"ManipulateWindow",
        { { "Action", Str( inAction ) }, { "HorizontalExpression", Str( inX ) },
            { "VerticalExpression", Str( inY ) } } );
}

Action Scroll( TextView inDirection, TextView inAmount )
{
    return ActionDict( u"ScrollWheelEvent",
        { { "ScrollDirection", Str( inDirection ) }, { "ScrollAmountExpression", Str( inAmount ) } } );
}
} // namespace

TEST( RecordedActions, KeystrokesThatTypeCharactersBecomeAText )
{
    const Action noted = With( Key( 0 ), "TargetApplication", kApplication.second );
    const struct
    {
        Action mFirst, mSecond, mMerged;
    } kCases[] = {
        { Typed( u"x" ), Key( 0 ), Typed( u"xa" ) },
        { Typed( u"x" ), Key( 0, kShift ), Typed( u"xA" ) },
        { Typed( u"x" ), Key( 49 ), Typed( u"x " ) },
        { Typed( u"100%@" ), Key( 18 ), Typed( u"100%@1" ) },
        { Key( 0 ), Typed( u"x" ), Typed( u"ax" ) },
        { Key( 0 ), Key( 11, kShift ), Typed( u"aB" ) },
        { noted, noted,
            With( With( Typed( u"aa" ), kApplication.first, kApplication.second ), "TargetingType",
                Str( u"Specific" ) ) },
        { Typed( u"x" ), noted, {} },                        // another application
        { Typed( u"x" ), Key( 0, kCommand ), {} },           // a command
        { Typed( u"x" ), Key( 18, kShift ), {} },            // only the layout knows
        { Typed( u"x" ), Key( 36 ), {} },                    // Return
        { Typed( u"x" ), Key( 0, 0, u"PressAndHold" ), {} }, // still down
        { With( Typed( u"x" ), "Action", Str( u"ByPasting" ) ), Key( 0 ), {} },
        { Key( 0 ), With( Typed( u"x" ), "Action", Str( u"DisplayLarge" ) ), {} },
        { Key( 36 ), Key( 36 ), {} },
    };
    for ( const auto& [first, second, merged] : kCases )
    {
        const Action expected = merged ? Reloaded( merged ) : merged;
        EXPECT_EQ( Merged( first, second ), expected ) << Shown( first ) << Shown( second );
    }
}

TEST( RecordedActions, TheRecordedCharacterWinsOverTheLayoutOfTheKeyNumbers )
{
    const auto text = HBaseAction::CreateFromPropertyList( Typed( u"x" ) );
    const auto key = HBaseAction::CreateFromPropertyList( Key( 0 ) );
    for ( const auto& [character, merged] :
        { std::pair( u'q', u"xq" ), std::pair( u'é', u"xé" ), std::pair( u'\uF700', u"" ), std::pair( u'\r', u"" ) } )
    {
        static_cast<ASimulateKeystroke&>( *key ).SetRecordedCharacter( character );
        const auto result = text->Merge( *key->Clone() );
        EXPECT_EQ( result ? Saved( *result ) : Action(), *merged ? Reloaded( Typed( merged ) ) : Action() );
    }
}

TEST( RecordedActions, AKeyHeldAndReleasedIsPressed )
{
    EXPECT_EQ( Merged( Key( 36, kCommand, u"PressAndHold" ), Key( 36, kCommand, u"Release" ) ),
        Reloaded( Key( 36, kCommand ) ) );
    EXPECT_FALSE( Merged( Key( 36, 0, u"PressAndHold" ), Key( 48, 0, u"Release" ) ) );
    EXPECT_FALSE( Merged( Key( 36, 0, u"Release" ), Key( 36, 0, u"PressAndHold" ) ) );
}

TEST( RecordedActions, AMoveGoesUpInWhatTheMouseDoesNext )
{
    const Action click = Mouse( u"MoveAndClick", u"Absolute", u"30", u"40" );
    const Action corner = With( click, "RelativeCorner", Str( u"Center" ) );
    const struct
    {
        Action mFirst, mSecond, mMerged;
    } kCases[] = {
        { Mouse( u"Move", u"Absolute", u"1", u"2" ), click, click },
        { Mouse( u"Move", u"Absolute", u"1", u"2" ), Mouse( u"Move", u"Mouse", u"0.5", u"-3" ),
            Mouse( u"Move", u"Absolute", u"1.5", u"-1" ) },
        { Mouse( u"Move", u"Window", u"1", u"2" ), Mouse( u"MoveAndClick", u"Mouse", u"1", u"1" ),
            Mouse( u"MoveAndClick", u"Window", u"2", u"3" ) },
        { Mouse( u"Move", u"Absolute", u"1", u"2" ), Mouse( u"Click", u"Absolute", u"3", u"4" ),
            {} }, // goes back there
        { Mouse( u"Move", u"Window", u"1", u"2" ), click, {} },
        { Mouse( u"Move", u"Absolute", u"1", u"2" ), corner, {} },
        { Mouse( u"Move", u"Image", u"1", u"2" ), Mouse( u"Move", u"Image", u"1", u"3" ), {} },
        { Mouse( u"Move", u"Absolute", u"x", u"2" ), Mouse( u"Move", u"Mouse", u"1", u"1" ), {} },
        { With( Mouse( u"Move", u"Absolute", u"1", u"2" ), "MouseDrag", Str( u"To" ) ), click, {} },
        { With( Mouse( u"Move", u"Absolute", u"1", u"2" ), "Modifiers", Int( kShift ) ), click, {} },
        { click, click, {} },
        { click, Mouse( u"Move", u"Absolute", u"1", u"2" ), {} },
    };
    for ( const auto& [first, second, merged] : kCases )
    {
        const Action expected = merged ? Reloaded( merged ) : merged;
        EXPECT_EQ( Merged( first, second ), expected ) << Shown( first ) << Shown( second );
    }
}

TEST( RecordedActions, TheDetailsOfBothStayInTheirOrder )
{
    const auto moved = [details = "RecordedDetails"]( const Action& inFirst, const Action& inSecond ) {
        const Action move = Mouse( u"Move", u"Absolute", u"1", u"2" );
        const auto first = HBaseAction::CreateFromPropertyList( With( move, details, inFirst ) );
        const auto second = HBaseAction::CreateFromPropertyList( With( move, details, inSecond ) );
        return At( first->Merge( *second )->CopyToPropertyList( RecordedDetails::kYes ), details );
    };
    const Action one = Array( { Int( 1 ) } ), two = Array( { Int( 2 ) } );
    EXPECT_EQ( moved( one, two ), Array( { Int( 1 ), Int( 2 ) } ) );
    EXPECT_EQ( moved( one, {} ), one );
    EXPECT_EQ( moved( {}, two ), two );
}

TEST( RecordedActions, TheClicksOfADoubleClickAreOne )
{
    const Action click = Mouse( u"Click", u"Absolute", u"30", u"40" );
    const Action second = With( click, "ClickCount", Int( 2 ) );
    EXPECT_EQ( Merged( click, second ), Reloaded( second ) );
    EXPECT_EQ(
        Merged( second, With( click, "ClickCount", Int( 3 ) ) ), Reloaded( With( click, "ClickCount", Int( 3 ) ) ) );
    EXPECT_FALSE( Merged( second, second ) );
    EXPECT_FALSE( Merged( click, With( second, "HorizontalPositionExpression", Str( u"31" ) ) ) );
    EXPECT_FALSE( Merged( click, With( second, "Button", Int( 1 ) ) ) );
    const Action there = Mouse( u"MoveAndClick", u"Mouse", u"1", u"1" );
    EXPECT_FALSE( Merged( there, With( there, "ClickCount", Int( 2 ) ) ) ) << "the mouse has moved between them";
}

TEST( RecordedActions, MovesAndSizesOfOneWindowAreOne )
{
    Action frame = With( Window( u"MoveAndResize", u"1", u"2" ), "WidthExpression", Str( u"300" ) );
    frame = With( frame, "HeightExpression", Str( u"400" ) );
    const auto named = []( const Action& inWindow ) { return With( inWindow, "Targeting", Str( u"NamedWindow" ) ); };
    const struct
    {
        Action mFirst, mSecond, mMerged;
    } kCases[] = {
        { Window( u"MoveWindowTo", u"5", u"6" ), Window( u"MoveWindowTo", u"1", u"2" ),
            Window( u"MoveWindowTo", u"1", u"2" ) },
        { Window( u"ResizeWindowTo", u"5", u"6" ), Window( u"ResizeWindowTo", u"1", u"2" ),
            Window( u"ResizeWindowTo", u"1", u"2" ) },
        { Window( u"MoveWindowTo", u"1", u"2" ), Window( u"ResizeWindowTo", u"300", u"400" ), frame },
        { Window( u"ResizeWindowTo", u"300", u"400" ), Window( u"MoveWindowTo", u"1", u"2" ), frame },
        { With( frame, "HeightExpression", Str( u"x" ) ), Window( u"ResizeWindowTo", u"300", u"400" ), frame },
        { Window( u"MoveWindowTo", u"5", u"6" ), frame, frame },
        { Window( u"MoveWindowBy", u"5", u"6" ), Window( u"MoveWindowBy", u"-1", u"0.5" ),
            Window( u"MoveWindowBy", u"4", u"6.5" ) },
        { Window( u"MoveWindowTo", u"5", u"6" ), Window( u"MoveWindowTo", u"WINDOW(Left)", u"2" ), {} },
        { Window( u"MoveWindowBy", u"5", u"6" ), Window( u"ResizeWindowBy", u"5", u"6" ), {} },
        { Window( u"MoveWindowTo", u"5", u"6" ), Window( u"MoveWindowBy", u"5", u"6" ), {} },
        { Window( u"CloseWindow", u"5", u"6" ), Window( u"CloseWindow", u"5", u"6" ), {} },
        { Window( u"MoveWindowTo", u"5", u"6" ), named( Window( u"MoveWindowTo", u"1", u"2" ) ), {} },
        { With( named( frame ), "WindowName", Str( u"a" ) ), With( named( frame ), "WindowName", Str( u"b" ) ), {} },
        { frame, With( frame, kApplication.first, kApplication.second ), {} },
    };
    for ( const auto& [first, second, merged] : kCases )
    {
        const Action expected = merged ? Reloaded( merged ) : merged;
        EXPECT_EQ( Merged( first, second ), expected ) << Shown( first ) << Shown( second );
    }
}

TEST( RecordedActions, PlainScrollsInOneDirectionAddUp )
{
    EXPECT_EQ( Merged( Scroll( u"Up", u"60" ), Scroll( u"Up", u"0.25" ) ), Reloaded( Scroll( u"Up", u"60.25" ) ) );
    EXPECT_FALSE( Merged( Scroll( u"Up", u"60" ), Scroll( u"Down", u"60" ) ) );
    for ( TextView notPlain : { u"", u"1+2", u"inf", u"nan", u"0x10", u"1e300", u" 1" } )
        EXPECT_FALSE( Merged( Scroll( u"Up", u"60" ), Scroll( u"Up", notPlain ) ) ) << UTF8FromText( notPlain );
}

TEST( RecordedActions, OnlyTheMouseClicksAndOnlySomeActionsCanComeOfIt )
{
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        const auto type = HActionType( i );
        const auto action = HBaseAction::CreateActionOfType( type );
        EXPECT_EQ( action->IsClickAction(), type == HActionType::kMouseMoveAndClick ) << i;
        if ( type == HActionType::kManipulateWindow or type == HActionType::kSelectMenuItem )
        {
            EXPECT_TRUE( action->CanBeInstigatedByClickAction() ) << i;
        }
    }
}
