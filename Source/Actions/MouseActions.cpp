#include "Actions/MouseActions.h"

#include "Actions/RecordedNumbers.h"
#include "Utility/Text/KeystrokeText.h"
#include "Utility/Text/Localization.h"

#include <algorithm>
#include <iterator>

// Mouse Move and Click

void AMouseMoveAndClick::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeAction( inVisitor );
    inVisitor.Integer( "ClickCount", mClickCount );
    inVisitor.Integer( "Button", mButton );
    inVisitor.Name( "Relative", mRelative );
    inVisitor.Name( "RelativeCorner", mRelativeCorner );
    if ( mRelative == MouseRelative::kImage )
        mScreenArea.DescribeIn( inVisitor, "ScreenArea" );
    inVisitor.Calculation( "HorizontalPositionExpression", mHorizontalPosition, { .mOlderKey = "HorizontalPosition" } );
    inVisitor.Calculation( "VerticalPositionExpression", mVerticalPosition, { .mOlderKey = "VerticalPosition" } );
    inVisitor.Integer( "Modifiers", mModifiers );
    inVisitor.Name( "MouseDrag", mDrag );
    inVisitor.Calculation( "DragHorizontalPosition", mDragHorizontalPosition );
    inVisitor.Calculation( "DragVerticalPosition", mDragVerticalPosition );
    inVisitor.Boolean( "RestoreMouseLocation", mRestoreMouseLocation );
    if ( inVisitor.IsReading() )
        inVisitor.Value( "RecordedDetails", mRecordedDetails );
    if ( mRelative == MouseRelative::kImage )
        mImage.DescribeFields( inVisitor );
    inVisitor.NameUnless( "ImageSelection", mImageSelection, ImageSelection::kUnique );
    inVisitor.Integer( "Fuzz", mFuzz );
    inVisitor.Boolean( "DisplayMatches", mDisplayMatches );
}

// Two flags are stored as a name, and one of them beside it once more. Where both are there and differ, the flag
// stands.
void AMouseMoveAndClick::DescribeAction( HFieldVisitor& inVisitor )
{
    MouseAction action = GetAction();
    inVisitor.Name( "Action", action );
    if ( not inVisitor.IsReading() )
        return;
    mClick = action != MouseAction::kMove;
    mRestoreMouseLocation = action == MouseAction::kClick;
}

MouseAction AMouseMoveAndClick::GetAction() const
{
    if ( not mClick )
        return MouseAction::kMove;
    return mRestoreMouseLocation ? MouseAction::kClick : MouseAction::kMoveAndClick;
}

void AMouseMoveAndClick::SaveToDictionary( XMutableDictionary& ioDictionary, RecordedDetails inDetails ) const
{
    HActionOf::SaveToDictionary( ioDictionary, inDetails );
    if ( inDetails == RecordedDetails::kYes and mRecordedDetails )
        ioDictionary.Set( CFSTR( "RecordedDetails" ), mRecordedDetails );
}

namespace
{
// The steps of a recording one after the other, as far as both are lists of steps.
__SafeCFPropertyList JoinedDetails( const __SafeCFPropertyList& inFirst, const __SafeCFPropertyList& inSecond )
{
    if ( not inSecond )
        return inFirst;
    if ( not inFirst.AsArray() or not inSecond.AsArray() )
        return inSecond;
    XMutableArray steps;
    for ( const XPlistArray* details : { inFirst.AsArray(), inSecond.AsArray() } )
    {
        for ( std::size_t i = 0; i < details->GetCount(); ++i )
            steps.Append( details->GetValueAt( i ) );
    }
    return steps.Seal();
}
} // namespace

bool AMouseMoveAndClick::IsPlainMove() const
{
    return not mClick and mDrag == MouseDrag::kNone and not mRestoreMouseLocation and
        mRelative != MouseRelative::kImage; // finding an image can fail, which is a result of its own
}

std::unique_ptr<HBaseAction> AMouseMoveAndClick::Merge( const HBaseAction& inNext ) const
{
    const auto* next = dynamic_cast<const AMouseMoveAndClick*>( &inNext );
    auto merged = next ? MergedWith( *next ) : nullptr;
    if ( merged )
        merged->mRecordedDetails = JoinedDetails( mRecordedDetails, next->mRecordedDetails );
    return merged;
}

std::unique_ptr<AMouseMoveAndClick> AMouseMoveAndClick::MergedWith( const AMouseMoveAndClick& inNext ) const
{
    if ( inNext.IsNextClickOf( *this ) )
        return std::make_unique<AMouseMoveAndClick>( inNext );
    const bool goesBack = inNext.mRestoreMouseLocation; // to the place that the move went to
    if ( not IsPlainMove() or goesBack or ( mModifiers != 0 and mModifiers != inNext.mModifiers ) )
        return nullptr;
    if ( inNext.mRelative == MouseRelative::kMouse )
        return MovedBy( inNext );
    if ( inNext.mRelative == mRelative and inNext.mRelativeCorner == mRelativeCorner )
        return std::make_unique<AMouseMoveAndClick>( inNext );
    return nullptr;
}

