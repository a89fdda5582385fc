// The property-list value: what everything that is persisted passes through. A value is a
// string, number, boolean, date, data, array or dictionary; it is immutable once made and
// shared by handles that count references, so that copying one costs an increment and any
// thread may read it. Dictionaries and arrays are built with XMutableDictionary and
// XMutableArray and sealed into values.
//
// Memory: one allocation for each value. Strings that are all ASCII take a byte a character,
// others two. The strings that serve as dictionary keys are interned, so that memory holds
// each key once and a comparison is mostly one of pointers.
#pragma once

#include "CFMethods/Text.h"

#include <atomic>
#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

/// What a value is. Every read compares this first.
enum class XPlistType : std::uint8_t { kString, kNumber, kBoolean, kDate, kData, kArray, kDictionary };

/// The type's word for people: "string", "number", "boolean", "date", "data", "array", "dictionary".
[[nodiscard]] const char* NameOf( XPlistType inType );

class XKey;
class XPlistArray;
class XPlistDictionary;
class XText;

/// The common head of all values: reference count and type.
class XPlistNode
{
public:
    XPlistNode( const XPlistNode& ) = delete;
    XPlistNode& operator=( const XPlistNode& ) = delete;

    [[nodiscard]] XPlistType GetType() const { return mType; }

    void Retain() const
    {
        if ( not( mFlags & kForeverFlag ) )
            mReferences.fetch_add( 1, std::memory_order_relaxed );
    }
    void Release() const
    {
        if ( mFlags & ( kInternedFlag | kForeverFlag ) )
            ReleaseInterned();
        // The last holder may destroy without an atomic write: nobody else can see the value.
        else if ( mReferences.load( std::memory_order_acquire ) == 1 or
            mReferences.fetch_sub( 1, std::memory_order_acq_rel ) == 1 )
            Destroy( this );
    }
    [[nodiscard]] std::uint32_t GetRetainCount() const { return mReferences.load( std::memory_order_relaxed ); }

protected:
    friend struct XPlistMaker;
    XPlistNode( XPlistType inType, std::uint8_t inFlags ) : mType( inType ), mFlags( inFlags ) {}
    ~XPlistNode() = default;

    static constexpr std::uint8_t kWideFlag = 1;     // a string in UTF-16
    static constexpr std::uint8_t kInternedFlag = 2; // a string in the table of keys
    static constexpr std::uint8_t kRealFlag = 4;     // a number that is a 64-bit float
    static constexpr std::uint8_t kUnsignedFlag = 8; // an integer above the signed 64-bit range
    static constexpr std::uint8_t kAloneFlag = 16;   // a key that the table had no room for
    static constexpr std::uint8_t kChunkFlag = 32;   // out of a chunk of the node allocator, not the heap

    static constexpr std::uint8_t kForeverFlag = 64; // never freed, so not counted: the keys and values of every file

    static void Destroy( const XPlistNode* inNode );
    static void FreeMemory( const XPlistNode* inNode );
    // A key in the table may be found by another thread at any moment, so its last release is
    // decided under the table's lock.
    void ReleaseInterned() const
    {
        if ( not( mFlags & kForeverFlag ) )
            ReleaseCountedKey();
    }
    void ReleaseCountedKey() const;

    mutable std::atomic<std::uint32_t> mReferences{ 1 };
    XPlistType mType;
    std::uint8_t mFlags;
};

/// Owning holder of one reference-counted value of type T; may hold none.
template<class T>
class CFContainer
{
public:
    CFContainer() = default;
    CFContainer( std::nullptr_t ) {}
    CFContainer( const CFContainer& inOther ) : mRef( inOther.mRef )
    {
        if ( mRef )
            mRef->Retain();
    }
    CFContainer( CFContainer&& inOther ) noexcept : mRef( std::exchange( inOther.mRef, nullptr ) ) {}
    CFContainer& operator=( CFContainer inOther ) noexcept
    {
        std::swap( mRef, inOther.mRef );
        return *this;
    }
    ~CFContainer()
    {
        if ( mRef )
            mRef->Release();
    }

