#include "Macros/MMacroGroup.h"

#include "Actions/ActionLimits.h"
#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVIconRegistry.h"
#include "Defines/KVPreferences.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MLoadObserver.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/StoredNames.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/PathHelpers.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>

namespace
{
void ReportRepair( const XPlistDictionary& inDictionary, const XKey& inKey, MLoadRule inRule, TextView inReason )
{
    if ( MLoadObserver* const observer = MLoadObserver::Current() )
        observer->DidRepair( inDictionary, inKey, inRule, inReason );
}

// An override that changes nothing asks for no save.
void ApplyOverride( const KVMacroEnableOverrides* inOverrides, MMacroSerializedObject& ioObject )
{
    const std::optional<bool> state = inOverrides ? inOverrides->StateFor( ioObject.GetUID() ) : std::nullopt;
    if ( state and *state != ioObject.IsActive() )
    {
        ioObject.SetIsActive( *state );
        MMacroPreferenceFile::SetLoadAllMacrosNeedsSave();
    }
}
} // namespace

MMacroGroup::MMacroGroup() = default;

MMacroGroup::MMacroGroup( const __SafeCFPropertyList& inValue, const KVMacroEnableOverrides* inOverrides )
    : MMacroGroup()
{
    MMacroGroup::LoadFromPropertyList( inValue, inOverrides );
}

// What Reset would do besides is of no use to anybody any more, and a fresh UID can fail for want of memory.
MMacroGroup::~MMacroGroup()
{
    DeleteAllMacros();
}

Text MMacroGroup::GetName() const
{
    return IsEmpty( mName ) ? kvr_localized( u"kvUntitledMacroGroup" ) : mName.GetText();
}

void MMacroGroup::SetName( const XText& inName )
{
    mName = nullptr;
    DidChangeWords();
    const XText clean = CleanedName( inName );
    if ( not IsEmpty( clean ) and not clean.Equals( kvr_localized( u"kvUntitledMacroGroup" ) ) )
        mName = clean;
}

Text MMacroGroup::GetUnambiguousName() const
{
    return kvr_localizedFormat( u"kvMacroGroupUnambiguousName", GetName() );
}

XAbsoluteTime MMacroGroup::GetModificationTime() const
{
    XAbsoluteTime latest = GetCreationTime();
    DoForEveryMacro( [&latest]( const MMacro& macro ) { latest = std::max( latest, macro.GetModificationTime() ); } );
    return latest;
}

XIcon MMacroGroup::GetXIcon() const
{
    if ( HasCustomIcon() )
        return GetCustomIcon();
    switch ( mActivate )
    {
    case MacroGroupActivate::kNormal:
        return XIcon( KVIconRegistry::kFolder );
    case MacroGroupActivate::kOnceAfterTrigger:
    case MacroGroupActivate::kToggleWithTrigger:
        return XIcon( XIcon( KVIconRegistry::kFolder ), XIcon( KVIconRegistry::kHotKeyBadge ) );
    default:
        return XIcon( XIcon( KVIconRegistry::kFolder ), XIcon( KVIconRegistry::kPaletteBadge ) );
    }
}

XIcon MMacroGroup::GetXIconWithDisabledBadge() const
{
    return IsActiveForThisMac() ? GetXIcon() : GetXIcon().DimmedIcon();
}

bool MMacroGroup::SetTimesIfNotSet( XAbsoluteTime inTime )
{
    bool changed = MMacroSerializedObject::SetTimesIfNotSet( inTime );
    DoForEveryMacro( [&changed]( MMacro& macro ) { changed |= macro.SetTimesIfNotSet(); } );
    return changed;
}

void MMacroGroup::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.AddGroup( GetName() );
    mTarget.AddMatchStrings( ioSearchee );
    if ( IsGloballyActive() )
        ioSearchee.AddGlobal();
}

Text MMacroGroup::SerializedObjectKindName() const
{
    return kvr_localized( u"SOKMacroGroup" );
}

