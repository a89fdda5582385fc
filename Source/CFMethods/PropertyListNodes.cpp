// Layout of a value: the class's own fields, and right behind them in the same allocation the
// units, bytes, nodes or entries. Destroying is a loop, never a recursion, so that a value of
// any depth goes without a deep stack. The table of keys stands here as well.
#include "CFMethods/NodeAllocator.h"
#include "CFMethods/PropertyListMaker.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <new>

namespace
{
bool IsAllASCII( TextView inText )
{
    unsigned all = 0;
    for ( const char16_t unit : inText )
        all |= unit;
    return all < 0x80;
}

bool IsAllASCII( std::string_view inBytes )
{
    unsigned char all = 0;
    for ( const char byte : inBytes )
        all = static_cast<unsigned char>( all | static_cast<unsigned char>( byte ) );
    return all < 0x80;
}

// Small integers, which flags and counts are, exist once.
constexpr std::int64_t kSharedIntegers = 256;
} // namespace

// Open addressing with linear probing. A key whose neighbourhood is crowded (which only crafted
// keys bring about) isn't shared: dictionaries compare contents anyway.
class XPlistKeyTable
{
public:
    static XPlistKeyTable& Get()
    {
        // Never destroyed: keys may be released by other statics at exit.
        static XPlistKeyTable& gTable = *new XPlistKeyTable;
        return gTable;
    }

    template<class Matches, class Make>
    CFContainer<XPlistString> FindOrAdd( std::uint32_t inHash, const Matches& inMatches, const Make& inMake )
    {
        const std::scoped_lock lock( mMutex );
        if ( ( mCount + 1 ) * 2 > mSlots.size() )
            Grow();
        std::size_t slot = SlotFor( inHash );
        for ( unsigned probes = 0; mSlots[slot]; ++probes, slot = ( slot + 1 ) & mMask )
        {
            if ( mSlots[slot]->mKeyHash == inHash and inMatches( *mSlots[slot] ) )
                return CFContainer<XPlistString>::Share( mSlots[slot] );
            if ( probes == kMostProbes )
            {
                CFContainer<XPlistString> alone = inMake();
                auto* const node = const_cast<XPlistString*>( alone.GetCFRef() );
                node->mKeyHash = inHash;
                node->mFlags |= XPlistString::kAloneFlag;
                return alone;
            }
        }
        CFContainer<XPlistString> added = inMake();
        auto* const node = const_cast<XPlistString*>( added.GetCFRef() );
        node->mKeyHash = inHash;
        node->mFlags |= XPlistString::kInternedFlag;
        // Before anybody else sees it; later would be a race. Counting the keys that all files have would be a
        // good part of what reading and writing costs; strangers' files can't make more of them than this.
        if ( mForever < kMostForever and node->GetLength() <= kMostForeverLength )
        {
            node->mFlags |= XPlistString::kForeverFlag;
            ++mForever;
        }
        mSlots[slot] = node;
        ++mCount;
        return added;
    }

    // The caller gives up one reference; true when it was the last, and the node is the caller's to free.
    bool ReleaseLast( const XPlistString* inString )
    {
        const std::scoped_lock lock( mMutex );
        if ( inString->mReferences.fetch_sub( 1, std::memory_order_acq_rel ) != 1 )
            return false;
        std::size_t hole = SlotFor( inString->mKeyHash );
        while ( mSlots[hole] != inString )
            hole = ( hole + 1 ) & mMask;
        --mCount;
        // Close the gap, so that probing never needs a marker for what has gone.
        for ( std::size_t next = ( hole + 1 ) & mMask; mSlots[next]; next = ( next + 1 ) & mMask )
        {
            const std::size_t home = SlotFor( mSlots[next]->mKeyHash );
            if ( ( ( next - home ) & mMask ) >= ( ( next - hole ) & mMask ) )
            {
                mSlots[hole] = mSlots[next];
                hole = next;
            }
        }
        mSlots[hole] = nullptr;
        return true;
    }

private:
    static constexpr unsigned kMostProbes = 128;
    static constexpr std::size_t kMostForever = 4096;
    static constexpr std::size_t kMostForeverLength = 64;

