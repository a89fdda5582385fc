#include "CFMethods/XMLPropertyListBuilder.h"

#include "CFMethods/PropertyListMaker.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace
{
std::string_view NameOf( XMLPlistElement inElement )
{
    return kXMLPlistElementNames[std::size_t( inElement )];
}

bool IsASCII( std::string_view inText )
{
    std::uint64_t all = 0;
    std::size_t i = 0;
    for ( ; i + 8 <= inText.size(); i += 8 )
    {
        std::uint64_t word = 0;
        std::memcpy( &word, inText.data() + i, 8 );
        all |= word;
    }
    for ( ; i < inText.size(); ++i )
        all |= static_cast<unsigned char>( inText[i] );
    return ( all & 0x8080808080808080u ) == 0;
}

// Where keys are remembered: any function of the content will do that keeps common keys apart.
std::size_t KeySlot( std::string_view inKey )
{
    std::uint64_t head = 0, tail = 0;
    const std::size_t count = std::min<std::size_t>( inKey.size(), 8 );
    std::memcpy( &head, inKey.data(), count );
    std::memcpy( &tail, inKey.data() + inKey.size() - count, count );
    const std::uint64_t mixed = ( head ^ ( tail << 1 ) ^ inKey.size() ) * 0x9E3779B97F4A7C15u;
    return std::size_t( mixed >> 55 );
}

XPlistNode* MakeArray( std::span<const XPlistNode* const> inValues )
{
    XPlistArray* const array = XPlistMaker::NewArray( inValues.size() );
    std::copy( inValues.begin(), inValues.end(), XPlistMaker::Slots( array ) );
    return array;
}

XPlistNode* MakeDictionary( std::span<const XPlistNode* const> inKeysAndValues )
{
    XPlistDictionary* const dictionary = XPlistMaker::NewDictionary( inKeysAndValues.size() / 2 );
    XPlistDictionary::Entry* entry = XPlistMaker::Entries( dictionary );
    for ( std::size_t i = 0; i + 1 < inKeysAndValues.size(); i += 2 )
        *entry++ = { static_cast<const XPlistString*>( inKeysAndValues[i] ), inKeysAndValues[i + 1] };
    return dictionary;
}

XPlistString* MakeString( std::string_view inText )
{
    if ( IsASCII( inText ) )
    {
        XPlistString* const string = XPlistMaker::NewASCII( inText.size() );
        std::memcpy( XPlistMaker::ASCIIBuffer( string ), inText.data(), inText.size() );
        return string;
    }
    const std::optional<Text> text = TextFromStrictUTF8( inText );
    if ( not text )
        throw XMLPlistRefusal{ "ill-formed UTF-8" };
    XPlistString* const string = XPlistMaker::NewWide( text->size() );
    std::memcpy( XPlistMaker::WideBuffer( string ), text->data(), text->size() * sizeof( char16_t ) );
    return string;
}

const XPlistNode* MakeBoolean( XMLPlistElement inElement, std::string_view inText )
{
    const std::size_t first = inText.find_first_not_of( " \t\r\n" );
    if ( first != inText.npos )
        throw XMLPlistRefusal{ fmt::format( "text within <{}>: {}", NameOf( inElement ),
                                   XMLPlistLeaf::Quoted( inText.substr( first ) ) ),
            first };
    return XPlistBoolean::Make( inElement == XMLPlistElement::kTrue ).Release();
}
} // namespace

// After a refusal all that was made is still on the stack.
XMLPlistBuilder::~XMLPlistBuilder()
{
    for ( const XPlistNode* const node : mPending )
    {
        if ( node )
            node->Release();
    }
}

void XMLPlistBuilder::Expect( XMLPlistElement inElement ) const
{
    const bool isKey = inElement == XMLPlistElement::kKey;
    if ( not mFrames.empty() and mFrames.back().mElement == XMLPlistElement::kDict )
    {
        const bool keyWaits = ( mPending.size() - mFrames.back().mFirst ) % 2 == 1;
        if ( isKey and keyWaits )
            throw XMLPlistRefusal{ "a key behind a key that has no value" };
        if ( not isKey and not keyWaits )
            throw XMLPlistRefusal{ fmt::format( "<{}> without a key before it", NameOf( inElement ) ) };
    }
    else if ( isKey )
        throw XMLPlistRefusal{ "<key> outside a dictionary" };
    else if ( ( mFrames.empty() or mFrames.back().mElement == XMLPlistElement::kPlist ) and not mPending.empty() )
        throw XMLPlistRefusal{ "a second value in the property list, which holds one" };
    if ( inElement == XMLPlistElement::kPlist and not mFrames.empty() )
        throw XMLPlistRefusal{ "<plist> within the property list" };
}