std::vector<MMacro*> MMacroGroup::GetMacroPaletteItemList() const
{
    std::vector<MMacro*> macros;
    DoForEveryMacro( [&macros]( MMacro& macro ) {
        if ( macro.IsActive() )
            macros.push_back( &macro );
    } );
    std::sort( macros.begin(), macros.end(),
        []( const MMacro* a, const MMacro* b ) { return MMacro::CompareAlphabetically( a, b ) < 0; } );
    return macros;
}

void MMacroGroup::UpdateForPasteOrAdd()
{
    DoForEveryMacro( []( MMacro& macro ) {
        macro.SetTimesIfNotSet();
        macro.UpdateForPasteOrAdd();
    } );
}

void MMacroGroup::InsertMacro( std::unique_ptr<MMacro> inMacro )
{
    MMacro* const macro = inMacro.release();
    macro->SetOwningGroup( this );
    mMacros.SetValue( macro->GetSerialNumber(), macro );
}

void MMacroGroup::RemoveMacro( MMacro* inMacro )
{
    mMacros.RemoveValue( inMacro->GetSerialNumber() );
    // Only while it still points here; SetOwningGroup has cleared the link when it asks for this.
    if ( inMacro->GetOwningGroup() == this )
        inMacro->SetOwningGroup( nullptr );
}

void MMacroGroup::DeleteMacro( MMacro* inMacro )
{
    RemoveMacro( inMacro );
    delete inMacro;
}

void MMacroGroup::DeleteAllMacros()
{
    for ( MMacro* const macro : mMacros.GetValues() )
        delete macro;
    mMacros.RemoveAllValues();
}

void MMacroGroup::GetEveryMacro( std::vector<MMacro*>& ioMacros ) const
{
    DoForEveryMacro( [&ioMacros]( MMacro& macro ) { ioMacros.push_back( &macro ); } );
}

MMacro* MMacroGroup::FindMacroByName( const XText& inName ) const
{
    for ( MMacro* const macro : mMacros.GetValues() )
    {
        if ( macro->NameMatches( inName ) )
            return macro;
    }
    return nullptr;
}

MMacro* MMacroGroup::FindFirstMacro() const
{
    const std::vector<MMacro*> macros = mMacros.GetValues();
    return macros.empty() ? nullptr : macros.front();
}

bool MMacroGroup::IsDefaultMacroGroup() const
{
    return mName.Equals( kvr_localized( u"hkDefaultMacroGroupName" ) );
}

bool MMacroGroup::IsDisabledForThisMac() const
{
    return not mDisabledMacs.empty() and
        std::ranges::find( mDisabledMacs, XText( KVPreferences::MacUUID() ) ) != mDisabledMacs.end();
}

void MMacroGroup::SetDisabledForThisMac( bool inDisabled )
{
    if ( inDisabled == IsDisabledForThisMac() )
        return;
    if ( inDisabled )
        mDisabledMacs.emplace_back( KVPreferences::MacUUID() );
    else
        std::erase( mDisabledMacs, XText( KVPreferences::MacUUID() ) );
    DidChange();
}

bool MMacroGroup::IsAlwaysActive() const
{
    return mTarget.GetType() == MacroAppTargetType::kAll and mActivate == MacroGroupActivate::kNormal;
}

bool MMacroGroup::IsAlwaysActiveInOneApplication( Text& outName ) const
{
    if ( mActivate >= MacroGroupActivate::kOnceAfterTrigger and mActivate <= MacroGroupActivate::kAlwaysWithPalette )
        return false;
    XApplicationIdentifier application;
    if ( not mTarget.TargetOneApplication( application ) )
        return false;
    outName = kvr_nameWithoutAppSuffix( application.GetDisplayName() );
    return true;
}

bool MMacroGroup::IsGloballyActive() const
{
    return mTarget.GetType() == MacroAppTargetType::kAll and
        mWindowCondition.CompareWithSame( MFrontWindowCondition() ) == 0;
}

