#include "Triggers/DirectoryMonitor.h"

#include "Actions/HFieldVisitors.h"
#include "Actions/SharedText.h"
#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

namespace DirectoryMonitor
{
Interest::Interest() : mPath( SharedText<u"~/Downloads">() ), mUID( uuidString() ) {}

void Interest::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "Path", mPath );
    DescribeUID( inVisitor );
    inVisitor.Name( "Observe", mObserve );
    inVisitor.Name( "ObserveWhen", mObserveWhen );
}

void Interest::DescribeUID( HFieldVisitor& inVisitor )
{
    if ( not inVisitor.IsReading() )
    {
        inVisitor.Text( "UID2", mUID );
        return;
    }
    XText uid;
    inVisitor.Text( "UID2", uid );
    if ( uid.IsNull() )
        XAssertText( inVisitor.HasKey( "UID" ), "dictionary->Get( CFSTR(\"UID\") )" );
    if ( not uid.IsEmpty() )
        mUID = uid;
    else if ( not uid.IsNull() )
        inVisitor.NoteRepair( "UID2", u"an empty UID is nobody's; there is a new one", MLoadRule::kUIDAdded );
    else if ( inVisitor.HasKey( "UID" ) )
        inVisitor.NoteOlderKey( "UID", "UID2" );
}

__SafeCFPropertyList Interest::CopyToPropertyList() const
{
    XMutableDictionary dictionary;
    HSavingVisitor visitor( dictionary );
    const_cast<Interest*>( this )->DescribeFields( visitor ); // writes to no member
    return dictionary.Seal();
}

void Interest::LoadFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    XThrowIfNot( dictionary && dictionary->IsCorrectTypeID() );
    HReadingVisitor visitor( *dictionary );
    DescribeFields( visitor );
}
} // namespace DirectoryMonitor
