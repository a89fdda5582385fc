#include "Collections/CCollectionList.h"

#include "Actions/HFieldVisitors.h"
#include "Macros/MLoadObserver.h"
#include "Utility/Search/StringSearchee.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XIcon.h"

void CCollectionList::DescribeIn( HFieldVisitor& inVisitor )
{
    constexpr HFieldKey kCollections = "Collections";
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        AddMatchStrings( *searchee );
        return;
    }
    __SafeCFPropertyList value = inVisitor.IsReading() ? nullptr : __SafeCFPropertyList( CopyToPropertyList() );
    inVisitor.Value( kCollections, value, { .mRequiredAs = "collections" } );
    if ( not inVisitor.IsReading() )
        return;
    LoadFromPropertyList( value );
    if ( not value.AsDictionary() )
        inVisitor.NoteRepair( kCollections, u"isn't a dictionary; no collections stand" );
}

CFContainer<XPlistDictionary> CCollectionList::CopyToPropertyList() const
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
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    if ( not dictionary )
        return;
    HReadingVisitor visitor( *dictionary );
    __SafeCFPropertyList collections;
    visitor.Value( "CollectionList", collections, {} );
    if ( const XPlistArray* array = collections.AsArray() )
        LoadCollections( *array );
    else if ( collections )
        visitor.NoteRepair( "CollectionList", u"isn't an array; no collections stand" );
}

void CCollectionList::LoadCollections( const XPlistArray& inCollections )
{
    mCollections.reserve( inCollections.GetCount() );
    for ( std::size_t i = 0; i < inCollections.GetCount(); ++i )
    {
        try
        {
            mCollections.emplace_back( CBaseCollection::CreateFromPropertyList( inCollections.GetValueAt( i ) ) );
        }
        catch ( const XException& error )
        {
            if ( MLoadObserver* observer = MLoadObserver::Current() )
                observer->DidDrop( inCollections, i, error.GetMessage() );
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
    {
        if ( not description.empty() )
            description += kvr_localized( u"clCollectionListSeparator" );
        description += collection->GetDescription();
    }
    return description;
}

void CCollectionList::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    for ( const auto& collection : mCollections )
        collection->AddMatchStrings( ioSearchee );
}

std::vector<Text> CCollectionList::GetClauses() const
{
    std::vector<Text> clauses;
    if ( GetCount() > 1 )
    {
        for ( const auto& collection : mCollections )
            clauses.push_back( collection->GetDescription() );
    }
    return clauses;
}
