// The actions on the buttons of a key deck.
#pragma once

#include "Actions/ClipboardTarget.h"
#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"
#include "Actions/VariableTransformationAction.h"

class AStreamDeckShow final : public HActionOf<AStreamDeckShow, HActionType::kStreamDeckShow>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mButtonID = SharedText<u"R1C1">(); // row and column
    bool mAlert = false;
};

class AStreamDeckSetTitle final : public HActionOf<AStreamDeckSetTitle, HActionType::kStreamDeckSetTitle>,
                                  public VariableTransformationAction
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    /// Null: the text goes to a button.
    [[nodiscard]] XText GetVariable() const override { return {}; }
    void SetVariableText( const XText& inText ) override { mTitle = inText; }
    [[nodiscard]] XText GetVariableText() const override { return mTitle; }
    [[nodiscard]] XText GetTransformationResult( CalculateError*, float*, bool ) const override { return mTitle; }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mButtonID = SharedText<u"R1C1">();
    XText mTitle = SharedText<u"">();
};

enum class StreamDeckFromType { kDefault, kThisMacro, kMacro, kClipboard, kIcon };
inline constexpr TextView kStreamDeckFromTypeNames[] = { u"Default", u"ThisMacro", u"Macro", u"Clipboard", u"Icon" };
static_assert( std::size( kStreamDeckFromTypeNames ) == std::size_t( StreamDeckFromType::kIcon ) + 1 );
constexpr auto NamesOf( StreamDeckFromType )
{
    return std::span( kStreamDeckFromTypeNames );
}

class AStreamDeckSetImage final : public HActionOf<AStreamDeckSetImage, HActionType::kStreamDeckSetImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mClipboard.UpdateToDefaultValues( inForce ); }

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mButtonID = SharedText<u"R1C1">();
    StreamDeckFromType mFrom = StreamDeckFromType::kDefault;
    XText mMacroUID = SharedText<u"">();
    ClipboardTarget mClipboard;
    __SafeCFPropertyList mIcon; // kept as it stands
};