    /// Takes over a reference that the caller owns.
    [[nodiscard]] static CFContainer Adopt( const T* inRef )
    {
        CFContainer result;
        result.mRef = inRef;
        return result;
    }
    /// Adds a reference of its own.
    [[nodiscard]] static CFContainer Share( const T* inRef )
    {
        if ( inRef )
            inRef->Retain();
        return Adopt( inRef );
    }

    [[nodiscard]] const T* GetCFRef() const { return mRef; }
    /// Gives the reference to the caller, who must release it; asserts that there is one.
    [[nodiscard]] const T* Release();

    const T* operator->() const { return mRef; }
    const T& operator*() const { return *mRef; }
    explicit operator bool() const { return mRef != nullptr; }
    bool operator==( std::nullptr_t ) const { return mRef == nullptr; }

private:
    friend struct XPlistMaker;
    const T* mRef = nullptr;
};

namespace XPlistDetail
{
void AssertReleasable( const void* inRef, std::uint32_t inRetainCount );

// One hash for keys at compile time and at run time: FNV-1a over UTF-16 units. Keys are
// short; long texts are hashed by whoever needs it, with a faster function.
constexpr std::uint32_t kHashSeed = 2166136261u;
constexpr std::uint32_t HashUnit( std::uint32_t inHash, std::uint32_t inUnit )
{
    return ( inHash ^ inUnit ) * 16777619u;
}
template<class Unit>
constexpr std::uint32_t HashUnits( const Unit* inUnits, std::size_t inLength )
{
    std::uint32_t hash = kHashSeed;
    for ( std::size_t i = 0; i < inLength; ++i )
        hash = HashUnit( hash, std::uint32_t( static_cast<std::make_unsigned_t<Unit>>( inUnits[i] ) ) );
    return hash;
}
template<>
constexpr std::uint32_t HashUnits<char16_t>( const char16_t* inUnits, std::size_t inLength )
{
    std::uint32_t hash = kHashSeed;
    for ( std::size_t i = 0; i < inLength; ++i )
        hash = HashUnit( hash, inUnits[i] );
    return hash;
}
} // namespace XPlistDetail

template<class T>
const T* CFContainer<T>::Release()
{
    XPlistDetail::AssertReleasable( mRef, mRef ? mRef->GetRetainCount() : 0 );
    return std::exchange( mRef, nullptr );
}

/// A string value. Units are ASCII bytes or UTF-16; a string that could be ASCII is ASCII, so equal
/// strings have the same form. Lone surrogates are kept.
class XPlistString final : public XPlistNode
{
public:
    [[nodiscard]] std::size_t GetLength() const { return mLength; } ///< in UTF-16 units
    [[nodiscard]] bool IsASCII() const { return not( mFlags & kWideFlag ); }
    [[nodiscard]] std::string_view ASCII() const { return { reinterpret_cast<const char*>( this + 1 ), mLength }; }
    [[nodiscard]] TextView Wide() const { return { reinterpret_cast<const char16_t*>( this + 1 ), mLength }; }
    [[nodiscard]] char16_t UnitAt( std::size_t inIndex ) const
    {
        return IsASCII() ? char16_t( static_cast<unsigned char>( ASCII()[inIndex] ) ) : Wide()[inIndex];
    }

    [[nodiscard]] Text GetText() const;
    [[nodiscard]] std::string GetUTF8() const;
    [[nodiscard]] bool Equals( const XPlistString& inOther ) const;
    [[nodiscard]] bool Equals( TextView inText ) const;
    [[nodiscard]] bool Equals( std::string_view inASCII ) const;
    /// Order by UTF-16 units: negative, 0 or positive.
    [[nodiscard]] int Compare( const XPlistString& inOther ) const;

    [[nodiscard]] static CFContainer<XPlistString> Make( TextView inText );
    /// Bytes above 127 aren't allowed.
    [[nodiscard]] static CFContainer<XPlistString> MakeASCII( std::string_view inASCII );
    [[nodiscard]] static CFContainer<XPlistString> MakeUTF8( std::string_view inUTF8 );

