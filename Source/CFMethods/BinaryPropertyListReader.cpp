// The binary form: "bplist00", the objects, a table of their offsets, and a trailer of 32 bytes
// that says how wide offsets and references are, how many objects there are, which is the root and
// where the table begins. Containers name their children by number.
//
// Everything is big-endian and nothing is trusted: each number is checked against the bytes at
// hand before it is used. Containers are read with a stack of frames of our own, so depth costs no
// native stack. A container that several others name is read once and shared; its height and the
// number of nodes that it expands to are kept, so that a few bytes which expand to millions of
// nodes are refused before anybody walks them. Objects that lie on top of each other are refused for
// the same reason: a table of offsets that all name one long string is small, its strings aren't.
#include "CFMethods/PropertyListCodec.h"
#include "CFMethods/PropertyListMaker.h"

#include <bit>
#include <cstring>
#include <fmt/format.h>
#include <limits>

namespace
{
constexpr std::size_t kHeaderSize = 8, kTrailerSize = 32;
constexpr std::uint64_t kExpansionFactor = 16, kExpansionAllowance = 1000;
// Dictionaries share keys, so long keys that begin alike could be compared far more often than they
// are stored. Above this length a key is compared once for the whole file.
constexpr std::size_t kLongKey = 64;
constexpr std::size_t kMostNotes = 100;

template<class Integer>
Integer LoadBigEndian( const std::uint8_t* inBytes )
{
    Integer value = 0;
    std::memcpy( &value, inBytes, sizeof( value ) );
    if constexpr ( sizeof( value ) == 2 )
        return __builtin_bswap16( value );
    else if constexpr ( sizeof( value ) == 4 )
        return __builtin_bswap32( value );
    else if constexpr ( sizeof( value ) == 8 )
        return __builtin_bswap64( value );
    else
        return value;
}

// A number of 1 to 8 bytes; the widths that writers use first.
inline std::uint64_t LoadSized( const std::uint8_t* inBytes, unsigned inSize )
{
    switch ( inSize )
    {
    case 1:
        return *inBytes;
    case 2:
        return LoadBigEndian<std::uint16_t>( inBytes );
    case 4:
        return LoadBigEndian<std::uint32_t>( inBytes );
    case 8:
        return LoadBigEndian<std::uint64_t>( inBytes );
    default:
    {
        std::uint64_t value = 0;
        for ( unsigned i = 0; i < inSize; ++i )
            value = ( value << 8 ) | inBytes[i];
        return value;
    }
    }
}

struct Refusal
{
    XPlistFault mFault;
};

// How deep a container's content goes, and how many nodes a walk of it meets.
struct Measure
{
    std::uint64_t mExpanded = 1;
    std::uint32_t mHeight = 1;

    void Add( const Measure& inChild )
    {
        if ( __builtin_add_overflow( mExpanded, inChild.mExpanded, &mExpanded ) )
            mExpanded = std::numeric_limits<std::uint64_t>::max();
        mHeight = std::max( mHeight, inChild.mHeight + 1 );
    }
};

// A container that is being filled. In a dictionary the first half of the references are keys.
struct Frame
{
    XPlistNode* mNode;
    std::uint64_t mObject;
    const std::uint8_t* mReferences;
    std::uint32_t mCount;    // of elements or entries
    std::uint32_t mKeys = 0; // filled so far
    std::uint32_t mValues = 0;
    Measure mMeasure;

    [[nodiscard]] bool IsDictionary() const { return mNode->GetType() == XPlistType::kDictionary; }
    [[nodiscard]] XPlistArray* Array() const { return static_cast<XPlistArray*>( mNode ); }
    [[nodiscard]] XPlistDictionary* Dictionary() const { return static_cast<XPlistDictionary*>( mNode ); }
};

class Reader
{
public:
    Reader( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits )
        : mBytes( inBytes ),
          mLimits( inLimits )
    {}
    ~Reader();