    [[nodiscard]] std::size_t SlotFor( std::uint32_t inHash ) const
    {
        return ( ( inHash * std::uint64_t( 0x9E3779B97F4A7C15u ) ) >> 32 ) & mMask;
    }
    void Grow()
    {
        std::vector<XPlistString*> old( mSlots.size() * 2 );
        old.swap( mSlots );
        mMask = mSlots.size() - 1;
        for ( XPlistString* const string : old )
        {
            if ( not string )
                continue;
            std::size_t slot = SlotFor( string->mKeyHash );
            while ( mSlots[slot] )
                slot = ( slot + 1 ) & mMask;
            mSlots[slot] = string;
        }
    }

    std::mutex mMutex;
    std::vector<XPlistString*> mSlots = std::vector<XPlistString*>( 1024 );
    std::size_t mMask = 1023;
    std::size_t mCount = 0;
    std::size_t mForever = 0;
};

void XPlistNode::ReleaseCountedKey() const
{
    std::uint32_t count = mReferences.load( std::memory_order_relaxed );
    while ( count > 1 )
    {
        if ( mReferences.compare_exchange_weak( count, count - 1, std::memory_order_acq_rel ) )
            return;
    }
    if ( XPlistKeyTable::Get().ReleaseLast( static_cast<const XPlistString*>( this ) ) )
        FreeMemory( this );
}

void XPlistNode::FreeMemory( const XPlistNode* inNode )
{
    if ( inNode->mFlags & kChunkFlag )
        NodeAllocator::Free( inNode );
    else
        ::operator delete( const_cast<XPlistNode*>( inNode ) );
}

template<class T, class... Arguments>
T* XPlistMaker::New( std::size_t inExtra, const Arguments&... inArguments )
{
    constexpr auto kKind =
        std::is_base_of_v<XPlistContainer, T> ? NodeAllocator::Kind::kContainer : NodeAllocator::Kind::kLeaf;
    const std::size_t bytes = sizeof( T ) + inExtra;
    if ( bytes <= NodeAllocator::kMostBytes )
    {
        if ( void* const place = NodeAllocator::Allocate( bytes, kKind ) )
        {
            T* const node = new ( place ) T( inArguments... );
            node->mFlags |= XPlistNode::kChunkFlag;
            return node;
        }
    }
    return new ( ::operator new( bytes ) ) T( inArguments... );
}

// Containers that lose their last holder wait in a list that is threaded through their own heads:
// the reference count is dead by then and holds the lower half of the link, mLinkHigh the upper.
void XPlistNode::Destroy( const XPlistNode* inNode )
{
    const auto isContainer = []( const XPlistNode* node ) { return node->mType >= XPlistType::kArray; };
    if ( not isContainer( inNode ) )
    {
        FreeMemory( inNode );
        return;
    }

    const XPlistContainer* pending = nullptr;
    const auto push = [&pending]( const XPlistNode* node ) {
        const auto* const container = static_cast<const XPlistContainer*>( node );
        const auto link = reinterpret_cast<std::uintptr_t>( pending );
        container->mReferences.store( std::uint32_t( link ), std::memory_order_relaxed );
        container->mLinkHigh = std::uint32_t( std::uint64_t( link ) >> 32 );
        pending = container;
    };
    NodeAllocator::Freeing freeing;
    const auto freeMemory = [&freeing]( const XPlistNode* node ) {
        if ( node->mFlags & kChunkFlag )
            freeing.Free( node );
        else
            ::operator delete( const_cast<XPlistNode*>( node ) );
    };
    const auto releaseLeaf = [&]( const XPlistNode* node ) {
        if ( node->mFlags & ( kInternedFlag | kForeverFlag ) )
            node->ReleaseInterned();
        else if ( node->mReferences.load( std::memory_order_acquire ) == 1 or
            node->mReferences.fetch_sub( 1, std::memory_order_acq_rel ) == 1 )
            freeMemory( node );
    };
    const auto release = [&]( const XPlistNode* node ) {
        if ( not isContainer( node ) )
            releaseLeaf( node );
        else if ( node->mReferences.load( std::memory_order_acquire ) == 1 or
            node->mReferences.fetch_sub( 1, std::memory_order_acq_rel ) == 1 )
            push( node );
    };

    push( inNode );
    while ( pending )
    {
        const XPlistContainer* const container = pending;
        pending = reinterpret_cast<const XPlistContainer*>(
            std::uintptr_t( container->mReferences.load( std::memory_order_relaxed ) |
                ( std::uint64_t( container->mLinkHigh ) << 32 ) ) );
        if ( container->mType == XPlistType::kArray )
        {
            for ( const XPlistNode* const node : static_cast<const XPlistArray*>( container )->Nodes() )
                release( node );
        }
        else
        {
            for ( const auto& entry : static_cast<const XPlistDictionary*>( container )->GetEntries() )
            {
                entry.mKey->Release();
                release( entry.mValue );
            }
        }
        freeMemory( container );
    }
}