Text MMacroGroup::GetActivateDisplayText() const
{
    return kvr_localized( u"MacroGroupActivation" +
        TextFromASCII( kMacroGroupActivateNames[std::size_t( mActivate )] ) +
        ( mPaletteUnderMouse ? u"UnderMouse" : u"" ) );
}

std::optional<Text> MMacroGroup::GetAvailableApplicationXML() const
{
    return kvr_toXMLString( mTarget.CopyToPropertyList() );
}

void MMacroGroup::SetAvailableApplicationXML( TextView inText )
{
    const __SafeCFPropertyList value = kvr_fromXMLString( inText, kActionsPlistLimits );
    if ( value.AsDictionary() )
        mTarget.LoadFromPropertyList( value );
    DidChangeWords();
}

std::optional<Text> MMacroGroup::GetAvailableWindowXML() const
{
    XMutableDictionary dictionary;
    SaveWindowCondition( dictionary );
    return kvr_toXMLString( dictionary.Seal() );
}

void MMacroGroup::SetAvailableWindowXML( TextView inText )
{
    const __SafeCFPropertyList value = kvr_fromXMLString( inText, kActionsPlistLimits );
    if ( const XPlistDictionary* const dictionary = value.AsDictionary() )
        LoadWindowCondition( *dictionary );
    DidChange();
}

std::optional<Text> MMacroGroup::GetActivationXML() const
{
    XMutableDictionary dictionary;
    SaveActivationToDictionary( dictionary, true );
    return kvr_toXMLString( dictionary.Seal() );
}

void MMacroGroup::SetActivationXML( TextView inText )
{
    const __SafeCFPropertyList value = kvr_fromXMLString( inText, kActionsPlistLimits );
    if ( const XPlistDictionary* const dictionary = value.AsDictionary() )
        LoadActivationFromDictionary( *dictionary );
    DidChange();
}

__SafeCFPropertyList MMacroGroup::CopyToPropertyList() const
{
    return CopyOneMacroOrAllMacrosToPropertyList( nullptr, false );
}

__SafeCFPropertyList MMacroGroup::CopyOneMacroToPropertyListForExport( const MMacro* inMacro ) const
{
    XAssert( inMacro != nullptr );
    return CopyOneMacroOrAllMacrosToPropertyList( inMacro, true );
}

std::unique_ptr<MMacro> MMacroGroup::CopyOneMacroFromExportPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    CFContainer<XPlistArray> macros;
    XThrowIfNot( dictionary->Get( CFSTR("Macros"), macros ) );
    XThrowIfNot( macros->GetCount() == 1 );
    std::unique_ptr<MMacro> result;
    try
    {
        result = std::make_unique<MMacro>( macros->GetValueAt( 0 ) );
    }
    catch ( const XException& )
    {
        // Told as the one fault of an export that has the right shape.
    }
    XThrowIfNot( result );
    return result;
}

__SafeCFPropertyList MMacroGroup::CopyOneMacroOrAllMacrosToPropertyList( const MMacro* inMacro, bool inForExport ) const
{
    XMutableArray macros;
    if ( inMacro )
        macros.Append( inMacro->CopyToPropertyList() );
    else
        DoForEveryMacro( [&macros]( const MMacro& macro ) { macros.Append( macro.CopyToPropertyList() ); } );
    return CopyToPropertyListAround( macros.Seal(), inForExport );
}

__SafeCFPropertyList MMacroGroup::CopyToPropertyListAround( CFContainer<XPlistArray> inMacros ) const
{
    return CopyToPropertyListAround( std::move( inMacros ), false );
}