// Each click of a double-click says which one it is.
bool AMouseMoveAndClick::IsNextClickOf( const AMouseMoveAndClick& inFirst ) const
{
    if ( not inFirst.mClick or inFirst.mDrag != MouseDrag::kNone or mRelative == MouseRelative::kMouse or
        std::int64_t( mClickCount ) != std::int64_t( inFirst.mClickCount ) + 1 )
        return false;
    AMouseMoveAndClick sameClick( *this );
    sameClick.mClickCount = inFirst.mClickCount;
    sameClick.mDrag = inFirst.mDrag; // the last click may begin a drag
    sameClick.mDragHorizontalPosition = inFirst.mDragHorizontalPosition;
    sameClick.mDragVerticalPosition = inFirst.mDragVerticalPosition;
    return sameClick.CompareFields( inFirst ) == 0;
}

// The next one as seen from where this move started.
std::unique_ptr<AMouseMoveAndClick> AMouseMoveAndClick::MovedBy( const AMouseMoveAndClick& inNext ) const
{
    const auto horizontal = kvr_plainSum( mHorizontalPosition, inNext.mHorizontalPosition );
    const auto vertical = kvr_plainSum( mVerticalPosition, inNext.mVerticalPosition );
    if ( not horizontal or not vertical )
        return nullptr;
    auto merged = std::make_unique<AMouseMoveAndClick>( inNext );
    merged->mRelative = mRelative;
    merged->mRelativeCorner = mRelativeCorner;
    merged->mHorizontalPosition = *horizontal;
    merged->mVerticalPosition = *vertical;
    return merged;
}

void AMouseMoveAndClick::UpdateToDefaultValues( bool inForce )
{
    mImage.UpdateToDefaultValues( inForce );
}

std::vector<Text> AMouseMoveAndClick::ActionCouldBeRegExStrings() const
{
    if ( mRelative != MouseRelative::kImage )
        return {};
    std::vector<Text> strings = mScreenArea.CouldBeRegExStrings();
    std::ranges::move( mImage.CouldBeRegExStrings(), std::back_inserter( strings ) );
    return strings;
}

std::vector<Text> AMouseMoveAndClick::GetAddActionByNameExtraSearchString() const
{
    return { u"drag", u"double-click" };
}

Text AMouseMoveAndClick::GetPlaceDescription() const
{
    const Text& corner = kvr_localized( kvr_format( "kvRelativeCorner%@Name", StoredName( mRelativeCorner ) ) );
    const Text image = mRelative == MouseRelative::kImage ? mImage.GetDescription() : Text();
    return kvr_localizedFormat( kvr_format( "kvMousePlace%@Format", StoredName( mRelative ) ),
        mHorizontalPosition.GetText(), mVerticalPosition.GetText(), corner, image );
}

Text AMouseMoveAndClick::GetClickDescription() const
{
    Text click;
    if ( mClickCount >= 1 and mClickCount <= 3 )
        click = kvr_localized( kvr_format( "kvMouseClick%dName", mClickCount ) );
    else
        click = kvr_localizedFormat( u"kvMouseClickTimesFormat", mClickCount );
    if ( mButton == 1 or mButton == 2 )
        click = kvr_localizedFormat( kvr_format( "kvMouseButton%dFormat", mButton ), click );
    else if ( mButton != 0 )
        click = kvr_localizedFormat( u"kvMouseButtonFormat", click, mButton );
    const Text glyphs = kvr_modifierGlyphs( mModifiers );
    return glyphs.empty() ? click : kvr_localizedFormat( u"kvMouseModifiersFormat", glyphs, click );
}

Text AMouseMoveAndClick::InternalGetActionDescriptionString() const
{
    const Text description =
        kvr_localizedFormat( kvr_format( "kvMouseMoveAndClick%@DescriptionFormat", StoredName( GetAction() ) ),
            GetPlaceDescription(), mClick ? GetClickDescription() : Text() );
    if ( mDrag == MouseDrag::kNone )
        return description;
    return kvr_localizedFormat( kvr_format( "kvMouseDrag%@DescriptionFormat", StoredName( mDrag ) ), description,
        mDragHorizontalPosition.GetText(), mDragVerticalPosition.GetText() );
}

// Scroll Wheel Event

void AScrollWheelEvent::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ScrollDirection", mDirection );
    inVisitor.Calculation( "ScrollAmountExpression", mAmount, { .mOlderKey = "ScrollAmount" } );
}

std::unique_ptr<HBaseAction> AScrollWheelEvent::Merge( const HBaseAction& inNext ) const
{
    const auto* next = dynamic_cast<const AScrollWheelEvent*>( &inNext );
    const auto amount = next and next->mDirection == mDirection ? kvr_plainSum( mAmount, next->mAmount ) : std::nullopt;
    if ( not amount )
        return nullptr;
    auto merged = std::make_unique<AScrollWheelEvent>( *this );
    merged->mAmount = *amount;
    return merged;
}

Text AScrollWheelEvent::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvScrollWheelEvent%@DescriptionFormat", StoredName( mDirection ) ), mAmount.GetText() );
}
