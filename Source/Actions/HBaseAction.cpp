#include "Actions/HBaseAction.h"

#include "Actions/ActionLimits.h"
#include "Actions/AppleScriptUIDMap.h"
#include "Actions/HFieldVisitors.h"
#include "CFMethods/PropertyListCodec.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

namespace
{
// A period that is no more than this isn't one: it stands for the type's default and isn't written.
constexpr double kShortestTimeOutPeriod = 0.005;

AppleScriptUIDMap<HBaseAction>& gAppleScriptUIDtoActionMap()
{
    static AppleScriptUIDMap<HBaseAction> gMap( "HBaseAction" );
    return gMap;
}

thread_local int gDepth = 0;

// Counts the containers that are being read within each other.
class DepthScope
{
public:
    DepthScope() { ++gDepth; }
    ~DepthScope() { --gDepth; }
    DepthScope( const DepthScope& ) = delete;
    DepthScope& operator=( const DepthScope& ) = delete;
};
} // namespace

HBaseAction::HBaseAction() = default;

HBaseAction::HBaseAction( const HBaseAction& inOther )
    : mActive( inOther.mActive ),
      mDisclosed( inOther.mDisclosed ),
      mTimeOutPeriod( inOther.mTimeOutPeriod ),
      mTimeOutAbortsMacro( inOther.mTimeOutAbortsMacro ),
      mNotifyOnTimeOut( inOther.mNotifyOnTimeOut ),
      mStopOnFailure( inOther.mStopOnFailure ),
      mNotifyOnFailure( inOther.mNotifyOnFailure ),
      mColor( inOther.mColor ),
      mName( inOther.mName ),
      mNotes( inOther.mNotes )
{}

HBaseAction::~HBaseAction()
{
    if ( mAppleScriptUID != 0 )
        gAppleScriptUIDtoActionMap().Remove( mAppleScriptUID, this );
}

// Making

std::unique_ptr<HBaseAction> HBaseAction::CreateActionOfType( HActionType inType )
{
    if ( std::size_t( inType ) >= kHActionTypeCount )
        return nullptr;
    return RowOf( inType ).mMake( inType );
}

std::unique_ptr<HBaseAction> HBaseAction::CreateFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const DepthScope depth;
    XThrowIfNotText( gDepth <= kMostNestedActions, "actions are nested more than 1000 deep" );
    static_assert( kMostNestedActions == 1000 );

    const XPlistDictionary* dictionary = inValue.AsDictionary();
    XThrowIfNotText( dictionary, "actionDictionary && actionDictionary->IsCorrectTypeID()" );

    XText key;
    std::optional<HActionType> type;
    if ( dictionary->Get( CFSTR( "MacroActionType" ), key ) )
        type = HActionTypeFromKey( *key.GetString() );
    const bool good = type.has_value();
    XThrowIfNot( good );

    std::unique_ptr<HBaseAction> action = CreateActionOfType( *type );
    XThrowIfNot( action );
    action->ResetBaseProperties( *dictionary );
    action->InitializeFromDictionary( *dictionary );
    std::unique_ptr<HBaseAction> modern = action->CleanActionAfterInitialization( *dictionary );
    return modern ? std::move( modern ) : std::move( action );
}

std::unique_ptr<HBaseAction> HBaseAction::CreateFromActionXML( TextView inText )
{
    const __SafeCFPropertyList value = kvr_fromXMLString( inText, kActionsPlistLimits );
    if ( not value.AsDictionary() )
        return nullptr;
    try
    {
        return CreateFromPropertyList( value );
    }
    catch ( const std::exception& )
    {
        return nullptr;
    }
}

// The property-list form

