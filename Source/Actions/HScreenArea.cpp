#include "Actions/HScreenArea.h"

#include "Actions/HFieldVisitors.h"
#include "Utility/Text/Localization.h"

void HScreenArea::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ScreenAreaType", mType );
    inVisitor.Text( "WindowName", mWindowName );
    inVisitor.Calculation( "IndexExpression", mIndex );
    inVisitor.Calculation( "LeftExpression", mLeft );
    inVisitor.Calculation( "TopExpression", mTop );
    inVisitor.Calculation( "WidthExpression", mWidth );
    inVisitor.Calculation( "HeightExpression", mHeight );
}

void HScreenArea::DescribeIn( HFieldVisitor& inVisitor, HFieldKey inKey )
{
    if ( inVisitor.Searchee() )
        DescribeFields( inVisitor );
    else
        inVisitor.Converted( inKey, *this );
}

void HScreenArea::ReadOlderKeys( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Source", mType );
    inVisitor.Text( "WindowName", mWindowName );
    // "Index" was a number at first and the text of one later.
    inVisitor.Calculation( "Index", mIndex, { .mOlderKey = "Index" } );
    for ( const HFieldKey older : { HFieldKey( "Source" ), HFieldKey( "WindowName" ), HFieldKey( "Index" ) } )
    {
        if ( inVisitor.HasKey( older ) )
            inVisitor.NoteOlderKey( older, "ScreenArea" );
    }
}

__SafeCFPropertyList HScreenArea::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    HSavingVisitor visitor( dictionary );
    const_cast<HScreenArea*>( this )->DescribeFields( visitor ); // a saving visitor writes to no member
    return dictionary.Seal();
}

void HScreenArea::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    *this = HScreenArea();
    if ( const XPlistDictionary* dictionary = inValue.AsDictionary() )
    {
        HReadingVisitor visitor( *dictionary );
        DescribeFields( visitor );
    }
}

Text HScreenArea::GetDescription() const
{
    const Text key = kvr_format( "kHScreenArea%@Description", StoredName( mType ) );
    if ( mType == ScreenAreaType::kArea )
        return kvr_localizedFormat( key, TextView( mLeft.GetText() ), TextView( mTop.GetText() ),
            TextView( mWidth.GetText() ), TextView( mHeight.GetText() ) );
    const bool byIndex = mType == ScreenAreaType::kScreenIndex or mType == ScreenAreaType::kWindowIndex;
    return kvr_localizedFormat( key, TextView( ( byIndex ? mIndex : mWindowName ).GetText() ) );
}

std::vector<Text> HScreenArea::CouldBeRegExStrings() const
{
    if ( mType == ScreenAreaType::kWindowNameMatching and not mWindowName.IsEmpty() )
        return { mWindowName.GetText() };
    return {};
}
