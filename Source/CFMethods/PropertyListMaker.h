// How the codecs make values without a copy in between: nodes with room for their content,
// which the maker fills before anyone else sees them. Private to the codecs of this folder.
#pragma once

#include "CFMethods/PropertyList.h"

#include <unordered_map>

struct XPlistMaker
{
    /// A string of so many ASCII bytes or UTF-16 units, to be filled in. The caller keeps the rule
    /// that a string which could be ASCII is.
    static XPlistString* NewASCII( std::size_t inLength );
    static XPlistString* NewWide( std::size_t inLength );
    static char* ASCIIBuffer( XPlistString* inString ) { return reinterpret_cast<char*>( inString + 1 ); }
    static char16_t* WideBuffer( XPlistString* inString ) { return reinterpret_cast<char16_t*>( inString + 1 ); }

    static XPlistNumber* NewInteger( std::int64_t inValue );
    static XPlistNumber* NewUnsigned( std::uint64_t inValue );
    static XPlistNumber* NewReal( double inValue );
    static XPlistDate* NewDate( double inSeconds );
    static XPlistData* NewData( std::size_t inLength );
    static std::uint8_t* DataBuffer( XPlistData* inData ) { return reinterpret_cast<std::uint8_t*>( inData + 1 ); }

    /// The node, with so many bytes behind it.
    template<class T, class... Arguments>
    static T* New( std::size_t inExtra, const Arguments&... inArguments );

    /// Every slot has to be given a node, and owns one reference to it.
    static XPlistArray* NewArray( std::size_t inCount );
    static const XPlistNode** Slots( XPlistArray* inArray ) { return inArray->MutableNodes(); }

    /// Every entry has to be given an interned key and a value, and owns a reference to each; then
    /// SortEntries puts them in order.
    static XPlistDictionary* NewDictionary( std::size_t inCount );
    static XPlistDictionary::Entry* Entries( XPlistDictionary* inDictionary ) { return inDictionary->MutableEntries(); }
    /// Where some keys stand among each other, so that they needn't be compared again.
    using KeyRanks = std::unordered_map<const XPlistNode*, std::uint32_t>;
    /// Sorts by key. Of equal keys the last that was filled in stays; the others are released, or
    /// handed over with their values. The result is the number of entries that went.
    static std::size_t SortEntries( XPlistDictionary* inDictionary,
        std::vector<__SafeCFPropertyList>* outGivenUp = nullptr, const KeyRanks* inRanks = nullptr );
    /// Takes out the entries that hold this very value.
    static void RemoveEntries( XPlistDictionary* inDictionary, const XPlistNode* inValue );

    /// Shortens a container that is being given up; what it no longer counts is the caller's.
    static void SetCount( XPlistContainer* inContainer, std::size_t inCount )
    {
        inContainer->mCount = std::uint32_t( inCount );
    }
    /// Room in a container's head that is free until it is destroyed.
    static std::uint32_t& Spare( XPlistNode* inContainer )
    {
        return static_cast<XPlistContainer*>( inContainer )->mLinkHigh;
    }
    static bool LivesForever( const XPlistNode* inNode ) { return inNode->mFlags & XPlistNode::kForeverFlag; }
    static bool IsInternedString( const XPlistNode* inNode ) { return inNode->mFlags & XPlistNode::kInternedFlag; }
    /// Has the string been through XPlistString::Intern?
    static bool IsKeyString( const XPlistNode* inNode )
    {
        return inNode->mFlags & ( XPlistNode::kInternedFlag | XPlistNode::kAloneFlag );
    }

    /// Takes the reference out of its holder.
    template<class T>
    static const T* Take( CFContainer<T>& ioHolder )
    {
        return std::exchange( ioHolder.mRef, nullptr );
    }
    static const XPlistNode* Take( __SafeCFPropertyList& ioHolder ) { return Take( ioHolder.mNode ); }

    /// A node that nobody holds yet takes another reference, without an atomic operation.
    static void RetainUnshared( const XPlistNode* inNode )
    {
        inNode->mReferences.store(
            inNode->mReferences.load( std::memory_order_relaxed ) + 1, std::memory_order_relaxed );
    }
};
