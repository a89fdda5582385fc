#include "Actions/ActionFieldParts.h"

#include "Actions/DescriptionText.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"

namespace
{
struct TextKeys
{
    HFieldKey mType, mClipboardUID, mClipboardName, mVariable, mText, mPath;
};

// "Redundand" as stored.
constexpr TextKeys kKeys[] = {
    { "Source", "NamedClipboardName", "RedundandDisplayName", "Variable", "Text", "Path" },
    { "Source", "SourceNamedClipboardName", "SourceRedundandDisplayName", "SourceVariable", "SourceText",
        "SourcePath" },
    { "Destination", "DestinationName", "DestinationRedundandDisplayName", "DestinationVariable", "DestinationText",
        "DestinationPath" },
};
} // namespace

void ActionTextEither::DescribeFields( HFieldVisitor& inVisitor )
{
    const TextKeys& keys = kKeys[std::size_t( mForm )];
    if ( mForm == Form::kDestination )
        inVisitor.NameUnless( keys.mType, mType, ActionTextSourceType::kSource );
    else
        inVisitor.Name( keys.mType, mType );
    switch ( mType )
    {
    case ActionTextSourceType::kNamedClipboard:
        DescribeClipboard( inVisitor, keys.mClipboardUID, keys.mClipboardName, mClipboard );
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

void ActionTextEither::SetVariable( const XText& inVariable )
{
    mType = ActionTextSourceType::kVariable;
    mVariable = inVariable;
}

void ActionTextEither::SetText( const XText& inText )
{
    mType = ActionTextSourceType::kText;
    mText = inText;
}

void ActionTextEither::InitializeFromClipboardTarget( const ClipboardTarget& inTarget )
{
    switch ( inTarget.GetKind() )
    {
    case ClipboardTarget::Kind::kSystem:
        mType = ActionTextSourceType::kClipboard;
        break;
    case ClipboardTarget::Kind::kTrigger:
        mType = ActionTextSourceType::kTriggerClipboard;
        break;
    case ClipboardTarget::Kind::kNamed:
        mType = ActionTextSourceType::kNamedClipboard;
        mClipboard = inTarget.GetReference();
        break;
    }
}

void ActionTextEither::InitializeFromVariable( const XText& inVariable )
{
    SetVariable( inVariable.IsNull() ? SharedText<u"">() : inVariable );
}

bool ActionTextEither::UpdateClipboardReference( bool inForce )
{
    return mType == ActionTextSourceType::kNamedClipboard and mClipboard.UpdateClipboardReference( inForce );
}

void ActionTextEither::UpdateToDefaultValues( bool inForce )
{
    UpdateClipboardReference( inForce );
}

bool ActionTextEither::AvailableInEditor() const
{
    return mType != ActionTextSourceType::kNothing and mType != ActionTextSourceType::kSource and
        mType != ActionTextSourceType::kTriggerClipboard;
}

bool ActionTextEither::IsValidDestination() const
{
    return mType != ActionTextSourceType::kNothing and mType != ActionTextSourceType::kText;
}

bool ActionTextEither::WantsPlainText() const
{
    return mType == ActionTextSourceType::kVariable or mType == ActionTextSourceType::kText;
}

int ActionTextEither::CompareWithSame( const ActionTextEither& inOther ) const
{
    if ( mType != inOther.mType )
        return mType < inOther.mType ? -1 : 1;
    if ( mType == ActionTextSourceType::kNamedClipboard )
        return mClipboard.CompareWithSame( inOther.mClipboard );
    return GetValueText().GetText().compare( inOther.GetValueText().GetText() );
}

bool ActionTextEither::DictionaryHasSource( const XPlistDictionary& inDictionary )
{
    return inDictionary.Contains( kKeys[0].mType.Key() );
}

XText ActionTextEither::GetValueText() const
{
    switch ( mType )
    {
    case ActionTextSourceType::kNamedClipboard:
        return mClipboard.GetClipboardName();
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

void ActionTextEither::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( GetValueText() );
}

Text ActionTextEither::GetActionDescriptionString() const
{
    const XText value = mType == ActionTextSourceType::kText ? XText( kvr_excerpt( mText ) ) : GetValueText();
    return kvr_localizedFormat(
        kvr_format( "kvActionTextSource%@Description", StoredName( mType ) ), TextView( value.GetText() ) );
}

void DescribeApplication(
    HFieldVisitor& inVisitor, HFieldKey inKey, std::optional<XApplicationIdentifier>& ioApplication )
{
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        if ( ioApplication )
            searchee->Add( ioApplication->GetDisplayName() );
        return;
    }
    __SafeCFPropertyList value = ioApplication ? ioApplication->CopyToPropertyList() : nullptr;
    inVisitor.Value( inKey, value );
    if ( not inVisitor.IsReading() )
        return;
    if ( value.AsDictionary() )
        ioApplication = XApplicationIdentifier::CreateFromPropertyList( value );
    else if ( value ) // losing the whole action for it would be worse than losing the choice
        inVisitor.NoteRepair( inKey, u"isn't a dictionary; no application stands", MLoadRule::kWrongTypeDefaulted );
}

void DescribePath( HFieldVisitor& inVisitor, XText& ioPath )
{
    inVisitor.Text( "Path", ioPath, { .mOlderKey = "NewFile" } );
    if ( inVisitor.IsReading() and ioPath.IsEmpty() and not inVisitor.HasKey( "Path" ) and
        inVisitor.HasKey( "NewFile" ) )
        inVisitor.NoteRepair( "NewFile", u"leads to no file that can be told; the path is empty" );
}

void ApplicationTarget::DescribeFields( HFieldVisitor& inVisitor, HFieldKey inTypeKey, HFieldKey inApplicationKey )
{
    if ( inVisitor.Searchee() and mType == ApplicationTargetingType::kFront )
        return; // what is kept beside the front one isn't seen, and so isn't found
    // Beside the front one as well: who chooses the specific one again finds it there.
    DescribeApplication( inVisitor, inApplicationKey, mApplication );
    inVisitor.Name( inTypeKey, mType,
        { .mWhenMissing = mApplication ? ApplicationTargetingType::kSpecific : ApplicationTargetingType::kFront } );
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

Text ApplicationTarget::GetApplicationName() const
{
    return mType == ApplicationTargetingType::kSpecific and mApplication ? mApplication->GetDisplayName() : Text();
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