    void Read( XPlistReadResult& outResult );

private:
    [[noreturn]] void Refuse( std::string inMessage, std::uint64_t inOffset ) const
    {
        throw Refusal{ { std::move( inMessage ), inOffset, {}, 0, 0 } };
    }
    [[noreturn]] void RefuseObject( std::string inMessage, std::uint64_t inOffset, std::uint64_t inObject ) const
    {
        throw Refusal{ { std::move( inMessage ), inOffset, inObject, 0, 0 } };
    }

    void ReadTrailer();
    std::uint64_t OffsetOf( std::uint64_t inObject ) const;
    std::uint64_t ReadLength(
        std::uint8_t inMarker, std::uint64_t inOffset, std::uint64_t inObject, const std::uint8_t*& outContent ) const;
    void CheckContent( std::uint64_t inLength, unsigned inUnit, const std::uint8_t* inContent, std::uint64_t inOffset,
        std::uint64_t inObject );

    XPlistNode* ReadLeaf( std::uint64_t inObject, std::uint64_t inOffset );
    XPlistNode* ReadInteger( unsigned inSize, std::uint64_t inOffset, std::uint64_t inObject ) const;
    XPlistNode* ReadASCII( std::uint64_t inOffset, std::uint64_t inObject );
    XPlistNode* ReadWide( std::uint64_t inOffset, std::uint64_t inObject );
    void PushContainer( std::uint64_t inObject, std::uint64_t inOffset );
    void FillKeys( Frame& ioFrame );
    bool FillValues( Frame& ioFrame );
    void Finish( Frame& ioFrame );
    void SortDictionary( XPlistDictionary* inDictionary, std::uint64_t inObject, const std::uint8_t* inReferences,
        const XPlistMaker::KeyRanks* inRanks );
    void SortByLongKeys();
    void AddNote( std::string inMessage, std::uint64_t inOffset );
    std::uint64_t ReferenceAt( const Frame& inFrame, std::uint64_t inIndex ) const;
    const XPlistNode* Key( const Frame& inFrame, std::uint64_t inObject );

    // The measure of a finished container is found through the number that its head has room for.
    static std::uint32_t& MeasureIndex( XPlistNode* inNode ) { return XPlistMaker::Spare( inNode ); }

    std::span<const std::uint8_t> mBytes;
    XPlistLimits mLimits;
    unsigned mOffsetSize = 0, mReferenceSize = 0;
    std::uint64_t mObjectCount = 0, mRoot = 0, mTable = 0;

