#include "Actions/ClipboardTarget.h"

#include "Actions/SharedText.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"

void DescribeClipboard(
    HFieldVisitor& inVisitor, HFieldKey inUIDKey, HFieldKey inNameKey, ClipboardReference& ioReference )
{
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        ioReference.AddMatchStrings( *searchee );
        return;
    }
    // Only a save follows the store: following may make a clipboard, which comparing two objects mustn't.
    const ClipboardReference current = inVisitor.IsSaving() ? ioReference.Updated() : ioReference;
    XText uid = current.GetClipboardUID(), name = current.GetClipboardName();
    inVisitor.Text( inUIDKey, uid );
    inVisitor.Text( inNameKey, name );
    if ( inVisitor.IsReading() )
        ioReference.Set( uid, name );
}

namespace
{
// A key with the prefix of its part, put together on the stack: a large file has these parts by the hundred thousand.
class PrefixedKey
{
public:
    PrefixedKey( std::string_view inPrefix, std::string_view inRest )
    {
        XAssert( inPrefix.size() + inRest.size() <= kLongest );
        mLength = inPrefix.copy( mName, kLongest );
        mLength += inRest.copy( mName + mLength, kLongest - mLength );
    }

    [[nodiscard]] HFieldKey Key() const { return HFieldKey( XKey( std::string_view( mName, mLength ) ) ); }

private:
    static constexpr std::size_t kLongest = 80;

    char mName[kLongest];
    std::size_t mLength = 0;
};
} // namespace

void ClipboardTarget::DescribeFields( HFieldVisitor& inVisitor, std::string_view inPrefix )
{
    bool useNamed = mKind == Kind::kNamed;
    inVisitor.Boolean( PrefixedKey( inPrefix, "UseNamedClipboard" ).Key(), useNamed, { .mWrite = XWrite::kWhenSet } );
    bool useTrigger = mKind == Kind::kTrigger;
    inVisitor.Boolean(
        PrefixedKey( inPrefix, "UseTriggerClipboard" ).Key(), useTrigger, { .mWrite = XWrite::kWhenSet } );
    if ( inVisitor.IsReading() )
        mKind = useNamed ? Kind::kNamed : useTrigger ? Kind::kTrigger : Kind::kSystem;
    if ( mKind != Kind::kNamed )
        return;
    const PrefixedKey uid( inPrefix, "NamedClipboardUID" );
    const PrefixedKey name( inPrefix, "NamedClipboardRedundantDisplayName" );
    DescribeClipboard( inVisitor, uid.Key(), name.Key(), mReference );
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
