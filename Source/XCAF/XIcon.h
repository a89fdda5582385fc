// An icon reference: what macros, groups and actions store for an icon, in place of image bytes
// wherever that can be. It knows its saved form and, where there is one, an opaque image; drawing
// is the platform's. A value is a shared immutable state, so copying one costs an increment and
// any thread may read it.
//
// Saved forms, told by prefix:
//   "KVEP-name", "KVEP-name-second"   a built-in icon
//   "KVKL-id"                         the icon of a keyboard layout
//   "KVEC=shape=color=text=n=n=n=style=textColor"   a character on a coloured shape
//   "KVEC-..."                        the same with "-" between, from earlier versions; only read
//   data, not text                    an image
#pragma once

#include "XCAF/XColor.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>

/// The numbers of the built-in icons; the table stands in Defines/KVIconRegistry.h.
enum class KVIconRegistry : std::uint16_t;

enum class XIconSaveFormat : std::uint8_t { kCantSave, kInternal, kKeyboardLayout, kCharacter, kImage };

/// The shape under the character of a custom icon, stored by name. A stored name that isn't known
/// counts as Square, and stays as it stands when the icon is saved again.
enum class XIconCustomIconShape : std::uint8_t { kSquare, kRounded };
inline constexpr TextView kXIconCustomIconShapeNames[] = { u"Square", u"Rounded" };
static_assert( std::size( kXIconCustomIconShapeNames ) == std::size_t( XIconCustomIconShape::kRounded ) + 1 );

/// The font style of a custom icon, stored by number.
enum class XIconFontStyle : std::int32_t { kPlain, kEmoji, kChancery };

struct XIconFont
{
    Text mName; ///< "" is the system's own font
    double mSize = 0;
};

/// The font of a style; a style that isn't known has the system's font.
[[nodiscard]] XIconFont IconFontWithSize( XIconFontStyle inStyle, double inSize );

/// An image that is held, not drawn: its bytes, or where it comes from, or nothing at all.
struct XImage
{
    enum class Source : std::uint8_t { kNone, kBytes, kResource, kApplication, kPreferencePane, kHFSIcon, kExtension };

    Source mSource = Source::kNone;
    CFContainer<XPlistData> mBytes; ///< with kBytes; any format, never looked into here
    XText mName;                    ///< with the others: the resource, bundle identifier, path or extension

    [[nodiscard]] static XImage FromBytes( CFContainer<XPlistData> inBytes );
    [[nodiscard]] static XImage FromSource( Source inSource, XText inName ); ///< none for an empty name
    [[nodiscard]] bool Defined() const { return mSource != Source::kNone; }
    friend bool operator==( const XImage& a, const XImage& b );
};

/// A custom icon taken apart.
struct XIconCharacterData
{
    XIconCustomIconShape mShape = XIconCustomIconShape::kSquare;
    XColor mColor;
    Text mText;
    // Whole numbers that matter only to drawing. In the default icon they are 144, 0 and 4.
    std::array<std::int64_t, 3> mNumbers{ 144, 0, 4 };
    XIconFontStyle mStyle = XIconFontStyle::kPlain;
    XColor mTextColor;
};

/// Whether GetSavedData may give an image's bytes, or texts only.
enum class OnlySimpleSavedData : bool { kNo, kYes };

/// Marks the id of a keyboard layout, so that it isn't taken for a name.
struct XIconKeyboardLayout
{};

/// What icons ask of the table of built-in icons, which stands in a higher row and is installed at
/// start-up. Without one every name counts as known.
class XInternalIconNames
{
public:
    virtual ~XInternalIconNames() = default;
    [[nodiscard]] virtual bool IsKnown( TextView inName, const XText& inSecondPart ) const = 0;

    /// Null takes it away. The object must outlive its use. Main thread, before icons are read.
    static void Install( const XInternalIconNames* inNames );
};

class XIcon
{
public:
    /// "KVEC=Rounded=KVCOLOR:0,0,0,0=A=144=0=4=0=KVCOLOR:257,257,257,257"
    static constexpr TextView kDefaultCustomIcon = u"KVEC=Rounded=KVCOLOR:0,0,0,0=A=144=0=4=0=KVCOLOR:257,257,257,257";

    XIcon() = default; ///< undefined

    // The two that go by number are defined beside the table of numbers, in Defines/KVIconRegistry.cpp.
    /// A built-in icon; a number that the table doesn't have is an assertion and gives an undefined icon.
    explicit XIcon( KVIconRegistry inIcon );
    /// The built-in icon of that name, or, when there is none, the one of the number.
    XIcon( TextView inName, KVIconRegistry inOtherwise );