__SafeCFPropertyList MMacroGroup::CopyToPropertyListAround( CFContainer<XPlistArray> inMacros, bool inForExport ) const
{
    XMutableDictionary dictionary;
    SaveBaseToDictionary( dictionary );
    if ( not mName.IsNull() )
        dictionary.SetText( CFSTR( "Name" ), mName );
    SaveActivationToDictionary( dictionary, inForExport );
    if ( not inForExport or mTarget.GetType() != MacroAppTargetType::kAll )
        dictionary.Set( CFSTR( "Targeting" ), mTarget.CopyToPropertyList() );
    SaveWindowCondition( dictionary );
    if ( not mTheme.IsPlainDefault() )
        dictionary.Set( CFSTR( "Theme" ), mTheme.mStored );
    dictionary.SetText( CFSTR( "ToggleMacroUID" ), mToggleMacro.GetUID() );
    if ( not mDisabledMacs.empty() )
    {
        XMutableArray macs;
        for ( const XText& mac : mDisabledMacs )
            macs.Append( mac );
        dictionary.Set( CFSTR( "DisabledMacs" ), macs.Seal() );
    }
    dictionary.Set( CFSTR( "Macros" ), std::move( inMacros ) );
    return dictionary.Seal();
}

void MMacroGroup::SaveActivationToDictionary( XMutableDictionary& ioDictionary, bool inForExport ) const
{
    ioDictionary.Set( CFSTR( "Activate" ), StoredName( kMacroGroupActivateNames, mActivate ) );
    if ( inForExport and mActivate == MacroGroupActivate::kNormal )
        return;
    ioDictionary.SetInteger( CFSTR( "KeyCode" ), mKeyCode );
    ioDictionary.SetInteger( CFSTR( "Modifiers" ), mModifiers );
    ioDictionary.SetBoolean( CFSTR( "AddToMacroPalette" ), mAddToMacroPalette );
    ioDictionary.SetBoolean( CFSTR( "AddToStatusMenu" ), mAddToStatusMenu );
    ioDictionary.SetBoolean( CFSTR( "PaletteUnderMouse" ), mPaletteUnderMouse );
    if ( not mDisplayToggle )
        ioDictionary.SetBoolean( CFSTR( "DisplayToggle" ), false );
}

void MMacroGroup::LoadActivationFromDictionary( const XPlistDictionary& inDictionary )
{
    mActivate = GetStoredEnumerator<MacroGroupActivate>( inDictionary, CFSTR( "Activate" ), kMacroGroupActivateNames );
    std::int32_t keyCode = 0;
    if ( inDictionary.Get( CFSTR( "KeyCode" ), keyCode ) )
    {
        if ( keyCode >= 0 and keyCode <= 65535 )
            mKeyCode = std::uint16_t( keyCode );
        else
            ReportRepair(
                inDictionary, CFSTR( "KeyCode" ), MLoadRule::kOutOfRange, u"a key code is between 0 and 65535" );
    }
    std::int64_t modifiers = 0;
    if ( inDictionary.Get( CFSTR( "Modifiers" ), modifiers ) )
    {
        if ( modifiers >= 0 and modifiers <= 0xFFFFFFFFll )
            mModifiers = std::uint32_t( modifiers );
        else
            ReportRepair(
                inDictionary, CFSTR( "Modifiers" ), MLoadRule::kOutOfRange, u"modifiers are between 0 and 4294967295" );
    }
    const auto read = [&inDictionary]( const XKey& key, bool whenMissing ) {
        (void)inDictionary.Get( key, whenMissing );
        return whenMissing;
    };
    mAddToMacroPalette = read( CFSTR( "AddToMacroPalette" ), false );
    mAddToStatusMenu = read( CFSTR( "AddToStatusMenu" ), false );
    mDisplayToggle = read( CFSTR( "DisplayToggle" ), true );
    mPaletteUnderMouse = read( CFSTR( "PaletteUnderMouse" ), false );
}

void MMacroGroup::LoadWindowCondition( const XPlistDictionary& inDictionary )
{
    mWindowCondition.LoadFromDictionary( inDictionary, CFSTR( "FocussedWindowConditionType" ),
        CFSTR( "FocussedWindowTitle" ), FrontWindowConditionType::kAlways );
}

