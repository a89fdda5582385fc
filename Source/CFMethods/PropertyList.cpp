#include "CFMethods/PropertyList.h"

#include "CFMethods/PropertyListMaker.h"
#include "CFMethods/PropertyListReadObserver.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constinit thread_local XPlistReadObserver* gReadObserver = nullptr;

constexpr const char* kTypeNames[] = { "string", "number", "boolean", "date", "data", "array", "dictionary" };
static_assert( std::size( kTypeNames ) == std::size_t( XPlistType::kDictionary ) + 1 );
} // namespace

const char* NameOf( XPlistType inType )
{
    return kTypeNames[std::size_t( inType )];
}

void XPlistDetail::AssertReleasable( const void* inRef, std::uint32_t inRetainCount )
{
    XAssertText( inRef != nullptr, "GetCFRef() != nullptr" );
    XAssertText( inRef == nullptr or inRetainCount >= 1, "GetRetainCount() >= 1" );
}

Text XPlistString::GetText() const
{
    return IsASCII() ? TextFromASCII( ASCII() ) : Text( Wide() );
}

std::string XPlistString::GetUTF8() const
{
    return IsASCII() ? std::string( ASCII() ) : UTF8FromText( Wide() );
}

bool XPlistString::Equals( const XPlistString& inOther ) const
{
    if ( this == &inOther )
        return true;
    if ( mLength != inOther.mLength or IsASCII() != inOther.IsASCII() )
        return false;
    return IsASCII() ? ASCII() == inOther.ASCII() : Wide() == inOther.Wide();
}

bool XPlistString::Equals( TextView inText ) const
{
    if ( inText.size() != mLength )
        return false;
    if ( not IsASCII() )
        return Wide() == inText;
    const std::string_view units = ASCII();
    return std::equal( units.begin(), units.end(), inText.begin(),
        []( char a, char16_t b ) { return static_cast<unsigned char>( a ) == b; } );
}

bool XPlistString::Equals( std::string_view inASCII ) const
{
    return IsASCII() and ASCII() == inASCII;
}

int XPlistString::Compare( const XPlistString& inOther ) const
{
    if ( IsASCII() and inOther.IsASCII() )
        return ASCII().compare( inOther.ASCII() );
    if ( not IsASCII() and not inOther.IsASCII() )
        return Wide().compare( inOther.Wide() );
    const std::size_t common = std::min( mLength, inOther.mLength );
    for ( std::size_t i = 0; i < common; ++i )
    {
        if ( UnitAt( i ) != inOther.UnitAt( i ) )
            return UnitAt( i ) < inOther.UnitAt( i ) ? -1 : 1;
    }
    return mLength == inOther.mLength ? 0 : mLength < inOther.mLength ? -1 : 1;
}

bool XPlistNumber::Get( std::int64_t& outValue ) const
{
    if ( IsReal() )
    {
        const double value = RealValue();
        // 2^63 itself is out of range; the comparison refuses NaN as well.
        if ( not( value >= -9223372036854775808.0 and value < 9223372036854775808.0 ) or value != std::trunc( value ) )
            return false;
        outValue = std::int64_t( value );
        return true;
    }
    if ( IsUnsigned() )
        return false;
    outValue = SignedValue();
    return true;
}

bool XPlistNumber::Get( std::int32_t& outValue ) const
{
    std::int64_t wide = 0;
    if ( not Get( wide ) or wide < std::numeric_limits<std::int32_t>::min() or
        wide > std::numeric_limits<std::int32_t>::max() )
        return false;
    outValue = std::int32_t( wide );
    return true;
}

double XPlistNumber::AsReal() const
{
    return IsReal() ? RealValue() : IsUnsigned() ? double( UnsignedValue() ) : double( SignedValue() );
}

__SafeCFPropertyList XPlistArray::GetValueAt( std::size_t inIndex ) const
{
    XAssert( inIndex < GetCount() );
    return inIndex < GetCount() ? __SafeCFPropertyList( NodeAt( inIndex ) ) : __SafeCFPropertyList();
}

