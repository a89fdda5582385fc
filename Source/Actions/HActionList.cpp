#include "Actions/HActionList.h"

#include "Actions/HBaseAction.h"
#include "Actions/HEngineNotificationPoster.h"
#include "Defines/KVIconRegistry.h"
#include "Macros/MLoadObserver.h"
#include "Macros/MMacroInsertion.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

HActionList::HActionList() = default;
HActionList::~HActionList() = default;

std::unique_ptr<HActionList> HActionList::Clone() const
{
    auto clone = std::make_unique<HActionList>();
    for ( const auto& action : mActionList )
        clone->AppendAction( action->Clone() );
    return clone;
}

void HActionList::AppendAction( std::unique_ptr<HBaseAction> inAction )
{
    XAssert( inAction );
    if ( inAction )
        mActionList.push_back( std::move( inAction ) );
}

void HActionList::LoadActionsFromPropertyList( const __SafeCFPropertyList& inArray )
{
    const XPlistArray* actions = inArray.AsArray();
    XThrowIfNotText( actions, "actions && actions->IsCorrectTypeID()" );
    for ( std::size_t i = 0; i < actions->GetCount(); ++i )
    {
        try
        {
            AppendAction( HBaseAction::CreateFromPropertyList( actions->GetValueAt( i ) ) );
        }
        catch ( const XException& error )
        {
            XErrorHandler::PrivateMaybeLogFormat(
                "always", "Failed to understand action with error %@ at %@", error.GetMessage(), error.GetLocation() );
            if ( MLoadObserver* observer = MLoadObserver::Current() )
                observer->DidDrop( *actions, i, error.GetMessage() );
        }
    }
}

void HActionList::AppendActionsFromPList( const __SafeCFPropertyList& inObject )
{
    MMacroInsertion::Start();
    std::vector<HBaseAction*> added;
    if ( const XPlistArray* actions = inObject.AsArray() )
    {
        for ( const XPlistNode* node : actions->Nodes() )
        {
            try
            {
                AppendAction( HBaseAction::CreateFromPropertyList( __SafeCFPropertyList( node ) ) );
                added.push_back( mActionList.back().get() );
            }
            catch ( const std::exception& )
            {
                // What was copied elsewhere may be anything; the rest of it is still pasted.
            }
        }
    }
    MMacroInsertion::Finish( added );
}

bool HActionList::AnyEnabled() const
{
    bool any = false;
    for ( const auto& action : mActionList )
        any = action->IsActive() or any;
    return any;
}

HActionList::Actions::iterator HActionList::IteratorForIndex( Index inIndex ) const
{
    auto it = mActionList.begin();
    for ( ; inIndex > 0 and it != mActionList.end(); --inIndex )
        ++it;
    XAssert( it != mActionList.end() );
    return it;
}

HBaseAction* HActionList::GetAction( Index inIndex ) const
{
    const auto it = IteratorForIndex( inIndex );
    return it != mActionList.end() ? it->get() : nullptr;
}

void HActionList::InsertActionAt( Index inIndex, std::unique_ptr<HBaseAction> inAction )
{
    XAssert( inAction );
    if ( not inAction )
        return;
    // Inserting at the end is no mistake, though the end is no action.
    const auto it = inIndex == GetCount() ? mActionList.end() : IteratorForIndex( inIndex );
    mActionList.insert( it, std::move( inAction ) );
}

void HActionList::RelocateActionToIndex( Index inFrom, Index inTo )
{
    if ( inFrom == inTo )
        return;
    const auto from = IteratorForIndex( inFrom );
    auto to = IteratorForIndex( inTo );
    if ( from == mActionList.end() or from == to )
        return;
    if ( inFrom < inTo and to != mActionList.end() )
        ++to;
    mActionList.splice( to, mActionList, from );
}

void HActionList::SetActionAtIndex( Index inIndex, std::unique_ptr<HBaseAction> inAction )
{
    XAssert( inAction );
    const auto it = IteratorForIndex( inIndex );
    if ( inAction and it != mActionList.end() )
        *it = std::move( inAction );
}

void HActionList::RemoveActionAtIndex( Index inIndex )
{
    const std::unique_ptr<HBaseAction> removed = ExtractAndRemoveAction( inIndex );
}