CFContainer<XPlistDictionary> HBaseAction::CopyToPropertyList( RecordedDetails inDetails ) const
{
    XMutableDictionary dictionary;
    if ( not IsActive() )
        dictionary.SetBoolean( CFSTR( "IsActive" ), false );
    if ( not IsDisclosed() )
        dictionary.SetBoolean( CFSTR( "IsDisclosed" ), false );
    SaveTimeOut( dictionary );
    SaveFailure( dictionary );
    if ( mColor != ActionColor::Type::kNone )
        dictionary.SetText( CFSTR( "ActionColor" ), StoredName( mColor ) );
    if ( not IsEmpty( mName ) )
        dictionary.SetText( CFSTR( "ActionName" ), mName );
    if ( not IsEmpty( mNotes ) )
        dictionary.SetText( CFSTR( "ActionNotes" ), mNotes );
    dictionary.SetText( CFSTR( "MacroActionType" ), KeyOf( GetActionType() ) );
    SaveToDictionary( dictionary, inDetails );
    return dictionary.Seal();
}

void HBaseAction::SaveTimeOut( XMutableDictionary& ioDictionary ) const
{
    if ( not HasTimeOut() )
        return;
    if ( mTimeOutPeriod > kShortestTimeOutPeriod )
        ioDictionary.SetReal( CFSTR( "TimeOutPeriod" ), mTimeOutPeriod );
    ioDictionary.SetBoolean( CFSTR( "TimeOutAbortsMacro" ), mTimeOutAbortsMacro );
    if ( mNotifyOnTimeOut != mTimeOutAbortsMacro )
        ioDictionary.SetBoolean( CFSTR( "NotifyOnTimeOut" ), mNotifyOnTimeOut );
}

void HBaseAction::SaveFailure( XMutableDictionary& ioDictionary ) const
{
    if ( not ActionCanFail() )
        return;
    const bool stop = GetStopOnFailure();
    if ( stop != DefaultStopOnFailure() )
        ioDictionary.SetBoolean( CFSTR( "StopOnFailure" ), stop );
    if ( not mNotifyOnFailure )
        ioDictionary.SetBoolean( CFSTR( "NotifyOnFailure" ), false );
}

std::optional<Text> HBaseAction::GetActionXML() const
{
    return kvr_toXMLString( CopyToPropertyList() );
}

void HBaseAction::DescribeFields( HFieldVisitor& ) {}

void HBaseAction::SaveToDictionary( XMutableDictionary& ioDictionary ) const
{
    HSavingVisitor visitor( ioDictionary );
    const_cast<HBaseAction*>( this )->DescribeFields( visitor ); // a saving visitor writes to no member
}

void HBaseAction::SaveToDictionary( XMutableDictionary& ioDictionary, RecordedDetails ) const
{
    SaveToDictionary( ioDictionary );
}

void HBaseAction::InitializeFromDictionary( const XPlistDictionary& inDictionary )
{
    HReadingVisitor visitor( inDictionary );
    DescribeFields( visitor );
}

std::unique_ptr<HBaseAction> HBaseAction::CleanActionAfterInitialization( const XPlistDictionary& )
{
    return nullptr;
}

void HBaseAction::ResetBaseProperties( const XPlistDictionary& inDictionary )
{
    mActive = mDisclosed = mTimeOutAbortsMacro = mNotifyOnFailure = true;
    mTimeOutPeriod = 0;
    mStopOnFailure = StopOnFailure::kAsType;
    mName = mNotes = XText();

    HReadingVisitor visitor( inDictionary );
    visitor.Boolean( "IsActive", mActive, {} );
    visitor.Boolean( "IsDisclosed", mDisclosed, {} );
    visitor.Real( "TimeOutPeriod", mTimeOutPeriod, {} );
    visitor.Boolean( "TimeOutAbortsMacro", mTimeOutAbortsMacro, {} );
    mNotifyOnTimeOut = mTimeOutAbortsMacro; // unless the file tells them apart
    visitor.Boolean( "NotifyOnTimeOut", mNotifyOnTimeOut, {} );
    bool stop = false;
    if ( inDictionary.Get( CFSTR( "StopOnFailure" ), stop ) )
        mStopOnFailure = stop ? StopOnFailure::kYes : StopOnFailure::kNo;
    visitor.Boolean( "NotifyOnFailure", mNotifyOnFailure, {} );
    visitor.Name<ActionColor::Type>( "ActionColor", mColor, { .mWhenMissing = ActionColor::Type::kNone } );
    visitor.Text( "ActionName", mName, {} );
    visitor.Text( "ActionNotes", mNotes, {} );
}

