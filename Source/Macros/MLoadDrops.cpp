#include "Macros/MLoadDrops.h"

#include "Macros/MLoadReasons.h"
#include "Utility/Text/Format.h"

#include <unordered_map>

namespace
{
// Where a list stands: the macro or group around it, and its key.
struct Place
{
    Text mOwner, mKey;
};
using Places = std::unordered_map<const XPlistArray*, Place>;

Text NameOf( const XPlistDictionary& inElement )
{
    XText name;
    (void)inElement.Get( CFSTR( "Name" ), name );
    return name.GetText();
}

// A list of the stack instead of the machine's: files nest deeply.
void FindPlaces( const __SafeCFPropertyList& inSource, Places& ioPlaces )
{
    struct Pending
    {
        const XPlistNode* mNode;
        Place mPlace;
    };
    std::vector<Pending> pending{ { inSource.GetNode(), { {}, u"MacroGroups" } } };
    while ( not pending.empty() )
    {
        const Pending next = std::move( pending.back() );
        pending.pop_back();
        const __SafeCFPropertyList value( next.mNode );
        if ( const XPlistArray* const array = value.AsArray() )
        {
            if ( const auto found = ioPlaces.find( array ); found != ioPlaces.end() )
                found->second = next.mPlace;
            for ( const XPlistNode* const element : array->Nodes() )
                pending.push_back( { element, next.mPlace } );
        }
        else if ( const XPlistDictionary* const dictionary = value.AsDictionary() )
        {
            const bool isNamed = next.mPlace.mKey == u"MacroGroups" or next.mPlace.mKey == u"Macros";
            const Text own = isNamed ? NameOf( *dictionary ) : Text();
            for ( const auto& entry : dictionary->GetEntries() )
                pending.push_back(
                    { entry.mValue, { own.empty() ? next.mPlace.mOwner : own, entry.mKey->GetText() } } );
        }
    }
}
} // namespace

void MLoadDrops::DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason )
{
    mDrops.push_back( { CFContainer<XPlistArray>::Share( &inList ), inIndex, Text( inReason ) } );
}

void MLoadDrops::DidReadUID( const XPlistDictionary& inSource, const XText&, const XText& )
{
    mLast = CFContainer<XPlistDictionary>::Share( &inSource );
}

std::vector<Text> MLoadDrops::Describe( const __SafeCFPropertyList& inSource ) const
{
    Places places;
    for ( const Drop& drop : mDrops )
        places.emplace( drop.mList.GetCFRef(), Place() );
    if ( not places.empty() and inSource )
        FindPlaces( inSource, places );
    std::vector<Text> lines;
    for ( const Drop& drop : mDrops )
    {
        const auto& [owner, key] = places.at( drop.mList.GetCFRef() );
        const MDropReason reason = DropReasonOf( drop.mList->GetValueAt( drop.mIndex ), key, drop.mReason );
        const Text element = kvr_format( u"element %lu of “%@”: %@", drop.mIndex + 1, key, reason.mText );
        lines.push_back( owner.empty() ? element : owner + u" › " + element );
    }
    return lines;
}

Text MLoadDrops::LastName() const
{
    return mLast ? NameOf( *mLast ) : Text();
}
