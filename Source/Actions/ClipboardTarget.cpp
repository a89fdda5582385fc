#include "Actions/ClipboardTarget.h"

#include "Actions/SharedText.h"
#include "Utility/Text/Localization.h"

#include <string>

void DescribeClipboard(
    HFieldVisitor& inVisitor, HFieldKey inUIDKey, HFieldKey inNameKey, ClipboardReference& ioReference )
{
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        ioReference.AddMatchStrings( *searchee );
        return;
    }
    const ClipboardReference current =
        inVisitor.IsReading() or not ClipboardNames::Current() ? ioReference : ioReference.Updated();
    XText uid = current.GetClipboardUID(), name = current.GetClipboardName();
    inVisitor.Text( inUIDKey, uid );
    inVisitor.Text( inNameKey, name );
    if ( inVisitor.IsReading() )
        ioReference.Set( uid, name );
}

namespace
{
struct TargetKeys
{
    explicit TargetKeys( std::string_view inPrefix )
        : mUseNamed( Make( inPrefix, "UseNamedClipboard" ) ),
          mUseTrigger( Make( inPrefix, "UseTriggerClipboard" ) ),
          mUID( Make( inPrefix, "NamedClipboardUID" ) ),
          mName( Make( inPrefix, "NamedClipboardRedundantDisplayName" ) )
    {}

    std::string mUseNamed, mUseTrigger, mUID, mName;

private:
    static std::string Make( std::string_view inPrefix, std::string_view inRest )
    {
        return std::string( inPrefix ).append( inRest );
    }
};
} // namespace

void ClipboardTarget::DescribeFields( HFieldVisitor& inVisitor, std::string_view inPrefix )
{
    const TargetKeys keys( inPrefix );
    bool useNamed = mKind == Kind::kNamed;
    inVisitor.Boolean( HFieldKey( XKey( keys.mUseNamed ) ), useNamed, { .mWrite = XWrite::kWhenSet } );
    bool useTrigger = mKind == Kind::kTrigger;
    inVisitor.Boolean( HFieldKey( XKey( keys.mUseTrigger ) ), useTrigger, { .mWrite = XWrite::kWhenSet } );
    if ( inVisitor.IsReading() )
        mKind = useNamed ? Kind::kNamed : useTrigger ? Kind::kTrigger : Kind::kSystem;
    if ( mKind == Kind::kNamed )
        DescribeClipboard( inVisitor, HFieldKey( XKey( keys.mUID ) ), HFieldKey( XKey( keys.mName ) ), mReference );
}

void ClipboardTarget::SetNamed( const ClipboardReference& inReference )
{
    mKind = Kind::kNamed;
    mReference = inReference;
}

XText ClipboardTarget::GetGenericIdentifier() const
{
    switch ( mKind )
    {
    case Kind::kTrigger:
        return SharedText<u"TriggerClipboard">();
    case Kind::kNamed:
        return mReference.GetClipboardUID();
    default:
        return SharedText<u"SystemClipboard">();
    }
}

bool ClipboardTarget::operator==( const ClipboardTarget& inOther ) const
{
    return GetGenericIdentifier().Equals( inOther.GetGenericIdentifier().GetText() );
}

Text ClipboardTarget::GetDisplayName() const
{
    switch ( mKind )
    {
    case Kind::kTrigger:
        return kvr_localized( u"kClipboardTargetTriggerClipboard" );
    case Kind::kNamed:
        return kvr_localizedFormat(
            u"kClipboardTargetNamedClipboardFormat", TextView( mReference.GetClipboardName().GetText() ) );
    default:
        return kvr_localized( u"kClipboardTargetSystemClipboard" );
    }
}

void ClipboardTarget::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    if ( mKind == Kind::kNamed )
        mReference.AddMatchStrings( ioSearchee );
}

void ClipboardTarget::UpdateToDefaultValues( bool inForce )
{
    if ( mKind == Kind::kNamed )
        mReference.UpdateClipboardReference( inForce );
}
