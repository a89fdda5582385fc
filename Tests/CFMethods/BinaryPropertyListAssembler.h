// Puts binary property lists together by hand, right or wrong in any place. Knows nothing of the
// codec, so that both can be wrong only independently.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline std::string BigEndian( std::uint64_t inValue, unsigned inSize )
{
    std::string bytes;
    for ( unsigned i = inSize; i-- > 0; )
        bytes += char( inValue >> ( 8 * i ) );
    return bytes;
}

struct BinaryPropertyListAssembler
{
    std::vector<std::string> mObjects = {}; ///< each with its type byte
    unsigned mOffsetSize = 4, mReferenceSize = 1;
    std::uint64_t mRoot = 0;
    std::string mHeader = "bplist00";

    // What stands in the file where it isn't the truth.
    std::vector<std::pair<std::size_t, std::uint64_t>> mFalseOffsets = {}; ///< object, offset
    std::optional<std::uint64_t> mFalseCount = {}, mFalseTable = {};
    std::optional<unsigned> mFalseOffsetSize = {}, mFalseReferenceSize = {};
    std::string mBeforeTrailer = {};

    /// Of an object; one beyond the last gives the table's.
    [[nodiscard]] std::uint64_t OffsetOf( std::size_t inObject ) const
    {
        std::uint64_t offset = mHeader.size();
        for ( std::size_t i = 0; i < inObject; ++i )
            offset += mObjects[i].size();
        return offset;
    }
    [[nodiscard]] std::uint64_t Table() const { return OffsetOf( mObjects.size() ); }
    [[nodiscard]] std::uint64_t Trailer() const
    {
        return Table() + mObjects.size() * mOffsetSize + mBeforeTrailer.size();
    }

    [[nodiscard]] std::string Bytes() const
    {
        std::string bytes = mHeader, table;
        std::vector<std::uint64_t> offsets;
        for ( const std::string& object : mObjects )
        {
            offsets.push_back( bytes.size() );
            bytes += object;
        }
        for ( const auto& [object, offset] : mFalseOffsets )
            offsets[object] = offset;
        for ( const std::uint64_t offset : offsets )
            table += BigEndian( offset, mOffsetSize );
        const std::uint64_t at = bytes.size();
        return bytes + table + mBeforeTrailer + std::string( 6, '\0' ) +
            char( mFalseOffsetSize.value_or( mOffsetSize ) ) + char( mFalseReferenceSize.value_or( mReferenceSize ) ) +
            BigEndian( mFalseCount.value_or( mObjects.size() ), 8 ) + BigEndian( mRoot, 8 ) +
            BigEndian( mFalseTable.value_or( at ), 8 );
    }

    /// A type byte with a length behind it in the shortest form that fits.
    [[nodiscard]] static std::string Head( unsigned inKind, std::uint64_t inLength )
    {
        if ( inLength < 15 )
            return { char( inKind | inLength ) };
        const unsigned power = inLength < 0x100 ? 0 : inLength < 0x10000 ? 1 : 2;
        return std::string{ char( inKind | 0x0F ), char( 0x10 | power ) } + BigEndian( inLength, 1u << power );
    }
    [[nodiscard]] static std::string ASCII( std::string_view inText )
    {
        return Head( 0x50, inText.size() ) + std::string( inText );
    }
    [[nodiscard]] static std::string Wide( std::u16string_view inText )
    {
        std::string bytes = Head( 0x60, inText.size() );
        for ( const char16_t unit : inText )
            bytes += BigEndian( unit, 2 );
        return bytes;
    }
    [[nodiscard]] static std::string Data( std::size_t inLength )
    {
        return Head( 0x40, inLength ) + std::string( inLength, 'd' );
    }
    /// The references of an array, or of a dictionary: all keys, then all values.
    [[nodiscard]] static std::string Container(
        unsigned inKind, const std::vector<std::uint64_t>& inReferences, unsigned inReferenceSize = 1 )
    {
        std::string bytes = Head( inKind, inKind == 0xD0 ? inReferences.size() / 2 : inReferences.size() );
        for ( const std::uint64_t reference : inReferences )
            bytes += BigEndian( reference, inReferenceSize );
        return bytes;
    }
    [[nodiscard]] static std::string Array(
        const std::vector<std::uint64_t>& inReferences, unsigned inReferenceSize = 1 )
    {
        return Container( 0xA0, inReferences, inReferenceSize );
    }
    [[nodiscard]] static std::string Dictionary(
        const std::vector<std::uint64_t>& inReferences, unsigned inReferenceSize = 1 )
    {
        return Container( 0xD0, inReferences, inReferenceSize );
    }
};

/// Arrays within each other, the innermost empty.
inline std::string NestedArrays( std::uint64_t inDepth )
{
    BinaryPropertyListAssembler file{ .mReferenceSize = 4 };
    for ( std::uint64_t i = 1; i < inDepth; ++i )
        file.mObjects.push_back( BinaryPropertyListAssembler::Array( { i }, 4 ) );
    file.mObjects.push_back( BinaryPropertyListAssembler::Array( {} ) );
    return file.Bytes();
}

/// Arrays that each name the next one twice, the last a letter: 198 bytes of 22 arrays expand to millions.
inline std::string DoublingBomb( std::uint64_t inArrays )
{
    BinaryPropertyListAssembler file{ .mOffsetSize = 2, .mReferenceSize = 2 };
    for ( std::uint64_t i = 1; i <= inArrays; ++i )
        file.mObjects.push_back( BinaryPropertyListAssembler::Array( { i, i }, 2 ) );
    file.mObjects.push_back( BinaryPropertyListAssembler::ASCII( "x" ) );
    return file.Bytes();
}

inline std::span<const std::uint8_t> AsBytes( std::string_view inBytes )
{
    return { reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() };
}
