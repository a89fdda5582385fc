#include "Conditions/TextConditions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

namespace
{
// A format with whose text it is, and the operator with its value.
Text Comparison( TextView inFormatKey, const XText& inSubject, GenericConditionType inType, const XText& inValue )
{
    return kvr_localizedFormat( inFormatKey, TextView( kvr_excerpt( inSubject ) ),
        TextView( GenericCondition( inType ).GetDescription( XText( kvr_excerpt( inValue ) ) ) ) );
}
} // namespace

void CClipboardCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Part( "ClipboardSource", mSource );
    inVisitor.Name( "ClipboardConditionType", mType );
    inVisitor.Text( "ClipboardText", mText );
}

Text CClipboardCondition::GetDescription() const
{
    // A clipboard has more than its text, so that it is said which is compared; but what conforms is the whole.
    const bool whole = mType == GenericConditionType::kConformsTo or mType == GenericConditionType::kDoesNotConformTo;
    const auto add = whole ? GenericConditionAddText::kNothing : GenericConditionAddText::kText;
    return kvr_localizedFormat( u"kvConditionClipboardFormat", TextView( mSource.GetDisplayName() ),
        TextView( GenericCondition( mType ).GetDescription( XText( kvr_excerpt( mText ) ), 0, add ) ) );
}

void CVariableCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Variable( "Variable", mVariable );
    inVisitor.Text( "VariableValue", mValue );
    inVisitor.Name( "VariableConditionType", mType );
}

Text CVariableCondition::GetDescription() const
{
    return Comparison( u"kvConditionVariableFormat", mVariable, mType, mValue );
}

void CTextCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Text", mText );
    inVisitor.Text( "TextValue", mValue );
    inVisitor.Name( "TextConditionType", mType );
}

Text CTextCondition::GetDescription() const
{
    return Comparison( u"kvConditionTextFormat", mText, mType, mValue );
}

void CCalculationCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Calculation( "Text", mCalculation );
}

Text CCalculationCondition::GetDescription() const
{
    return kvr_localizedFormat( u"kvConditionCalculationFormat", TextView( kvr_excerpt( mCalculation ) ) );
}

void CEnvironmentVariableCondition::DescribeFields( HFieldVisitor& inVisitor )
{
    // A new condition has examples; one read without the keys has none.
    inVisitor.Text( "EnvironmentVariable", mName, { .mWhenMissing = u"" } );
    inVisitor.Text( "EnvironmentVariableText", mText, { .mWhenMissing = u"" } );
    inVisitor.Name( "EnvironmentVariableConditionType", mType );
}

Text CEnvironmentVariableCondition::GetDescription() const
{
    return Comparison( u"kvConditionEnvironmentVariableFormat", mName, mType, mText );
}
