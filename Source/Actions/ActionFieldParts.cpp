#include "Actions/ActionFieldParts.h"

#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

namespace
{
struct TextKeys
{
    HFieldKey mType, mClipboardUID, mClipboardName, mVariable, mText, mPath;
};

// "Redundand" as stored.
constexpr TextKeys kPlainKeys = { "Source", "NamedClipboardName", "RedundandDisplayName", "Variable", "Text", "Path" };
constexpr TextKeys kPrefixedKeys = { "Source", "SourceNamedClipboardName", "SourceRedundandDisplayName",
    "SourceVariable", "SourceText", "SourcePath" };
} // namespace

void ActionTextSource::DescribeFields( HFieldVisitor& inVisitor )
{
    const TextKeys& keys = mKeys == Keys::kPrefixed ? kPrefixedKeys : kPlainKeys;
    inVisitor.Name( keys.mType, mType );
    switch ( mType )
    {
    case ActionTextSourceType::kNamedClipboard:
        inVisitor.Text( keys.mClipboardUID, mClipboardUID );
        inVisitor.Text( keys.mClipboardName, mClipboardName );
        break;
    case ActionTextSourceType::kVariable:
        inVisitor.Variable( keys.mVariable, mVariable );
        break;
    case ActionTextSourceType::kText:
        inVisitor.Text( keys.mText, mText );
        break;
    case ActionTextSourceType::kFile:
        inVisitor.Text( keys.mPath, mPath );
        break;
    default: // the type says it all
        break;
    }
}

void ActionTextSource::SetVariable( const XText& inVariable )
{
    mType = ActionTextSourceType::kVariable;
    mVariable = inVariable;
}

XText ActionTextSource::GetValueText() const
{
    switch ( mType )
    {
    case ActionTextSourceType::kNamedClipboard:
        return mClipboardName;
    case ActionTextSourceType::kVariable:
        return mVariable;
    case ActionTextSourceType::kText:
        return mText;
    case ActionTextSourceType::kFile:
        return mPath;
    default:
        return {};
    }
}

void ActionTextSource::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetValueText() );
}

Text ActionTextSource::GetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvActionTextSource%@Description", StoredName( mType ) ), TextView( GetValueText().GetText() ) );
}

void DescribeApplication(
    HFieldVisitor& inVisitor, HFieldKey inKey, std::optional<XApplicationIdentifier>& ioApplication )
{
    __SafeCFPropertyList value = ioApplication ? ioApplication->CopyToPropertyList() : nullptr;
    inVisitor.Value( inKey, value );
    if ( not inVisitor.IsReading() )
        return;
    if ( value.AsDictionary() )
        ioApplication = XApplicationIdentifier::CreateFromPropertyList( value );
    else if ( value ) // losing the whole action for it would be worse than losing the choice
        inVisitor.NoteRepair( inKey, u"isn't a dictionary; no application stands" );
}

void ApplicationTarget::DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTypeKey, HFieldKey inApplicationKey )
{
    const bool olderForm =
        inVisitor.IsReading() and not inVisitor.HasKey( inTypeKey ) and inVisitor.HasKey( inApplicationKey );
    inVisitor.Name( inTypeKey, mType );
    if ( olderForm )
        mType = ApplicationTargetingType::kSpecific;
    // Beside the front one as well: who chooses the specific one again finds it there.
    DescribeApplication( inVisitor, inApplicationKey, mApplication );
}

void ApplicationTarget::SetSpecific( XApplicationIdentifier inApplication )
{
    mType = ApplicationTargetingType::kSpecific;
    mApplication = std::move( inApplication );
}

bool ApplicationTarget::IsSameAs( const ApplicationTarget& inOther ) const
{
    if ( mType != inOther.mType or mType == ApplicationTargetingType::kFront )
        return mType == inOther.mType;
    if ( not mApplication or not inOther.mApplication )
        return not mApplication and not inOther.mApplication;
    return mApplication->CompareWithSame( *inOther.mApplication ) == 0;
}

void ApplicationTarget::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    if ( mType == ApplicationTargetingType::kSpecific and mApplication )
        ioSearchee.AddApp( mApplication->GetDisplayName() );
}

void StyledTextSource::DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTextKey, HFieldKey inStyledTextKey )
{
    inVisitor.Text( inTextKey, mText );
    inVisitor.Data( inStyledTextKey, mStyledText );
}

void StyledTextSource::SetText( const XText& inText )
{
    mText = inText;
    mStyledText = nullptr;
}

void StyledTextSource::SetStyledText( const XText& inText, CFContainer<XPlistData> inStyledText )
{
    mText = inText;
    mStyledText = std::move( inStyledText );
}
