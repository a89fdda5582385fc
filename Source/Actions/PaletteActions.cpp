#include "Actions/PaletteActions.h"

#include "Actions/DescriptionText.h"
#include "Macros/StoredNames.h"
#include "Utility/Text/Localization.h"

#include <algorithm>

namespace
{
constexpr TextView kMacrosAllowedNames[] = { u"Normal", u"IncludeInactive", u"IncludeDisabled" };
static_assert( std::size( kMacrosAllowedNames ) == std::size( kMacrosAllowedTypeNames ) );

// Each UID once, as the list is written.
__SafeCFPropertyList UniqueUIDs( const std::vector<XText>& inUIDs )
{
    XMutableArray array;
    for ( auto uid = inUIDs.begin(); uid != inUIDs.end(); ++uid )
    {
        const bool isFirst = std::none_of(
            inUIDs.begin(), uid, [&uid]( const XText& earlier ) { return earlier.Equals( uid->GetText() ); } );
        if ( isFirst )
            array.Append( *uid );
    }
    return array.GetCount() > 0 ? __SafeCFPropertyList( array.Seal() ) : nullptr;
}
} // namespace

static constexpr auto NamesOf( MacrosAllowedType )
{
    return std::span( kMacrosAllowedNames );
}

void DescribeMacrosAllowed(
    HFieldVisitor& inVisitor, HFieldKey inTypeKey, HFieldKey inUIDsKey, MacrosAllowed& ioAllowed )
{
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        ioAllowed.AddMatchStrings( *searchee );
        return;
    }
    MacrosAllowedType type = ioAllowed.GetType();
    inVisitor.Name( inTypeKey, type, { .mWrite = XWrite::kWhenSet } );
    __SafeCFPropertyList uids = UniqueUIDs( ioAllowed.GetUIDs() );
    inVisitor.Value( inUIDsKey, uids );
    if ( not inVisitor.IsReading() )
        return;
    ioAllowed.SetType( type );
    if ( uids.AsArray() )
        ioAllowed.SetUIDs( TextsOf( *uids.AsArray() ) );
    else if ( uids )
        inVisitor.NoteRepair( inUIDsKey, u"isn't an array; no macros stand" );
}

// Show Palette of Macros

void AShowPaletteOfMacros::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeMacrosAllowed( inVisitor, "Allowed", "Macros", mMacros );
    inVisitor.Boolean( "IncludeInTouchBar", mIncludeInTouchBar );
}

Text AShowPaletteOfMacros::InternalGetActionDescriptionString() const
{
    Text names;
    for ( const XText& uid : mMacros.GetUIDs() )
        names += ( names.empty() ? u"" : u", " ) + kvr_macroName( uid );
    if ( names.empty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvShowPaletteOfMacrosDescriptionFormat", kvr_excerpt( XText( names ) ) );
}

// Get Touch Bar Selection

void AGetTouchBarSelection::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Buttons", mButtons );
    mResult.DescribeFields( inVisitor );
}

Text AGetTouchBarSelection::InternalGetActionDescriptionString() const
{
    return GetActionTitle() + mResult.GetDescription();
}

// Conceal Macro Palettes

void AConcealMacroPalettes::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
}

Text AConcealMacroPalettes::InternalGetActionDescriptionString() const
{
    return kvr_localized( kvr_format( "kvConcealMacroPalettes%@Description", StoredName( mAction ) ) );
}

// Applications Palette Toggle

void AApplicationsPaletteToggle::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
}

Text AApplicationsPaletteToggle::InternalGetActionDescriptionString() const
{
    return kvr_localized( kvr_format( "kvApplicationsPaletteToggle%@Description", StoredName( mAction ) ) );
}
