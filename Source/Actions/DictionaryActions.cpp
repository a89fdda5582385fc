#include "Actions/DictionaryActions.h"

#include "Actions/DescriptionText.h"
#include "Utility/Text/Localization.h"

void JSONTransformationAction::DescribeOutputFormat( HFieldVisitor& inVisitor )
{
    inVisitor.NameUnless( "OutputFormat", mOutputFormat, KVJSON::OutputFormat::kCompact );
}

void ASetVariablesToJSON::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Prefix", mPrefix );
    inVisitor.Text( "Text", mText );
    DescribeOutputFormat( inVisitor );
    inVisitor.Boolean( "ReplaceAllKeys", mReplaceAllKeys );
}

Text ASetVariablesToJSON::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        mReplaceAllKeys ? u"kvSetVariablesToJSONReplaceDescriptionFormat" : u"kvSetVariablesToJSONDescriptionFormat",
        TextView( mPrefix.GetText() ), TextView( kvr_excerpt( mText ) ) );
}

void ASetJSONValue::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Target", mTarget );
    inVisitor.Text( "Text", mText );
    DescribeOutputFormat( inVisitor );
}

Text ASetJSONValue::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        u"kvSetJSONValueDescriptionFormat", TextView( mTarget.GetText() ), TextView( kvr_excerpt( mText ) ) );
}

void ASetDictionaryToJSON::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Dictionary", mDictionary );
    inVisitor.Text( "Text", mText );
    DescribeOutputFormat( inVisitor );
    inVisitor.Boolean( "ReplaceAllKeys", mReplaceAllKeys );
}

Text ASetDictionaryToJSON::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        mReplaceAllKeys ? u"kvSetDictionaryToJSONReplaceDescriptionFormat" : u"kvSetDictionaryToJSONDescriptionFormat",
        TextView( mDictionary.GetText() ), TextView( kvr_excerpt( mText ) ) );
}

void ASetDictionaryValue::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Dictionary", mDictionary );
    inVisitor.Text( "Key", mKey );
    inVisitor.Text( "Value", mValue );
}

Text ASetDictionaryValue::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( u"kvSetDictionaryValueDescriptionFormat", TextView( mDictionary.GetText() ),
        TextView( mKey.GetText() ), TextView( kvr_excerpt( mValue ) ) );
}
