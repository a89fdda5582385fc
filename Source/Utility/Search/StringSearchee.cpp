#include "Utility/Search/StringSearchee.h"

#include "Platform/SearchIndex.h"
#include "Utility/Work/Clock.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>

namespace
{
constexpr double kFirstSetTime = 1.0; // anything below means that a time was never set

/// The kinds whose text says something to a person who looks for the object.
bool IsReadable( StringSearchee::Kind inKind )
{
    using enum StringSearchee::Kind;
    return inKind == kText or inKind == kTrigger or inKind == kHotKey or inKind == kName or inKind == kGroup or
        inKind == kApplication;
}
} // namespace

void StringSearchee::AddText( Kind inKind, Words inText )
{
    if ( inText.mText.empty() )
        return;
    if ( mElements.empty() )
        mElements.reserve( 128 ); // few objects have more to say, and growing costs more than the room
    Element& element = mElements.emplace_back();
    element.mKind = inKind;
    element.mText = std::move( inText.mText );
}

void StringSearchee::AddTime( Kind inKind, double inTime, double inAge )
{
    mElements.push_back( { false, inKind, {}, inTime, inAge } );
}

void StringSearchee::AddGlobal()
{
    mElements.push_back( { false, Kind::kGlobal, {} } );
}

void StringSearchee::AddEnabled( bool inEnabled )
{
    const auto IsEnabledElement = []( const Element& inElement ) { return inElement.mKind == Kind::kEnabled; };
    const auto found = std::find_if( mElements.begin(), mElements.end(), IsEnabledElement );
    XAssertText( found == mElements.end(),
        "std::find_if( mElements.begin(), mElements.end(), IsEnabledElement ) == mElements.end()" );
    if ( found == mElements.end() )
        mElements.push_back( { false, Kind::kEnabled, inEnabled ? u"1" : u"0" } );
}

void StringSearchee::AddContentCreationModificationText( const XSearchableItem& inItem )
{
    const double now = XClock::Current().Now();
    Add( inItem.mTextContent );
    if ( inItem.mContentCreationDate )
        AddCreated( *inItem.mContentCreationDate, now - *inItem.mContentCreationDate );
    if ( inItem.mContentModificationDate )
        AddModified( *inItem.mContentModificationDate, now - *inItem.mContentModificationDate );
    if ( inItem.mLastUsedDate )
        AddUsed( *inItem.mLastUsedDate, now - *inItem.mLastUsedDate );
}

void StringSearchee::AddContentCr( XSearchableItem& ioItem ) const
{
    ioItem.mTextContent.clear();
    for ( const Element& element : mElements )
    {
        if ( IsReadable( element.mKind ) )
        {
            if ( not ioItem.mTextContent.empty() )
                ioItem.mTextContent += u'\n';
            ioItem.mTextContent += element.mText;
        }
        const bool isSet = element.mTime >= kFirstSetTime;
        if ( element.mKind == Kind::kCreated and isSet )
            ioItem.mContentCreationDate = element.mTime;
        else if ( element.mKind == Kind::kModified and isSet )
            ioItem.mContentModificationDate = element.mTime;
        else if ( element.mKind == Kind::kUsed and isSet )
            ioItem.mLastUsedDate = element.mTime;
    }
}