    /// The one shared string of this content that serves as a dictionary key. Interning never
    /// fails; a content that would make the table slow (crafted collisions) isn't shared, and the key that
    /// it gives serves by itself: interning that one again gives it back.
    [[nodiscard]] static CFContainer<XPlistString> Intern( CFContainer<XPlistString> inString );
    [[nodiscard]] static CFContainer<XPlistString> InternASCII( std::string_view inASCII );
    /// The string of a key in code. Each thread remembers those that it used last.
    [[nodiscard]] static CFContainer<XPlistString> Intern( const XKey& inKey );

    /// The key hash; only of strings that were interned.
    [[nodiscard]] std::uint32_t KeyHash() const { return mKeyHash; }
    [[nodiscard]] bool IsInterned() const { return mFlags & kInternedFlag; }

private:
    friend class XPlistNode;
    friend class XPlistKeyTable;
    friend struct XPlistMaker;
    XPlistString( std::size_t inLength, std::uint8_t inFlags )
        : XPlistNode( XPlistType::kString, inFlags ),
          mLength( std::uint32_t( inLength ) )
    {}

    std::uint32_t mLength;
    mutable std::uint32_t mKeyHash = 0;
};

/// A number: a 64-bit integer (signed, or unsigned above the signed range) or a 64-bit float. Which
/// of the two survives both codecs.
class XPlistNumber final : public XPlistNode
{
public:
    [[nodiscard]] bool IsReal() const { return mFlags & kRealFlag; }
    /// True for an integer above the signed 64-bit range, which only UnsignedValue holds.
    [[nodiscard]] bool IsUnsigned() const { return mFlags & kUnsignedFlag; }
    [[nodiscard]] std::int64_t SignedValue() const { return std::bit_cast<std::int64_t>( mBits ); }
    [[nodiscard]] std::uint64_t UnsignedValue() const { return mBits; }
    [[nodiscard]] double RealValue() const { return std::bit_cast<double>( mBits ); }
    [[nodiscard]] std::uint64_t Bits() const { return mBits; }

    /// Each read is false, and leaves the target untouched, when the value doesn't fit: a fraction,
    /// or a magnitude beyond the width. A whole float reads as an integer.
    [[nodiscard]] bool Get( std::int32_t& outValue ) const;
    [[nodiscard]] bool Get( std::int64_t& outValue ) const;
    [[nodiscard]] double AsReal() const;

    [[nodiscard]] static CFContainer<XPlistNumber> Make( std::int64_t inValue );
    [[nodiscard]] static CFContainer<XPlistNumber> MakeUnsigned( std::uint64_t inValue );
    [[nodiscard]] static CFContainer<XPlistNumber> MakeReal( double inValue );

private:
    friend class XPlistNode;
    friend struct XPlistMaker;
    XPlistNumber( std::uint64_t inBits, std::uint8_t inFlags )
        : XPlistNode( XPlistType::kNumber, inFlags ),
          mBits( inBits )
    {}

    std::uint64_t mBits;
};

/// True or false; there are just two such values.
class XPlistBoolean final : public XPlistNode
{
public:
    [[nodiscard]] bool GetValue() const { return mValue; }
    [[nodiscard]] static CFContainer<XPlistBoolean> Make( bool inValue );

private:
    friend class XPlistNode;
    explicit XPlistBoolean( bool inValue ) : XPlistNode( XPlistType::kBoolean, kForeverFlag ), mValue( inValue ) {}

    bool mValue;
};

/// A date: seconds since 2001-01-01 00:00:00 UTC, kept to the bit.
class XPlistDate final : public XPlistNode
{
public:
    [[nodiscard]] double GetSeconds() const { return mSeconds; }
    [[nodiscard]] static CFContainer<XPlistDate> Make( double inSeconds );

private:
    friend class XPlistNode;
    friend struct XPlistMaker;
    explicit XPlistDate( double inSeconds ) : XPlistNode( XPlistType::kDate, 0 ), mSeconds( inSeconds ) {}

    double mSeconds;
};

/// Raw bytes.
class XPlistData final : public XPlistNode
{
public:
    [[nodiscard]] std::span<const std::uint8_t> GetBytes() const
    {
        return { reinterpret_cast<const std::uint8_t*>( this + 1 ), mLength };
    }
    [[nodiscard]] static CFContainer<XPlistData> Make( std::span<const std::uint8_t> inBytes );

private:
    friend class XPlistNode;
    friend struct XPlistMaker;
    explicit XPlistData( std::size_t inLength ) : XPlistNode( XPlistType::kData, 0 ), mLength( inLength ) {}