    /// From an image: saved as its bytes; one that is known by its source alone can't be saved.
    explicit XIcon( const XImage& inImage );
    XIcon( XIconKeyboardLayout, TextView inID );
    XIcon( XIconCustomIconShape inShape, const XColor& inColor, XIconFontStyle inStyle, TextView inText,
        const XColor& inTextColor, std::array<std::int64_t, 3> inNumbers = { 144, 0, 4 } );
    /// Composites, which can't be saved. Each part must be defined (assertions); the parts that are make the icon.
    XIcon( const XIcon& inBackground, const XIcon& inForeground );
    XIcon( const XIcon& inBackground, const XIcon& inForeground1, const XIcon& inForeground2 );

    /// A built-in icon by name, known or not. The name ends at its first "-"; what follows is the second part.
    [[nodiscard]] static XIcon InternalIcon( TextView inName );
    [[nodiscard]] static XIcon PlainTextIcon();
    [[nodiscard]] static XIcon StyledTextIcon();

    [[nodiscard]] bool Defined() const { return mState != nullptr; }
    [[nodiscard]] XIconSaveFormat GetSaveFormat() const;
    [[nodiscard]] bool IsApplicationIcon() const; ///< its image is an application's
    [[nodiscard]] bool IsInternalIcon() const;
    [[nodiscard]] bool IsCustomShapeIcon() const;
    [[nodiscard]] bool IsDimmed() const;

    /// The image; not defined for custom icons and composites, which are drawn from their parts, nor for
    /// a built-in icon whose name isn't known.
    [[nodiscard]] XImage GetImage() const;
    /// Of a built-in icon: its name, and what stands after it (null when nothing does).
    [[nodiscard]] XText GetInternalName() const;
    [[nodiscard]] XText GetInternalSecondPart() const;
    /// Of a keyboard layout icon.
    [[nodiscard]] XText GetKeyboardLayout() const;
    /// Of a composite: the icons from back to front.
    [[nodiscard]] std::span<const XIcon> GetLayers() const;

    /// Dimming only shows: the saved form is that of the icon without it.
    [[nodiscard]] XIcon DimmedIcon() const;
    [[nodiscard]] XIcon UndimmedIcon() const;

    /// The saved form, a string or data. Null when only texts are wanted and there is none; null too, after the
    /// assertion "mSaveFormat != XIconSaveFormat::kCantSave", for an icon that is undefined or can't be saved.
    [[nodiscard]] __SafeCFPropertyList GetSavedData(
        OnlySimpleSavedData inOnlySimple = OnlySimpleSavedData::kNo ) const;
    /// The icon of a saved form. A built-in name that isn't known is logged, and gives an icon without an image
    /// that saves back unchanged. What is no saved form is logged and asserted, and gives an undefined icon.
    [[nodiscard]] static XIcon FromSavedData( const __SafeCFPropertyList& inSavedData );
    /// True for the earlier form of custom icons, which reading and saving again brings up to date.
    [[nodiscard]] static bool CustomDataNeedsUpdating( const __SafeCFPropertyList& inSavedData );

    /// Of a custom icon: its parts, with the default where a field is missing or no number. Absent for others.
    [[nodiscard]] std::optional<XIconCharacterData> GetSavedCharacterData() const;
    /// The same out of such an icon's text in the form of today; absent when the marker isn't "KVEC".
    [[nodiscard]] static std::optional<XIconCharacterData> GetSavedDataFromCharacterString( TextView inText );
    /// A custom icon from its text in the form of today; undefined when the marker isn't "KVEC".
    [[nodiscard]] static XIcon FromSavedCharacterData( TextView inText );
    /// A custom icon with another character. Another kind of icon is an assertion, and comes back as it is.
    [[nodiscard]] XIcon WithNewTextCharacter( TextView inText ) const;

    /// Keeps the icons of the platform's keyboard layouts at hand, so that each is made once. Replaces
    /// those of an earlier call. Any thread.
    static void CacheAllKeyboardLayoutIcons( std::span<const Text> inLayouts );

    friend bool operator==( const XIcon& a, const XIcon& b );

private:
    struct State;
    explicit XIcon( std::shared_ptr<const State> inState ) : mState( std::move( inState ) ) {}
    static XIcon Composite( std::initializer_list<XIcon> inLayers );
    static XIcon FromInternalText( TextView inRest );
    XIcon WithDimming( bool inDimmed ) const;

    std::shared_ptr<const State> mState; // null: undefined
};

/// "#" becomes "#1" and "=" becomes "#2", so that a text can stand between the separators of a custom icon.
[[nodiscard]] Text EncodeEquals( TextView inText );
/// The exact reverse. A "#" before anything else than "1" or "2", which encoding never makes, stays.
[[nodiscard]] Text DecodeEquals( TextView inText );
