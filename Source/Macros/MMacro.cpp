#include "Macros/MMacro.h"

#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "Macros/HMacroStats.h"
#include "Macros/MLoadObserver.h"
#include "Macros/MMacroGroup.h"
#include "Macros/MMacroInsertion.h"
#include "Utility/Search/SearchableTexts.h"
#include "Utility/Search/StringSearcher.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/NSStringRegularExpressions.h"
#include "Utility/Text/TextCompare.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

namespace
{
// A macro as a searcher sees it: what was collected of it and of its group, and what changes by itself.
class MacroSource final : public SearchSource
{
public:
    explicit MacroSource( const MMacro& inMacro ) : mMacro( inMacro ), mGroup( inMacro.GetOwningGroup() ) {}

    [[nodiscard]] bool AnyTextMatches( const SearchPattern& inPattern, StringSearchee::Kind inKind ) const override
    {
        return mMacro.GetSearchableTexts().Matches( inPattern, inKind ) or
            ( mGroup and mGroup->GetSearchableTexts().Matches( inPattern, inKind ) );
    }
    [[nodiscard]] bool IsGlobal() const override { return mGroup and mGroup->IsGloballyActive(); }
    [[nodiscard]] std::optional<bool> GetEnabled() const override
    {
        return mMacro.IsActive() and ( not mGroup or mGroup->IsActive() );
    }
    [[nodiscard]] std::optional<double> GetAge( StringSearchee::Kind inKind ) const override
    {
        const XAbsoluteTime now = XClock::Current().Now();
        if ( inKind == StringSearchee::Kind::kCreated )
            return now - mMacro.GetCreationTime();
        if ( inKind == StringSearchee::Kind::kModified )
            return now - mMacro.GetModificationTime();
        const XAbsoluteTime used = HMacroStats::Current().LastExecution( mMacro.GetUID() );
        return used > 0 ? std::optional( now - used ) : std::nullopt;
    }
    void Collect( StringSearchee& ioSearchee ) const override { mMacro.AddMatchStrings( ioSearchee ); }

private:
    const MMacro& mMacro;
    const MMacroGroup* const mGroup;
};
} // namespace

MMacro::MMacro() : mActions( std::make_shared<HActionList>() ) {}

MMacro::MMacro( const __SafeCFPropertyList& inValue )
    : MMacroSerializedObject( WithoutUID() ),
      mActions( std::make_shared<HActionList>() )
{
    Fill( inValue );
}

MMacro::~MMacro() = default;

void MMacro::DestroyAll()
{
    mTriggers.RemoveAllValues();
    mActions = std::make_shared<HActionList>();
    mName = nullptr;
    mIcon = XIcon();
    mOwningGroup = nullptr;
    RecreateUID();
    SetIsActive( true );
    mFlag = false;
}

Text MMacro::ComputedName() const
{
    if ( mActions->Empty() )
        return kvr_localized( u"kvUntitledMacro" );
    const HBaseAction& first = *mActions->GetAction( 0 );
    return first.MacroUseGetActionDescriptionStringForTitle() ? first.GetActionDescriptionString()
                                                              : first.GetActionTitle();
}

Text MMacro::GetName() const
{
    return IsEmpty( mName ) ? ComputedName() : mName.GetText();
}

void MMacro::SetName( const XText& inName )
{
    mName = nullptr;
    DidChangeWords();
    if ( IsEmpty( inName ) or inName.Equals( ComputedName() ) or inName.Equals( kvr_localized( u"kvUntitledMacro" ) ) )
        return;
    mName = CleanedName( inName );
}

Text MMacro::GetUnambiguousName() const
{
    return kvr_localizedFormat( u"kvMacroUnambiguousName", GetName() );
}

bool MMacro::UntitledMacro() const
{
    return IsEmpty( mName ) or isMatchedByRegex( mName.GetText(), kvr_localized( u"kvUntitledMacroRegEx" ) );
}

void MMacro::SetCustomIconData( const __SafeCFPropertyList& inData )
{
    mIcon = XIcon();
    MMacroSerializedObject::SetCustomIconData( inData );
}

XIcon MMacro::GetXIconForAction( const HBaseAction* inAction ) const
{
    if ( HasCustomIcon() )
        mIcon = GetCustomIcon();
    if ( not mIcon.Defined() )
        mIcon = mActions->GetXIconForAction( inAction );
    XAssert( mIcon.Defined() );
    return mIcon;
}

void MMacro::SetActionListDisclosed( bool )
{
    XAssertText( false, "false" );
}

bool MMacro::SetTimesIfNotSet( XAbsoluteTime inTime )
{
    const bool changed = MMacroSerializedObject::SetTimesIfNotSet( inTime );
    if ( mModificationTime >= 1.0 )
        return changed;
    mModificationTime = inTime;
    DidChange();
    return true;
}

