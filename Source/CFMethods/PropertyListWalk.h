// Visits every value within a property list in stored order. The walk keeps its own stack, so the depth of
// a value costs no native stack. Any thread; the value must outlive the walk.
#pragma once

#include "CFMethods/PropertyList.h"

#include <vector>

/// Where a value stands in the container around it.
struct XPlistPlace
{
    const XPlistString* mKey = nullptr; ///< in a dictionary
    std::size_t mIndex = 0;             ///< among the elements or entries
    std::size_t mDepth = 0;             ///< the number of containers around it; 0 at the root
};

/// The visitor has
///     void Leaf( const __SafeCFPropertyList&, const XPlistPlace& );
///     bool Enter( const XPlistContainer&, const XPlistPlace& );   // false: pass over its content, and no Leave
///     void Leave( const XPlistContainer&, const XPlistPlace& );
template<class Visitor>
void WalkPropertyList( const __SafeCFPropertyList& inRoot, Visitor& ioVisitor )
{
    struct Level
    {
        const XPlistContainer* mContainer;
        XPlistPlace mPlace;
        std::size_t mNext = 0;
    };
    std::vector<Level> levels;
    const auto visit = [&]( const XPlistNode* inNode, const XPlistPlace& inPlace ) {
        if ( inNode->GetType() != XPlistType::kArray and inNode->GetType() != XPlistType::kDictionary )
        {
            ioVisitor.Leaf( __SafeCFPropertyList( inNode ), inPlace );
            return;
        }
        const auto* const container = static_cast<const XPlistContainer*>( inNode );
        if ( ioVisitor.Enter( *container, inPlace ) )
            levels.push_back( { container, inPlace } );
    };

    if ( inRoot )
        visit( inRoot.GetNode(), {} );
    while ( not levels.empty() )
    {
        Level& level = levels.back();
        if ( level.mNext == level.mContainer->GetCount() )
        {
            const Level left = level;
            levels.pop_back();
            ioVisitor.Leave( *left.mContainer, left.mPlace );
            continue;
        }
        XPlistPlace place{ nullptr, level.mNext++, levels.size() };
        if ( level.mContainer->GetType() == XPlistType::kArray )
            visit( static_cast<const XPlistArray*>( level.mContainer )->NodeAt( place.mIndex ), place );
        else
        {
            const auto& entry = static_cast<const XPlistDictionary*>( level.mContainer )->GetEntries()[place.mIndex];
            place.mKey = entry.mKey;
            visit( entry.mValue, place );
        }
    }
}
