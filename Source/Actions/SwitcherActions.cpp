#include "Actions/SwitcherActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XApplicationIdentifier.h"

namespace
{
// Applications that a switcher offers or leaves out. The list stands as it was read: only its names are looked at.
void DescribeApplications( HFieldVisitor& inVisitor, HFieldKey inKey, __SafeCFPropertyList& ioApplications )
{
    inVisitor.Value( inKey, ioApplications );
    if ( inVisitor.IsReading() and ioApplications and not ioApplications.AsArray() and
        not ioApplications.AsDictionary() and not ioApplications.AsData() )
    {
        inVisitor.NoteRepair( inKey, u"isn't a list of applications; none stands", MLoadRule::kWrongTypeDefaulted );
        ioApplications = nullptr;
    }
    StringSearchee* searchee = inVisitor.Searchee();
    const XPlistArray* applications = searchee ? ioApplications.AsArray() : nullptr;
    if ( not applications )
        return;
    for ( const XPlistNode* node : applications->Nodes() )
    {
        const __SafeCFPropertyList application( node );
        if ( application.AsDictionary() )
            searchee->Add( XApplicationIdentifier::CreateFromPropertyList( application ).GetDisplayName() );
    }
}

Text UnderMouseHTML( bool inUnderMouse )
{
    return kvr_extraHTMLLineIf( inUnderMouse, u"kvSwitcherUnderMouseExtraHTML" );
}
} // namespace

// Applications

void AProgramSwitcher::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeSortOrder( inVisitor );
    inVisitor.Name( "WindowType", mWindowType );
    inVisitor.Integer( "IconSize", mIconSize );
    inVisitor.Boolean( "SwitcherUnderMouse", mSwitcherUnderMouse );
    inVisitor.Boolean( "HideOthers", mHideOthers );
    inVisitor.Boolean( "MouseRollover", mMouseRollover );
    DescribeApplications( inVisitor, "IncludedApplications", mIncludedApplications );
}

void AProgramSwitcher::DescribeSortOrder( HFieldVisitor& inVisitor )
{
    // The names of older files, in the order of those of today, which isn't that of what they say. What counts is
    // the position.
    constexpr TextView kOlderNames[] = { u"ByLaunch", u"ByAlphabetical", u"ByUse" };
    static_assert( std::size( kOlderNames ) == std::size( kProgramSortOrderNames ) );
    __SafeCFPropertyList stored;
    if ( inVisitor.IsReading() )
        inVisitor.Value( "SortOrder", stored );
    for ( std::size_t i = 0; stored.AsString() and i < std::size( kOlderNames ); ++i )
    {
        if ( not stored.AsString()->Equals( kOlderNames[i] ) )
            continue;
        mSortOrder = ProgramSortOrder( i );
        inVisitor.NoteUpgrade( "SortOrder",
            kvr_format( u"%@ is an older name of what is %@ now", kOlderNames[i], StoredName( mSortOrder ) ) );
        return;
    }
    inVisitor.Name( "SortOrder", mSortOrder );
}

Text AProgramSwitcher::GetActionExtraHTML() const
{
    return UnderMouseHTML( mSwitcherUnderMouse ) + kvr_extraHTMLLineIf( mHideOthers, u"kvSwitcherHideOthersExtraHTML" );
}

void AApplicationLauncher::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "SwitcherUnderMouse", mSwitcherUnderMouse );
    inVisitor.Boolean( "HideOthers", mHideOthers );
    inVisitor.Boolean( "ExcludeRunning", mExcludeRunning );
    inVisitor.Integer( "ApplicationMask", mApplicationMask );
    DescribeApplications( inVisitor, "IncludedApplications", mIncludedApplications );
    DescribeApplications( inVisitor, "ExcludedApplications", mExcludedApplications );
}

Text AApplicationLauncher::GetActionExtraHTML() const
{
    return UnderMouseHTML( mSwitcherUnderMouse ) +
        kvr_extraHTMLLineIf( mHideOthers, u"kvSwitcherHideOthersExtraHTML" ) +
        kvr_extraHTMLLineIf( mExcludeRunning, u"kvApplicationLauncherExcludeRunningExtraHTML" );
}

// Windows

void AWindowSwitcher::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "SwitcherUnderMouse", mSwitcherUnderMouse );
    inVisitor.Boolean( "MouseRollover", mMouseRollover );
    inVisitor.Boolean( "SortAlphabetically", mSortAlphabetically );
}

Text AWindowSwitcher::GetActionExtraHTML() const
{
    return UnderMouseHTML( mSwitcherUnderMouse );
}

// Clipboards

void AClipboardSwitcher::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "SwitcherUnderMouse", mSwitcherUnderMouse );
}

std::unique_ptr<HBaseAction> AClipboardSwitcher::Clone() const
{
    return std::make_unique<AClipboardSwitcher>( *this );
}

Text AClipboardSwitcher::GetActionExtraHTML() const
{
    return UnderMouseHTML( mSwitcherUnderMouse );
}

void AClipboardHistorySwitcher::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "SwitcherUnderMouse", mSwitcherUnderMouse );
}

Text AClipboardHistorySwitcher::GetActionExtraHTML() const
{
    return UnderMouseHTML( mSwitcherUnderMouse );
}
