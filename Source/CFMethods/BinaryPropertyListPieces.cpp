// A piece is a list of words, one for each of its objects in the order of meeting: the number of a leaf in the table,
// the count of a container, or the hole. Behind them stand the references of the containers, one after another, as
// numbers of objects within the piece. Which number an object gets in the file is decided when the file is put
// together: a container gets the next one, a leaf that was met in an earlier piece has one already. So the numbers
// are those that going over the whole value would give, no piece depends on its neighbours, and nothing in it has to
// change when they do.
//
// The size of the file needs no numbers: each container counts as often as it stands there, each leaf once.
//
// Looking a leaf up is waiting for memory, as the table is far larger than the caches. So encoding collects all leaves
// of a piece first and has memory fetch, step by step, what each look-up will need; then the look-ups find it there.
//
// Short leaves are kept encoded, one behind the other in blocks, for most nodes were made only to be encoded, and
// holding one of them would hold the chunk of memory that it was cut from. Long ones are mostly texts that the model
// holds as well: their nodes are shared with it.
#include "CFMethods/BinaryPropertyListPieces.h"

#include "CFMethods/BinaryPropertyListLeaf.h"
#include "CFMethods/PropertyListMaker.h"
#include "XCAF/XErrorHandler.h"

#include <array>
#include <deque>
#include <optional>
#include <stdexcept>

using namespace BinaryPropertyList;

namespace
{
constexpr std::uint32_t kContainerFlag = 0x80000000u;
constexpr std::uint32_t kDictionaryFlag = 0x40000000u;
constexpr std::uint32_t kCountMask = kDictionaryFlag - 1;
constexpr std::uint32_t kHole = ~0u;
constexpr std::uint32_t kToBeLookedUp = kContainerFlag - 1;
constexpr std::size_t kNoReference = ~std::size_t( 0 );
constexpr std::size_t kMostShort = 256; // encoded bytes
constexpr std::size_t kLeavesInBlock = 4096;
constexpr std::size_t kArenaBytes = 256 << 10;

struct Leaf
{
    const void* mPlace = nullptr; // the encoded bytes, or, for a long one, the node
    std::uint64_t mSize = 0;      // encoded

    [[nodiscard]] bool IsShort() const { return mSize <= kMostShort; }
    [[nodiscard]] const XPlistNode* Node() const { return static_cast<const XPlistNode*>( mPlace ); }
    [[nodiscard]] std::uint8_t* Store( std::uint8_t* outBytes ) const
    {
        if ( not IsShort() )
            return StoreLeaf( outBytes, Node() );
        std::memcpy( outBytes, mPlace, mSize );
        return outBytes + mSize;
    }
};
} // namespace

// Blocks stay where they are, so that a thread which puts a file together reads leaves while later ones are added.
struct XPlistLeafBlock
{
    std::array<Leaf, kLeavesInBlock> mLeaves;
};

class XPlistLeafTable
{
public:
    XPlistLeafTable() : mNumber( ++gTables ) {}
    ~XPlistLeafTable();
    XPlistLeafTable( const XPlistLeafTable& ) = delete;
    XPlistLeafTable& operator=( const XPlistLeafTable& ) = delete;

    /// A leaf to be looked up.
    struct Query
    {
        const XPlistNode* mLeaf;
        std::uint64_t mSize; // encoded
        std::size_t mBytes;  // where it stands encoded among those of the caller, if it is short
        std::uint32_t mHash;
    };

