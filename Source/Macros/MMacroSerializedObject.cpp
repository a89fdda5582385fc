#include "Macros/MMacroSerializedObject.h"

#include "Macros/MLoadObserver.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MUIDEverSeen.h"
#include "Macros/XTextHash.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/StringHelpers.h"
#include "Utility/Text/TextCompare.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <cmath>
#include <unordered_map>

namespace
{
std::uint32_t gSerialNumberSource = 1;

using UIDMap = std::unordered_map<XText, MMacroSerializedObject*, XTextHash>;

// Never destroyed: objects in static storage may outlive any order of destruction.
UIDMap& ObjectsByUID()
{
    static UIDMap& gUIDMap = *new UIDMap;
    return gUIDMap;
}
} // namespace

MMacroSerializedObject::MMacroSerializedObject() : mSerialNumber( gSerialNumberSource++ )
{
    MMacroSerializedObject::RecreateUID();
}

MMacroSerializedObject::MMacroSerializedObject( WithoutUID )
    : mSerialNumber( gSerialNumberSource++ ),
      mUID( TextView() )
{}

MMacroSerializedObject::~MMacroSerializedObject()
{
    if ( mUID.IsNull() )
    {
        XAssertText( false, "false" );
        return;
    }
    if ( not IsEmpty( mUID ) )
        Unregister();
}

// Only its own entry: a conflicting SetUID may have given the UID to another object.
void MMacroSerializedObject::Unregister()
{
    const auto entry = ObjectsByUID().find( mUID );
    if ( entry != ObjectsByUID().end() and entry->second == this )
        ObjectsByUID().erase( entry );
    MSearchTexts::DidChange( mUID );
}

const XText& MMacroSerializedObject::GetUID() const
{
    return mUID;
}

void MMacroSerializedObject::RecreateUID()
{
    SetUID( uuidString() );
}

void MMacroSerializedObject::SetUID( const XText& inUID )
{
    XAssertText( not inUID.IsNull(), "inUID" );
    XAssertText( not IsEmpty( inUID ), "!IsEmpty( inUID )" );
    if ( IsEmpty( inUID ) )
        return;
    if ( not IsEmpty( mUID ) )
        Unregister();
    MUIDEverSeen::AddUID( inUID );
    XAssertText( FindObjectByUID( inUID ) == nullptr, "!UIDInUse( inUID )" );
    mUID = inUID;
    ObjectsByUID()[mUID] = this;
    DidChangeWords();
}

void MMacroSerializedObject::DidChangeWords()
{
    mSearchTexts.Forget();
    MSearchTexts::DidChange( mUID );
    DidChange();
}

MMacroSerializedObject* MMacroSerializedObject::FindObjectByUID( const XText& inUID )
{
    if ( IsEmpty( inUID ) )
        return nullptr;
    MSearchTexts::DidLookUp( inUID );
    const auto entry = ObjectsByUID().find( inUID );
    return entry == ObjectsByUID().end() ? nullptr : entry->second;
}

MMacro* MMacroSerializedObject::FindMacroByUID( const XText& inUID )
{
    MMacroSerializedObject* const object = FindObjectByUID( inUID );
    return object ? object->GetAsMacro() : nullptr;
}

MMacroGroup* MMacroSerializedObject::FindMacroGroupByUID( const XText& inUID )
{
    MMacroSerializedObject* const object = FindObjectByUID( inUID );
    return object ? object->GetAsMacroGroup() : nullptr;
}

MMacroSmartGroup* MMacroSerializedObject::FindMacroSmartGroupByUID( const XText& inUID )
{
    MMacroSerializedObject* const object = FindObjectByUID( inUID );
    return object ? object->GetAsMacroSmartGroup() : nullptr;
}

Text MMacroSerializedObject::GetUnknownUnambiguousName()
{
    return kvr_localized( u"kvMacroUnknownUnambiguousName" );
}

