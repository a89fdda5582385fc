#include "Triggers/TRemoteTrigger.h"

#include "Defines/KVPreferences.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/NSStringRegularExpressions.h"

void TRemoteTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Name", mName );
    inVisitor.Boolean( "Shared", mShared );
}

void TRemoteTrigger::SetName( const XText& inName, bool inShared )
{
    mName = inName;
    mShared = inShared;
}

Text TRemoteTrigger::GetFullName() const
{
    if ( mShared )
        return mName.GetText();
    return CombinedSharedAndLocalName( KVPreferences::MacRemoteUUID().GetText(), mName.GetText() );
}

Text TRemoteTrigger::GetLocalName() const
{
    const Text name = mName.GetText();
    const std::size_t slash = name.find( u'/' );
    return mShared and slash != Text::npos ? name.substr( slash + 1 ) : name;
}

Text TRemoteTrigger::GetSharedName() const
{
    const Text name = GetFullName();
    const std::size_t slash = name.find( u'/' );
    return slash == Text::npos ? Text() : name.substr( 0, slash );
}

Text TRemoteTrigger::CombinedSharedAndLocalName( TextView inShared, TextView inLocal )
{
    return kvr_format( u"%@/%@", inShared, inLocal );
}

Text TRemoteTrigger::GetExampleURL() const
{
    return kvr_format( u"%@%@?TriggerValue", kvr_localized( u"kvRemoteTriggerURLPrefix" ), GetFullName() );
}

bool TRemoteTrigger::IsNameValid( bool inShared, TextView inName )
{
    return isMatchedByRegex(
        inName, inShared ? u"\\A[-a-zA-Z0-9]{8,64}/[-a-zA-Z0-9]{8,64}\\z" : u"\\A[-a-zA-Z0-9]{8,64}\\z" );
}

Text TRemoteTrigger::GetDescription() const
{
    return kvr_localizedFormat( mShared ? u"tRemoteTriggerShared" : u"tRemoteTriggerThisMac", mName.GetText() );
}

Text TRemoteTrigger::GetShortDescription() const
{
    return kvr_localized( u"tRemoteTriggerShortDesc" );
}