    /// The number of a leaf that is never freed, if it is remembered.
    [[nodiscard]] std::optional<std::uint32_t> KnownNumberOf( const XPlistNode* inLeaf ) const;
    /// Encodes a short leaf behind the bytes.
    [[nodiscard]] Query QueryFor( const XPlistNode* inLeaf, std::vector<std::uint8_t>& ioBytes ) const;
    /// What stands in the leaf's first slot, if it may be the leaf.
    [[nodiscard]] std::optional<std::uint32_t> LikelyNumberOf( const Query& inQuery ) const;
    void Prefetch( const Query& inQuery ) const { __builtin_prefetch( &mSlots[SlotFor( inQuery.mHash )] ); }
    void PrefetchLeaf( std::uint32_t inNumber ) const { __builtin_prefetch( &At( inNumber ) ); }
    void PrefetchContent( std::uint32_t inNumber ) const { __builtin_prefetch( At( inNumber ).mPlace ); }
    /// The number of the leaf, which is added if it is new.
    [[nodiscard]] std::uint32_t NumberOf( const Query& inQuery, const std::uint8_t* inBytes );
    [[nodiscard]] std::size_t GetCount() const { return mCount; }
    [[nodiscard]] std::uint64_t GetNumber() const { return mNumber; }
    [[nodiscard]] const Leaf& At( std::uint32_t inNumber ) const
    {
        return mBlocks[inNumber / kLeavesInBlock]->mLeaves[inNumber % kLeavesInBlock];
    }
    [[nodiscard]] std::vector<const XPlistLeafBlock*> GetBlocks() const
    {
        std::vector<const XPlistLeafBlock*> blocks;
        for ( const auto& block : mBlocks )
            blocks.push_back( block.get() );
        return blocks;
    }

private:
    struct Slot
    {
        std::uint32_t mHash = 0;
        std::uint32_t mNumber = 0; // plus 1; 0 is free
    };
    struct Known
    {
        const XPlistNode* mNode = nullptr;
        std::uint32_t mNumber = 0;
    };

    [[nodiscard]] std::size_t SlotFor( std::uint32_t inHash ) const { return inHash & ( mSlots.size() - 1 ); }
    [[nodiscard]] static std::size_t PlaceOf( const XPlistNode* inLeaf )
    {
        const auto address = reinterpret_cast<std::uintptr_t>( inLeaf ) >> 3;
        return ( address ^ address >> 13 ) % kKnown;
    }
    template<class Same, class Make>
    std::uint32_t FindOrAdd( std::uint32_t inHash, const Same& inSame, const Make& inMake );
    const std::uint8_t* Keep( std::span<const std::uint8_t> inBytes );
    void Grow();

    static inline std::uint64_t gTables = 0;

    const std::uint64_t mNumber;
    std::vector<std::unique_ptr<XPlistLeafBlock>> mBlocks;
    std::size_t mCount = 0;
    std::vector<Slot> mSlots = std::vector<Slot>( 1024 );
    // Keys and other nodes that are never freed come again and again: their addresses answer first.
    static constexpr std::size_t kKnown = 8192;
    std::vector<Known> mKnown = std::vector<Known>( kKnown );
    std::vector<std::unique_ptr<std::uint8_t[]>> mArenas;
    std::size_t mArenaLeft = 0;
};

XPlistLeafTable::~XPlistLeafTable()
{
    for ( std::size_t i = 0; i < mCount; ++i )
    {
        if ( const Leaf& leaf = At( std::uint32_t( i ) ); not leaf.IsShort() )
            leaf.Node()->Release();
    }
}

const std::uint8_t* XPlistLeafTable::Keep( std::span<const std::uint8_t> inBytes )
{
    if ( inBytes.size() > mArenaLeft )
    {
        mArenas.emplace_back( new std::uint8_t[kArenaBytes] );
        mArenaLeft = kArenaBytes;
    }
    std::uint8_t* const place = mArenas.back().get() + kArenaBytes - mArenaLeft;
    std::memcpy( place, inBytes.data(), inBytes.size() );
    mArenaLeft -= inBytes.size();
    return place;
}

void XPlistLeafTable::Grow()
{
    std::vector<Slot> old( mSlots.size() * 4 );
    old.swap( mSlots );
    for ( const Slot& slot : old )
    {
        if ( slot.mNumber == 0 )
            continue;
        std::size_t at = SlotFor( slot.mHash );
        while ( mSlots[at].mNumber != 0 )
            at = ( at + 1 ) & ( mSlots.size() - 1 );
        mSlots[at] = slot;
    }
}

template<class Same, class Make>
std::uint32_t XPlistLeafTable::FindOrAdd( std::uint32_t inHash, const Same& inSame, const Make& inMake )
{
    std::size_t at = SlotFor( inHash );
    for ( ; mSlots[at].mNumber != 0; at = ( at + 1 ) & ( mSlots.size() - 1 ) )
    {
        if ( mSlots[at].mHash == inHash and inSame( At( mSlots[at].mNumber - 1 ) ) )
            return mSlots[at].mNumber - 1;
    }
    if ( mCount >= kToBeLookedUp )
        throw std::length_error( "too many values for a property list" );
    if ( mCount == mBlocks.size() * kLeavesInBlock )
        mBlocks.push_back( std::make_unique<XPlistLeafBlock>() );
    mBlocks[mCount / kLeavesInBlock]->mLeaves[mCount % kLeavesInBlock] = inMake();
    const auto number = std::uint32_t( mCount++ );
    mSlots[at] = { inHash, number + 1 };
    if ( mCount * 2 > mSlots.size() )
        Grow();
    return number;
}