std::unique_ptr<HBaseAction> HActionList::ExtractAndRemoveAction( Index inIndex )
{
    const auto it = IteratorForIndex( inIndex );
    if ( it == mActionList.end() )
        return nullptr;
    std::unique_ptr<HBaseAction> action = std::move( *it );
    mActionList.erase( it );
    return action;
}

HActionList::Index HActionList::IndexOfAction( const HBaseAction* inAction ) const
{
    Index index = 0;
    for ( const auto& action : mActionList )
    {
        if ( action.get() == inAction )
            return index;
        ++index;
    }
    return kNotFound;
}

void HActionList::DoForEveryAction( const Block& inBlock ) const
{
    for ( auto at = mActionList.begin(); at != mActionList.end(); )
    {
        HBaseAction& action = **at++; // before the block, which may remove it
        inBlock( action );
    }
}

void HActionList::DoForEveryActionAndSubAction( const Block& inBlock ) const
{
    for ( auto at = mActionList.begin(); at != mActionList.end(); )
    {
        HBaseAction& action = **at++;
        inBlock( action );
        action.DoForEverySubAction( inBlock );
    }
}

CFContainer<XPlistArray> HActionList::CopyActionsToPropertyList() const
{
    XMutableArray array;
    array.Reserve( mActionList.size() );
    for ( const auto& action : mActionList )
        array.Append( action->CopyToPropertyList() );
    return array.Seal();
}

void HActionList::SaveToDictionary(
    XMutableDictionary& ioDictionary, bool inDisclosed, const XKey& inListKey, const XKey& inDisclosedKey ) const
{
    ioDictionary.Set( inListKey, CopyActionsToPropertyList() );
    if ( not inDisclosed )
        ioDictionary.SetBoolean( inDisclosedKey, false );
}

void HActionList::LoadActionsFromDictionary(
    const XPlistDictionary& inDictionary, bool& outDisclosed, const XKey& inListKey, const XKey& inDisclosedKey )
{
    __SafeCFPropertyList actions;
    if ( inDictionary.Get( inListKey, actions ) )
        LoadActionsFromPropertyList( actions );
    outDisclosed = true;
    static_cast<void>( inDictionary.Get( inDisclosedKey, outDisclosed ) );
}

void HActionList::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    for ( const auto& action : mActionList )
    {
        action->AddMatchStrings( ioSearchee );
        action->AddMatchStringsForSubActions( ioSearchee );
    }
}

XIcon HActionList::GetXIconForAction( const HBaseAction* inAction ) const
{
    const HBaseAction* commentAction1 = nullptr;
    const HBaseAction* only = nullptr;
    for ( const auto& action : mActionList )
    {
        if ( action->GetActionType() == HActionType::kComment )
            commentAction1 = commentAction1 ? commentAction1 : action.get();
        else if ( only )
            return XIcon( KVIconRegistry::kSeveralActions );
        else
            only = action.get();
    }
    XIcon result;
    if ( only )
        // The action that asks would ask for itself, were it to show its macro's icon.
        result = only == inAction ? XIcon( KVIconRegistry::kAction ) : only->GetActionDescriptionXIcon();
    else if ( commentAction1 )
    {
        XAssertText( commentAction1 != inAction, "commentAction1 != action" );
        result = commentAction1->GetActionDescriptionXIcon();
    }
    else
        result = XIcon( KVIconRegistry::kNoActions );
    XAssert( result.Defined() );
    return result;
}

// Running

void HActionList::TryActions() const
{
    PrivateExecute( true );
}

void HActionList::TryAction( const HBaseAction& inAction )
{
    HActionList list;
    list.AppendAction( inAction.Clone() );
    list.PrivateExecute( true );
}

void HActionList::DoActionQuietly( const HBaseAction& inAction )
{
    HActionList list;
    list.AppendAction( HBaseAction::CreateActionOfType( HActionType::kDontRotateStatusMenu ) );
    list.AppendAction( inAction.Clone() );
    list.PrivateExecute( false );
}

void HActionList::PrivateExecute( bool inTrying ) const
{
    XMutableDictionary information;
    information.Set( CFSTR( "Actions" ), CopyActionsToPropertyList() );
    if ( inTrying )
        information.SetBoolean( CFSTR( "Trying" ), true );
    HEngineNotificationPoster::Current().PostToEngine( KVNotifications::kDoExecuteActions, information.Seal() );
}
