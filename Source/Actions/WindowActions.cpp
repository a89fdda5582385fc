#include "Actions/WindowActions.h"

#include "Actions/DescriptionText.h"
#include "Actions/RecordedNumbers.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

// Manipulate Window

void AManipulateWindow::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Targeting", mTargeting );
    inVisitor.Name( "Action", mAction );
    inVisitor.Text( "WindowName", mWindowName );
    inVisitor.Calculation( "HorizontalExpression", mHorizontal, { .mOlderKey = "Horizontal" } );
    inVisitor.Calculation( "VerticalExpression", mVertical, { .mOlderKey = "Vertical" } );
    inVisitor.Calculation( "WidthExpression", mWidth );
    inVisitor.Calculation( "HeightExpression", mHeight );
    inVisitor.Calculation( "WindowIndexExpression", mWindowIndex, { .mOlderKey = "WindowIndex" } );
    mTarget.DescribeFields( inVisitor, "TargetingType", "TargetApplication" );
}

bool AManipulateWindow::Pair::IsPlain() const
{
    return kvr_plainNumber( mHorizontal ) and kvr_plainNumber( mVertical );
}

bool AManipulateWindow::IsOnSameWindow( const AManipulateWindow& inOther ) const
{
    if ( mTargeting != inOther.mTargeting or not mTarget.IsSameAs( inOther.mTarget ) )
        return false;
    if ( mTargeting == WindowTargeting::kFrontWindow )
        return true;
    const XText& mine = mTargeting == WindowTargeting::kWindowIndex ? mWindowIndex : mWindowName;
    const XText& others = mTargeting == WindowTargeting::kWindowIndex ? inOther.mWindowIndex : inOther.mWindowName;
    return mine.Equals( others.GetText() );
}

std::optional<AManipulateWindow::Pair> AManipulateWindow::GetNewPlace() const
{
    if ( mAction == WindowAction::kMoveWindowTo or mAction == WindowAction::kMoveAndResize )
        return Pair{ mHorizontal, mVertical };
    return {};
}

std::optional<AManipulateWindow::Pair> AManipulateWindow::GetNewSize() const
{
    if ( mAction == WindowAction::kResizeWindowTo )
        return Pair{ mHorizontal, mVertical };
    if ( mAction == WindowAction::kMoveAndResize )
        return Pair{ mWidth, mHeight };
    return {};
}

std::unique_ptr<HBaseAction> AManipulateWindow::Merge( const HBaseAction& inNext ) const
{
    const auto* next = dynamic_cast<const AManipulateWindow*>( &inNext );
    if ( not next or not IsOnSameWindow( *next ) )
        return nullptr;
    const bool isDistance = mAction == WindowAction::kMoveWindowBy or mAction == WindowAction::kResizeWindowBy;
    if ( isDistance and next->mAction == mAction )
        return MergeDistances( *next );
    return MergeFrames( *next );
}

std::unique_ptr<HBaseAction> AManipulateWindow::MergeDistances( const AManipulateWindow& inNext ) const
{
    const auto horizontal = kvr_plainSum( mHorizontal, inNext.mHorizontal );
    const auto vertical = kvr_plainSum( mVertical, inNext.mVertical );
    if ( not horizontal or not vertical )
        return nullptr;
    auto merged = std::make_unique<AManipulateWindow>( *this );
    merged->mHorizontal = *horizontal;
    merged->mVertical = *vertical;
    return merged;
}

std::unique_ptr<HBaseAction> AManipulateWindow::MergeFrames( const AManipulateWindow& inNext ) const
{
    std::optional<Pair> place = GetNewPlace(), size = GetNewSize();
    const std::optional<Pair> nextPlace = inNext.GetNewPlace(), nextSize = inNext.GetNewSize();
    // A calculation may ask where the window has come to by then.
    const bool isKnown = ( not nextPlace or nextPlace->IsPlain() ) and ( not nextSize or nextSize->IsPlain() );
    if ( not isKnown or not( place or size ) or not( nextPlace or nextSize ) )
        return nullptr;
    place = nextPlace ? nextPlace : place;
    size = nextSize ? nextSize : size;
    auto merged = std::make_unique<AManipulateWindow>( *this );
    if ( place and size )
    {
        merged->mAction = WindowAction::kMoveAndResize;
        merged->mWidth = size->mHorizontal;
        merged->mHeight = size->mVertical;
    }
    const Pair& first = place ? *place : *size;
    merged->mHorizontal = first.mHorizontal;
    merged->mVertical = first.mVertical;
    return merged;
}

std::vector<Text> AManipulateWindow::ActionCouldBeRegExStrings() const
{
    if ( mTargeting == WindowTargeting::kWindowNameMatching and not mWindowName.IsEmpty() )
        return { mWindowName.GetText() };
    return {};
}

std::vector<Text> AManipulateWindow::GetAddActionByNameExtraSearchString() const
{
    return { u"resize", u"move", u"close", u"zoom", u"minimize", u"center" };
}

Text AManipulateWindow::GetWindowDescription() const
{
    const XText& which = mTargeting == WindowTargeting::kWindowIndex ? mWindowIndex : mWindowName;
    const Text window = kvr_localizedFormat(
        kvr_format( "kvManipulateWindow%@TargetFormat", StoredName( mTargeting ) ), which.GetText() );
    const Text application = mTarget.GetApplicationName();
    if ( application.empty() )
        return window;
    return kvr_localizedFormat( u"kvManipulateWindowOfApplicationFormat", window, application );
}

Text AManipulateWindow::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvManipulateWindow%@DescriptionFormat", StoredName( mAction ) ),
        GetWindowDescription(), mHorizontal.GetText(), mVertical.GetText(), mWidth.GetText(), mHeight.GetText() );
}

// Select Menu Item

void ASelectMenuItem::DescribeFields( HFieldVisitor& inVisitor )
{
    mTarget.DescribeFields( inVisitor, "TargetingType", "TargetApplication" );
    inVisitor.Value( "Menu", mMenu );
    if ( StringSearchee* searchee = inVisitor.Searchee() )
        searchee->Add( GetMenuPath() );
}

Text ASelectMenuItem::GetMenuPath() const
{
    if ( const auto* title = mMenu.AsString() )
        return title->GetText();
    Text path;
    const XPlistArray* titles = mMenu.AsArray();
    for ( std::size_t i = 0; titles and i < titles->GetCount(); ++i )
    {
        if ( const auto* title = titles->GetValueAt( i ).AsString() )
            path += ( path.empty() ? u"" : u" ▸ " ) + title->GetText();
    }
    return path;
}

Text ASelectMenuItem::InternalGetActionDescriptionString() const
{
    const Text path = GetMenuPath();
    if ( path.empty() )
        return GetActionTitle();
    return kvr_withApplication( kvr_localizedFormat( u"kvSelectMenuItemDescriptionFormat", path ), mTarget );
}

// Press Button

void APressButton::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ButtonName", mButtonName );
}

Text APressButton::InternalGetActionDescriptionString() const
{
    if ( mButtonName.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvPressButtonDescriptionFormat", kvr_excerpt( mButtonName ) );
}