std::optional<std::uint32_t> XPlistLeafTable::KnownNumberOf( const XPlistNode* inLeaf ) const
{
    const Known& known = mKnown[PlaceOf( inLeaf )];
    return known.mNode == inLeaf ? std::optional( known.mNumber ) : std::nullopt;
}

XPlistLeafTable::Query XPlistLeafTable::QueryFor( const XPlistNode* inLeaf, std::vector<std::uint8_t>& ioBytes ) const
{
    const std::size_t size = LeafSize( inLeaf ), place = ioBytes.size();
    if ( size > kMostShort )
        return { inLeaf, size, 0, std::uint32_t( HashLeaf( inLeaf ) ) };
    ioBytes.resize( place + size );
    StoreLeaf( ioBytes.data() + place, inLeaf );
    return { inLeaf, size, place, std::uint32_t( HashBytes( { ioBytes.data() + place, size } ) ) };
}

std::optional<std::uint32_t> XPlistLeafTable::LikelyNumberOf( const Query& inQuery ) const
{
    const Slot& slot = mSlots[SlotFor( inQuery.mHash )];
    return slot.mHash == inQuery.mHash and slot.mNumber > 0 ? std::optional( slot.mNumber - 1 ) : std::nullopt;
}

std::uint32_t XPlistLeafTable::NumberOf( const Query& inQuery, const std::uint8_t* inBytes )
{
    const auto& [node, size, place, hash] = inQuery;
    std::uint32_t number = 0;
    if ( size <= kMostShort )
    {
        const std::span<const std::uint8_t> bytes( inBytes + place, size );
        number = FindOrAdd(
            hash,
            [&]( const Leaf& leaf ) {
                return leaf.mSize == bytes.size() and std::memcmp( leaf.mPlace, bytes.data(), bytes.size() ) == 0;
            },
            [&] {
                return Leaf{ Keep( bytes ), bytes.size() };
            } );
    }
    else
        number = FindOrAdd(
            hash,
            [&, leaf = node, length = size]( const Leaf& other ) {
                return other.mSize == length and
                    ( other.Node() == leaf or __SafeCFPropertyList( other.Node() ) == __SafeCFPropertyList( leaf ) );
            },
            [leaf = node, length = size] {
                leaf->Retain();
                return Leaf{ leaf, length };
            } );
    if ( XPlistMaker::LivesForever( node ) )
        mKnown[PlaceOf( node )] = { node, number };
    return number;
}

bool XPlistPiece::Equals( const XPlistPiece& inOther ) const
{
    return mTable == inOther.mTable and mObjects == inOther.mObjects and mReferences == inOther.mReferences and
        std::memcmp( mWords.get(), inOther.mWords.get(), sizeof( mWords[0] ) * ( mObjects + mReferences ) ) == 0;
}

std::size_t XPlistPiece::GetMemorySize() const
{
    return sizeof( XPlistPiece ) + sizeof( mWords[0] ) * ( std::size_t( mObjects ) + mReferences );
}

// A container whose children are being numbered, and where their references go.
struct XPlistPieceEncoder::Frame
{
    const XPlistContainer* mNode;
    std::size_t mNext, mReference;

    [[nodiscard]] const XPlistNode* NextChild()
    {
        if ( mNode->GetType() == XPlistType::kArray )
            return static_cast<const XPlistArray*>( mNode )->NodeAt( mNext++ );
        return static_cast<const XPlistDictionary*>( mNode )->GetEntries()[mNext++].mValue;
    }
};

// An object in the order of meeting, and the reference that is to name it.
struct XPlistPieceEncoder::Meeting
{
    std::uint32_t mWord;
    std::size_t mReference;
};

struct XPlistPieceEncoder::Query : XPlistLeafTable::Query
{
    Query( const XPlistLeafTable::Query& inQuery ) : XPlistLeafTable::Query( inQuery ) {}
};

XPlistPieceEncoder::XPlistPieceEncoder() : mTable( std::make_shared<XPlistLeafTable>() ) {}

XPlistPieceEncoder::~XPlistPieceEncoder() = default;

