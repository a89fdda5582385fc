// Makes values out of the elements of an XML property list, whoever found them in the document. It knows
// which element may stand where, and refuses the others by throwing an XMLPlistRefusal. Private to
// the XML codec.
//
// Values that wait for their container lie on one stack, in document order, keys and values of a
// dictionary in turn; a container's frame says where its own begin.
#pragma once

#include "CFMethods/PropertyListCodec.h"
#include "CFMethods/XMLPropertyListLeaf.h"

#include <array>
#include <span>
#include <string_view>
#include <vector>

enum class XMLPlistElement : std::uint8_t {
    kPlist,
    kDict,
    kArray,
    kKey,
    kString,
    kInteger,
    kReal,
    kTrue,
    kFalse,
    kDate,
    kData
};
inline constexpr std::string_view kXMLPlistElementNames[] = { "plist", "dict", "array", "key", "string", "integer",
    "real", "true", "false", "date", "data" };
static_assert( std::size( kXMLPlistElementNames ) == std::size_t( XMLPlistElement::kData ) + 1 );

/// Do values stand in it, rather than text?
[[nodiscard]] constexpr bool HoldsElements( XMLPlistElement inElement )
{
    return inElement <= XMLPlistElement::kArray;
}

class XMLPlistBuilder
{
public:
    explicit XMLPlistBuilder( const XPlistLimits& inLimits ) : mMaxDepth( inLimits.mMaxDepth ) {}
    ~XMLPlistBuilder();
    XMLPlistBuilder( const XMLPlistBuilder& ) = delete;
    XMLPlistBuilder& operator=( const XMLPlistBuilder& ) = delete;

    /// The element begins here: may it?
    void Expect( XMLPlistElement inElement ) const;
    /// An element that holds others begins; the offset is its tag's.
    void Open( XMLPlistElement inElement, std::uint64_t inOffset );
    /// The innermost open element ends.
    void Close();
    /// An element that was expected and holds text. The text is UTF-8 of any scalars.
    void AddLeaf( XMLPlistElement inElement, std::string_view inText );

    [[nodiscard]] bool HasOpenElement() const { return not mFrames.empty(); }
    [[nodiscard]] bool HasRoot() const { return mFrames.empty() and not mPending.empty(); }
    [[nodiscard]] CFContainer<XPlistNode> TakeRoot();
    [[nodiscard]] std::vector<XPlistNote>& Notes() { return mNotes; }

private:
    struct Frame
    {
        XMLPlistElement mElement;
        std::size_t mFirst;
        std::uint64_t mOffset;
    };

    void ReadLeaf( XMLPlistElement inElement, std::string_view inText, const XPlistNode*& outNode );
    const XPlistNode* MakeKey( std::string_view inText );
    void GiveUpDoubledKeys( XPlistDictionary* ioDictionary, std::uint64_t inOffset );

    std::size_t mMaxDepth;
    std::size_t mDepth = 0; // of dictionaries and arrays
    std::vector<Frame> mFrames;
    std::vector<const XPlistNode*> mPending; // each owns a reference, or is null while it is being made

    // The same few keys come thousands of times. What is remembered is held by the dictionaries it
    // went into, none of which goes before the builder: what doubled keys give up is kept as well.
    std::array<const XPlistString*, 512> mKnownKeys{};
    std::vector<__SafeCFPropertyList> mGivenUp;
    std::vector<XPlistNote> mNotes;
};