XPlistString* XPlistMaker::NewASCII( std::size_t inLength )
{
    return New<XPlistString>( inLength, inLength, 0 );
}

XPlistString* XPlistMaker::NewWide( std::size_t inLength )
{
    return New<XPlistString>( inLength * sizeof( char16_t ), inLength, XPlistNode::kWideFlag );
}

XPlistNumber* XPlistMaker::NewInteger( std::int64_t inValue )
{
    return New<XPlistNumber>( 0, std::uint64_t( inValue ), 0 );
}

XPlistNumber* XPlistMaker::NewUnsigned( std::uint64_t inValue )
{
    const bool fits = inValue <= std::uint64_t( std::numeric_limits<std::int64_t>::max() );
    return New<XPlistNumber>( 0, inValue, fits ? 0 : XPlistNode::kUnsignedFlag );
}

XPlistNumber* XPlistMaker::NewReal( double inValue )
{
    return New<XPlistNumber>( 0, std::bit_cast<std::uint64_t>( inValue ), XPlistNode::kRealFlag );
}

XPlistDate* XPlistMaker::NewDate( double inSeconds )
{
    return New<XPlistDate>( 0, inSeconds );
}

XPlistData* XPlistMaker::NewData( std::size_t inLength )
{
    return New<XPlistData>( inLength, inLength );
}

XPlistArray* XPlistMaker::NewArray( std::size_t inCount )
{
    return New<XPlistArray>( inCount * sizeof( XPlistNode* ), inCount );
}

XPlistDictionary* XPlistMaker::NewDictionary( std::size_t inCount )
{
    return New<XPlistDictionary>( inCount * sizeof( XPlistDictionary::Entry ), inCount );
}