void MMacro::AddOwnMatchStrings( StringSearchee& ioSearchee ) const
{
    ioSearchee.AddName( GetName() );
    ioSearchee.AddUID( GetUID() );
    mTriggers.DoForEveryValue( [&]( const TBaseTrigger& trigger ) { trigger.AddMatchStrings( ioSearchee ); } );
    mActions->AddMatchStrings( ioSearchee );
}

void MMacro::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    const XAbsoluteTime now = XClock::Current().Now();
    const XAbsoluteTime used = HMacroStats::Current().LastExecution( GetUID() );
    ioSearchee.AddName( GetName() );
    ioSearchee.AddUID( GetUID() );
    ioSearchee.AddCreated( GetCreationTime(), now - GetCreationTime() );
    ioSearchee.AddModified( mModificationTime, now - mModificationTime );
    if ( used > 0 )
        ioSearchee.AddUsed( used, now - used );
    mTriggers.DoForEveryValue( [&]( const TBaseTrigger& trigger ) { trigger.AddMatchStrings( ioSearchee ); } );
    mActions->AddMatchStrings( ioSearchee );
    if ( mOwningGroup )
        mOwningGroup->AddMatchStrings( ioSearchee );
    ioSearchee.AddEnabled( IsActive() and ( not mOwningGroup or mOwningGroup->IsActive() ) );
}

bool MMacro::MatchesTextSearch( StringSearcher& ioSearcher ) const
{
    if ( ioSearcher.Useless() )
        return true;
    return ioSearcher.Matches( MacroSource( *this ) );
}

__SafeCFPropertyList MMacro::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    SaveBaseToDictionary( dictionary );
    if ( not mName.IsNull() )
        dictionary.SetText( CFSTR( "Name" ), mName );
    XMutableArray triggers;
    mTriggers.DoForEveryValue(
        [&]( const TBaseTrigger& trigger ) { triggers.Append( trigger.CopyToPropertyList() ); } );
    dictionary.Set( CFSTR( "Triggers" ), triggers.Seal() );
    dictionary.Set( CFSTR( "Actions" ), mActions->CopyActionsToPropertyList() );
    dictionary.SetReal( CFSTR( "ModificationDate" ), mModificationTime );
    return dictionary.Seal();
}

void MMacro::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    DestroyAll();
    Fill( inValue );
}

void MMacro::Fill( const __SafeCFPropertyList& inValue )
{
    XAssert( MMacroInsertion::CurrentlyInserting() );
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );

    // Stored as it stands, with none of SetName's rules: the actions that could give the name aren't here yet.
    XText name;
    if ( dictionary->Get( CFSTR( "Name" ), name ) )
        mName = CleanedName( name );
    LoadBaseFromDictionary( dictionary );

    CFContainer<XPlistArray> triggers;
    XThrowIfNot( dictionary->Get( CFSTR("Triggers"), triggers ) );
    LoadTriggers( *triggers );

    CFContainer<XPlistArray> actions;
    (void)dictionary->Get( CFSTR( "Actions" ), actions );
    XThrowIfNot( actions );
    mActions->LoadActionsFromPropertyList( __SafeCFPropertyList( actions ) );

    mModificationTime = ReadTime( *dictionary, CFSTR( "ModificationDate" ) );
    DidChangeWords();
}

void MMacro::LoadTriggers( const XPlistArray& inTriggers )
{
    TTriggerList triggers;
    for ( std::size_t i = 0; i < inTriggers.GetCount(); ++i )
    {
        try
        {
            std::unique_ptr<TBaseTrigger> trigger = TBaseTrigger::CreateFromPropertyList( inTriggers.GetValueAt( i ) );
            if ( not trigger->TriggerIsUseless() )
                triggers.AppendValue( std::move( trigger ) );
            else if ( MLoadObserver* const observer = MLoadObserver::Current() )
                observer->DidDrop( inTriggers, i, u"the trigger could never fire" );
        }
        catch ( const XException& exception )
        {
            if ( MLoadObserver* const observer = MLoadObserver::Current() )
                observer->DidDrop( inTriggers, i, exception.GetMessage() );
        }
    }
    SetTriggerList( std::move( triggers ) );
}

Text MMacro::SerializedObjectKindName() const
{
    return kvr_localized( u"SOKMacro" );
}

void MMacro::UpdateForPasteOrAdd()
{
    mActions->DoForEveryActionAndSubAction( []( HBaseAction& action ) { action.UpdateForPasteOrAdd(); } );
    mTriggers.DoForEveryValue( []( TBaseTrigger& trigger ) { trigger.UpdateForPasteOrAdd(); } );
    DidChangeWords();
}

void MMacro::UpdateForStartingEdit()
{
    mTriggers.DoForEveryValue( []( TBaseTrigger& trigger ) { trigger.UpdateForStartingEdit(); } );
    DidChangeWords();
}

