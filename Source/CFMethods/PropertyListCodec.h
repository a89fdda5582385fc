// Reading and writing property lists as bytes: the binary form ("bplist00") and the XML form.
// Both readers take hostile input: they never recurse by its depth, never allocate by a count
// that they haven't checked against the bytes at hand, refuse cycles, and stop with a fault that
// names what was wrong and where. Both writers are deterministic: equal values give equal bytes.
// Any thread may call these; a value that is written must not be in the making elsewhere.
#pragma once

#include "CFMethods/PropertyList.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// The bytes of a file in memory: owned, not zero-filled when made.
class XBytes
{
public:
    XBytes() = default;
    explicit XBytes( std::size_t inSize ) { Resize( inSize ); }
    explicit XBytes( std::string_view inBytes );

    [[nodiscard]] std::uint8_t* data() { return mBytes.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return mBytes.get(); }
    [[nodiscard]] std::size_t size() const { return mSize; }
    [[nodiscard]] std::span<const std::uint8_t> Span() const { return { mBytes.get(), mSize }; }
    [[nodiscard]] std::string_view View() const { return { reinterpret_cast<const char*>( mBytes.get() ), mSize }; }
    /// Gives up what lies behind the new size, which must not be larger.
    void Shrink( std::size_t inSize ) { mSize = inSize; }
    /// Grows, where the new bytes aren't set to anything, or shrinks and gives the memory back. Large blocks
    /// are moved by the page tables, not copied.
    void Resize( std::size_t inSize );

private:
    struct Free
    {
        void operator()( std::uint8_t* inBytes ) const { std::free( inBytes ); }
    };
    std::unique_ptr<std::uint8_t, Free> mBytes;
    std::size_t mSize = 0;
};

enum class XPlistFormat : std::uint8_t { kBinary, kXML };

/// The limits of both readers. What goes beyond them is refused by name.
struct XPlistLimits
{
    std::size_t mMaxBytes = std::size_t( 512 ) << 20;
    std::uint32_t mMaxDepth = 1000; ///< containers within containers, the root being 1
};

/// Why bytes were refused. The message is one clause in English ("depth exceeds the limit of 1000").
struct XPlistFault
{
    std::string mMessage;
    std::uint64_t mOffset = 0;            ///< of the byte, from the start of the input
    std::optional<std::uint64_t> mObject; ///< binary: the number of the object
    std::uint64_t mLine = 0, mColumn = 0; ///< XML: counted from 1; 0 in binary

    /// The whole sentence: message, object or line, and offset.
    [[nodiscard]] std::string Describe() const;
};

/// Something that was read but isn't kept, as the first of two equal keys of a dictionary.
struct XPlistNote
{
    std::string mMessage;
    std::uint64_t mOffset = 0;
};

struct XPlistReadResult
{
    __SafeCFPropertyList mValue; ///< null exactly when there is a fault
    std::optional<XPlistFault> mFault;
    XPlistFormat mFormat = XPlistFormat::kBinary;
    std::vector<XPlistNote> mNotes; ///< at most 100
};

/// Reads either form; "bplist" at the start tells the binary one.
[[nodiscard]] XPlistReadResult ReadPropertyList(
    std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits = {} );
[[nodiscard]] XPlistReadResult ReadBinaryPropertyList(
    std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits = {} );

/// UTF-8, or UTF-16 with or without a byte-order mark. A document type is accepted, an internal
/// subset or an entity declaration refused; nothing outside the bytes is ever read. Control
/// characters, raw or as references, are read as they stand, CR in strings too. Columns count characters.
[[nodiscard]] XPlistReadResult ReadXMLPropertyList(
    std::span<const std::uint8_t> inBytes, const XPlistLimits& inLimits = {} );

/// The binary form of a value that isn't null; null is asserted and gives no bytes. Equal strings, numbers, dates and data are stored once;
/// a container is written wherever it is held.
[[nodiscard]] XBytes WriteBinaryPropertyList( const __SafeCFPropertyList& inValue );

struct XPlistWriteResult
{
    XBytes mBytes;
    std::optional<std::string> mFault; ///< set when the value has no XML form; nothing was written then
};

/// The XML form of a value that isn't null, with sorted keys. CR is written as a character reference.
/// A lone surrogate and a date that isn't finite have no XML form: the fault names the path.
[[nodiscard]] XPlistWriteResult WriteXMLPropertyList( const __SafeCFPropertyList& inValue );

/// `kvr_toXMLString`: the XML form as text; absent when there is none.
[[nodiscard]] std::optional<Text> kvr_toXMLString( const __SafeCFPropertyList& inValue );
/// `kvr_fromXMLString:`: null when the text doesn't parse.
[[nodiscard]] __SafeCFPropertyList kvr_fromXMLString( TextView inText, const XPlistLimits& inLimits = {} );