void MMacroGroup::SaveWindowCondition( XMutableDictionary& ioDictionary ) const
{
    mWindowCondition.SaveToDictionary( ioDictionary, CFSTR( "FocussedWindowConditionType" ),
        CFSTR( "FocussedWindowTitle" ), FrontWindowConditionType::kAlways );
}

void MMacroGroup::Reset()
{
    DeleteAllMacros();
    RecreateUID();
    mTarget = {};
    SetIsActive( true );
    mDisabledMacs.clear();
    mActivate = MacroGroupActivate::kNormal;
    mKeyCode = kNoKeyCode;
    mModifiers = 0;
    mAddToMacroPalette = mAddToStatusMenu = mPaletteUnderMouse = false;
    mDisplayToggle = true;
    mTheme = {};
    mToggleMacro.RecreateUID();
}

void MMacroGroup::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    LoadFromPropertyList( inValue, nullptr );
}

void MMacroGroup::LoadFromPropertyList( const __SafeCFPropertyList& inValue, const KVMacroEnableOverrides* inOverrides )
{
    // 1. A clean object; the name stays until there is another.
    XAssert( MMacroInsertion::CurrentlyInserting() );
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    Reset();

    // 2. The name, which the log lines of the base load quote.
    XText name;
    if ( dictionary->Get( CFSTR( "Name" ), name ) )
        SetName( name );
    LoadBaseFromDictionary( dictionary );

    // 3. What the engine changed meanwhile; the default group is always active.
    if ( not IsDefaultMacroGroup() )
        ApplyOverride( inOverrides, *this );

    // 4. to 7. When and where the group is active.
    mKeyCode = kNoKeyCode;
    mModifiers = 0;
    LoadActivationFromDictionary( *dictionary );
    CFContainer<XPlistDictionary> targeting;
    if ( dictionary->Get( CFSTR( "Targeting" ), targeting ) )
        mTarget.LoadFromPropertyList( __SafeCFPropertyList( targeting ) );
    LoadWindowCondition( *dictionary );
    RepairTarget( *dictionary );
    CFContainer<XPlistDictionary> theme;
    (void)dictionary->Get( CFSTR( "Theme" ), theme );
    mTheme.LoadFromPropertyList( std::move( theme ) );
    LoadToggleMacroAndDisabledMacs( *dictionary );

    // 8. The default group is available always and everywhere, whatever the file says.
    if ( IsDefaultMacroGroup() )
        ForceDefaults( *dictionary );

    DidChangeWords();

    // 9. The macros.
    CFContainer<XPlistArray> macros;
    XThrowIfNot( dictionary->Get( CFSTR("Macros"), macros ) );
    LoadMacros( *macros, inOverrides );
}

void MMacroGroup::SetTarget( MMacroAppTarget inTarget )
{
    mTarget = std::move( inTarget );
    DidChangeWords();
}

// A target that names no application can't be met. One that asks for an application turns the group off, so
// that its macros don't come alive everywhere; one that rules applications out meant everywhere anyway.
void MMacroGroup::RepairTarget( const XPlistDictionary& inDictionary )
{
    if ( mTarget.GetType() == MacroAppTargetType::kAll or not mTarget.GetApplications().IsEmpty() )
        return;
    const bool meantEverywhere =
        mTarget.GetType() == MacroAppTargetType::kExcluded or mTarget.GetType() == MacroAppTargetType::kNotRunning;
    mTarget.SetType( MacroAppTargetType::kAll );
    ReportRepair(
        inDictionary, CFSTR( "Targeting" ), MLoadRule::kEmptyTarget, u"the target names no application, so it is All" );
    if ( meantEverywhere )
        return;
    SetIsActive( false );
    ReportRepair( inDictionary, CFSTR( "IsActive" ), MLoadRule::kEmptyTarget,
        u"its target named no application, so the group is off" );
}