bool XPlistPieceEncoder::IsValid( const XPlistPiecePtr& inPiece ) const
{
    return inPiece and inPiece->mTable == mTable->GetNumber();
}

void XPlistPieceEncoder::StartAnew()
{
    if ( mTable->GetCount() == 0 )
        return;
    mTable = std::make_shared<XPlistLeafTable>();
    mMet = {};
    mPiece = 0;
}

std::size_t XPlistPieceEncoder::GetLeafCount() const
{
    return mTable->GetCount();
}

void XPlistPieceEncoder::Meet( const XPlistNode* inNode, std::size_t inReference )
{
    if ( inNode->GetType() >= XPlistType::kArray )
        BeginContainer( inNode, inReference );
    else
    {
        if ( XPlistMaker::LivesForever( inNode ) )
        {
            if ( const auto known = mTable->KnownNumberOf( inNode ) )
            {
                mMeetings.push_back( { *known, inReference } );
                return;
            }
        }
        mMeetings.push_back( { kToBeLookedUp, inReference } );
        mQueries.push_back( mTable->QueryFor( inNode, mBytes ) );
        mTable->Prefetch( mQueries.back() );
    }
}

void XPlistPieceEncoder::BeginContainer( const XPlistNode* inNode, std::size_t inReference )
{
    if ( inNode == mHole )
    {
        mMeetings.push_back( { kHole, inReference } );
        return;
    }
    const auto* const container = static_cast<const XPlistContainer*>( inNode );
    const std::size_t count = container->GetCount();
    if ( count >= kCountMask )
        throw std::length_error( "too many elements for a property list" );
    const bool isDictionary = inNode->GetType() == XPlistType::kDictionary;
    std::size_t reference = mReferences.size();
    mMeetings.push_back(
        { kContainerFlag | ( isDictionary ? kDictionaryFlag : 0 ) | std::uint32_t( count ), inReference } );
    ++mContainers;
    mHeadBytes += HeadSize( count );
    mReferences.resize( reference + ( isDictionary ? 2 * count : count ) );
    if ( isDictionary )
    {
        for ( const auto& entry : static_cast<const XPlistDictionary*>( inNode )->GetEntries() )
            Meet( entry.mKey, reference++ );
    }
    mStack.push_back( { container, 0, reference } );
}

void XPlistPieceEncoder::MeetAll( const XPlistNode* inRoot )
{
    BeginContainer( inRoot, kNoReference );
    while ( not mStack.empty() )
    {
        Frame& frame = mStack.back();
        if ( frame.mNext == frame.mNode->GetCount() )
        {
            mStack.pop_back();
            continue;
        }
        const XPlistNode* const child = frame.NextChild();
        Meet( child, frame.mReference++ );
    }
}

// Step by step, as each place in memory says where the next one is.
void XPlistPieceEncoder::PrefetchLeaves()
{
    for ( const auto& query : mQueries )
    {
        if ( const auto number = mTable->LikelyNumberOf( query ) )
            mTable->PrefetchLeaf( *number );
    }
    for ( const auto& query : mQueries )
    {
        const auto number = mTable->LikelyNumberOf( query );
        if ( not number )
            continue;
        mTable->PrefetchContent( *number );
        if ( *number < mMet.size() )
            __builtin_prefetch( &mMet[*number] );
    }
}

std::uint32_t XPlistPieceEncoder::IndexOfLeaf( std::uint32_t inLeaf )
{
    if ( inLeaf >= mMet.size() )
        mMet.resize( std::max<std::size_t>( inLeaf + 1, mMet.size() * 2 ) );
    Met& met = mMet[inLeaf];
    if ( met.mPiece != mPiece )
    {
        met = { mPiece, std::uint32_t( mObjects.size() ) };
        mObjects.push_back( inLeaf );
    }
    return met.mIndex;
}

void XPlistPieceEncoder::NumberAll()
{
    auto query = mQueries.begin();
    for ( const auto& [word, reference] : mMeetings )
    {
        std::uint32_t index = 0;
        if ( word == kToBeLookedUp )
            index = IndexOfLeaf( mTable->NumberOf( *query++, mBytes.data() ) );
        else if ( not( word & kContainerFlag ) )
            index = IndexOfLeaf( word );
        else
        {
            index = std::uint32_t( mObjects.size() );
            mObjects.push_back( word );
        }
        if ( reference != kNoReference )
            mReferences[reference] = index;
    }
}

