// The actions on a stretch of a text.
#pragma once

#include "Actions/ActionFieldParts.h"
#include "Actions/HBaseAction.h"
#include "Utility/Text/StringRange.h"

/// Which stretch: a kind of range with two calculations, which are kept when the kind has no use for them.
class StringRangeFields
{
public:
    void DescribeType( HFieldVisitor& inVisitor );
    void DescribeValues( HFieldVisitor& inVisitor );
    /// For descriptions, such as "the First 2 Characters".
    [[nodiscard]] Text GetDescription() const;

private:
    StringRangeType mType = StringRangeType::kAll;
    XText mFirst = SharedText<u"2">();
    XText mSecond = SharedText<u"4">();
};

class ASubstring final : public HActionOf<ASubstring, HActionType::kSubstring>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ActionTextSource mSource;
    ActionTextDestination mDestination;
    StringRangeFields mRange;
    bool mDelete = false; // what is left without the stretch
};

class AApplyStyle final : public HActionOf<AApplyStyle, HActionType::kApplyStyle>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inFlag ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    StringRangeFields mRange;
    ClipboardTarget mTarget;
    __SafeCFPropertyList mAttributes; // kept as it stands
};