    // What each object has become: null before it is met; a container in the making is marked.
    std::vector<const XPlistNode*> mNodes;
    std::vector<Frame> mStack;
    std::vector<Measure> mMeasures;
    struct Unsorted
    {
        XPlistDictionary* mDictionary;
        std::uint64_t mObject;
        const std::uint8_t* mReferences;
    };
    std::vector<Unsorted> mUnsorted; // dictionaries with several long keys
    std::uint64_t mReferencesStored = 0, mObjectsMet = 0, mContentMet = 0;
    const XPlistNode* mRootNode = nullptr;
    std::vector<__SafeCFPropertyList> mGivenUp;
    std::vector<XPlistNote> mNotes;
};

// Stands for a container whose content is still being read: meeting it again is a cycle.
const XPlistNode* InTheMaking()
{
    static const XPlistNode* const gMark = XPlistMaker::NewInteger( 0 );
    return gMark;
}

// A refusal leaves containers half filled: what they hold goes, then they do.
Reader::~Reader()
{
    for ( const Frame& frame : mStack )
    {
        if ( frame.IsDictionary() )
        {
            // Sorting may have shortened it since it was filled.
            XPlistDictionary::Entry* const entries = XPlistMaker::Entries( frame.Dictionary() );
            const auto count = std::uint32_t( frame.Dictionary()->GetCount() );
            for ( std::uint32_t i = 0; i < std::min( frame.mKeys, count ); ++i )
                entries[i].mKey->Release();
            for ( std::uint32_t i = 0; i < std::min( frame.mValues, count ); ++i )
                entries[i].mValue->Release();
            XPlistMaker::SetCount( frame.Dictionary(), 0 );
        }
        else
            XPlistMaker::SetCount( frame.Array(), frame.mValues );
        frame.mNode->Release();
    }
    if ( mRootNode )
        mRootNode->Release();
}

void Reader::ReadTrailer()
{
    if ( mBytes.size() > mLimits.mMaxBytes )
        Refuse( fmt::format( "the file has {} bytes, which exceeds the limit of {}", mBytes.size(), mLimits.mMaxBytes ),
            mLimits.mMaxBytes );
    if ( mBytes.size() < kHeaderSize + 1 + 1 + kTrailerSize )
        Refuse( fmt::format( "{} bytes are too few for a binary property list", mBytes.size() ), mBytes.size() );
    if ( std::memcmp( mBytes.data(), "bplist00", kHeaderSize ) != 0 )
        Refuse( "the header isn't \"bplist00\", the one version that is known", 0 );

    const std::uint64_t at = mBytes.size() - kTrailerSize;
    const std::uint8_t* const trailer = mBytes.data() + at;
    mOffsetSize = trailer[6];
    mReferenceSize = trailer[7];
    mObjectCount = LoadBigEndian<std::uint64_t>( trailer + 8 );
    mRoot = LoadBigEndian<std::uint64_t>( trailer + 16 );
    mTable = LoadBigEndian<std::uint64_t>( trailer + 24 );

    if ( mOffsetSize < 1 or mOffsetSize > 8 )
        Refuse( fmt::format( "the trailer's offset size is {}, not 1 to 8", mOffsetSize ), at + 6 );
    if ( mReferenceSize < 1 or mReferenceSize > 8 )
        Refuse( fmt::format( "the trailer's reference size is {}, not 1 to 8", mReferenceSize ), at + 7 );
    if ( mObjectCount == 0 or mObjectCount > mBytes.size() )
        Refuse( fmt::format( "the trailer counts {} objects, which the file can't hold", mObjectCount ), at + 8 );
    if ( mRoot >= mObjectCount )
        Refuse( fmt::format( "the root is object {} of {}", mRoot, mObjectCount ), at + 16 );
    // Offsets are read without a further check, so the table must fill exactly what lies before the trailer.
    if ( mTable <= kHeaderSize or mTable > at or ( at - mTable ) / mOffsetSize != mObjectCount or
        ( at - mTable ) % mOffsetSize != 0 )
        Refuse( fmt::format( "a table of {} offsets at byte {} doesn't end at the trailer", mObjectCount, mTable ),
            at + 24 );
    if ( mReferenceSize < 8 and mObjectCount > ( std::uint64_t( 1 ) << ( 8 * mReferenceSize ) ) )
        Refuse( fmt::format( "references of {} bytes can't name {} objects", mReferenceSize, mObjectCount ), at + 7 );
}

std::uint64_t Reader::OffsetOf( std::uint64_t inObject ) const
{
    const std::uint64_t entry = mTable + inObject * mOffsetSize;
    const std::uint64_t offset = LoadSized( mBytes.data() + entry, mOffsetSize );
    if ( offset < kHeaderSize or offset >= mTable )
        RefuseObject( fmt::format( "the offset {} lies outside the objects", offset ), entry, inObject );
    return offset;
}

// The length stands in the marker's low half, or, when that is 15, in an integer behind it.
std::uint64_t Reader::ReadLength(
    std::uint8_t inMarker, std::uint64_t inOffset, std::uint64_t inObject, const std::uint8_t*& outContent ) const
{
    outContent = mBytes.data() + inOffset + 1;
    if ( ( inMarker & 0x0F ) != 0x0F )
        return inMarker & 0x0F;
    const std::uint64_t left = mTable - inOffset - 1;
    const unsigned width = left >= 1 and ( *outContent & 0xF0 ) == 0x10 ? 1u << ( *outContent & 0x0F ) : 0u;
    if ( width < 1 or width > 8 or left < 1 + width )
        RefuseObject( "the length isn't an integer of 1 to 8 bytes", inOffset + 1, inObject );
    const std::uint64_t length = LoadSized( outContent + 1, width );
    outContent += 1 + width;
    return length;
}

void Reader::CheckContent( std::uint64_t inLength, unsigned inUnit, const std::uint8_t* inContent,
    std::uint64_t inOffset, std::uint64_t inObject )
{
    const std::uint64_t left = std::uint64_t( mBytes.data() + mTable - inContent );
    if ( inLength > left / inUnit or inLength > std::numeric_limits<std::uint32_t>::max() )
        RefuseObject( fmt::format( "a length of {} goes beyond the objects", inLength ), inOffset, inObject );
    mContentMet += inLength * inUnit;
    if ( mContentMet > mTable - kHeaderSize )
        RefuseObject(
            "the objects overlap: together they are longer than the room that they stand in", inOffset, inObject );
}

XPlistNode* Reader::ReadInteger( unsigned inSize, std::uint64_t inOffset, std::uint64_t inObject ) const
{
    const std::uint8_t* const content = mBytes.data() + inOffset + 1;
    if ( mTable - inOffset - 1 < inSize )
        RefuseObject( "the number goes beyond the objects", inOffset, inObject );
    if ( inSize < 8 ) // below 8 bytes integers are unsigned
        return XPlistMaker::NewInteger( std::int64_t( LoadSized( content, inSize ) ) );
    if ( inSize == 8 )
        return XPlistMaker::NewInteger( std::int64_t( LoadSized( content, 8 ) ) );
    const auto high = std::int64_t( LoadSized( content, 8 ) );
    const std::uint64_t low = LoadSized( content + 8, 8 );
    if ( high == 0 )
        return XPlistMaker::NewUnsigned( low );
    if ( high == -1 and low >> 63 )
        return XPlistMaker::NewInteger( std::int64_t( low ) );
    RefuseObject( "an integer of 128 bits is beyond the range of 64", inOffset, inObject );
}

XPlistNode* Reader::ReadASCII( std::uint64_t inOffset, std::uint64_t inObject )
{
    const std::uint8_t* content = nullptr;
    const std::uint64_t length = ReadLength( mBytes[inOffset], inOffset, inObject, content );
    CheckContent( length, 1, content, inOffset, inObject );
    std::uint64_t i = 0, bits = 0;
    for ( ; i + 8 <= length; i += 8 )
    {
        std::uint64_t word = 0;
        std::memcpy( &word, content + i, 8 );
        bits |= word;
    }
    for ( ; i < length; ++i )
        bits |= content[i];
    if ( bits & 0x8080808080808080u )
    {
        for ( i = 0; content[i] < 0x80; )
            ++i;
        RefuseObject( fmt::format( "byte 0x{:02X} in an ASCII string", content[i] ),
            std::uint64_t( content + i - mBytes.data() ), inObject );
    }
    XPlistString* const string = XPlistMaker::NewASCII( length );
    std::memcpy( XPlistMaker::ASCIIBuffer( string ), content, length );
    return string;
}

XPlistNode* Reader::ReadWide( std::uint64_t inOffset, std::uint64_t inObject )
{
    const std::uint8_t* content = nullptr;
    const std::uint64_t length = ReadLength( mBytes[inOffset], inOffset, inObject, content );
    CheckContent( length, 2, content, inOffset, inObject );
    XPlistString* const string = XPlistMaker::NewWide( length );
    char16_t* const units = XPlistMaker::WideBuffer( string );
    unsigned all = 0;
    for ( std::uint64_t i = 0; i < length; ++i )
    {
        units[i] = LoadBigEndian<std::uint16_t>( content + 2 * i );
        all |= units[i];
    }
    if ( all >= 0x80 )
        return string;
    const auto narrow = CFContainer<XPlistString>::Adopt( string );
    return const_cast<XPlistString*>( XPlistString::Make( narrow->Wide() ).Release() );
}

// A value that holds no others, with one reference for its first holder; null for a container.
XPlistNode* Reader::ReadLeaf( std::uint64_t inObject, std::uint64_t inOffset )
{
    const std::uint8_t marker = mBytes[inOffset];
    const std::uint8_t* content = mBytes.data() + inOffset + 1;
    const std::uint64_t left = mTable - inOffset - 1;
    switch ( marker >> 4 )
    {
    case 0x5:
        return ReadASCII( inOffset, inObject );
    case 0xA:
    case 0xD:
        return nullptr;
    case 0x0:
        if ( marker == 0x08 or marker == 0x09 )
            return const_cast<XPlistBoolean*>( XPlistBoolean::Make( marker == 0x09 ).Release() );
        break;
    case 0x1:
        if ( marker <= 0x14 )
            return ReadInteger( 1u << ( marker & 0x0F ), inOffset, inObject );
        break;
    case 0x2:
        if ( marker == 0x22 and left >= 4 )
            return XPlistMaker::NewReal( std::bit_cast<float>( LoadBigEndian<std::uint32_t>( content ) ) );
        if ( marker == 0x23 and left >= 8 )
            return XPlistMaker::NewReal( std::bit_cast<double>( LoadBigEndian<std::uint64_t>( content ) ) );
        break;
    case 0x3:
        if ( marker == 0x33 and left >= 8 )
            return XPlistMaker::NewDate( std::bit_cast<double>( LoadBigEndian<std::uint64_t>( content ) ) );
        break;
    case 0x4:
    {
        const std::uint64_t length = ReadLength( marker, inOffset, inObject, content );
        CheckContent( length, 1, content, inOffset, inObject );
        XPlistData* const data = XPlistMaker::NewData( length );
        std::memcpy( XPlistMaker::DataBuffer( data ), content, length );
        return data;
    }
    case 0x6:
        return ReadWide( inOffset, inObject );
    case 0x8:
        RefuseObject( "a UID of a keyed archive, which is no property-list value", inOffset, inObject );
    default:
        break;
    }
    RefuseObject(
        fmt::format( "type byte 0x{:02X} is unknown, or its number is cut off", marker ), inOffset, inObject );
}

void Reader::PushContainer( std::uint64_t inObject, std::uint64_t inOffset )
{
    if ( mStack.size() >= mLimits.mMaxDepth )
        RefuseObject( fmt::format( "the depth exceeds the limit of {}", mLimits.mMaxDepth ), inOffset, inObject );
    const std::uint8_t marker = mBytes[inOffset];
    const bool isDictionary = marker >> 4 == 0xD;
    const std::uint8_t* content = nullptr;
    const std::uint64_t count = ReadLength( marker, inOffset, inObject, content );
    CheckContent( count, mReferenceSize * ( isDictionary ? 2 : 1 ), content, inOffset, inObject );
    // Room first: a frame that can't be stored would leave its node to nobody.
    if ( mStack.size() == mStack.capacity() )
        mStack.reserve( 16 + 2 * mStack.size() );
    mNodes[inObject] = InTheMaking();
    mReferencesStored += isDictionary ? 2 * count : count;
    XPlistNode* const node =
        isDictionary ? static_cast<XPlistNode*>( XPlistMaker::NewDictionary( count ) ) : XPlistMaker::NewArray( count );
    mStack.push_back( { node, inObject, content, std::uint32_t( count ), 0, 0, {} } );
}

inline std::uint64_t Reader::ReferenceAt( const Frame& inFrame, std::uint64_t inIndex ) const
{
    const std::uint8_t* const at = inFrame.mReferences + inIndex * mReferenceSize;
    const std::uint64_t object = LoadSized( at, mReferenceSize );
    if ( object >= mObjectCount )
        RefuseObject( fmt::format( "it names object {} of {}", object, mObjectCount ),
            std::uint64_t( at - mBytes.data() ), inFrame.mObject );
    return object;
}

// The interned key, with a reference for the entry that takes it.
const XPlistNode* Reader::Key( const Frame& inFrame, std::uint64_t inObject )
{
    const XPlistNode* const known = mNodes[inObject];
    if ( known and XPlistMaker::IsKeyString( known ) )
    {
        known->Retain();
        return known;
    }
    CFContainer<XPlistString> key;
    if ( known and known != InTheMaking() and known->GetType() == XPlistType::kString )
        key = CFContainer<XPlistString>::Share( static_cast<const XPlistString*>( known ) );
    else if ( not known )
    {
        const std::uint64_t offset = OffsetOf( inObject );
        const std::uint8_t kind = mBytes[offset] >> 4;
        if ( kind == 0x5 or kind == 0x6 )
            key = CFContainer<XPlistString>::Adopt( static_cast<XPlistString*>(
                kind == 0x5 ? ReadASCII( offset, inObject ) : ReadWide( offset, inObject ) ) );
        ++mObjectsMet;
    }
    if ( not key )
        RefuseObject( fmt::format( "its key, object {}, isn't a string", inObject ),
            std::uint64_t( inFrame.mReferences - mBytes.data() ), inFrame.mObject );
    key = XPlistString::Intern( std::move( key ) );
    mNodes[inObject] = key.GetCFRef();
    return key.Release();
}

void Reader::FillKeys( Frame& ioFrame )
{
    XPlistDictionary::Entry* const entries = XPlistMaker::Entries( ioFrame.Dictionary() );
    for ( ; ioFrame.mKeys < ioFrame.mCount; ++ioFrame.mKeys )
        entries[ioFrame.mKeys].mKey =
            static_cast<const XPlistString*>( Key( ioFrame, ReferenceAt( ioFrame, ioFrame.mKeys ) ) );
    ioFrame.mMeasure.mExpanded += ioFrame.mCount;
}

// Goes on until the container is full, or a child container has to be read first (false).
bool Reader::FillValues( Frame& ioFrame )
{
    const bool isDictionary = ioFrame.IsDictionary();
    const std::uint32_t first = isDictionary ? ioFrame.mCount : 0;
    while ( ioFrame.mValues < ioFrame.mCount )
    {
        const std::uint64_t object = ReferenceAt( ioFrame, std::uint64_t( first ) + ioFrame.mValues );
        const XPlistNode* node = mNodes[object];
        if ( not node )
        {
            const std::uint64_t offset = OffsetOf( object );
            ++mObjectsMet;
            XPlistNode* const leaf = ReadLeaf( object, offset );
            if ( not leaf )
            {
                PushContainer( object, offset );
                return false;
            }
            mNodes[object] = node = leaf;
            ++ioFrame.mMeasure.mExpanded;
        }
        else if ( node == InTheMaking() )
            RefuseObject( fmt::format( "a cycle: it holds object {}, which holds it", object ),
                std::uint64_t( ioFrame.mReferences - mBytes.data() ), ioFrame.mObject );
        else
        {
            if ( node->GetType() >= XPlistType::kArray )
                ioFrame.mMeasure.Add( mMeasures[MeasureIndex( const_cast<XPlistNode*>( node ) )] );
            else
                ++ioFrame.mMeasure.mExpanded;
            if ( node->GetType() == XPlistType::kBoolean or XPlistMaker::IsInternedString( node ) )
                node->Retain();
            else
                XPlistMaker::RetainUnshared( node );
        }
        if ( isDictionary )
            XPlistMaker::Entries( ioFrame.Dictionary() )[ioFrame.mValues].mValue = node;
        else
            XPlistMaker::Slots( ioFrame.Array() )[ioFrame.mValues] = node;
        ++ioFrame.mValues;
    }
    return true;
}

// The container is full: it gets its order and its measure, and goes to its parent.
void Reader::Finish( Frame& ioFrame )
{
    const Frame frame = ioFrame;
    if ( frame.mMeasure.mHeight > mLimits.mMaxDepth )
        RefuseObject( fmt::format( "the depth exceeds the limit of {}", mLimits.mMaxDepth ),
            std::uint64_t( frame.mReferences - mBytes.data() ), frame.mObject );
    if ( frame.IsDictionary() )
    {
        const auto isLong = []( const XPlistDictionary::Entry& entry ) { return entry.mKey->GetLength() > kLongKey; };
        const auto entries = frame.Dictionary()->GetEntries();
        if ( std::count_if( entries.begin(), entries.end(), isLong ) > 1 )
            mUnsorted.push_back( { frame.Dictionary(), frame.mObject, frame.mReferences } );
        else
            SortDictionary( frame.Dictionary(), frame.mObject, frame.mReferences, nullptr );
    }
    MeasureIndex( frame.mNode ) = std::uint32_t( mMeasures.size() );
    mMeasures.push_back( frame.mMeasure );
    mNodes[frame.mObject] = frame.mNode;
    mStack.pop_back();
    if ( mStack.empty() )
    {
        mRootNode = frame.mNode;
        return;
    }
    Frame& parent = mStack.back();
    parent.mMeasure.Add( frame.mMeasure );
    if ( parent.IsDictionary() )
        XPlistMaker::Entries( parent.Dictionary() )[parent.mValues].mValue = frame.mNode;
    else
        XPlistMaker::Slots( parent.Array() )[parent.mValues] = frame.mNode;
    ++parent.mValues;
}

void Reader::SortDictionary( XPlistDictionary* inDictionary, std::uint64_t inObject, const std::uint8_t* inReferences,
    const XPlistMaker::KeyRanks* inRanks )
{
    // What a doubled key gives up may be named by others as well, so it lives until the end.
    const std::size_t doubled = XPlistMaker::SortEntries( inDictionary, &mGivenUp, inRanks );
    if ( doubled > 0 )
        AddNote( fmt::format( "object {} has {} keys twice; the last of each counts", inObject, doubled ),
            std::uint64_t( inReferences - mBytes.data() ) );
}

void Reader::SortByLongKeys()
{
    XPlistMaker::KeyRanks ranks;
    std::vector<const XPlistString*> keys;
    for ( const Unsorted& unsorted : mUnsorted )
    {
        for ( const auto& entry : unsorted.mDictionary->GetEntries() )
        {
            if ( entry.mKey->GetLength() > kLongKey and ranks.try_emplace( entry.mKey, 0 ).second )
                keys.push_back( entry.mKey );
        }
    }
    std::sort(
        keys.begin(), keys.end(), []( const XPlistString* a, const XPlistString* b ) { return a->Compare( *b ) < 0; } );
    std::uint32_t rank = 0;
    for ( std::size_t i = 0; i < keys.size(); ++i )
    {
        // Equal keys that couldn't be interned are one all the same.
        if ( i > 0 and not keys[i]->Equals( *keys[i - 1] ) )
            ++rank;
        ranks[keys[i]] = rank;
    }
    for ( const Unsorted& unsorted : mUnsorted )
        SortDictionary( unsorted.mDictionary, unsorted.mObject, unsorted.mReferences, &ranks );
}

void Reader::AddNote( std::string inMessage, std::uint64_t inOffset )
{
    if ( mNotes.size() < kMostNotes )
        mNotes.push_back( { std::move( inMessage ), inOffset } );
}

void Reader::Read( XPlistReadResult& outResult )
{
    ReadTrailer();
    mNodes.resize( mObjectCount );

    const std::uint64_t offset = OffsetOf( mRoot );
    ++mObjectsMet;
    mRootNode = ReadLeaf( mRoot, offset );
    if ( not mRootNode )
    {
        PushContainer( mRoot, offset );
        while ( not mStack.empty() )
        {
            const std::size_t level = mStack.size() - 1;
            if ( mStack[level].IsDictionary() and mStack[level].mKeys < mStack[level].mCount )
                FillKeys( mStack[level] );
            if ( FillValues( mStack[level] ) )
                Finish( mStack[level] );
        }
        const Measure& whole = mMeasures.back();
        const std::uint64_t most = kExpansionFactor * mReferencesStored + kExpansionAllowance;
        if ( whole.mExpanded > most )
            RefuseObject(
                fmt::format( "shared objects expand to {} values, which exceeds the limit of {} for {} references",
                    whole.mExpanded, most, mReferencesStored ),
                offset, mRoot );
    }

    SortByLongKeys();
    if ( mObjectsMet < mObjectCount )
        AddNote( fmt::format(
                     "{} of {} objects are held by nothing and aren't kept", mObjectCount - mObjectsMet, mObjectCount ),
            mTable );
    outResult.mValue = CFContainer<XPlistNode>::Adopt( std::exchange( mRootNode, nullptr ) );
    outResult.mNotes = std::move( mNotes );
}
} // namespace

XPlistReadResult ReadBinaryPropertyList( std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits )
{
    XPlistReadResult result;
    result.mFormat = XPlistFormat::kBinary;
    try
    {
        Reader( inBytes, inLimits ).Read( result );
    }
    catch ( Refusal& refusal )
    {
        result.mFault = std::move( refusal.mFault );
    }
    return result;
}
