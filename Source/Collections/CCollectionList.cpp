#include "Collections/CCollectionList.h"

#include "Macros/MLoadObserver.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XIcon.h"

namespace
{
// Why a collection is left out, for people.
Text ReasonFor( const __SafeCFPropertyList& inCollection, const XException& inError )
{
    const XPlistDictionary* dictionary = inCollection.AsDictionary();
    if ( not dictionary )
        return inError.GetMessage();
    XText type;
    if ( not dictionary->Get( CFSTR( "CollectionType" ), type ) )
        return u"its key “CollectionType” is missing or no text";
    return kvr_format( u"no collection type is called “%@”", type );
}
} // namespace

__SafeCFPropertyList CCollectionList::CopyToPropertyList() const
{
    XMutableArray collections;
    for ( const auto& collection : mCollections )
        collections.Append( collection->CopyToPropertyList() );
    XMutableDictionary list;
    list.Set( CFSTR( "CollectionList" ), collections.Seal() );
    return list.Seal();
}

void CCollectionList::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    mCollections.clear();
    CFContainer<XPlistArray> list;
    const XPlistDictionary* dictionary = inValue.AsDictionary();
    if ( not dictionary or not dictionary->Get( CFSTR( "CollectionList" ), list ) )
        return;
    for ( std::size_t i = 0; i < list->GetCount(); ++i )
    {
        try
        {
            AppendCollection( CBaseCollection::CreateFromPropertyList( list->GetValueAt( i ) ) );
        }
        catch ( const XException& error )
        {
            if ( MLoadObserver* observer = MLoadObserver::Current() )
                observer->DidDrop( *list, i, ReasonFor( list->GetValueAt( i ), error ) );
        }
    }
}

CBaseCollection* CCollectionList::GetCollectionAtIndex( std::size_t inIndex ) const
{
    XAssert( inIndex < mCollections.size() );
    return inIndex < mCollections.size() ? mCollections[inIndex].Get() : nullptr;
}

void CCollectionList::SetCollectionAtIndex( std::size_t inIndex, std::unique_ptr<CBaseCollection> inCollection )
{
    const bool good = inCollection and inIndex < mCollections.size();
    XAssert( good );
    if ( good )
        mCollections[inIndex] = std::move( inCollection );
}

void CCollectionList::AppendCollection( std::unique_ptr<CBaseCollection> inCollection )
{
    XAssert( inCollection );
    if ( inCollection )
        mCollections.emplace_back( std::move( inCollection ) );
}

void CCollectionList::RemoveCollectionAtIndex( std::size_t inIndex )
{
    XAssert( inIndex < mCollections.size() );
    if ( inIndex < mCollections.size() )
        mCollections.erase( mCollections.begin() + std::ptrdiff_t( inIndex ) );
}

void CCollectionList::UpdateToDefaultValues( bool inForce )
{
    for ( const auto& collection : mCollections )
        collection->UpdateToDefaultValues( inForce );
}

CFContainer<XPlistArray> CCollectionList::GetCollectionDisplayContent() const
{
    XMutableArray content;
    for ( const auto& collection : mCollections )
    {
        XMutableDictionary row;
        row.SetText( CFSTR( "description" ), collection->GetDescription() );
        row.Set( CFSTR( "icon" ), collection->GetXIcon().GetSavedData() );
        content.Append( row.Seal() );
    }
    return content.Seal();
}

Text CCollectionList::GetDescription() const
{
    Text description;
    for ( const auto& collection : mCollections )
        description = description.empty()
            ? collection->GetDescription()
            : kvr_localizedFormat( u"clAndFormat", TextView( description ), TextView( collection->GetDescription() ) );
    return description;
}

void CCollectionList::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    for ( const auto& collection : mCollections )
        collection->AddMatchStrings( ioSearchee );
}