    std::uint64_t mLength;
};

/// The name of a dictionary key in code, with its hash: CFSTR("UID"). It owns nothing; use it as a
/// parameter only. Keys in code are ASCII.
class XKey
{
public:
    constexpr explicit XKey( std::string_view inName )
        : mName( inName ),
          mHash( XPlistDetail::HashUnits( inName.data(), inName.size() ) )
    {}

    [[nodiscard]] constexpr std::string_view Name() const { return mName; }
    [[nodiscard]] constexpr std::uint32_t Hash() const { return mHash; }

private:
    std::string_view mName;
    std::uint32_t mHash;
};

// A lambda, so that the hash is worked out at compile time wherever the key stands.
#define CFSTR( inLiteral ) ( []() consteval { return XKey( inLiteral ); }() )

/// The opaque handle of any property-list value; may be null.
class __SafeCFPropertyList
{
public:
    __SafeCFPropertyList() = default;
    __SafeCFPropertyList( std::nullptr_t ) {}
    template<class T>
    requires std::is_base_of_v<XPlistNode, T> __SafeCFPropertyList( CFContainer<T> inValue )
        : mNode( CFContainer<XPlistNode>::Adopt( inValue ? inValue.Release() : nullptr ) )
    {}
    __SafeCFPropertyList( const XText& inText );
    /// Shares the node.
    explicit __SafeCFPropertyList( const XPlistNode* inNode ) : mNode( CFContainer<XPlistNode>::Share( inNode ) ) {}

    [[nodiscard]] static __SafeCFPropertyList String( TextView inText ) { return XPlistString::Make( inText ); }
    [[nodiscard]] static __SafeCFPropertyList Integer( std::int64_t inValue ) { return XPlistNumber::Make( inValue ); }
    [[nodiscard]] static __SafeCFPropertyList Real( double inValue ) { return XPlistNumber::MakeReal( inValue ); }
    [[nodiscard]] static __SafeCFPropertyList Boolean( bool inValue ) { return XPlistBoolean::Make( inValue ); }

    explicit operator bool() const { return bool( mNode ); }
    [[nodiscard]] const XPlistNode* GetNode() const { return mNode.GetCFRef(); }
    /// The type; the handle must not be null.
    [[nodiscard]] XPlistType GetType() const { return mNode->GetType(); }
    [[nodiscard]] bool Is( XPlistType inType ) const { return mNode and mNode->GetType() == inType; }

    // Each is null when the value is null or of another type.
    [[nodiscard]] const XPlistString* AsString() const { return As<XPlistString>( XPlistType::kString ); }
    [[nodiscard]] const XPlistNumber* AsNumber() const { return As<XPlistNumber>( XPlistType::kNumber ); }
    [[nodiscard]] const XPlistBoolean* AsBoolean() const { return As<XPlistBoolean>( XPlistType::kBoolean ); }
    [[nodiscard]] const XPlistDate* AsDate() const { return As<XPlistDate>( XPlistType::kDate ); }
    [[nodiscard]] const XPlistData* AsData() const { return As<XPlistData>( XPlistType::kData ); }
    [[nodiscard]] const XPlistArray* AsArray() const;
    [[nodiscard]] const XPlistDictionary* AsDictionary() const;

    /// Deep equality: same types, integers apart from reals, floats by their bits, strings by units,
    /// dictionaries whatever their order of making. Two nulls are equal. Doesn't recurse.
    [[nodiscard]] bool Equals( const __SafeCFPropertyList& inOther ) const;
    friend bool operator==( const __SafeCFPropertyList& a, const __SafeCFPropertyList& b ) { return a.Equals( b ); }

private:
    template<class T>
    const T* As( XPlistType inType ) const
    {
        return Is( inType ) ? static_cast<const T*>( mNode.GetCFRef() ) : nullptr;
    }

    friend struct XPlistMaker;
    CFContainer<XPlistNode> mNode;
};