void MMacroGroup::LoadToggleMacroAndDisabledMacs( const XPlistDictionary& inDictionary )
{
    XText toggle;
    if ( inDictionary.Get( CFSTR( "ToggleMacroUID" ), toggle ) )
    {
        if ( not IsEmpty( toggle ) and not MUIDObject::UIDInUse( toggle ) )
            mToggleMacro.SetUID( toggle );
        else
            ReportRepair( inDictionary, CFSTR( "ToggleMacroUID" ),
                IsEmpty( toggle ) ? MLoadRule::kUIDAdded : MLoadRule::kUIDReplaced,
                IsEmpty( toggle ) ? u"an empty UID" : u"another object of this file holds this UID" );
    }
    CFContainer<XPlistArray> macs;
    if ( not inDictionary.Get( CFSTR( "DisabledMacs" ), macs ) )
        return;
    for ( const XText& mac : TextsOf( *macs ) )
    {
        if ( std::ranges::find( mDisabledMacs, mac ) == mDisabledMacs.end() )
            mDisabledMacs.push_back( mac );
    }
}

void MMacroGroup::ForceDefaults( const XPlistDictionary& inDictionary )
{
    constexpr char16_t kReason[] = u"the default group is always active, everywhere";
    if ( mTarget.GetType() != MacroAppTargetType::kAll )
        ReportRepair( inDictionary, CFSTR( "Targeting" ), MLoadRule::kDefaultGroupReset, kReason );
    if ( mWindowCondition.GetType() != FrontWindowConditionType::kAlways )
    {
        ReportRepair( inDictionary, CFSTR( "FocussedWindowConditionType" ), MLoadRule::kDefaultGroupReset, kReason );
        ReportRepair( inDictionary, CFSTR( "FocussedWindowTitle" ), MLoadRule::kDefaultGroupReset, kReason );
    }
    if ( mActivate != MacroGroupActivate::kNormal )
        ReportRepair( inDictionary, CFSTR( "Activate" ), MLoadRule::kDefaultGroupReset, kReason );
    if ( not IsActive() )
        ReportRepair( inDictionary, CFSTR( "IsActive" ), MLoadRule::kDefaultGroupReset, kReason );
    if ( not mDisabledMacs.empty() )
        ReportRepair( inDictionary, CFSTR( "DisabledMacs" ), MLoadRule::kDefaultGroupReset, kReason );
    mTarget.SetType( MacroAppTargetType::kAll );
    mWindowCondition = {};
    mActivate = MacroGroupActivate::kNormal;
    SetIsActive( true );
    mDisabledMacs.clear();
}

void MMacroGroup::LoadMacros( const XPlistArray& inMacros, const KVMacroEnableOverrides* inOverrides )
{
    for ( std::size_t i = 0; i < inMacros.GetCount(); ++i )
    {
        try
        {
            auto macro = std::make_unique<MMacro>( inMacros.GetValueAt( i ) );
            ApplyOverride( inOverrides, *macro );
            InsertMacro( std::move( macro ) );
        }
        catch ( const XException& exception )
        {
            if ( MLoadObserver* const observer = MLoadObserver::Current() )
                observer->DidDrop( inMacros, i, exception.GetMessage() );
        }
    }
}

std::unique_ptr<MMacroGroup> MMacroGroup::Clone( CloneFor what ) const
{
    XAssert( what == CloneFor::kDisplayOnlyReference or MMacroInsertion::CurrentlyInserting() );
    auto clone = std::make_unique<MMacroGroup>();
    CloneToSerializeObject( what, *clone );
    clone->mName = mName;
    clone->mTarget = mTarget;
    clone->mWindowCondition = mWindowCondition;
    clone->mActivate = mActivate;
    clone->mKeyCode = mKeyCode;
    clone->mModifiers = mModifiers;
    clone->mAddToMacroPalette = mAddToMacroPalette;
    clone->mAddToStatusMenu = mAddToStatusMenu;
    clone->mTheme = mTheme;
    clone->mPaletteUnderMouse = mPaletteUnderMouse;
    DoForEveryMacro( [&]( const MMacro& macro ) { clone->InsertMacro( macro.Clone( what ) ); } );
    return clone;
}