void XMLPlistBuilder::Open( XMLPlistElement inElement, std::uint64_t inOffset )
{
    if ( inElement != XMLPlistElement::kPlist and ++mDepth > mMaxDepth )
        throw XMLPlistRefusal{ fmt::format( "the depth exceeds the limit of {}", mMaxDepth ) };
    mFrames.push_back( { inElement, mPending.size(), inOffset } );
}

void XMLPlistBuilder::Close()
{
    const Frame frame = mFrames.back();
    if ( frame.mElement == XMLPlistElement::kPlist )
    {
        if ( mPending.empty() )
            throw XMLPlistRefusal{ "the property list holds no value" };
        mFrames.pop_back();
        return;
    }
    const bool isDictionary = frame.mElement == XMLPlistElement::kDict;
    const std::size_t count = mPending.size() - frame.mFirst;
    if ( isDictionary and count % 2 == 1 )
        throw XMLPlistRefusal{ "the dictionary's last key has no value" };
    // Room for the container first: nothing may fail between its making and its being on the stack.
    mPending.push_back( nullptr );
    const std::span<const XPlistNode* const> values( mPending.data() + frame.mFirst, count );
    XPlistNode* const container = isDictionary ? MakeDictionary( values ) : MakeArray( values );
    mPending.resize( frame.mFirst + 1 );
    mPending.back() = container;
    --mDepth;
    mFrames.pop_back();
    if ( isDictionary )
        GiveUpDoubledKeys( static_cast<XPlistDictionary*>( container ), frame.mOffset );
}

void XMLPlistBuilder::GiveUpDoubledKeys( XPlistDictionary* ioDictionary, std::uint64_t inOffset )
{
    constexpr std::size_t kMostNotes = 100;
    std::size_t at = mGivenUp.size(); // pairs of a key and its value are added
    XPlistMaker::SortEntries( ioDictionary, &mGivenUp );
    for ( ; at < mGivenUp.size() and mNotes.size() < kMostNotes; at += 2 )
    {
        const std::string key = mGivenUp[at].AsString()->GetUTF8();
        mNotes.push_back( { fmt::format( "the key {} stands more than once in a dictionary; the last one counts",
                                XMLPlistLeaf::Quoted( key ) ),
            inOffset } );
    }
}

const XPlistNode* XMLPlistBuilder::MakeKey( std::string_view inText )
{
    const XPlistString*& known = mKnownKeys[KeySlot( inText )];
    if ( known and known->ASCII() == inText )
    {
        known->Retain();
        return known;
    }
    if ( not IsASCII( inText ) )
        return XPlistString::Intern( CFContainer<XPlistString>::Adopt( MakeString( inText ) ) ).Release();
    known = XPlistString::InternASCII( inText ).Release();
    return known;
}

void XMLPlistBuilder::AddLeaf( XMLPlistElement inElement, std::string_view inText )
{
    // The place comes first, so that a value never hangs in the air.
    mPending.push_back( nullptr );
    ReadLeaf( inElement, inText, mPending.back() );
}

void XMLPlistBuilder::ReadLeaf( XMLPlistElement inElement, std::string_view inText, const XPlistNode*& outNode )
{
    switch ( inElement )
    {
    case XMLPlistElement::kKey:
        outNode = MakeKey( inText );
        break;
    case XMLPlistElement::kString:
        outNode = MakeString( inText );
        break;
    case XMLPlistElement::kInteger:
        outNode = XMLPlistLeaf::MakeInteger( inText );
        break;
    case XMLPlistElement::kReal:
        outNode = XMLPlistLeaf::MakeReal( inText );
        break;
    case XMLPlistElement::kTrue:
    case XMLPlistElement::kFalse:
        outNode = MakeBoolean( inElement, inText );
        break;
    case XMLPlistElement::kDate:
        outNode = XMLPlistLeaf::MakeDate( inText );
        break;
    case XMLPlistElement::kData:
        outNode = XMLPlistLeaf::MakeData( inText );
        break;
    default: // elements that hold others have no text of their own
        break;
    }
}

CFContainer<XPlistNode> XMLPlistBuilder::TakeRoot()
{
    auto root = CFContainer<XPlistNode>::Adopt( mPending.front() );
    mPending.clear();
    return root;
}