void MMacro::SetOwningGroup( MMacroGroup* inGroup )
{
    if ( MMacroGroup* const old = mOwningGroup )
    {
        // Cleared first, since the group clears it as well.
        mOwningGroup = nullptr;
        old->RemoveMacro( this );
    }
    mOwningGroup = inGroup;
}

void MMacro::SetTriggerList( TTriggerList inTriggers )
{
    mTriggers = std::move( inTriggers );
    mTriggers.DoForEveryValue( [this]( TBaseTrigger& trigger ) { trigger.SetMacro( this ); } );
    DidChangeWords();
}

void MMacro::AppendAction( std::unique_ptr<HBaseAction> inAction )
{
    mActions->AppendAction( std::move( inAction ) );
    DidChangeActionList();
}

void MMacro::DidChangeActionList()
{
    mIcon = XIcon();
    DidChangeWords();
}

const TBaseTrigger* MMacro::GetDisplayTriggerFromMacro( bool inAllowAny ) const
{
    const TBaseTrigger* candidate = nullptr;
    for ( std::size_t i = 0; i < mTriggers.GetCount(); ++i )
    {
        const TBaseTrigger* const trigger = mTriggers.GetValueAtIndex( i );
        if ( trigger->GetTriggerType() == TriggerType::kHotKey )
            return trigger;
        if ( not candidate and ( inAllowAny or trigger->GetTriggerType() != TriggerType::kMacroPalette ) )
            candidate = trigger;
    }
    return candidate;
}

std::unique_ptr<MMacro> MMacro::Clone( CloneFor what ) const
{
    XAssert( what == CloneFor::kDisplayOnlyReference or MMacroInsertion::CurrentlyInserting() );
    auto clone = std::make_unique<MMacro>();
    CloneToSerializeObject( what, *clone );
    clone->mName = mName;
    clone->mActions = mActions->Clone();
    clone->SetTriggerList( mTriggers );
    clone->mModificationTime = mModificationTime;
    return clone;
}

namespace
{
int CompareBySerialNumber( const MMacro* inA, const MMacro* inB )
{
    return inA->GetSerialNumber() < inB->GetSerialNumber() ? -1 : 1;
}

// A macro without triggers comes first. Two without any tie, so that what is asked next decides, and the
// order of a pair never depends on which of them is asked first.
int CompareDisplayTriggers( const MMacro* inA, const MMacro* inB )
{
    const TBaseTrigger* const a = inA->GetDisplayTriggerFromMacro( true );
    const TBaseTrigger* const b = inB->GetDisplayTriggerFromMacro( true );
    if ( a and b )
        return a->CompareWith( *b );
    return int( a != nullptr ) - int( b != nullptr );
}

// More, or later, comes first; equal values fall back to the alphabet.
template<class Value>
int CompareDescending( const MMacro* inA, const MMacro* inB, const Value& inValue )
{
    if ( inA == inB )
        return 0;
    const auto a = inValue( *inA ), b = inValue( *inB );
    if ( a != b )
        return a > b ? -1 : 1;
    return MMacro::CompareAlphabetically( inA, inB );
}
} // namespace

int MMacro::CompareAlphabetically( const MMacro* inA, const MMacro* inB, void* )
{
    if ( inA == inB )
        return 0;
    if ( const int order = localizedStandardCompare( inA->GetName(), inB->GetName() ) )
        return order;
    const int order = CompareDisplayTriggers( inA, inB );
    return order ? order : CompareBySerialNumber( inA, inB );
}

int MMacro::CompareByModification( const MMacro* inA, const MMacro* inB, void* )
{
    return CompareDescending( inA, inB, []( const MMacro& macro ) { return macro.mModificationTime; } );
}

int MMacro::CompareByExecution( const MMacro* inA, const MMacro* inB, void* )
{
    return CompareDescending(
        inA, inB, []( const MMacro& macro ) { return HMacroStats::Current().LastExecution( macro.GetUID() ); } );
}

int MMacro::CompareByUseCount( const MMacro* inA, const MMacro* inB, void* )
{
    return CompareDescending(
        inA, inB, []( const MMacro& macro ) { return HMacroStats::Current().ExecutionCount( macro.GetUID() ); } );
}

int MMacro::CompareByTimeSaved( const MMacro* inA, const MMacro* inB, void* )
{
    return CompareDescending(
        inA, inB, []( const MMacro& macro ) { return HMacroStats::Current().TimeSaved( macro.GetUID() ); } );
}

int MMacro::CompareByTrigger( const MMacro* inA, const MMacro* inB, void* )
{
    if ( inA == inB )
        return 0;
    if ( const int order = CompareDisplayTriggers( inA, inB ) )
        return order;
    if ( const int order = localizedStandardCompare( inA->GetName(), inB->GetName() ) )
        return order;
    return CompareBySerialNumber( inA, inB );
}
