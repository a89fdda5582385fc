// The conditions about what the screen shows: images, pixels, and texts within images.
#pragma once

#include "Actions/ActionImageSource.h"
#include "Actions/HScreenArea.h"
#include "Conditions/CBaseCondition.h"
#include "Conditions/GenericCondition.h"

enum class ScreenImageConditionType : std::int32_t {
    kContains,
    kContainsUnique,
    kDoesNotContain,
    kDoesNotContainUnique
};
inline constexpr TextView kScreenImageConditionTypeNames[] = { u"Contains", u"ContainsUnique", u"DoesNotContain",
    u"DoesNotContainUnique" };
static_assert(
    std::size( kScreenImageConditionTypeNames ) == std::size_t( ScreenImageConditionType::kDoesNotContainUnique ) + 1 );
constexpr auto NamesOf( ScreenImageConditionType )
{
    return std::span( kScreenImageConditionTypeNames );
}

class CScreenImageCondition final : public CConditionOf<CScreenImageCondition, ConditionType::kScreenImage>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mImage.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] XImage GetDescriptionExtraImage() const override;

private:
    ActionImageSource mImage;
    ScreenImageConditionType mType = ScreenImageConditionType::kContains;
    std::int32_t mFuzz = 15; // how much a colour may differ
    bool mDisplayMatches = false;
    HScreenArea mScreenArea;
};

enum class PixelConditionType : std::int32_t {
    kIs,
    kIsNot,
    kIsBrighter,
    kIsDarker,
    kIsMoreRed,
    kIsLessRed,
    kIsMoreGreen,
    kIsLessGreen,
    kIsMoreBlue,
    kIsLessBlue,
};
inline constexpr TextView kPixelConditionTypeNames[] = { u"Is", u"IsNot", u"IsBrighter", u"IsDarker", u"IsMoreRed",
    u"IsLessRed", u"IsMoreGreen", u"IsLessGreen", u"IsMoreBlue", u"IsLessBlue" };
static_assert( std::size( kPixelConditionTypeNames ) == std::size_t( PixelConditionType::kIsLessBlue ) + 1 );
constexpr auto NamesOf( PixelConditionType )
{
    return std::span( kPixelConditionTypeNames );
}

class CPixelCondition final : public CConditionOf<CPixelCondition, ConditionType::kPixel>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] Text GetDescription() const override;

private:
    void DescribeType( HFieldVisitor& inVisitor );
    void DescribeDeprecatedType( HFieldVisitor& inVisitor );

    PixelConditionType mType = PixelConditionType::kIs;
    double mRed = 0, mGreen = 0, mBlue = 0; // 0 to 1
    XText mHorizontalPosition = SharedText<u"0">();
    XText mVerticalPosition = SharedText<u"0">();
};

class COCRCondition final : public CConditionOf<COCRCondition, ConditionType::kOCR>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    void UpdateToDefaultValues( bool inForce ) override { mImage.UpdateToDefaultValues( inForce ); }
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] XImage GetDescriptionExtraImage() const override;

private:
    ActionImageSource mImage;
    XText mLanguage = SharedText<u"eng">();
    GenericConditionType mType = GenericConditionType::kIsNotEmpty;
    XText mResult = SharedText<u"">(); // what the recognised text is compared with
};
