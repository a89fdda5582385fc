// The parts that fields of actions, conditions, collections and triggers are built from. Each describes
// its own fields, whose keys stand in the dictionary of the object that holds it. Values of the main
// thread.
#pragma once

#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "XCAF/XApplicationIdentifier.h"

#include <optional>

class StringSearchee;

enum class ActionTextSourceType : std::int32_t {
    kNothing,
    kSource, ///< of destinations: where the text came from
    kClipboard,
    kNamedClipboard,
    kTriggerClipboard,
    kVariable,
    kText,
    kFile,
};
inline constexpr TextView kActionTextSourceTypeNames[] = { u"Nothing", u"Source", u"Clipboard", u"NamedClipboard",
    u"TriggerClipboard", u"Variable", u"Text", u"File" };
static_assert( std::size( kActionTextSourceTypeNames ) == std::size_t( ActionTextSourceType::kFile ) + 1 );
constexpr auto NamesOf( ActionTextSourceType )
{
    return std::span( kActionTextSourceTypeNames );
}

/// Where a text comes from. Beside the type only what belongs to the type is stored; an absent or unknown
/// type is the clipboard.
class ActionTextSource
{
public:
    /// Prefixed keys, where the holder has another part with the plain ones.
    enum class Keys : bool { kPlain, kPrefixed };

    explicit ActionTextSource( Keys inKeys = Keys::kPlain ) : mKeys( inKeys ) {}

    void DescribeFields( HFieldVisitor& inVisitor );

    [[nodiscard]] ActionTextSourceType GetSourceType() const { return mType; }
    void SetSourceType( ActionTextSourceType inType ) { mType = inType; }
    /// Sets the type as well.
    void SetVariable( const XText& inVariable );
    [[nodiscard]] const XText& GetVariable() const { return mVariable; }

    void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// The source in words, as part of an action's description.
    [[nodiscard]] Text GetActionDescriptionString() const;

private:
    [[nodiscard]] XText GetValueText() const;

    Keys mKeys;
    ActionTextSourceType mType = ActionTextSourceType::kClipboard;
    XText mClipboardUID = SharedText<u"">();
    XText mClipboardName = SharedText<u"">(); // to show when the clipboard is gone
    XText mVariable = SharedText<u"VarName">();
    XText mText = SharedText<u"">();
    XText mPath = SharedText<u"">();
};

/// One application of a field; none when the key is absent or holds no dictionary.
void DescribeApplication(
    HFieldVisitor& inVisitor, HFieldKey inKey, std::optional<XApplicationIdentifier>& ioApplication );

enum class ApplicationTargetingType : std::int32_t { kFront, kSpecific };
inline constexpr TextView kApplicationTargetingTypeNames[] = { u"Front", u"Specific" };
static_assert( std::size( kApplicationTargetingTypeNames ) == std::size_t( ApplicationTargetingType::kSpecific ) + 1 );
constexpr auto NamesOf( ApplicationTargetingType )
{
    return std::span( kApplicationTargetingTypeNames );
}

/// The application in front, or a specific one. Older files have no type: an application alone
/// means that one.
class ApplicationTarget
{
public:
    void DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTypeKey, HFieldKey inApplicationKey );

    [[nodiscard]] ApplicationTargetingType GetTargetingType() const { return mType; }
    [[nodiscard]] const std::optional<XApplicationIdentifier>& GetApplication() const { return mApplication; }
    void SetFront() { mType = ApplicationTargetingType::kFront; }
    void SetSpecific( XApplicationIdentifier inApplication );
    [[nodiscard]] bool IsSameAs( const ApplicationTarget& inOther ) const;
    void AddMatchStrings( StringSearchee& ioSearchee ) const;

private:
    ApplicationTargetingType mType = ApplicationTargetingType::kFront;
    std::optional<XApplicationIdentifier> mApplication;
};

/// A plain text and, perhaps, the same with styles, which is kept byte for byte.
class StyledTextSource
{
public:
    void DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTextKey, HFieldKey inStyledTextKey );

    [[nodiscard]] const XText& GetText() const { return mText; }
    /// Takes the styles away, for they are those of another text.
    void SetText( const XText& inText );
    [[nodiscard]] const CFContainer<XPlistData>& GetStyledText() const { return mStyledText; }
    void SetStyledText( const XText& inText, CFContainer<XPlistData> inStyledText );

private:
    XText mText = SharedText<u"">();
    CFContainer<XPlistData> mStyledText;
};
