// The actions that write, show or keep texts.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"
#include "Actions/VariableTransformationAction.h"

class AComment final : public HActionOf<AComment, HActionType::kComment>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    /// What people read: the styled text without its styles, or the text of older files.
    [[nodiscard]] Text GetPlainText() const;

    XText mTitle = SharedText<u"">();
    CFContainer<XPlistData> mStyledText;
    XText mText = SharedText<u"">(); // of older files, until there is a styled text
};

enum class InsertTextAction {
    kByTyping,
    kByPasting,
    kByPastingStyles,
    kDisplayWindow,
    kDisplayBriefly,
    kDisplayLarge,
};
inline constexpr TextView kInsertTextActionNames[] = { u"ByTyping", u"ByPasting", u"ByPastingStyles", u"DisplayWindow",
    u"DisplayBriefly", u"DisplayLarge" };
static_assert( std::size( kInsertTextActionNames ) == std::size_t( InsertTextAction::kDisplayLarge ) + 1 );
constexpr auto NamesOf( InsertTextAction )
{
    return std::span( kInsertTextActionNames );
}

class AInsertText final : public HActionOf<AInsertText, HActionType::kInsertText>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// A text that is typed, as a recording makes it.
    [[nodiscard]] static std::unique_ptr<AInsertText> MakeTyped(
        const XText& inText, const ApplicationTarget& inTarget );
    /// Two texts typed into the same application become one; so do a text and a keystroke that types a character.
    [[nodiscard]] std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const override;
    /// This text with a character typed before it; null when they stay two.
    [[nodiscard]] std::unique_ptr<HBaseAction> MergedAfter(
        char16_t inCharacter, const ApplicationTarget& inTarget ) const;

    [[nodiscard]] const StyledTextSource& GetText() const { return mText; }
    void SetText( const XText& inText ) { mText.SetText( inText ); }
    [[nodiscard]] InsertTextAction GetAction() const { return mAction; }
    void SetAction( InsertTextAction inAction ) { mAction = inAction; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    void ReadOlderAction( HFieldVisitor& inVisitor );
    [[nodiscard]] bool IsPlainTypedInto( const ApplicationTarget& inTarget ) const;
    [[nodiscard]] std::unique_ptr<HBaseAction> WithText( const Text& inText ) const;

    StyledTextSource mText;
    InsertTextAction mAction = InsertTextAction::kByTyping;
    ApplicationTarget mTarget;
};

/// Where a text goes in a variable.
enum class TextPlacement { kPrepend, kSet, kAppend };
inline constexpr TextView kTextPlacementNames[] = { u"Prepend", u"Set", u"Append" };
static_assert( std::size( kTextPlacementNames ) == std::size_t( TextPlacement::kAppend ) + 1 );
constexpr auto NamesOf( TextPlacement )
{
    return std::span( kTextPlacementNames );
}

class ASetVariableToText final : public HActionOf<ASetVariableToText, HActionType::kSetVariableToText>,
                                 public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    [[nodiscard]] XText GetVariable() const override { return mVariable; }
    void SetVariable( const XText& inVariable ) { mVariable = inVariable; }
    void SetVariableText( const XText& inText ) override { mText = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mText; }
    /// The text as it stands; null when it depends on what the variable holds by then.
    [[nodiscard]] XText GetTransformationResult(
        CalculateError* outError, float* outNumber, bool inLive ) const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mVariable = SharedText<u"VarName">();
    XText mText = SharedText<u"">();
    TextPlacement mWhere = TextPlacement::kSet;
};
