#include "Macros/MMacroAppTarget.h"

#include "Actions/HFieldVisitors.h"
#include "Macros/MLoadObserver.h"
#include "Macros/StoredNames.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <algorithm>

namespace
{
constexpr std::u16string_view kTargetDisplayKeys[] = { u"MacroGroupAvailableHTML_All",
    u"MacroGroupAvailableHTML_Active", u"MacroGroupAvailableHTML_NotActive", u"MacroGroupAvailableHTML_Running",
    u"MacroGroupAvailableHTML_RunningNotActive", u"MacroGroupAvailableHTML_NotRunning" };
static_assert( std::size( kTargetDisplayKeys ) == std::size( kMacroAppTargetTypeNames ) );
} // namespace

void MMacroAppTarget::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    mType = GetStoredEnumerator<MacroAppTargetType>( *dictionary, CFSTR( "Targeting" ), kMacroAppTargetTypeNames );
    mApplications = {};
    CFContainer<XPlistArray> applications;
    if ( dictionary->Get( CFSTR( "TargetingApps" ), applications ) )
        mApplications.LoadFromPropertyList( __SafeCFPropertyList( applications ) );
}

__SafeCFPropertyList MMacroAppTarget::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    dictionary.Set( CFSTR( "Targeting" ), StoredName( kMacroAppTargetTypeNames, mType ) );
    dictionary.Set( CFSTR( "TargetingApps" ), mApplications.CopyToPropertyList() );
    return dictionary.Seal();
}

int MMacroAppTarget::CompareWithSame( const MMacroAppTarget& inOther ) const
{
    if ( mType != inOther.mType )
        return mType < inOther.mType ? -1 : 1;
    if ( mType == MacroAppTargetType::kAll )
        return 0;
    const int order = mApplications.CompareWithSame( inOther.mApplications );
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

bool MMacroAppTarget::CanTriggerFor(
    ApplicationTriggerFireType inFireType, const XApplicationIdentifier& inApplication ) const
{
    using Fire = ApplicationTriggerFireType;
    const auto& applications = mApplications.GetApplications();
    const bool isListed = std::ranges::any_of( applications,
        [&]( const XApplicationIdentifier& listed ) { return listed.CompareWithSame( inApplication ) == 0; } );
    const bool isOneOther = applications.size() == 1 and not isListed;
    switch ( mType )
    {
    case MacroAppTargetType::kAll:
        return true;
    case MacroAppTargetType::kIncluded:
        return not isListed and ( inFireType == Fire::kWhileActive or inFireType == Fire::kWhileRunning );
    case MacroAppTargetType::kExcluded:
        return not isOneOther or
            not( inFireType == Fire::kActivate or inFireType == Fire::kDeactivate or inFireType == Fire::kWhileActive );
    case MacroAppTargetType::kRunning:
        return not isOneOther or not( inFireType == Fire::kLaunch or inFireType == Fire::kQuit );
    case MacroAppTargetType::kRunningNotActive:
        return inFireType == Fire::kWhileRunning;
    case MacroAppTargetType::kNotRunning:
        return false;
    }
    return false;
}

bool MMacroAppTarget::TargetOneApplication( XApplicationIdentifier& outApplication ) const
{
    if ( mType != MacroAppTargetType::kIncluded or mApplications.GetApplications().size() != 1 )
        return false;
    outApplication = mApplications.GetApplications().front();
    return true;
}

Text MMacroAppTarget::GetDescription() const
{
    Text names;
    for ( const Text& name : mApplications.GetDisplayNames() )
        names += ( names.empty() ? u"" : u", " ) + name;
    return kvr_localizedFormat( kTargetDisplayKeys[std::size_t( mType )], names );
}

void MMacroAppTarget::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    for ( const Text& name : mApplications.GetDisplayNames() )
        ioSearchee.AddApp( name );
}

MFrontWindowCondition::MFrontWindowCondition( FrontWindowConditionType inType, const XText& inTitle )
    : mType( inType ),
      mTitle( NeedsFrontWindowTitle( inType ) and not inTitle.IsNull() ? inTitle : XText( u"" ) )
{}

bool MFrontWindowCondition::NeedsFrontWindowTitle( FrontWindowConditionType inType )
{
    return inType >= FrontWindowConditionType::kTitleIs and
        inType <= FrontWindowConditionType::kExistsButTitleDoesNotMatch;
}

bool MFrontWindowCondition::ValidDefault( FrontWindowConditionType inType )
{
    return inType == FrontWindowConditionType::kAlways or inType == FrontWindowConditionType::kExists;
}

void MFrontWindowCondition::LoadFromDictionary( const XPlistDictionary& inDictionary, const XKey& inTypeKey,
    const XKey& inTitleKey, FrontWindowConditionType inType )
{
    XAssert( ValidDefault( inType ) );
    HReadingVisitor visitor( inDictionary );
    visitor.Name( HFieldKey( inTypeKey ), mType, { .mWhenMissing = inType } );
    mTitle = u"";
    if ( NeedsFrontWindowTitle() )
        (void)inDictionary.Get( inTitleKey, mTitle );
}

void MFrontWindowCondition::SaveToDictionary( XMutableDictionary& ioDictionary, const XKey& inTypeKey,
    const XKey& inTitleKey, FrontWindowConditionType inType ) const
{
    XAssert( ValidDefault( inType ) );
    if ( mType != inType )
        ioDictionary.SetText( inTypeKey, StoredName( mType ) );
    if ( NeedsFrontWindowTitle() )
        ioDictionary.SetText( inTitleKey, mTitle );
}

int MFrontWindowCondition::CompareWithSame( const MFrontWindowCondition& inOther ) const
{
    if ( mType != inOther.mType )
        return mType < inOther.mType ? -1 : 1;
    return NeedsFrontWindowTitle() ? localizedStandardCompare( mTitle.GetText(), inOther.mTitle.GetText() ) : 0;
}

Text MFrontWindowCondition::GetDescription() const
{
    return kvr_localizedFormat( u"MacroGroupFrontWindowCondition_" + Text( StoredName( mType ) ), mTitle );
}
