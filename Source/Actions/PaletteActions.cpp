#include "Actions/PaletteActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

// Show Palette of Macros

void AShowPaletteOfMacros::DescribeFields( HFieldVisitor& inVisitor )
{
    mMacros.DescribeFields( inVisitor, "Allowed", "Macros" );
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

void AGetTouchBarSelection::DescribeButtons( HFieldVisitor& inVisitor )
{
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        if ( const XPlistString* const text = mButtons.AsString() )
            searchee->Add( text->GetText() );
        return;
    }
    inVisitor.Value( "Buttons", mButtons );
    const bool isUsable = mButtons.AsString() or mButtons.AsArray() or mButtons.AsDictionary() or mButtons.AsData();
    if ( inVisitor.IsReading() and not isUsable )
    {
        inVisitor.NoteRepair(
            "Buttons", u"is no text, array, dictionary or data; “none” stands", MLoadRule::kWrongTypeDefaulted );
        mButtons = SharedText<u"none">();
    }
}

void AGetTouchBarSelection::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeButtons( inVisitor );
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
