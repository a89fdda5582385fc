#include "ClipboardSwitcher/ClipboardReference.h"

#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/TextCompare.h"

#include <map>

namespace
{
std::function<void()>& gAskForReload()
{
    static std::function<void()> gAsk;
    return gAsk;
}

ClipboardNames* gClipboardNames = nullptr;

// How many references hold each UID. A map of texts, as references come and go by the thousand with their
// actions but name few clipboards.
std::map<Text, int, std::less<>>& gClipboardReferenceUIDs()
{
    static auto* const gUIDs = new std::map<Text, int, std::less<>>;
    return *gUIDs;
}

void AddToUse( const XText& inUID )
{
    if ( not IsEmpty( inUID ) )
        ++gClipboardReferenceUIDs()[inUID.GetText()];
}

void RemoveFromUse( const XText& inUID )
{
    if ( IsEmpty( inUID ) )
        return;
    auto& uids = gClipboardReferenceUIDs();
    const auto found = uids.find( inUID.GetText() );
    if ( found != uids.end() and --found->second == 0 )
        uids.erase( found );
}
} // namespace

ClipboardNames* ClipboardNames::Current()
{
    return gClipboardNames;
}

void ClipboardNames::SetCurrent( ClipboardNames* inNames )
{
    gClipboardNames = inNames;
}

ClipboardReference::ClipboardReference( const XText& inUID, const XText& inName ) : mUID( inUID ), mName( inName )
{
    AddToUse( mUID );
}

ClipboardReference::ClipboardReference( const ClipboardReference& inOther )
    : ClipboardReference( inOther.mUID, inOther.mName )
{}

ClipboardReference& ClipboardReference::operator=( const ClipboardReference& inOther )
{
    Set( inOther.mUID, inOther.mName );
    return *this;
}

ClipboardReference::~ClipboardReference()
{
    RemoveFromUse( mUID );
}

bool ClipboardReference::ClipboardUIDInUse( TextView inUID )
{
    return gClipboardReferenceUIDs().contains( inUID );
}

void ClipboardReference::SetClipboardUID( const XText& inUID )
{
    std::optional<Text> name;
    if ( gClipboardNames )
        name = gClipboardNames->StrictGetClipboardNameByUID( inUID.GetText() );
    Set( inUID, name ? XText( *name ) : mName );
}

void ClipboardReference::Set( const XText& inUID, const XText& inName )
{
    const XText uid = inUID, name = inName; // which may be our own
    AddToUse( uid );
    RemoveFromUse( mUID );
    mUID = uid;
    mName = name;
}

void ClipboardReference::SetAskForReload( std::function<void()> inAskForReload )
{
    gAskForReload() = std::move( inAskForReload );
}

bool ClipboardReference::UpdateClipboardReference( bool inForce )
{
    if ( not gClipboardNames )
        return false;
    const Text unnamed = kvr_localized( u"UnnamedClipboardName" );
    Text uid = mUID.GetText(), name = mName.GetText();

    // 1. Out of use, so that the store doesn't take this reference for another holder of the UID.
    RemoveFromUse( mUID );
    // 2. What says nothing, or is to be found anew, starts from its name.
    const bool needsName = name.empty() or name == kvr_localized( u"DeprecatedDefaultClipboardName" );
    if ( inForce or ( uid.empty() and ( needsName or name == unnamed ) ) )
    {
        uid.clear();
        if ( needsName )
            name = unnamed;
    }
    // 3. The clipboard's name of today, or 4. the clipboard of that name.
    if ( const auto known = uid.empty() ? std::nullopt : gClipboardNames->StrictGetClipboardNameByUID( uid ) )
        name = *known;
    else if ( name.empty() )
        name = unnamed;
    else if ( name == unnamed )
        uid = gClipboardNames->GetClipboardUIDByName( name ).value_or( uid );
    else
        uid = gClipboardNames->GetOrCreateClipboard( name, uid );
    // 5. Other holders of the clipboard show what was.
    const bool changed = not mUID.Equals( uid ) or not mName.Equals( name );
    if ( changed )
    {
        mUID = XText( uid );
        mName = XText( name );
    }
    // 6. In use again.
    AddToUse( mUID );
    if ( changed and gAskForReload() )
        gAskForReload()();
    return changed;
}

ClipboardReference ClipboardReference::Updated() const
{
    ClipboardReference updated = *this;
    updated.UpdateClipboardReference( false );
    return updated;
}

int ClipboardReference::CompareWithSame( const ClipboardReference& inOther ) const
{
    if ( const int order = localizedStandardCompare( mName.GetText(), inOther.mName.GetText() ); order != 0 )
        return order;
    const int order = mUID.GetText().compare( inOther.mUID.GetText() );
    return order < 0 ? -1 : order > 0;
}

void ClipboardReference::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.Add( mName );
}
