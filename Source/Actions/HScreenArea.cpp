#include "Actions/HScreenArea.h"

#include "Actions/HFieldVisitors.h"
#include "Utility/Search/StringSearchee.h"
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
    if ( StringSearchee* searchee = inVisitor.Searchee() )
    {
        AddMatchStrings( *searchee );
        return;
    }
    __SafeCFPropertyList value = inVisitor.IsReading() ? nullptr : CopyToPropertyList();
    inVisitor.Value( inKey, value );
    if ( not inVisitor.IsReading() or not value )
        return;
    LoadFromPropertyList( value );
    if ( not value.AsDictionary() )
        inVisitor.NoteRepair( inKey, u"isn't a dictionary; the area is that of all screens" );
}

// What is kept of other types isn't seen, and so isn't found.
void HScreenArea::AddMatchStrings( StringSearchee& ioSearchee ) const
{
    switch ( mType )
    {
    case ScreenAreaType::kWindowName:
    case ScreenAreaType::kWindowNameContaining:
    case ScreenAreaType::kWindowNameMatching:
        ioSearchee.Add( mWindowName );
        break;
    case ScreenAreaType::kScreenIndex:
    case ScreenAreaType::kWindowIndex:
        ioSearchee.Add( mIndex );
        break;
    case ScreenAreaType::kArea:
        for ( const XText& expression : { mLeft, mTop, mWidth, mHeight } )
            ioSearchee.Add( expression );
        break;
    default: // the type says it all
        break;
    }
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
