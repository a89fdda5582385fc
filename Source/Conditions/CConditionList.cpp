#include "Conditions/CConditionList.h"

#include "Utility/Text/Localization.h"

#include <algorithm>

namespace
{
__SafeCFPropertyList NewList()
{
    XMutableDictionary list;
    list.SetText( CFSTR( "ConditionListMatch" ), TextView( u"All" ) );
    list.Set( CFSTR( "ConditionList" ), XMutableArray().Seal() );
    return list.Seal();
}
} // namespace

CConditionList::CConditionList()
{
    static const __SafeCFPropertyList gNewList = NewList();
    mValue = gNewList;
}

std::size_t CConditionList::GetCount() const
{
    CFContainer<XPlistArray> list;
    const XPlistDictionary* dictionary = mValue.AsDictionary();
    return dictionary and dictionary->Get( CFSTR( "ConditionList" ), list ) ? list->GetCount() : 0;
}

ConditionListMatch CConditionList::GetMatch() const
{
    XText name;
    const XPlistDictionary* dictionary = mValue.AsDictionary();
    if ( dictionary )
        static_cast<void>( dictionary->Get( CFSTR( "ConditionListMatch" ), name ) );
    for ( std::size_t i = 0; i < std::size( kConditionListMatchNames ); ++i )
    {
        if ( name.Equals( kConditionListMatchNames[i] ) )
            return ConditionListMatch( i );
    }
    return ConditionListMatch::kAll;
}

Text CConditionList::GetConditionDisplayText() const
{
    return kvr_localized( u"cConditionList" + Text( kConditionListMatchNames[std::size_t( GetMatch() )] ) + u"Title" );
}