std::size_t XPlistMaker::SortEntries(
    XPlistDictionary* inDictionary, std::vector<__SafeCFPropertyList>* outGivenUp, const KeyRanks* inRanks )
{
    using Entry = XPlistDictionary::Entry;
    const auto compare = [inRanks]( const Entry& a, const Entry& b ) {
        if ( a.mKey == b.mKey )
            return 0;
        if ( inRanks )
        {
            const auto x = inRanks->find( a.mKey ), y = inRanks->find( b.mKey );
            if ( x != inRanks->end() and y != inRanks->end() )
                return x->second < y->second ? -1 : x->second > y->second ? 1 : 0;
        }
        // Most keys differ in their first letter already.
        if ( a.mKey->GetLength() > 0 and b.mKey->GetLength() > 0 and a.mKey->UnitAt( 0 ) != b.mKey->UnitAt( 0 ) )
            return a.mKey->UnitAt( 0 ) < b.mKey->UnitAt( 0 ) ? -1 : 1;
        return a.mKey->Compare( *b.mKey );
    };
    const std::span<Entry> entries( inDictionary->MutableEntries(), inDictionary->GetCount() );

    // Files hold dictionaries in order, mostly, so look before sorting.
    std::size_t ordered = 1;
    while ( ordered < entries.size() and compare( entries[ordered - 1], entries[ordered] ) < 0 )
        ++ordered;
    if ( ordered >= entries.size() )
        return 0;

    constexpr std::size_t kShort = 24;
    if ( entries.size() <= kShort )
    {
        for ( std::size_t i = ordered; i < entries.size(); ++i )
        {
            const Entry entry = entries[i];
            std::size_t hole = i;
            for ( ; hole > 0 and compare( entry, entries[hole - 1] ) < 0; --hole )
                entries[hole] = entries[hole - 1];
            entries[hole] = entry;
        }
    }
    else
    {
        std::stable_sort( entries.begin(), entries.end(),
            [&compare]( const Entry& a, const Entry& b ) { return compare( a, b ) < 0; } );
    }

    if ( outGivenUp )
    {
        // Room first: running out of memory between two entries would leave one of them held twice.
        std::size_t doubled = 0;
        for ( std::size_t i = 1; i < entries.size(); ++i )
            doubled += compare( entries[i - 1], entries[i] ) == 0;
        const std::size_t needed = outGivenUp->size() + 2 * doubled;
        if ( needed > outGivenUp->capacity() )
            outGivenUp->reserve( std::max( needed, 2 * outGivenUp->capacity() ) );
    }
    std::size_t kept = 0;
    for ( const Entry& entry : entries )
    {
        if ( kept > 0 and compare( entries[kept - 1], entry ) == 0 )
        {
            for ( const XPlistNode* const node :
                { static_cast<const XPlistNode*>( entries[kept - 1].mKey ), entries[kept - 1].mValue } )
            {
                if ( outGivenUp )
                    outGivenUp->emplace_back( CFContainer<XPlistNode>::Adopt( node ) );
                else
                    node->Release();
            }
            entries[kept - 1] = entry;
        }
        else
            entries[kept++] = entry;
    }
    inDictionary->mCount = std::uint32_t( kept );
    return entries.size() - kept;
}

CFContainer<XPlistString> XPlistString::Make( TextView inText )
{
    if ( not IsAllASCII( inText ) )
    {
        XPlistString* const string = XPlistMaker::NewWide( inText.size() );
        std::memcpy( XPlistMaker::WideBuffer( string ), inText.data(), inText.size() * sizeof( char16_t ) );
        return CFContainer<XPlistString>::Adopt( string );
    }
    XPlistString* const string = XPlistMaker::NewASCII( inText.size() );
    std::transform( inText.begin(), inText.end(), XPlistMaker::ASCIIBuffer( string ),
        []( char16_t unit ) { return char( unit ); } );
    return CFContainer<XPlistString>::Adopt( string );
}

CFContainer<XPlistString> XPlistString::MakeASCII( std::string_view inASCII )
{
    XPlistString* const string = XPlistMaker::NewASCII( inASCII.size() );
    inASCII.copy( XPlistMaker::ASCIIBuffer( string ), inASCII.size() ); // unlike memcpy, takes an empty view of nothing
    return CFContainer<XPlistString>::Adopt( string );
}

CFContainer<XPlistString> XPlistString::MakeUTF8( std::string_view inUTF8 )
{
    return IsAllASCII( inUTF8 ) ? MakeASCII( inUTF8 ) : Make( TextFromUTF8( inUTF8 ) );
}

CFContainer<XPlistString> XPlistString::Intern( CFContainer<XPlistString> inString )
{
    const XPlistString& string = *inString;
    if ( string.mFlags & ( kInternedFlag | kAloneFlag ) )
        return inString;
    const std::uint32_t hash = string.IsASCII() ? XPlistDetail::HashUnits( string.ASCII().data(), string.mLength )
                                                : XPlistDetail::HashUnits( string.Wide().data(), string.mLength );
    return XPlistKeyTable::Get().FindOrAdd(
        hash, [&string]( const XPlistString& known ) { return known.Equals( string ); },
        [&] {
            // Others may be reading a shared string, so only one that is nobody else's is marked; the
            // acquire lets what the last of them did come first.
            if ( string.mReferences.load( std::memory_order_acquire ) == 1 )
                return inString;
            return string.IsASCII() ? MakeASCII( string.ASCII() ) : Make( string.Wide() );
        } );
}

