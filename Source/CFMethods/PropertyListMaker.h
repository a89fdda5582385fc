// How the codecs make values without a copy in between: nodes with room for their content,
// which the maker fills before anyone else sees them. Private to the codecs of this folder.
#pragma once

#include "CFMethods/PropertyList.h"

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

    /// Every slot has to be given a node, and owns one reference to it.
    static XPlistArray* NewArray( std::size_t inCount );
    static const XPlistNode** Slots( XPlistArray* inArray ) { return inArray->MutableNodes(); }

    /// Every entry has to be given an interned key and a value, and owns a reference to each; then
    /// SortEntries puts them in order.
    static XPlistDictionary* NewDictionary( std::size_t inCount );
    static XPlistDictionary::Entry* Entries( XPlistDictionary* inDictionary ) { return inDictionary->MutableEntries(); }
    /// Sorts by key. Of equal keys the last that was filled in stays, and the others are released;
    /// the result is the number of entries that went.
    static std::size_t SortEntries( XPlistDictionary* inDictionary );

    /// Takes out the entries that hold this very value.
    static void RemoveEntries( XPlistDictionary* inDictionary, const XPlistNode* inValue );

    /// A node that nobody holds yet takes another reference, without an atomic operation.
    static void RetainUnshared( const XPlistNode* inNode )
    {
        inNode->mReferences.store(
            inNode->mReferences.load( std::memory_order_relaxed ) + 1, std::memory_order_relaxed );
    }
};
