// What people see of any action: its titles, descriptions, help page and icons, and what a search finds.
#include "Actions/HBaseAction.h"

#include "Actions/DescriptionText.h"
#include "Actions/HFieldVisitors.h"
#include "Defines/KVIconRegistry.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/URLFields.h"
#include "XCAF/XErrorHandler.h"

Text kHotKeyActionName( HActionType inType )
{
    if ( std::size_t( inType ) >= kHActionTypeCount )
        return {};
    const HActionTypeRow& row = RowOf( inType );
    return row.mTitleKey ? TextFromASCII( row.mTitleKey ) : u"hk" + TextFromASCII( row.mKey );
}

namespace
{
// Of all types, made once: what a search collects has a title with every action.
std::vector<Text> MakeActionTypeTitles()
{
    std::vector<Text> titles;
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        const auto type = HActionType( i );
        const Text theKey = kHotKeyActionName( type );
        XAssertText( not theKey.empty(), "theKey" );
        if ( type == HActionType::kITunesControl ) // the application's name of today
            titles.push_back( kvr_localizedFormat( theKey, TextView( u"Music" ) ) );
        else
            titles.push_back( kvr_localized( theKey ) );
    }
    return titles;
}
} // namespace

Text HBaseAction::GetActionTypeTitle( HActionType inType )
{
    static const std::vector<Text> gTitles = MakeActionTypeTitles();
    if ( std::size_t( inType ) < gTitles.size() )
        return gTitles[std::size_t( inType )];
    XAssertText( false, "theKey" );
    return u"Unknown Action";
}

Text HBaseAction::GetActionTitle() const
{
    return GetActionTypeTitle( GetActionType() );
}

Text HBaseAction::GetNewActionTitle() const
{
    return GetActionTitle();
}

Text HBaseAction::GetWikiActionTitle() const
{
    return GetNewActionTitle();
}

Text HBaseAction::InternalGetActionDescriptionString() const
{
    return GetActionTitle();
}

Text HBaseAction::InternalGetActionHTMLDescriptionString() const
{
    return InternalGetActionDescriptionString();
}

Text HBaseAction::GetActionDescriptionString() const
{
    return IsEmpty( mName ) ? InternalGetActionDescriptionString() : mName.GetText();
}

Text HBaseAction::GetActionDescriptionDefaultString() const
{
    return InternalGetActionDescriptionString();
}

Text HBaseAction::GetActionHTMLDescriptionString() const
{
    return IsEmpty( mName ) ? InternalGetActionHTMLDescriptionString() : mName.GetText();
}

Text HBaseAction::GetActionExtraHTML() const
{
    return {};
}

bool HBaseAction::MacroUseGetActionDescriptionStringForTitle() const
{
    return not IsEmpty( mName );
}

std::vector<Text> HBaseAction::GetAddActionByNameExtraSearchString() const
{
    return {};
}

std::optional<Text> HBaseAction::GetToolTip() const
{
    return {};
}

std::vector<Text> HBaseAction::ActionCouldBeRegExStrings() const
{
    return {};
}

Text HBaseAction::WikiName() const
{
    return kvr_wikiName( GetWikiActionTitle() );
}

Text HBaseAction::WikiURL() const
{
    return WikiURL( WikiName() );
}

Text HBaseAction::WikiURL( TextView inName )
{
    return kvr_localizedFormat( u"kvHelpLinkFormat", TextView( u"action" ), encodeURLField( inName ) );
}

// Icons

XIcon HBaseAction::GetActionTypeXIcon( HActionType inType )
{
    return KVIconRegistryIconForActionType( KeyOf( inType ).GetText() );
}

XIcon HBaseAction::GetActionXIcon() const
{
    return GetActionTypeXIcon( GetActionType() );
}

XIcon HBaseAction::GetActionDescriptionXIcon() const
{
    return GetActionXIcon();
}

XIcon HBaseAction::GetActionDescriptionXIconWithDisabledBadge() const
{
    const XIcon icon = GetActionDescriptionXIcon();
    return IsActive() ? icon : XIcon( icon.DimmedIcon(), XIcon( KVIconRegistry::kDisabledBadge ) );
}

// Searching

void HBaseAction::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetActionTitle() );
    ioSearchee.Add( GetActionDescriptionString() );
    for ( Text& words : GetAddActionByNameExtraSearchString() )
        ioSearchee.Add( std::move( words ) );
    // What a description leaves out or cuts off, and what a title of the user's hides.
    HCollectingVisitor visitor( ioSearchee );
    const_cast<HBaseAction*>( this )->DescribeFields( visitor ); // which writes to no member
}

void HBaseAction::AddMatchStringsForSubActions( StringSearchee& ioSearchee ) const
{
    DoForEverySubActionList(
        [&ioSearchee]( const HActionList::Words&, const HActionList& list ) { list.AddMatchStrings( ioSearchee ); } );
}

bool HBaseAction::MatchesTextSearch( StringSearcher& ioSearcher ) const
{
    if ( ioSearcher.Useless() )
        return true;
    StringSearchee searchee;
    AddMatchStrings( searchee );
    AddMatchStringsForSubActions( searchee );
    return ioSearcher.Matches( searchee );
}

bool HBaseAction::MatchesTextSearchJustContainer( bool inMatches, StringSearcher& ioSearcher ) const
{
    if ( not inMatches or not HasSubActions() )
        return inMatches;
    StringSearchee searchee;
    AddMatchStrings( searchee );
    return ioSearcher.Matches( searchee );
}
