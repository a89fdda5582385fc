// Zip files made by hand, byte for byte, so that each field can lie.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ZipItem
{
    std::string mName = {}, mData = {};
    std::uint32_t mMode = 0100644;
    std::uint16_t mFlags = 0, mMethod = 0;
    // What is said otherwise than it is.
    std::optional<std::string> mLocalName = {};
    std::optional<std::uint32_t> mPackedSize = {}, mSize = {}, mLocalSize = {}, mOffset = {}, mCRC = {};
    std::uint16_t mDisk = 0;
    bool mIsDeflated = false;       ///< as one stored block of a deflated stream
    bool mSizesFollow = false;      ///< in a descriptor
    std::uint16_t mMadeBy = 3 << 8; ///< Unix
};

struct ZipEnd
{
    std::uint16_t mDisk = 0;
    std::optional<std::uint16_t> mCount = {};
    std::int64_t mOffsetError = 0;
    std::string mComment = {}, mBehind = {};
};

class ZipMaker
{
public:
    static std::string Make( const std::vector<ZipItem>& inItems, const ZipEnd& inEnd = {} )
    {
        ZipMaker maker;
        for ( const ZipItem& item : inItems )
            maker.Add( item );
        return maker.Finish( inEnd );
    }

private:
    static std::uint32_t CRCOf( std::string_view inBytes )
    {
        std::uint32_t crc = ~0u;
        for ( const char byte : inBytes )
        {
            crc ^= static_cast<unsigned char>( byte );
            for ( int i = 0; i < 8; ++i )
                crc = crc >> 1 ^ ( crc & 1 ? 0xEDB88320u : 0 );
        }
        return ~crc;
    }
    static std::string Number( std::uint64_t inValue, int inBytes )
    {
        std::string bytes;
        for ( int i = 0; i < inBytes; ++i )
            bytes += char( inValue >> 8 * i );
        return bytes;
    }
    static std::string Deflated( const std::string& inData )
    {
        const std::size_t size = inData.size();
        return std::string( 1, '\1' ) + Number( size, 2 ) + Number( ~size, 2 ) + inData;
    }

    void Add( const ZipItem& inItem )
    {
        const std::string data = inItem.mIsDeflated ? Deflated( inItem.mData ) : inItem.mData;
        const std::uint32_t crc = inItem.mCRC.value_or( CRCOf( inItem.mData ) );
        const std::uint32_t packed = inItem.mPackedSize.value_or( std::uint32_t( data.size() ) );
        const std::uint32_t size = inItem.mSize.value_or( std::uint32_t( inItem.mData.size() ) );
        const std::uint16_t flags = std::uint16_t( inItem.mFlags | ( inItem.mSizesFollow ? 8 : 0 ) );
        const std::uint16_t method = inItem.mIsDeflated ? 8 : inItem.mMethod;
        const std::string form = Number( flags, 2 ) + Number( method, 2 ) + Number( 0, 4 );
        const std::string& localName = inItem.mLocalName ? *inItem.mLocalName : inItem.mName;
        const std::size_t offset = mBytes.size();
        const std::uint32_t localSize = inItem.mLocalSize.value_or( size );
        mBytes += "PK\3\4" + Number( 20, 2 ) + form +
            ( inItem.mSizesFollow ? std::string( 12, '\0' )
                                  : Number( crc, 4 ) + Number( packed, 4 ) + Number( localSize, 4 ) ) +
            Number( localName.size(), 2 ) + Number( 0, 2 ) + localName + data;
        if ( inItem.mSizesFollow )
            mBytes += "PK\7\10" + Number( crc, 4 ) + Number( packed, 4 ) + Number( localSize, 4 );
        mDirectory += "PK\1\2" + Number( inItem.mMadeBy | 20, 2 ) + Number( 20, 2 ) + form + Number( crc, 4 ) +
            Number( packed, 4 ) + Number( size, 4 ) + Number( inItem.mName.size(), 2 ) + Number( 0, 4 ) +
            Number( inItem.mDisk, 2 ) + Number( 0, 2 ) + Number( std::uint64_t( inItem.mMode ) << 16, 4 ) +
            Number( inItem.mOffset.value_or( std::uint32_t( offset ) ), 4 ) + inItem.mName;
        ++mCount;
    }

    std::string Finish( const ZipEnd& inEnd )
    {
        const std::size_t begin = mBytes.size();
        const std::uint16_t count = inEnd.mCount.value_or( mCount );
        return mBytes + mDirectory + "PK\5\6" + Number( inEnd.mDisk, 2 ) + Number( inEnd.mDisk, 2 ) +
            Number( count, 2 ) + Number( count, 2 ) + Number( mDirectory.size(), 4 ) +
            Number( std::uint64_t( std::int64_t( begin ) + inEnd.mOffsetError ), 4 ) +
            Number( inEnd.mComment.size(), 2 ) + inEnd.mComment + inEnd.mBehind;
    }

    std::string mBytes, mDirectory;
    std::uint16_t mCount = 0;
};