XPlistPiecePtr XPlistPieceEncoder::Encode( const __SafeCFPropertyList& inValue, const XPlistNode* inHole )
{
    XAssertText( inValue and inValue.GetType() >= XPlistType::kArray, "inValue" );
    mObjects.clear();
    mReferences.clear();
    mMeetings.clear();
    mQueries.clear();
    mBytes.clear();
    mStack.clear();
    mHole = inHole;
    mContainers = 0;
    mHeadBytes = 0;
    if ( ++mPiece == 0 ) // all numbers were used: none that was met before may count
    {
        mMet = {};
        mPiece = 1;
    }
    MeetAll( inValue.GetNode() );
    PrefetchLeaves();
    NumberAll();

    auto piece = std::make_shared<XPlistPiece>();
    piece->mObjects = std::uint32_t( mObjects.size() );
    piece->mReferences = std::uint32_t( mReferences.size() );
    piece->mContainers = mContainers;
    piece->mHasHole = inHole != nullptr;
    piece->mHeadBytes = mHeadBytes;
    piece->mTable = mTable->GetNumber();
    piece->mWords.reset( new std::uint32_t[mObjects.size() + mReferences.size()] );
    std::copy( mObjects.begin(), mObjects.end(), piece->mWords.get() );
    std::copy( mReferences.begin(), mReferences.end(), piece->mWords.get() + mObjects.size() );
    return piece;
}

XPlistPieceFile::XPlistPieceFile( const XPlistPieceEncoder& inEncoder ) : mTable( inEncoder.mTable ) {}

void XPlistPieceFile::Add( XPlistPiecePtr inPiece )
{
    XAssert( inPiece->mTable == mTable->GetNumber() );
    if ( not mOpen.empty() )
        ++mItems[mOpen.back()].mChildren;
    if ( inPiece->HasHole() )
        mOpen.push_back( mItems.size() );
    mItems.push_back( { std::move( inPiece ), 0 } );
}

void XPlistPieceFile::EndHole()
{
    XAssert( not mOpen.empty() );
    mOpen.pop_back();
}

std::size_t XPlistPieceFile::Measure()
{
    XAssert( mOpen.empty() );
    mBlocks = mTable->GetBlocks();
    mTableLeaves = mTable->GetCount();
    // One more stands for everything that is no leaf, which saves telling the two apart.
    std::vector<std::uint8_t> met( mTableLeaves + 1 );
    met[mTableLeaves] = 1;
    std::uint64_t references = 0;
    for ( const auto& [piece, children] : mItems )
    {
        mObjects += piece->mContainers;
        mObjectBytes += piece->mHeadBytes;
        references += piece->mReferences;
        if ( piece->HasHole() )
        {
            ++mObjects;
            mObjectBytes += HeadSize( children );
            references += children;
        }
        for ( std::uint32_t i = 0; i < piece->mObjects; ++i )
        {
            const std::uint32_t word = std::min( piece->mWords[i], std::uint32_t( mTableLeaves ) );
            if ( met[word] )
                continue;
            met[word] = 1;
            ++mLeaves;
            mObjectBytes += mTable->At( word ).mSize;
        }
    }
    mObjects += mLeaves;
    if ( mObjects > 0xFFFFFFFFu )
        throw std::length_error( "too many values for a property list" );
    mObjectBytes += references * SizeFor( mObjects );
    const std::uint64_t table = kHeaderSize + mObjectBytes;
    return table + mObjects * SizeFor( table ) + kTrailerSize;
}

class XPlistPieceAssembler
{
public:
    explicit XPlistPieceAssembler( const XPlistPieceFile& inFile )
        : mFile( inFile ),
          mOffsetSize( SizeFor( kHeaderSize + inFile.mObjectBytes ) ),
          mNumbers( inFile.mTableLeaves )
    {}

