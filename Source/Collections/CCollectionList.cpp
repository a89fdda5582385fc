#include "Collections/CCollectionList.h"

CCollectionList::CCollectionList()
{
    static const __SafeCFPropertyList gNewList = [] {
        XMutableDictionary list;
        list.Set( CFSTR( "CollectionList" ), XMutableArray().Seal() );
        return __SafeCFPropertyList( list.Seal() );
    }();
    mValue = gNewList;
}

std::size_t CCollectionList::GetCount() const
{
    CFContainer<XPlistArray> list;
    const XPlistDictionary* dictionary = mValue.AsDictionary();
    return dictionary and dictionary->Get( CFSTR( "CollectionList" ), list ) ? list->GetCount() : 0;
}