bool MMacroSerializedObject::SetTimesIfNotSet( XAbsoluteTime inTime )
{
    if ( mCreationTime >= 1.0 )
        return false;
    mCreationTime = inTime;
    DidChange();
    return true;
}

bool MMacroSerializedObject::NameMatches( const XText& inMatch ) const
{
    XAssertText( not inMatch.IsNull(), "inMatch" );
    return not inMatch.IsNull() and kvr_caseInsensitiveIsEqualToString( GetName(), inMatch.GetText() );
}

bool MMacroSerializedObject::UIDMatches( const XText& inMatch ) const
{
    XAssertText( not inMatch.IsNull(), "inMatch" );
    return not inMatch.IsNull() and kvr_caseInsensitiveIsEqualToString( GetUID().GetText(), inMatch.GetText() );
}

bool MMacroSerializedObject::NameOrUIDMatches( const XText& inMatch ) const
{
    return NameMatches( inMatch ) or UIDMatches( inMatch );
}

int MMacroSerializedObject::CompareAlphabetically(
    const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* )
{
    return localizedStandardCompare( inA->GetName(), inB->GetName() );
}

int MMacroSerializedObject::CompareByUID( const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* )
{
    const int order = inA->GetUID().GetString()->Compare( *inB->GetUID().GetString() );
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

int MMacroSerializedObject::CompareByCreation(
    const MMacroSerializedObject* inA, const MMacroSerializedObject* inB, void* inContext )
{
    if ( inA == inB )
        return 0;
    if ( inA->mCreationTime != inB->mCreationTime )
        return inA->mCreationTime > inB->mCreationTime ? -1 : 1;
    return CompareAlphabetically( inA, inB, inContext );
}

void MMacroSerializedObject::SetCustomIconData( const __SafeCFPropertyList& inData )
{
    mCustomIconData = inData;
    mCustomIcon = XIcon();
    DidChange();
}

XIcon MMacroSerializedObject::GetCustomIcon() const
{
    if ( not mCustomIcon.Defined() and mCustomIconData )
        mCustomIcon = XIcon::FromSavedData( mCustomIconData );
    return mCustomIcon;
}

void MMacroSerializedObject::SetCustomIcon( const XIcon& inIcon )
{
    if ( inIcon.Defined() )
        SetCustomIconData( inIcon.UndimmedIcon().GetSavedData() );
    else
        SetCustomIconData( nullptr );
}

XIcon MMacroSerializedObject::GetXIconWithDisabledBadge() const
{
    return IsActive() ? GetXIcon() : GetXIcon().DimmedIcon();
}

// Most names are clean: those keep sharing the text that they came as.
XText MMacroSerializedObject::CleanedName( const XText& inName )
{
    if ( inName.IsNull() )
        return inName;
    const Text text = inName.GetText();
    Text clean = kvr_cleanName( text );
    return clean == text ? inName : XText( clean );
}

// A UID that can't be used is never an error: the object keeps the one that it was made with.
void MMacroSerializedObject::LoadUID( const XPlistDictionary& inDictionary )
{
    XText uid;
    const char* trouble = nullptr;
    if ( not inDictionary.Get( CFSTR( "UID" ), uid ) )
        trouble = "Missing UID ignored for macro / macro group '%@'";
    else if ( IsEmpty( uid ) )
        trouble = "Empty UID ignored for macro / macro group '%@'";
    else if ( const MMacroSerializedObject* const other = FindObjectByUID( uid ); other and other != this )
    {
        if ( IsEmpty( mUID ) )
            RecreateUID();
        // References to the old UID inside the inserted material follow when the insertion ends.
        MMacroInsertion::AddMapping( uid, mUID );
        trouble = "Duplicate UID ignored for macro / macro group '%@'";
    }
    else if ( not other )
        SetUID( uid );
    if ( IsEmpty( mUID ) )
        RecreateUID();
    if ( trouble and XErrorHandler::MaybeShouldLog( "UID" ) )
        XErrorHandler::PrivateMaybeLogFormat( "UID", trouble, GetName() );
    if ( MLoadObserver* const observer = MLoadObserver::Current() )
        observer->DidReadUID( inDictionary, uid, mUID );
}

// A float that is no number compares with nothing, so sorting by it would have no order to follow.
XAbsoluteTime MMacroSerializedObject::ReadTime( const XPlistDictionary& inDictionary, const XKey& inKey )
{
    XAbsoluteTime time = 0;
    if ( not inDictionary.Get( inKey, time ) or not std::isnan( time ) )
        return time;
    if ( MLoadObserver* const observer = MLoadObserver::Current() )
        observer->DidRepair( inDictionary, inKey, MLoadRule::kOutOfRange, u"a time that is no number" );
    return 0;
}

void MMacroSerializedObject::LoadBaseFromDictionary( const XPlistDictionary* dictionary )
{
    XAssert( MMacroInsertion::CurrentlyInserting() );
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    XAssertText( not mUID.IsNull(), "mUID" );
    LoadUID( *dictionary );

    DidChange();
    mCreationTime = ReadTime( *dictionary, CFSTR( "CreationDate" ) );
    mIsActive = true;
    (void)dictionary->Get( CFSTR( "IsActive" ), mIsActive );

    __SafeCFPropertyList iconData;
    if ( not dictionary->Get( CFSTR( "CustomIconData" ), iconData ) )
        return;
    SetCustomIconData( iconData );
    if ( XIcon::CustomDataNeedsUpdating( iconData ) )
    {
        const XIcon icon = GetCustomIcon();
        if ( icon.Defined() )
            SetCustomIconData( icon.GetSavedData() );
        MMacroPreferenceFile::SetLoadAllMacrosNeedsSave();
        if ( MLoadObserver* const observer = MLoadObserver::Current() )
            observer->DidUpgradeValue( *dictionary, CFSTR( "CustomIconData" ), u"an earlier form of a custom icon" );
    }
}

void MMacroSerializedObject::SaveBaseToDictionary( XMutableDictionary& ioDictionary ) const
{
    ioDictionary.SetReal( CFSTR( "CreationDate" ), mCreationTime );
    if ( not mIsActive )
        ioDictionary.SetBoolean( CFSTR( "IsActive" ), false );
    if ( mCustomIconData )
        ioDictionary.Set( CFSTR( "CustomIconData" ), mCustomIconData );
    ioDictionary.SetText( CFSTR( "UID" ), mUID );
}

void MMacroSerializedObject::CloneToSerializeObject( CloneFor what, MMacroSerializedObject& ioTarget ) const
{
    XAssert( what == CloneFor::kDisplayOnlyReference or MMacroInsertion::CurrentlyInserting() );
    ioTarget.DidChange();
    ioTarget.mIsActive = mIsActive;
    ioTarget.mCustomIconData = mCustomIconData;
    ioTarget.mCustomIcon = mCustomIcon;
    if ( what == CloneFor::kDisplayOnlyReference )
    {
        ioTarget.mCreationTime = mCreationTime;
        return;
    }
    ioTarget.mCreationTime = XClock::Current().Now();
    XAssertText( not mUID.IsNull(), "mUID" );
    XAssertText( not ioTarget.mUID.IsNull(), "obj->mUID" );
    MMacroInsertion::AddMapping( mUID, ioTarget.mUID );
}

MCachedMacroSerializedObject::MCachedMacroSerializedObject( const MMacroSerializedObject* inObject )
    : mUID( inObject ? inObject->GetUID() : XText( u"" ) )
{}

MCachedMacroSerializedObject& MCachedMacroSerializedObject::operator=( const MMacroSerializedObject* inObject )
{
    mUID = inObject ? inObject->GetUID() : XText( u"" );
    return *this;
}
