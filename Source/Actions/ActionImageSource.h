// Where an image comes from. Its keys stand in the dictionary of whoever holds it; beside the kind
// only what belongs to the kind is stored.
#pragma once

#include "Actions/HScreenArea.h"
#include "ClipboardSwitcher/ClipboardReference.h"

enum class ActionImageSourceType : std::int32_t {
    kImage,
    kSystemClipboard,
    kTriggerClipboard,
    kNamedClipboard,
    kFile,
    kScreen
};
inline constexpr TextView kActionImageSourceTypeNames[] = { u"Image", u"SystemClipboard", u"TriggerClipboard",
    u"NamedClipboard", u"File", u"Screen" };
static_assert( std::size( kActionImageSourceTypeNames ) == std::size_t( ActionImageSourceType::kScreen ) + 1 );
constexpr auto NamesOf( ActionImageSourceType )
{
    return std::span( kActionImageSourceTypeNames );
}

class ActionImageSource
{
public:
    void DescribeFields( HFieldVisitor& inVisitor );

    [[nodiscard]] ActionImageSourceType GetSourceType() const { return mType; }
    void SetSourceType( ActionImageSourceType inType ) { mType = inType; }
    /// The bytes of the image of kind Image; null without one.
    [[nodiscard]] const CFContainer<XPlistData>& GetImage() const { return mImage; }
    void SetImage( CFContainer<XPlistData> inImage );
    void SetPath( const XText& inPath );
    /// For descriptions, such as "Image in the System Clipboard".
    [[nodiscard]] Text GetDescription() const;
    /// Those of a window's name, when the image is that of windows whose names match.
    [[nodiscard]] std::vector<Text> CouldBeRegExStrings() const;
    void UpdateToDefaultValues( bool inForce );

private:
    ActionImageSourceType mType = ActionImageSourceType::kImage;
    CFContainer<XPlistData> mImage;
    ClipboardReference mClipboard;
    XText mPath = SharedText<u"">();
    HScreenArea mScreenArea;
};