    XBytes Assemble()
    {
        const std::uint64_t table = kHeaderSize + mFile.mObjectBytes;
        XBytes bytes( table + mFile.mObjects * mOffsetSize + kTrailerSize );
        mStart = bytes.data();
        mAt = mStart + kHeaderSize;
        mTable = mStart + table;
        std::memcpy( mStart, "bplist00", kHeaderSize );
        const unsigned referenceSize = SizeFor( mFile.mObjects );
        if ( referenceSize == 1 )
            StorePiece<std::uint8_t>( 0 );
        else if ( referenceSize == 2 )
            StorePiece<std::uint16_t>( 0 );
        else
            StorePiece<std::uint32_t>( 0 );
        XAssert( mAt == mStart + table );
        StoreTrailer( mTable, mOffsetSize, referenceSize, mFile.mObjects, table );
        return bytes;
    }

private:
    // What a piece needs until its references are stored, which is after what stands in its hole.
    struct Level
    {
        std::vector<std::uint32_t> mNumbers; // in the file, for each object of the piece
        struct Container
        {
            std::uint8_t* mReferences;
            std::uint32_t mCount;
        };
        std::vector<Container> mContainers;
    };

    [[nodiscard]] const Leaf& LeafAt( std::uint32_t inLeaf ) const
    {
        return mFile.mBlocks[inLeaf / kLeavesInBlock]->mLeaves[inLeaf % kLeavesInBlock];
    }
    std::uint32_t BeginObject()
    {
        mTable = StoreSized( mTable, std::uint64_t( mAt - mStart ), mOffsetSize );
        return mNext++;
    }
    std::uint32_t StoreLeafOnce( std::uint32_t inLeaf )
    {
        std::uint32_t& number = mNumbers[inLeaf]; // plus 1
        if ( number == 0 )
        {
            number = BeginObject() + 1;
            mAt = LeafAt( inLeaf ).Store( mAt );
        }
        return number - 1;
    }
    template<class Reference>
    std::uint32_t StoreContainer( std::uint32_t inWord, Level& ioLevel )
    {
        const std::uint32_t number = BeginObject();
        const bool isDictionary = inWord & kDictionaryFlag;
        const std::uint32_t count = inWord & kCountMask;
        mAt = StoreHead( mAt, isDictionary ? 0xD0 : 0xA0, count );
        const std::uint32_t references = isDictionary ? 2 * count : count;
        ioLevel.mContainers.push_back( { mAt, references } );
        mAt += std::size_t( references ) * sizeof( Reference );
        return number;
    }
    template<class Reference>
    std::uint32_t StoreHole( std::uint32_t inChildren, std::size_t inDepth )
    {
        const std::uint32_t number = BeginObject();
        mAt = StoreHead( mAt, 0xA0, inChildren );
        std::uint8_t* reference = mAt;
        mAt += std::size_t( inChildren ) * sizeof( Reference );
        for ( std::uint32_t i = 0; i < inChildren; ++i )
        {
            reference = StoreBigEndian( reference, Reference( mNext ) ); // a piece begins with its root
            StorePiece<Reference>( inDepth + 1 );
        }
        return number;
    }
    template<class Reference>
    void StorePiece( std::size_t inDepth );

    const XPlistPieceFile& mFile;
    const unsigned mOffsetSize;
    std::vector<std::uint32_t> mNumbers;
    std::deque<Level> mLevels; // they stay where they are while others come
    std::size_t mItem = 0;
    std::uint32_t mNext = 0;
    std::uint8_t *mStart = nullptr, *mAt = nullptr, *mTable = nullptr;
};

template<class Reference>
void XPlistPieceAssembler::StorePiece( std::size_t inDepth )
{
    const auto& [piece, children] = mFile.mItems[mItem++];
    if ( inDepth >= mLevels.size() )
        mLevels.emplace_back();
    Level& level = mLevels[inDepth];
    level.mContainers.clear();
    level.mNumbers.resize( std::max<std::size_t>( level.mNumbers.size(), piece->mObjects ) );
    std::uint32_t* const numbers = level.mNumbers.data();
    const std::uint32_t* const words = piece->mWords.get();
    for ( std::uint32_t i = 0; i < piece->mObjects; ++i )
    {
        if ( not( words[i] & kContainerFlag ) )
            numbers[i] = StoreLeafOnce( words[i] );
        else if ( words[i] != kHole )
            numbers[i] = StoreContainer<Reference>( words[i], level );
        else
            numbers[i] = StoreHole<Reference>( children, inDepth );
    }
    const std::uint32_t* reference = words + piece->mObjects;
    for ( const auto& [place, count] : level.mContainers )
    {
        std::uint8_t* at = place;
        for ( const std::uint32_t* const end = reference + count; reference != end; ++reference )
            at = StoreBigEndian( at, Reference( numbers[*reference] ) );
    }
}

XBytes XPlistPieceFile::Assemble() const
{
    return XPlistPieceAssembler( *this ).Assemble();
}
