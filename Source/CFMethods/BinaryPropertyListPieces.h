// The binary form out of pieces that are encoded each on its own and kept, so that a file of which little has changed
// costs little. A piece is a subtree whose objects are numbered within it; a file is a tree of pieces, where one piece
// may have a hole, an array whose elements are other pieces. The bytes are exactly those that WriteBinaryPropertyList
// gives for the whole value, whatever was kept and whatever not.
//
// Strings, numbers, dates and data stand in a table that the pieces share, each once. Encoding and measuring belong to
// one thread; a file that was measured is put together by any thread, while others are encoded.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <memory>
#include <vector>

class XPlistLeafTable;

/// A subtree in its encoded form. Immutable; any thread may let go of it.
class XPlistPiece
{
public:
    [[nodiscard]] bool HasHole() const { return mHasHole; }
    /// The same objects. Of one encoder only.
    [[nodiscard]] bool Equals( const XPlistPiece& inOther ) const;
    /// What the piece takes of memory beside the values that the table holds.
    [[nodiscard]] std::size_t GetMemorySize() const;

private:
    friend class XPlistPieceEncoder;
    friend class XPlistPieceFile;
    friend class XPlistPieceAssembler;

    // See the source file for the words.
    std::unique_ptr<std::uint32_t[]> mWords;
    std::uint32_t mObjects = 0, mReferences = 0, mContainers = 0;
    bool mHasHole = false;
    std::uint64_t mHeadBytes = 0;
    std::uint64_t mTable = 0; // which table its leaves stand in
};

using XPlistPiecePtr = std::shared_ptr<const XPlistPiece>;

class XPlistPieceEncoder
{
public:
    XPlistPieceEncoder();
    ~XPlistPieceEncoder();
    XPlistPieceEncoder( const XPlistPieceEncoder& ) = delete;
    XPlistPieceEncoder& operator=( const XPlistPieceEncoder& ) = delete;

    /// A container. The array inHole, if given, has to stand in the value once, as this very node, and empty: its elements are
    /// told to the file.
    [[nodiscard]] XPlistPiecePtr Encode( const __SafeCFPropertyList& inValue, const XPlistNode* inHole = nullptr );
    /// Can the piece go on serving? False for null, and for what was encoded before StartAnew.
    [[nodiscard]] bool IsValid( const XPlistPiecePtr& inPiece ) const;
    /// Lets go of all values. A file that is still to be put together keeps them.
    void StartAnew();
    /// How many values the table holds, those included that no piece uses any more.
    [[nodiscard]] std::size_t GetLeafCount() const;

private:
    friend class XPlistPieceFile;
    struct Frame;
    struct Meeting;
    struct Query;

    void Meet( const XPlistNode* inNode, std::size_t inReference );
    void BeginContainer( const XPlistNode* inNode, std::size_t inReference );
    void MeetAll( const XPlistNode* inRoot );
    void PrefetchLeaves();
    std::uint32_t IndexOfLeaf( std::uint32_t inLeaf );
    void NumberAll();

    std::shared_ptr<XPlistLeafTable> mTable;
    // Of the piece in the making.
    std::vector<std::uint32_t> mObjects, mReferences;
    std::vector<Meeting> mMeetings;
    std::vector<Query> mQueries;
    std::vector<std::uint8_t> mBytes;
    std::vector<Frame> mStack;
    const XPlistNode* mHole = nullptr;
    std::uint32_t mContainers = 0;
    std::uint64_t mHeadBytes = 0;
    // For each leaf of the table: the piece that met it last, and its number there.
    struct Met
    {
        std::uint32_t mPiece = 0, mIndex = 0;
    };
    std::vector<Met> mMet;
    std::uint32_t mPiece = 0;
};

/// The pieces of one file, in its order.
class XPlistPieceFile
{
public:
    /// All pieces have to be valid ones of this encoder.
    explicit XPlistPieceFile( const XPlistPieceEncoder& inEncoder );

    /// The root, or the next element of the hole that was opened last. A piece with a hole opens it.
    void Add( XPlistPiecePtr inPiece );
    /// Closes the hole that was opened last.
    void EndHole();

    /// Works out the size, and takes what Assemble needs. Nothing may be added afterwards.
    std::size_t Measure();
    /// How many different strings, numbers, dates and data there are. After Measure.
    [[nodiscard]] std::size_t GetLeafCount() const { return mLeaves; }
    /// The bytes. Any thread, after Measure.
    [[nodiscard]] XBytes Assemble() const;

private:
    friend class XPlistPieceAssembler;
    struct Item
    {
        XPlistPiecePtr mPiece;
        std::uint32_t mChildren = 0;
    };

    std::shared_ptr<const XPlistLeafTable> mTable;
    std::vector<Item> mItems;
    std::vector<std::size_t> mOpen; // items whose holes are open
    std::vector<const struct XPlistLeafBlock*> mBlocks;
    std::size_t mTableLeaves = 0;
    std::uint64_t mLeaves = 0, mObjects = 0, mObjectBytes = 0; // after Measure; the bytes with all references
};