int HBaseAction::CompareFields( const HBaseAction& inOther ) const
{
    if ( GetActionType() != inOther.GetActionType() )
        return GetActionType() < inOther.GetActionType() ? -1 : 1;
    return HComparingVisitor::Compare( *this, inOther );
}

void HBaseAction::UpdateToDefaultValues( bool ) {}

void HBaseAction::UpdateForPasteOrAdd() {}

std::unique_ptr<HBaseAction> HBaseAction::Merge( const HBaseAction& ) const
{
    return nullptr;
}

bool HBaseAction::IsA( const HBaseAction& inOther ) const
{
    return GetActionType() == inOther.GetActionType();
}

// Base fields

bool HBaseAction::IsActive() const
{
    return mActive;
}

void HBaseAction::SetIsActive( bool inActive )
{
    mActive = inActive;
}

bool HBaseAction::IsDisclosed() const
{
    return mDisclosed;
}

void HBaseAction::SetIsDisclosed( bool inDisclosed )
{
    mDisclosed = inDisclosed;
}

bool HBaseAction::GetStopOnFailure() const
{
    return mStopOnFailure == StopOnFailure::kAsType ? DefaultStopOnFailure() : mStopOnFailure == StopOnFailure::kYes;
}

void HBaseAction::SetStopOnFailure( bool inStop )
{
    mStopOnFailure = inStop ? StopOnFailure::kYes : StopOnFailure::kNo;
}

// Traits

bool HBaseAction::HasTimeOut() const
{
    return RowOf( GetActionType() ).mTimeOut > 0;
}

double HBaseAction::DefaultTimeOutPeriod() const
{
    return RowOf( GetActionType() ).mTimeOut;
}

bool HBaseAction::ActionCanFail() const
{
    return RowOf( GetActionType() ).mFailure != HFailure::kNever;
}

bool HBaseAction::DefaultStopOnFailure() const
{
    return RowOf( GetActionType() ).mFailure == HFailure::kStop;
}

bool HBaseAction::IsLoop() const
{
    return false;
}

bool HBaseAction::IsClickAction() const
{
    return false;
}

bool HBaseAction::CanBeInstigatedByClickAction() const
{
    return false;
}

bool HBaseAction::HasSubActions() const
{
    return false;
}

bool HBaseAction::IsEmptyOfActions() const
{
    return true;
}

void HBaseAction::DoForEverySubActionList( const HActionList::ListBlock& ) const {}

void HBaseAction::DoForEverySubAction( const HActionList::Block& inBlock ) const
{
    DoForEverySubActionList( [&inBlock]( const HActionList::Words&, const HActionList& list ) {
        list.DoForEveryActionAndSubAction( inBlock );
    } );
}

// The identity for scripts

std::uint64_t HBaseAction::GetAppleScriptUID() const
{
    if ( mAppleScriptUID == 0 )
    {
        mAppleScriptUID = gAppleScriptUIDtoActionMap().GetNewUID();
        gAppleScriptUIDtoActionMap().Set( mAppleScriptUID, const_cast<HBaseAction*>( this ) );
    }
    return mAppleScriptUID;
}

void HBaseAction::ReuseAppleScriptUID( std::uint64_t inUID )
{
    if ( inUID == 0 or inUID == mAppleScriptUID )
        return;
    XAssertText( not GetActionForAppleScriptUID( inUID ), "!GetActionForAppleScriptUID( uid )" );
    auto& map = gAppleScriptUIDtoActionMap();
    XAssertText( mAppleScriptUID == 0 or map.Contains( mAppleScriptUID ),
        "mAppleScriptUID == 0 or gAppleScriptUIDtoActionMap.find( mAppleScriptUID ) != "
        "gAppleScriptUIDtoActionMap.end()" );
    map.Remove( mAppleScriptUID, this );
    mAppleScriptUID = inUID;
    map.Set( inUID, this );
}

HBaseAction* HBaseAction::GetActionForAppleScriptUID( std::uint64_t inUID )
{
    return gAppleScriptUIDtoActionMap().Find( inUID );
}
