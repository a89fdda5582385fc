#include "Defines/KVIconRegistry.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <array>

namespace
{
// To add an icon: a row here and an enumerator, or a name below if no code asks for it by number.
constexpr KVIconRegistryRow kRows[] = {
    { KVIconRegistry::kGear, u"Gear" },
    { KVIconRegistry::kSeveralActions, u"SeveralActions" },
    { KVIconRegistry::kMacro, u"Macro" },
    { KVIconRegistry::kPaletteBadge, u"PaletteBadge" },
    { KVIconRegistry::kHotKeyBadge, u"HotKeyBadge" },
    { KVIconRegistry::kNoActions, u"NoActions" },
    { KVIconRegistry::kTrigger, u"Trigger" },
    { KVIconRegistry::kCondition, u"Condition" },
    { KVIconRegistry::kFolder, u"Folder" },
    { KVIconRegistry::kSmartFolder, u"SmartFolder" },
    { KVIconRegistry::kDisabledBadge, u"DisabledBadge" },
    { KVIconRegistry::kAction, u"Action" },
};
static_assert( std::ranges::is_sorted( kRows, std::ranges::less_equal(), &KVIconRegistryRow::mIcon ) );

constexpr TextView kNamesWithoutNumber[] = { u"Application", u"Clipboard", u"Dictionary", u"Engine", u"File",
    u"Keyboard", u"PlainText", u"Screen", u"StyledText", u"Variable", u"WebPage", u"Window" };

constexpr TextView kActionName = u"Action";

class Names final : public XInternalIconNames
{
public:
    [[nodiscard]] bool IsKnown( TextView inName, const XText& inSecondPart ) const override
    {
        return KVIconRegistryIsKnown( inName, inSecondPart );
    }
};

const KVIconRegistryRow* FindRow( KVIconRegistry inIcon )
{
    const auto* row = std::ranges::lower_bound( kRows, inIcon, {}, &KVIconRegistryRow::mIcon );
    return row != std::end( kRows ) and row->mIcon == inIcon ? row : nullptr;
}
} // namespace

std::span<const KVIconRegistryRow> KVIconRegistryRows()
{
    return kRows;
}

TextView KVIconRegistryName( KVIconRegistry inIcon )
{
    const KVIconRegistryRow* row = FindRow( inIcon );
    return row ? row->mName : TextView();
}

bool KVIconRegistryIsKnown( TextView inName, const XText& inSecondPart )
{
    if ( not inSecondPart.IsNull() )
        // The keys of action types are the model's; plug-ins add to them at run time.
        return inName == kActionName and not inSecondPart.IsEmpty();
    return std::ranges::find( kRows, inName, &KVIconRegistryRow::mName ) != std::end( kRows ) or
        std::ranges::find( kNamesWithoutNumber, inName ) != std::end( kNamesWithoutNumber );
}

void KVIconRegistryStart()
{
    static const Names gNames;
    XInternalIconNames::Install( &gNames );
}

XIcon::XIcon( KVIconRegistry inIcon )
{
    const KVIconRegistryRow* row = FindRow( inIcon );
    XAssert( row );
    if ( row )
        *this = InternalIcon( row->mName );
}

XIcon::XIcon( TextView inName, KVIconRegistry inOtherwise )
{
    XIcon icon = InternalIcon( inName );
    const bool known =
        icon.Defined() and KVIconRegistryIsKnown( icon.GetInternalName().GetText(), icon.GetInternalSecondPart() );
    *this = known ? std::move( icon ) : XIcon( inOtherwise );
}

XIcon KVIconRegistryIconWithIndex( int inIndex )
{
    // An index beyond the enumeration's width mustn't wrap around into the table.
    const bool fits = inIndex >= 0 and inIndex <= 0xFFFF;
    return XIcon( KVIconRegistry( fits ? inIndex : 0 ) );
}

XIcon KVIconRegistryIconForActionType( TextView inTypeKey )
{
    return XIcon::InternalIcon( Text( kActionName ).append( u"-" ).append( inTypeKey ) );
}

XImage KVIconRegistryImageWithName( TextView inName )
{
    const auto end = inName.find( u'-' );
    const XText second = end == TextView::npos ? XText() : XText( inName.substr( end + 1 ) );
    if ( not KVIconRegistryIsKnown( inName.substr( 0, end ), second ) )
        return {};
    return XImage::FromSource( XImage::Source::kResource, XText( inName ) );
}

XImage KVIconRegistryImageWithApplicationBundleID( TextView inBundleID )
{
    return XImage::FromSource( XImage::Source::kApplication, XText( inBundleID ) );
}

XImage ImageWithPreferencePane( TextView inPath )
{
    return XImage::FromSource( XImage::Source::kPreferencePane, XText( inPath ) );
}

XImage ImageWithHFSIconName( TextView inName )
{
    return XImage::FromSource( XImage::Source::kHFSIcon, XText( inName ) );
}

XImage ImageWithExtension( TextView inExtension )
{
    return XImage::FromSource( XImage::Source::kExtension, XText( inExtension ) );
}

XImage KVIconRegistryGearImage()
{
    return KVIconRegistryImageWithName( KVIconRegistryName( KVIconRegistry::kGear ) );
}