namespace
{
// Long dictionaries are searched by halves, in the order that their keys stand in.
template<class CompareKey>
const XPlistNode* FindByHalves( std::span<const XPlistDictionary::Entry> inEntries, const CompareKey& inCompare )
{
    std::size_t low = 0, high = inEntries.size();
    while ( low < high )
    {
        const std::size_t middle = ( low + high ) / 2;
        const int order = inCompare( *inEntries[middle].mKey );
        if ( order == 0 )
            return inEntries[middle].mValue;
        if ( order < 0 )
            low = middle + 1;
        else
            high = middle;
    }
    return nullptr;
}

int CompareWithASCII( const XPlistString& inKey, std::string_view inASCII )
{
    if ( inKey.IsASCII() )
        return inKey.ASCII().compare( inASCII );
    const std::size_t common = std::min( inKey.GetLength(), inASCII.size() );
    for ( std::size_t i = 0; i < common; ++i )
    {
        const char16_t unit = static_cast<unsigned char>( inASCII[i] );
        if ( inKey.Wide()[i] != unit )
            return inKey.Wide()[i] < unit ? -1 : 1;
    }
    return inKey.GetLength() == inASCII.size() ? 0 : inKey.GetLength() < inASCII.size() ? -1 : 1;
}
} // namespace

const XPlistNode* XPlistDictionary::Find( const XKey& inKey ) const
{
    if ( gReadObserver ) [[unlikely]]
        gReadObserver->DidRead( *this, inKey );
    constexpr std::size_t kShort = 24;
    if ( mCount > kShort )
        return FindByHalves(
            GetEntries(), [&inKey]( const XPlistString& key ) { return CompareWithASCII( key, inKey.Name() ); } );
    for ( const Entry& entry : GetEntries() )
    {
        if ( entry.mKey->KeyHash() == inKey.Hash() and entry.mKey->Equals( inKey.Name() ) )
            return entry.mValue;
    }
    return nullptr;
}

const XPlistNode* XPlistDictionary::Find( const XText& inKey ) const
{
    if ( inKey.IsNull() )
        return nullptr;
    if ( inKey.GetString()->IsASCII() )
        return Find( XKey( inKey.GetString()->ASCII() ) );
    return FindByHalves(
        GetEntries(), [&inKey]( const XPlistString& key ) { return key.Compare( *inKey.GetString() ); } );
}

// The value of a key, if it has the type; whoever watches is told whether it was taken.
template<class T, class Take>
bool XPlistDictionary::GetAs( const XKey& inKey, XPlistType inType, const Take& inTake ) const
{
    const XPlistNode* const node = Find( inKey );
    if ( not node )
        return false;
    const bool taken = node->GetType() == inType and inTake( *static_cast<const T*>( node ) );
    if ( gReadObserver ) [[unlikely]]
    {
        if ( taken )
            gReadObserver->DidTake( *this, inKey );
        else
            gReadObserver->DidMisread( *this, inKey );
    }
    return taken;
}

bool XPlistDictionary::Get( const XKey& inKey, bool& outValue ) const
{
    return GetAs<XPlistBoolean>( inKey, XPlistType::kBoolean, [&outValue]( const XPlistBoolean& boolean ) {
        outValue = boolean.GetValue();
        return true;
    } );
}

bool XPlistDictionary::Get( const XKey& inKey, std::int32_t& outValue ) const
{
    return GetAs<XPlistNumber>(
        inKey, XPlistType::kNumber, [&outValue]( const XPlistNumber& number ) { return number.Get( outValue ); } );
}

bool XPlistDictionary::Get( const XKey& inKey, std::int64_t& outValue ) const
{
    return GetAs<XPlistNumber>(
        inKey, XPlistType::kNumber, [&outValue]( const XPlistNumber& number ) { return number.Get( outValue ); } );
}

bool XPlistDictionary::Get( const XKey& inKey, double& outValue ) const
{
    return GetAs<XPlistNumber>( inKey, XPlistType::kNumber, [&outValue]( const XPlistNumber& number ) {
        outValue = number.AsReal();
        return true;
    } );
}

bool XPlistDictionary::Get( const XKey& inKey, XText& outValue ) const
{
    return GetAs<XPlistString>( inKey, XPlistType::kString, [&outValue]( const XPlistString& string ) {
        outValue = CFContainer<XPlistString>::Share( &string );
        return true;
    } );
}

bool XPlistDictionary::Get( const XKey& inKey, CFContainer<XPlistArray>& outValue ) const
{
    return GetAs<XPlistArray>( inKey, XPlistType::kArray, [&outValue]( const XPlistArray& array ) {
        outValue = CFContainer<XPlistArray>::Share( &array );
        return true;
    } );
}

