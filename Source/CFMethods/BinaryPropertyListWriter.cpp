// Writing goes twice over the value. The first pass numbers the objects, a parent before its
// children and a subtree before its next neighbour: that is mostly the order in which they were
// made, so memory is read forwards. It keeps a stack of its own instead of recursing, and collects
// the references of each container in a block, block after block in the order of the numbers.
// After it every size is known, so the second pass fills one buffer of the exact size.
//
// Equal strings, numbers, dates and data get one number. The hash is seeded anew for each
// process, so that no file can be crafted to make the look-up slow; numbers are given in the order
// of meeting, so the bytes don't depend on the seed.
#include "CFMethods/BinaryPropertyListLeaf.h"
#include "CFMethods/PropertyListCodec.h"
#include "CFMethods/PropertyListMaker.h"
#include "XCAF/XErrorHandler.h"

using namespace BinaryPropertyList;

namespace
{
// Which leaf values have got a number already: open addressing, the hash kept beside the number so
// that growing and most misses don't touch the values.
class Uniquer
{
public:
    explicit Uniquer( std::vector<const XPlistNode*>& ioObjects ) : mObjects( ioObjects ), mSlots( 1024 ) {}

    /// The number of an equal leaf, or of this one, which is then appended to the objects.
    std::uint32_t NumberOf( const XPlistNode* inLeaf, bool& outNew )
    {
        // Keys and other shared nodes come again and again: their addresses answer first. Those that live for ever stand
        // apart, or the many that come once would push them out.
        const auto address = reinterpret_cast<std::uintptr_t>( inLeaf ) >> 3;
        Recent& recent = XPlistMaker::LivesForever( inLeaf ) ? mForever[( address ^ address >> 13 ) % mForever.size()]
                                                             : mRecent[address % std::size( mRecent )];
        outNew = false;
        if ( recent.mNode == inLeaf )
            return recent.mNumber;

        const auto hash = std::uint32_t( HashLeaf( inLeaf ) );
        std::size_t at = hash & ( mSlots.size() - 1 );
        for ( ; mSlots[at].mNumber != 0; at = ( at + 1 ) & ( mSlots.size() - 1 ) )
        {
            if ( mSlots[at].mHash == hash and Same( mObjects[mSlots[at].mNumber - 1], inLeaf ) )
            {
                recent = { inLeaf, mSlots[at].mNumber - 1 };
                return recent.mNumber;
            }
        }
        outNew = true;
        const auto number = std::uint32_t( mObjects.size() );
        mObjects.push_back( inLeaf );
        mSlots[at] = { hash, number + 1 };
        recent = { inLeaf, number };
        if ( ++mCount * 2 > mSlots.size() )
            Grow();
        return number;
    }

private:
    struct Slot
    {
        std::uint32_t mHash = 0;
        std::uint32_t mNumber = 0; // plus 1; 0 is free
    };
    struct Recent
    {
        const XPlistNode* mNode = nullptr;
        std::uint32_t mNumber = 0;
    };

    static bool Same( const XPlistNode* a, const XPlistNode* b )
    {
        return a == b or __SafeCFPropertyList( a ) == __SafeCFPropertyList( b );
    }
    void Grow()
    {
        std::vector<Slot> old( mSlots.size() * 4 );
        old.swap( mSlots );
        for ( const Slot& slot : old )
        {
            if ( slot.mNumber == 0 )
                continue;
            std::size_t at = slot.mHash & ( mSlots.size() - 1 );
            while ( mSlots[at].mNumber != 0 )
                at = ( at + 1 ) & ( mSlots.size() - 1 );
            mSlots[at] = slot;
        }
    }

    std::vector<const XPlistNode*>& mObjects;
    std::vector<Slot> mSlots;
    std::size_t mCount = 0;
    Recent mRecent[2048];
    std::vector<Recent> mForever = std::vector<Recent>( 8192 );
};

class Writer
{
public:
    Writer() : mUniquer( mObjects ) {}

    XBytes Write( const XPlistNode* inRoot );

private:
    // A container whose children are being numbered, and where their references go.
    struct Frame
    {
        const XPlistContainer* mNode;
        std::size_t mNext, mSlot;

        [[nodiscard]] const XPlistNode* NextChild()
        {
            if ( mNode->GetType() == XPlistType::kArray )
                return static_cast<const XPlistArray*>( mNode )->NodeAt( mNext++ );
            return static_cast<const XPlistDictionary*>( mNode )->GetEntries()[mNext++].mValue;
        }
    };

    std::uint32_t LeafNumber( const XPlistNode* inLeaf );
    std::uint32_t BeginContainer( const XPlistNode* inNode );
    void NumberObjects( const XPlistNode* inRoot );
    template<class Reference>
    std::uint8_t* StoreReferences( std::uint8_t* outBytes, const std::uint32_t*& ioNext, std::size_t inCount ) const;
    template<class Reference>
    void StoreObjects( std::uint8_t* outBytes, std::uint8_t* outTable, unsigned inOffsetSize ) const;

