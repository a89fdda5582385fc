// The parts that fields of actions, conditions, collections and triggers are built from. Each describes
// its own fields, whose keys stand in the dictionary of the object that holds it. Values of the main
// thread.
#pragma once

#include "Actions/ClipboardTarget.h"
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

/// Where a text comes from or goes to. Beside the type only what belongs to the type is stored.
class ActionTextEither
{
public:
    void DescribeFields( HFieldVisitor& inVisitor );

    [[nodiscard]] ActionTextSourceType GetSourceType() const { return mType; }
    void SetSourceType( ActionTextSourceType inType ) { mType = inType; }
    /// Sets the type as well.
    void SetVariable( const XText& inVariable );
    [[nodiscard]] const XText& GetVariable() const { return mVariable; }
    /// Sets the type as well.
    void SetText( const XText& inText );
    [[nodiscard]] const XText& GetText() const { return mText; }
    [[nodiscard]] const XText& GetPath() const { return mPath; }
    [[nodiscard]] const ClipboardReference& GetClipboard() const { return mClipboard; }

    void InitializeFromClipboardTarget( const ClipboardTarget& inTarget );
    /// Null is the variable "".
    void InitializeFromVariable( const XText& inVariable );
    /// True when the reference to a named clipboard changed.
    bool UpdateClipboardReference( bool inForce );
    void UpdateToDefaultValues( bool inForce );
    /// Can the editor tell what the text is? Not what a trigger brings, nor a source of no kind.
    [[nodiscard]] bool AvailableInEditor() const;
    /// Could a text be put there?
    [[nodiscard]] bool IsValidDestination() const;
    /// Does the place hold texts without styles only?
    [[nodiscard]] bool WantsPlainText() const;
    /// Orders by type, then by what belongs to the type.
    [[nodiscard]] int CompareWithSame( const ActionTextEither& inOther ) const;
    void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// The place in words, as part of an action's description.
    [[nodiscard]] Text GetActionDescriptionString() const;

    /// Has the dictionary a key of a source?
    [[nodiscard]] static bool DictionaryHasSource( const XPlistDictionary& inDictionary );

protected:
    enum class Form : std::uint8_t { kPlainSource, kPrefixedSource, kDestination };
    ActionTextEither( Form inForm, ActionTextSourceType inType ) : mForm( inForm ), mType( inType ) {}

private:
    [[nodiscard]] XText GetValueText() const;

    Form mForm;
    ActionTextSourceType mType;
    ClipboardReference mClipboard;
    XText mVariable = SharedText<u"VarName">();
    XText mText = SharedText<u"">();
    XText mPath = SharedText<u"">();
};

/// Where a text comes from; the clipboard, if the type is absent or unknown.
class ActionTextSource : public ActionTextEither
{
public:
    /// Prefixed keys ("SourceText"), where the holder has another part with the plain ones ("Text").
    enum class Keys : bool { kPlain, kPrefixed };

    explicit ActionTextSource( Keys inKeys = Keys::kPlain )
        : ActionTextEither(
              inKeys == Keys::kPlain ? Form::kPlainSource : Form::kPrefixedSource, ActionTextSourceType::kClipboard )
    {}
};

/// Where a text goes: by default to where it came from, for which nothing is stored.
class ActionTextDestination : public ActionTextEither
{
public:
    ActionTextDestination() : ActionTextEither( Form::kDestination, ActionTextSourceType::kSource ) {}
};

/// One application of a field; none when the key is absent or holds no dictionary.
void DescribeApplication(
    HFieldVisitor& inVisitor, HFieldKey inKey, std::optional<XApplicationIdentifier>& ioApplication );

/// The path of a file, under "Path". Older files have "NewFile" there: a text of it is the path, anything else a
/// reference that nobody here can follow.
void DescribePath( HFieldVisitor& inVisitor, XText& ioPath );

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
    /// For descriptions: the application's name, or "" for the one in front.
    [[nodiscard]] Text GetApplicationName() const;

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