/// A text field of a model object: a shared immutable string, or null. Null and "" differ.
class XText
{
public:
    XText() = default;
    XText( std::nullptr_t ) {}
    XText( CFContainer<XPlistString> inString ) : mString( std::move( inString ) ) {}
    XText( TextView inText ) : mString( XPlistString::Make( inText ) ) {}
    XText( const Text& inText ) : XText( TextView( inText ) ) {}
    XText( const char16_t* inText ) : XText( TextView( inText ) ) {}

    [[nodiscard]] bool IsNull() const { return not mString; }
    [[nodiscard]] bool IsEmpty() const { return not mString or mString->GetLength() == 0; }
    [[nodiscard]] std::size_t GetLength() const { return mString ? mString->GetLength() : 0; }
    /// The text; "" for null.
    [[nodiscard]] Text GetText() const { return mString ? mString->GetText() : Text(); }
    [[nodiscard]] std::string GetUTF8() const { return mString ? mString->GetUTF8() : std::string(); }
    [[nodiscard]] const CFContainer<XPlistString>& GetString() const { return mString; }

    /// By content; null equals only null.
    [[nodiscard]] bool Equals( const XText& inOther ) const
    {
        if ( mString.GetCFRef() == inOther.mString.GetCFRef() )
            return true;
        return mString and inOther.mString and mString->Equals( *inOther.mString );
    }
    template<std::convertible_to<TextView> Other>
    [[nodiscard]] bool Equals( const Other& inText ) const
    {
        return mString and mString->Equals( TextView( inText ) );
    }
    friend bool operator==( const XText& a, const XText& b ) { return a.Equals( b ); }

private:
    CFContainer<XPlistString> mString;
};

inline __SafeCFPropertyList::__SafeCFPropertyList( const XText& inText ) : __SafeCFPropertyList( inText.GetString() ) {}

/// What arrays and dictionaries share: a count, and room for the link that destroying uses.
class XPlistContainer : public XPlistNode
{
public:
    [[nodiscard]] std::size_t GetCount() const { return mCount; }

protected:
    friend class XPlistNode;
    friend struct XPlistMaker;
    XPlistContainer( XPlistType inType, std::size_t inCount )
        : XPlistNode( inType, 0 ),
          mCount( std::uint32_t( inCount ) )
    {}
    ~XPlistContainer() = default;

    std::uint32_t mCount;
    mutable std::uint32_t mLinkHigh = 0; // see XPlistNode::Destroy
};

/// An ordered list of values; no element is null. At most 2^32 - 1 of them.
class XPlistArray final : public XPlistContainer
{
public:
    /// The element; beyond the end asserts "inIndex < GetCount()" and gives null.
    [[nodiscard]] __SafeCFPropertyList GetValueAt( std::size_t inIndex ) const;
    [[nodiscard]] const XPlistNode* NodeAt( std::size_t inIndex ) const { return Nodes()[inIndex]; }
    [[nodiscard]] std::span<const XPlistNode* const> Nodes() const
    {
        return { reinterpret_cast<const XPlistNode* const*>( this + 1 ), mCount };
    }
    [[nodiscard]] bool IsCorrectTypeID() const { return GetType() == XPlistType::kArray; }

private:
    friend class XPlistNode;
    friend class XMutableArray;
    friend struct XPlistMaker;
    explicit XPlistArray( std::size_t inCount ) : XPlistContainer( XPlistType::kArray, inCount ) {}
    const XPlistNode** MutableNodes() { return reinterpret_cast<const XPlistNode**>( this + 1 ); }
};

/// Keys and their values, kept in the order of the keys' UTF-16 units whatever order they were set in,
/// so that equal dictionaries are written as equal bytes.
class XPlistDictionary final : public XPlistContainer
{
public:
    struct Entry
    {
        const XPlistString* mKey;
        const XPlistNode* mValue;
    };

    [[nodiscard]] std::span<const Entry> GetEntries() const
    {
        return { reinterpret_cast<const Entry*>( this + 1 ), mCount };
    }
    [[nodiscard]] bool IsCorrectTypeID() const { return GetType() == XPlistType::kDictionary; }

    /// The value of a key, or null. Lives as long as the dictionary.
    [[nodiscard]] const XPlistNode* Find( const XKey& inKey ) const;
    [[nodiscard]] const XPlistNode* Find( const XText& inKey ) const;
    [[nodiscard]] bool Contains( const XKey& inKey ) const { return Find( inKey ) != nullptr; }