    std::vector<const XPlistNode*> mObjects;
    std::vector<std::uint32_t> mReferences;
    std::vector<Frame> mStack;
    std::uint64_t mSize = 0; // of all objects, their references apart
    Uniquer mUniquer;
};

std::uint32_t Writer::LeafNumber( const XPlistNode* inLeaf )
{
    bool isNew = false;
    const std::uint32_t number = mUniquer.NumberOf( inLeaf, isNew );
    if ( isNew )
        mSize += LeafSize( inLeaf );
    return number;
}

// At most 2^32 - 1 objects, which is far beyond what memory holds.
std::uint32_t Writer::BeginContainer( const XPlistNode* inNode )
{
    const auto number = std::uint32_t( mObjects.size() );
    const auto* const container = static_cast<const XPlistContainer*>( inNode );
    const std::size_t count = container->GetCount();
    const std::size_t block = mReferences.size();
    mObjects.push_back( inNode );
    mSize += HeadSize( count );
    std::size_t keys = 0;
    if ( inNode->GetType() == XPlistType::kDictionary )
    {
        mReferences.resize( block + 2 * count );
        for ( const auto& entry : static_cast<const XPlistDictionary*>( inNode )->GetEntries() )
            mReferences[block + keys++] = LeafNumber( entry.mKey );
    }
    else
        mReferences.resize( block + count );
    mStack.push_back( { container, 0, block + keys } );
    return number;
}

void Writer::NumberObjects( const XPlistNode* inRoot )
{
    if ( inRoot->GetType() < XPlistType::kArray )
        LeafNumber( inRoot );
    else
        BeginContainer( inRoot );
    while ( not mStack.empty() )
    {
        Frame& frame = mStack.back();
        if ( frame.mNext == frame.mNode->GetCount() )
        {
            mStack.pop_back();
            continue;
        }
        const XPlistNode* const child = frame.NextChild();
        const std::size_t slot = frame.mSlot++;
        mReferences[slot] = child->GetType() < XPlistType::kArray ? LeafNumber( child ) : BeginContainer( child );
    }
}

template<class Reference>
std::uint8_t* Writer::StoreReferences( std::uint8_t* outBytes, const std::uint32_t*& ioNext, std::size_t inCount ) const
{
    for ( const std::uint32_t* const end = ioNext + inCount; ioNext != end; ++ioNext )
        outBytes = StoreBigEndian( outBytes, Reference( *ioNext ) );
    return outBytes;
}

template<class Reference>
void Writer::StoreObjects( std::uint8_t* outBytes, std::uint8_t* outTable, unsigned inOffsetSize ) const
{
    const std::uint8_t* const start = outBytes;
    std::uint8_t* at = outBytes + 8;
    const std::uint32_t* next = mReferences.data();
    for ( const XPlistNode* const node : mObjects )
    {
        outTable = StoreSized( outTable, std::uint64_t( at - start ), inOffsetSize );
        if ( node->GetType() < XPlistType::kArray )
        {
            at = StoreLeaf( at, node );
            continue;
        }
        const bool isDictionary = node->GetType() == XPlistType::kDictionary;
        const std::size_t count = static_cast<const XPlistContainer*>( node )->GetCount();
        at = StoreHead( at, isDictionary ? 0xD0 : 0xA0, count );
        at = StoreReferences<Reference>( at, next, isDictionary ? 2 * count : count );
    }
}

XBytes Writer::Write( const XPlistNode* inRoot )
{
    NumberObjects( inRoot );
    // The count of objects, not only the last number, has to fit: other readers check for it.
    const unsigned referenceSize = SizeFor( mObjects.size() );
    const std::uint64_t table = 8 + mSize + mReferences.size() * referenceSize;
    const unsigned offsetSize = SizeFor( table );
    const std::uint64_t trailer = table + mObjects.size() * offsetSize;

    XBytes bytes( trailer + 32 );
    std::memcpy( bytes.data(), "bplist00", 8 );
    if ( referenceSize == 1 )
        StoreObjects<std::uint8_t>( bytes.data(), bytes.data() + table, offsetSize );
    else if ( referenceSize == 2 )
        StoreObjects<std::uint16_t>( bytes.data(), bytes.data() + table, offsetSize );
    else
        StoreObjects<std::uint32_t>( bytes.data(), bytes.data() + table, offsetSize );

    StoreTrailer( bytes.data() + trailer, offsetSize, referenceSize, mObjects.size(), table );
    return bytes;
}
} // namespace

XBytes WriteBinaryPropertyList( const __SafeCFPropertyList& inValue )
{
    XAssert( inValue );
    if ( not inValue )
        return {};
    return Writer().Write( inValue.GetNode() );
}
