#include "Conditions/GenericCondition.h"

#include "Actions/ActionFieldParts.h"
#include "Actions/HFieldVisitors.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"

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

bool GenericCondition::AppliesTo( GenericCondition inCondition, ActionTextSourceType inSource )
{
    using Type = GenericConditionType;
    const Type type = inCondition.GetType();
    const bool isSource = inSource != ActionTextSourceType::kNothing and inSource != ActionTextSourceType::kSource;
    const bool isTextSource = type > Type::kIsNotOK and type != Type::kOtherwise;
    const bool isNumeric = type >= Type::kLessThan and type <= Type::kNotEqual;
    XAssertText( isSource and isTextSource and not isNumeric, "false" );
    if ( not isSource or not isTextSource )
        return false;
    const bool isClipboard = inSource != ActionTextSourceType::kVariable and inSource != ActionTextSourceType::kText and
        inSource != ActionTextSourceType::kFile;
    switch ( type )
    {
    case Type::kExists:
    case Type::kDoesNotExist:
        return inSource == ActionTextSourceType::kVariable;
    case Type::kIsEmpty:
    case Type::kIsNotEmpty:
        return not isClipboard;
    case Type::kHasText:
    case Type::kDoesNotHaveText:
    case Type::kHasImage:
    case Type::kDoesNotHaveImage:
    case Type::kConformsTo:
    case Type::kDoesNotConformTo:
        return isClipboard;
    default:
        return true;
    }
}

void GenericCondition::SaveToDictionary( XMutableDictionary& ioDictionary, const XKey& inKey ) const
{
    ioDictionary.SetText( inKey, StoredName( mType ) );
}

void GenericCondition::LoadFromDictionary(
    const XPlistDictionary& inDictionary, const XKey& inKey, GenericConditionType inDefault )
{
    // A table that lost a row would give every name behind it another meaning.
    XAssertText( kGenericConditionNames[int( GenericConditionType::kOtherwise )] == u"Otherwise",
        "kGenericConditionNames[int(GenericConditionType::kOtherwise)]->IsEqual( CFSTR(\"Otherwise\") )" );
    HReadingVisitor visitor( inDictionary );
    visitor.Name( HFieldKey( inKey ), mType, { .mWhenMissing = inDefault } );
}

Text GenericCondition::GetMenuTitle() const
{
    return kvr_localized( kvr_format( "kvGenericCondition%@Menu", StoredName( mType ) ) );
}

Text GenericCondition::GetDescription(
    const XText& inValue, std::int64_t inStatus, GenericConditionAddText inAdd ) const
{
    Text text = kvr_localized( kvr_format( "kvGenericCondition%@Description", StoredName( mType ) ) );
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
