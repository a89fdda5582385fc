#include "Conditions/GenericCondition.h"

#include "Utility/Text/Localization.h"

namespace
{
bool ComparesTexts( GenericConditionType inType )
{
    return ( inType >= GenericConditionType::kIs and inType <= GenericConditionType::kDoesNotMatch ) or
        inType == GenericConditionType::kConformsTo or inType == GenericConditionType::kDoesNotConformTo;
}
} // namespace

bool GenericCondition::RequiresValue() const
{
    return RequiresStatus() or
        ( mType >= GenericConditionType::kIs and mType <= GenericConditionType::kDoesNotConformTo );
}

Text GenericCondition::GetDescription(
    const XText& inValue, std::int64_t inStatus, GenericConditionAddText inAdd ) const
{
    Text text =
        kvr_localized( u"kvGenericCondition" + Text( kGenericConditionNames[std::size_t( mType )] ) + u"Description" );
    if ( ComparesTexts( mType ) and inAdd != GenericConditionAddText::kNothing )
    {
        // Put together by hand: the text so far still waits for its value, which a formatter would fill in.
        Text wrapped =
            kvr_localized( inAdd == GenericConditionAddText::kText ? u"kvGenericConditionAddTextDescription"
                                                                   : u"kvGenericConditionAddResultDescription" );
        if ( const std::size_t at = wrapped.find( u"%@" ); at != Text::npos )
            text = wrapped.replace( at, 2, text );
    }
    if ( text.find( u"%@" ) != Text::npos )
        return kvr_format( TextView( text ), TextView( inValue.GetText() ) );
    if ( text.find( u"%d" ) != Text::npos )
        return kvr_format( TextView( text ), inStatus );
    return text;
}

std::vector<Text> GenericCondition::CouldBeIntendedRegExStrings( const XText& inValue ) const
{
    if ( mType == GenericConditionType::kContains and not inValue.IsEmpty() )
        return { inValue.GetText() };
    return {};
}