CFContainer<XPlistString> XPlistString::InternASCII( std::string_view inASCII )
{
    return XPlistKeyTable::Get().FindOrAdd(
        XPlistDetail::HashUnits( inASCII.data(), inASCII.size() ),
        [inASCII]( const XPlistString& known ) { return known.Equals( inASCII ); },
        [inASCII] { return MakeASCII( inASCII ); } );
}

namespace
{
// Keys of code are few and come again and again. What is remembered is held, so at most so many stay. Bare
// pointers, as keys are still asked for while the objects of a thread or the program are destroyed.
constexpr std::size_t kRememberedKeys = 1024;
constinit thread_local const XPlistString* gRemembered[kRememberedKeys] = {};

struct ForgetAtThreadEnd
{
    ~ForgetAtThreadEnd()
    {
        for ( const XPlistString*& remembered : gRemembered )
        {
            if ( const XPlistString* const key = std::exchange( remembered, nullptr ) )
                key->Release();
        }
    }
};
} // namespace

CFContainer<XPlistString> XPlistString::Intern( const XKey& inKey )
{
    const XPlistString*& remembered = gRemembered[( inKey.Hash() ^ inKey.Hash() >> 15 ) % kRememberedKeys];
    if ( not remembered or remembered->mKeyHash != inKey.Hash() or not remembered->Equals( inKey.Name() ) )
    {
        static thread_local const ForgetAtThreadEnd gForget;
        static_cast<void>( &gForget );
        CFContainer<XPlistString> key = InternASCII( inKey.Name() );
        if ( remembered )
            remembered->Release();
        remembered = XPlistMaker::Take( key );
    }
    return CFContainer<XPlistString>::Share( remembered );
}

CFContainer<XPlistNumber> XPlistNumber::Make( std::int64_t inValue )
{
    static XPlistNumber* const* const gShared = [] {
        static XPlistNumber* shared[kSharedIntegers];
        for ( std::int64_t i = 0; i < kSharedIntegers; ++i )
        {
            shared[i] = XPlistMaker::NewInteger( i );
            shared[i]->mFlags |= kForeverFlag;
        }
        return shared;
    }();
    if ( inValue >= 0 and inValue < kSharedIntegers )
        return CFContainer<XPlistNumber>::Share( gShared[inValue] );
    return CFContainer<XPlistNumber>::Adopt( XPlistMaker::NewInteger( inValue ) );
}

CFContainer<XPlistNumber> XPlistNumber::MakeUnsigned( std::uint64_t inValue )
{
    return CFContainer<XPlistNumber>::Adopt( XPlistMaker::NewUnsigned( inValue ) );
}

CFContainer<XPlistNumber> XPlistNumber::MakeReal( double inValue )
{
    return CFContainer<XPlistNumber>::Adopt( XPlistMaker::NewReal( inValue ) );
}

CFContainer<XPlistBoolean> XPlistBoolean::Make( bool inValue )
{
    static const XPlistBoolean* const gFalse = new XPlistBoolean( false );
    static const XPlistBoolean* const gTrue = new XPlistBoolean( true );
    return CFContainer<XPlistBoolean>::Share( inValue ? gTrue : gFalse );
}

CFContainer<XPlistDate> XPlistDate::Make( double inSeconds )
{
    return CFContainer<XPlistDate>::Adopt( XPlistMaker::NewDate( inSeconds ) );
}

CFContainer<XPlistData> XPlistData::Make( std::span<const std::uint8_t> inBytes )
{
    XPlistData* const data = XPlistMaker::NewData( inBytes.size() );
    if ( not inBytes.empty() )
        std::memcpy( XPlistMaker::DataBuffer( data ), inBytes.data(), inBytes.size() );
    return CFContainer<XPlistData>::Adopt( data );
}

void XPlistMaker::RemoveEntries( XPlistDictionary* inDictionary, const XPlistNode* inValue )
{
    XPlistDictionary::Entry* const first = inDictionary->MutableEntries();
    std::uint32_t kept = 0;
    for ( std::uint32_t i = 0; i < inDictionary->mCount; ++i )
    {
        if ( first[i].mValue != inValue )
            first[kept++] = first[i];
        else
        {
            first[i].mKey->Release();
            first[i].mValue->Release();
        }
    }
    inDictionary->mCount = kept;
}