bool XPlistDictionary::Get( const XKey& inKey, CFContainer<XPlistDictionary>& outValue ) const
{
    return GetAs<XPlistDictionary>( inKey, XPlistType::kDictionary, [&outValue]( const XPlistDictionary& dictionary ) {
        outValue = CFContainer<XPlistDictionary>::Share( &dictionary );
        return true;
    } );
}

bool XPlistDictionary::Get( const XKey& inKey, CFContainer<XPlistData>& outValue ) const
{
    return GetAs<XPlistData>( inKey, XPlistType::kData, [&outValue]( const XPlistData& data ) {
        outValue = CFContainer<XPlistData>::Share( &data );
        return true;
    } );
}

bool XPlistDictionary::Get( const XKey& inKey, __SafeCFPropertyList& outValue ) const
{
    const XPlistNode* const node = Find( inKey );
    if ( node )
        outValue = __SafeCFPropertyList( node );
    return node != nullptr;
}

XPlistReadObserver::Scope::Scope( XPlistReadObserver& inObserver ) : mPrevious( gReadObserver )
{
    gReadObserver = &inObserver;
}

XPlistReadObserver::Scope::~Scope()
{
    gReadObserver = mPrevious;
}

void XMutableArray::Append( __SafeCFPropertyList inValue )
{
    if ( inValue )
        mValues.push_back( std::move( inValue ) );
}

CFContainer<XPlistArray> XMutableArray::Seal()
{
    XPlistArray* const array = XPlistMaker::NewArray( mValues.size() );
    const XPlistNode** slot = XPlistMaker::Slots( array );
    for ( __SafeCFPropertyList& value : mValues )
        *slot++ = XPlistMaker::Take( value );
    mValues.clear();
    return CFContainer<XPlistArray>::Adopt( array );
}

// Dictionaries are built by the hundred thousand, so that the room of one serves the next.
struct XMutableDictionary::SpareRooms
{
    static constexpr std::size_t kMost = 16; // as deep as dictionaries within dictionaries mostly are
    static constexpr std::size_t kMostSlots = 256;
    std::vector<std::vector<Slot>> mRooms;

    SpareRooms() { mRooms.reserve( kMost ); }
    ~SpareRooms() { gHasEnded = true; }

    // Null at the end of a thread, when dictionaries are still made while its objects are destroyed.
    static SpareRooms* Get()
    {
        static thread_local SpareRooms gSpareRooms;
        return gHasEnded ? nullptr : &gSpareRooms;
    }

private:
    static constinit thread_local bool gHasEnded;
};

constinit thread_local bool XMutableDictionary::SpareRooms::gHasEnded = false;

XMutableDictionary::XMutableDictionary()
{
    SpareRooms* const spare = SpareRooms::Get();
    if ( not spare or spare->mRooms.empty() )
        return;
    mSlots.swap( spare->mRooms.back() );
    spare->mRooms.pop_back();
}

XMutableDictionary::~XMutableDictionary()
{
    mSlots.clear();
    SpareRooms* const spare = SpareRooms::Get();
    if ( spare and mSlots.capacity() > 0 and mSlots.capacity() <= SpareRooms::kMostSlots and
        spare->mRooms.size() < SpareRooms::kMost )
        spare->mRooms.push_back( std::move( mSlots ) );
}

void XMutableDictionary::Set( const XKey& inKey, __SafeCFPropertyList inValue )
{
    mSlots.push_back( { XPlistString::Intern( inKey ), std::move( inValue ) } );
}

void XMutableDictionary::Set( const XText& inKey, __SafeCFPropertyList inValue )
{
    if ( not inKey.IsNull() )
        mSlots.push_back( { XPlistString::Intern( inKey.GetString() ), std::move( inValue ) } );
}

void XMutableDictionary::SetAll( const XPlistDictionary& inSource )
{
    for ( const auto& entry : inSource.GetEntries() )
        mSlots.push_back( { CFContainer<XPlistString>::Share( entry.mKey ), __SafeCFPropertyList( entry.mValue ) } );
}