    // Typed reads: true only if the key is there, its value has the type of the target, and a number
    // fits its width. The target is untouched otherwise.
    [[nodiscard]] bool Get( const XKey& inKey, bool& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, std::int32_t& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, std::int64_t& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, double& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, XText& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, CFContainer<XPlistArray>& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, CFContainer<XPlistDictionary>& outValue ) const;
    [[nodiscard]] bool Get( const XKey& inKey, CFContainer<XPlistData>& outValue ) const;
    /// Any type.
    [[nodiscard]] bool Get( const XKey& inKey, __SafeCFPropertyList& outValue ) const;

private:
    friend class XPlistNode;
    friend class XMutableDictionary;
    friend struct XPlistMaker;
    explicit XPlistDictionary( std::size_t inCount ) : XPlistContainer( XPlistType::kDictionary, inCount ) {}
    Entry* MutableEntries() { return reinterpret_cast<Entry*>( this + 1 ); }
    template<class T, class Take>
    bool GetAs( const XKey& inKey, XPlistType inType, const Take& inTake ) const;
};

inline const XPlistArray* __SafeCFPropertyList::AsArray() const
{
    return As<XPlistArray>( XPlistType::kArray );
}

inline const XPlistDictionary* __SafeCFPropertyList::AsDictionary() const
{
    return As<XPlistDictionary>( XPlistType::kDictionary );
}

/// A list of values being built. Not shared; one thread.
class XMutableArray
{
public:
    void Reserve( std::size_t inCount ) { mValues.reserve( inCount ); }
    /// Appends; a null value is dropped, for an array holds none.
    void Append( __SafeCFPropertyList inValue );
    [[nodiscard]] std::size_t GetCount() const { return mValues.size(); }
    /// The value; this is empty again afterwards.
    [[nodiscard]] CFContainer<XPlistArray> Seal();

private:
    std::vector<__SafeCFPropertyList> mValues;
};

/// A dictionary being built. Not shared; one thread. Setting appends, and sealing sorts: so a dictionary
/// of a hundred thousand keys is built in n log n, whatever their order.
class XMutableDictionary
{
public:
    XMutableDictionary();
    ~XMutableDictionary();
    XMutableDictionary( XMutableDictionary&& ) = default;
    XMutableDictionary& operator=( XMutableDictionary&& ) = default;

    /// Sets or replaces; a null value removes the key.
    void Set( const XKey& inKey, __SafeCFPropertyList inValue );
    void Set( const XText& inKey, __SafeCFPropertyList inValue );
    void SetBoolean( const XKey& inKey, bool inValue ) { Set( inKey, __SafeCFPropertyList::Boolean( inValue ) ); }
    void SetInteger( const XKey& inKey, std::int64_t inValue )
    {
        Set( inKey, __SafeCFPropertyList::Integer( inValue ) );
    }
    void SetReal( const XKey& inKey, double inValue ) { Set( inKey, __SafeCFPropertyList::Real( inValue ) ); }
    void SetText( const XKey& inKey, const XText& inValue ) { Set( inKey, __SafeCFPropertyList( inValue ) ); }
    template<std::convertible_to<TextView> Value>
    void SetText( const XKey& inKey, const Value& inValue )
    {
        Set( inKey, __SafeCFPropertyList::String( inValue ) );
    }
    /// Sets every entry of a dictionary.
    void SetAll( const XPlistDictionary& inSource );

    /// The value; this is empty again afterwards.
    [[nodiscard]] CFContainer<XPlistDictionary> Seal();

private:
    struct Slot
    {
        CFContainer<XPlistString> mKey;
        __SafeCFPropertyList mValue;
    };
    struct SpareRooms;

    std::vector<Slot> mSlots; // in the order of setting; the last of equal keys counts
};

/// True for null, and for anything whose length or count is 0; a number, boolean or date is never empty.
[[nodiscard]] bool IsEmpty( const __SafeCFPropertyList& inValue );
[[nodiscard]] inline bool IsEmpty( const XText& inText )
{
    return inText.IsEmpty();
}
[[nodiscard]] inline bool IsEmpty( TextView inText )
{
    return inText.empty();
}
