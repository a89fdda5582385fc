#include "Conditions/ScreenConditions.h"

#include "Actions/DescriptionText.h"
#include "Macros/StoredNames.h"
#include "Utility/Text/Localization.h"

#include <algorithm>
#include <cmath>

namespace
{
// What a first version wrote for the comparisons, by the same index: shifted by one against the names of today, and
// with one row that is two. Files hold these names, so that all of it stays as it is.
enum class DeprecatedPixelConditionType : std::int32_t {};
constexpr TextView kDeprecatedPixelConditionTypeNames[] = { u"IsNot", u"IsBrighter", u"IsDarker", u"IsMoreRed",
    u"IsLessRed", u"IsMoreGreen", u"IsLessGreen", u"IsMoreBlue", u"IsLessBlueIsNot", u"IsLessBlue" }; // as stored
static_assert( std::size( kDeprecatedPixelConditionTypeNames ) == std::size( kPixelConditionTypeNames ) );
constexpr auto NamesOf( DeprecatedPixelConditionType )
{
    return std::span( kDeprecatedPixelConditionTypeNames );
}

XImage HeldImage( const ActionImageSource& inSource )
{
    if ( inSource.GetSourceType() != ActionImageSourceType::kImage or not inSource.GetImage() )
        return {};
    return XImage::FromBytes( inSource.GetImage() );
}

Text HexByte( double inComponent )
{
    const double component = std::isfinite( inComponent ) ? std::clamp( inComponent, 0.0, 1.0 ) : 0;
    return kvr_format( "%02X", int( std::lround( component * 255 ) ) );
}
} // namespace

// Image

void CScreenImageCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    mImage.DescribeFields( inVisitor );
    inVisitor.Name( "ScreenImageConditionType", mType );
    inVisitor.Integer( "Fuzz", mFuzz );
    inVisitor.Boolean( "DisplayMatches", mDisplayMatches );
    mScreenArea.DescribeIn( inVisitor, "ScreenArea" );
}

Text CScreenImageCondition::GetDescription() const
{
    return kvr_localizedFormat( kvr_format( "kvConditionScreenImage%@Format", StoredName( mType ) ),
        TextView( mScreenArea.GetDescription() ), TextView( mImage.GetDescription() ) );
}

XImage CScreenImageCondition::GetDescriptionExtraImage() const
{
    return HeldImage( mImage );
}

// Pixel

void CPixelCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    DescribeType( inVisitor );
    inVisitor.Real( "Red", mRed );
    inVisitor.Real( "Green", mGreen );
    inVisitor.Real( "Blue", mBlue );
    inVisitor.Calculation( "HorizontalPositionExpression", mHorizontalPosition );
    inVisitor.Calculation( "VerticalPositionExpression", mVerticalPosition );
}

// The deprecated key is written for older versions. Reading, it counts only where the current one holds no name: what
// stands in it beside a name is nobody's loss, and no repair.
void CPixelCondition::DescribeType( HFieldVisitor& inVisitor )
{
    constexpr HFieldKey kCurrent = "PixelConditionTypeGood";
    __SafeCFPropertyList current;
    if ( inVisitor.IsReading() )
        inVisitor.Value( kCurrent, current );
    const XText name( CFContainer<XPlistString>::Share( current.AsString() ) );
    if ( not IndexOfStoredName( name, kPixelConditionTypeNames ) )
        DescribeDeprecatedType( inVisitor );
    inVisitor.Name( kCurrent, mType );
}

void CPixelCondition::DescribeDeprecatedType( HFieldVisitor& inVisitor )
{
    constexpr HFieldKey kDeprecated = "PixelConditionType";
    auto deprecated = DeprecatedPixelConditionType( mType );
    inVisitor.Name( kDeprecated, deprecated, { .mWhenMissing = DeprecatedPixelConditionType( 0 ) } );
    if ( not inVisitor.IsReading() )
        return;
    mType = PixelConditionType( deprecated );
    if ( inVisitor.HasKey( kDeprecated ) )
        inVisitor.NoteOlderKey( kDeprecated, "PixelConditionTypeGood" );
}

Text CPixelCondition::GetDescription() const
{
    const Text colour = u'#' + HexByte( mRed ) + HexByte( mGreen ) + HexByte( mBlue );
    return kvr_localizedFormat( kvr_format( "kvConditionPixel%@Format", StoredName( mType ) ),
        TextView( kvr_excerpt( mHorizontalPosition ) ), TextView( kvr_excerpt( mVerticalPosition ) ),
        TextView( colour ) );
}

// Text within an image

void COCRCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    mImage.DescribeFields( inVisitor );
    inVisitor.Text( "Language", mLanguage );
    inVisitor.Name( "OCRConditionType", mType );
    inVisitor.Text( "ConditionResult", mResult );
}

Text COCRCondition::GetDescription() const
{
    return kvr_localizedFormat( u"kvConditionOCRFormat", TextView( mImage.GetDescription() ),
        TextView( GenericCondition( mType ).GetDescription( XText( kvr_excerpt( mResult ) ) ) ) );
}

XImage COCRCondition::GetDescriptionExtraImage() const
{
    return HeldImage( mImage );
}