CFContainer<XPlistDictionary> XMutableDictionary::Seal()
{
    // A removed key is sorted with a stand-in value, so that it takes earlier values with it.
    static const XPlistNode* const gRemoved = XPlistMaker::NewInteger( 0 );
    XPlistDictionary* const dictionary = XPlistMaker::NewDictionary( mSlots.size() );
    XPlistDictionary::Entry* entry = XPlistMaker::Entries( dictionary );
    bool anyRemoved = false;
    for ( Slot& slot : mSlots )
    {
        if ( not slot.mValue )
        {
            slot.mValue = __SafeCFPropertyList( gRemoved );
            anyRemoved = true;
        }
        *entry++ = { XPlistMaker::Take( slot.mKey ), XPlistMaker::Take( slot.mValue ) };
    }
    mSlots.clear();
    XPlistMaker::SortEntries( dictionary );
    if ( anyRemoved )
        XPlistMaker::RemoveEntries( dictionary, gRemoved );
    return CFContainer<XPlistDictionary>::Adopt( dictionary );
}

namespace
{
bool LeavesEqual( const XPlistNode* a, const XPlistNode* b )
{
    switch ( a->GetType() )
    {
    case XPlistType::kString:
        return static_cast<const XPlistString*>( a )->Equals( *static_cast<const XPlistString*>( b ) );
    case XPlistType::kNumber:
    {
        const auto *x = static_cast<const XPlistNumber*>( a ), *y = static_cast<const XPlistNumber*>( b );
        return x->Bits() == y->Bits() and x->IsReal() == y->IsReal() and x->IsUnsigned() == y->IsUnsigned();
    }
    case XPlistType::kBoolean:
        return static_cast<const XPlistBoolean*>( a )->GetValue() == static_cast<const XPlistBoolean*>( b )->GetValue();
    case XPlistType::kDate:
        return std::bit_cast<std::uint64_t>( static_cast<const XPlistDate*>( a )->GetSeconds() ) ==
            std::bit_cast<std::uint64_t>( static_cast<const XPlistDate*>( b )->GetSeconds() );
    case XPlistType::kData:
    {
        const auto x = static_cast<const XPlistData*>( a )->GetBytes();
        const auto y = static_cast<const XPlistData*>( b )->GetBytes();
        return std::equal( x.begin(), x.end(), y.begin(), y.end() );
    }
    default:
        return false;
    }
}
} // namespace

bool __SafeCFPropertyList::Equals( const __SafeCFPropertyList& inOther ) const
{
    std::vector<std::pair<const XPlistNode*, const XPlistNode*>> pending;
    // False only when the two are known to differ.
    const auto compare = [&pending]( const XPlistNode* a, const XPlistNode* b ) {
        if ( a == b )
            return true;
        if ( not a or not b or a->GetType() != b->GetType() )
            return false;
        if ( a->GetType() < XPlistType::kArray )
            return LeavesEqual( a, b );
        if ( static_cast<const XPlistContainer*>( a )->GetCount() !=
            static_cast<const XPlistContainer*>( b )->GetCount() )
            return false;
        pending.emplace_back( a, b );
        return true;
    };

    if ( not compare( GetNode(), inOther.GetNode() ) )
        return false;
    while ( not pending.empty() )
    {
        const auto [a, b] = pending.back();
        pending.pop_back();
        if ( a->GetType() == XPlistType::kArray )
        {
            const auto x = static_cast<const XPlistArray*>( a )->Nodes(),
                       y = static_cast<const XPlistArray*>( b )->Nodes();
            for ( std::size_t i = 0; i < x.size(); ++i )
            {
                if ( not compare( x[i], y[i] ) )
                    return false;
            }
        }
        else
        {
            const auto x = static_cast<const XPlistDictionary*>( a )->GetEntries();
            const auto y = static_cast<const XPlistDictionary*>( b )->GetEntries();
            for ( std::size_t i = 0; i < x.size(); ++i )
            {
                if ( not x[i].mKey->Equals( *y[i].mKey ) or not compare( x[i].mValue, y[i].mValue ) )
                    return false;
            }
        }
    }
    return true;
}

bool IsEmpty( const __SafeCFPropertyList& inValue )
{
    if ( not inValue )
        return true;
    if ( const XPlistString* const string = inValue.AsString() )
        return string->GetLength() == 0;
    if ( const XPlistData* const data = inValue.AsData() )
        return data->GetBytes().empty();
    if ( const XPlistArray* const array = inValue.AsArray() )
        return array->GetCount() == 0;
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
        return dictionary->GetCount() == 0;
    return false;
}
