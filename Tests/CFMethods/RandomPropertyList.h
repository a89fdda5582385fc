// Random property-list values for round trips: every leaf type, the odd values of each, lengths
// around the borders at which a format changes its form, and containers that are held twice.
#pragma once

#include "CFMethods/PropertyList.h"

#include <bit>
#include <limits>
#include <random>

/// What may occur. Everything does by default; a judge that can't hold something switches it off.
struct RandomPropertyListOptions
{
    bool mLoneSurrogates = true;
    bool mNullCharacters = true;
    bool mForbiddenCharacters = true; ///< those that strict XML can't hold, and CR, which it turns into LF
    bool mOddReals = true;            ///< NaN with any payload, infinities, negative zero
    bool mAnyDates = true;            ///< any 64 bits; otherwise whole seconds of the years 1 to 9999
    bool mLongLengths = true;         ///< now and then lengths around 255 and 65535
    unsigned mMostDepth = 5;
    unsigned mMostElements = 9;
};

class RandomPropertyList
{
public:
    explicit RandomPropertyList( std::uint64_t inSeed, const RandomPropertyListOptions& inOptions = {} )
        : mRandom( inSeed ),
          mOptions( inOptions )
    {}

    [[nodiscard]] __SafeCFPropertyList Next() { return Value( mOptions.mMostDepth ); }

    [[nodiscard]] __SafeCFPropertyList Leaf()
    {
        switch ( Below( 8 ) )
        {
        case 0:
            return __SafeCFPropertyList::Boolean( Below( 2 ) == 0 );
        case 1:
            return __SafeCFPropertyList::Integer( Integer() );
        case 2:
            return XPlistNumber::MakeUnsigned( std::uint64_t( Integer() ) );
        case 3:
            return __SafeCFPropertyList::Real( Real() );
        case 4:
            return XPlistDate::Make( Date() );
        case 5:
        {
            std::vector<std::uint8_t> bytes( Length() );
            for ( std::uint8_t& byte : bytes )
                byte = std::uint8_t( mRandom() );
            return XPlistData::Make( bytes );
        }
        default:
            return __SafeCFPropertyList::String( String() );
        }
    }

    [[nodiscard]] Text String()
    {
        // ASCII, Latin-1, one script, or anything: a string's form depends on its widest unit.
        static constexpr char32_t kCeilings[] = { 0x7F, 0x7F, 0xFF, 0x24FF, 0x10FFFF };
        const char32_t ceiling = kCeilings[Below( std::size( kCeilings ) )];
        Text text;
        for ( std::size_t length = Length(); text.size() < length; )
            Append( text, char32_t( Below( ceiling + 1 ) ) );
        return text;
    }

    [[nodiscard]] std::uint64_t Below( std::uint64_t inLimit ) { return mRandom() % inLimit; }

private:
    [[nodiscard]] __SafeCFPropertyList Value( unsigned inDepth )
    {
        if ( inDepth == 0 or Below( 3 ) == 0 )
            return Leaf();
        if ( mKept and Below( 10 ) == 0 )
            return mKept;
        __SafeCFPropertyList value;
        if ( Below( 2 ) == 0 )
        {
            XMutableArray array;
            for ( std::uint64_t count = Below( mOptions.mMostElements ); count > 0; --count )
                array.Append( Value( inDepth - 1 ) );
            value = array.Seal();
        }
        else
        {
            XMutableDictionary dictionary;
            for ( std::uint64_t count = Below( mOptions.mMostElements ); count > 0; --count )
                dictionary.Set( XText( String() ), Value( inDepth - 1 ) );
            value = dictionary.Seal();
        }
        // A small container is kept to be held once more, by whatever comes next.
        if ( inDepth <= 2 )
            mKept = value;
        return value;
    }

    [[nodiscard]] std::size_t Length()
    {
        static constexpr std::size_t kBorders[] = { 0, 1, 14, 15, 16, 254, 255, 256, 257, 65534, 65535, 65536 };
        if ( mOptions.mLongLengths and Below( 200 ) == 0 )
            return kBorders[Below( std::size( kBorders ) )];
        return Below( 4 ) == 0 ? kBorders[Below( 5 )] : Below( 24 );
    }

    [[nodiscard]] std::int64_t Integer()
    {
        static constexpr int kWidths[] = { 1, 8, 16, 31, 32, 33, 63, 64 };
        const std::uint64_t border = std::uint64_t( 1 ) << ( kWidths[Below( std::size( kWidths ) )] - 1 );
        switch ( Below( 4 ) )
        {
        case 0:
            return std::int64_t( mRandom() );
        case 1:
            return std::int64_t( Below( 300 ) );
        case 2:
            return std::int64_t( border + border - 1 - Below( 2 ) );
        default:
            return std::int64_t( 0 - border + Below( 3 ) - 1 );
        }
    }

    [[nodiscard]] double Real()
    {
        static constexpr double kFinite[] = { 0.0, 1.0, -1.0, 0.1, 1e300, std::numeric_limits<double>::max(),
            std::numeric_limits<double>::denorm_min(), 9007199254740993.0 };
        if ( Below( 2 ) == 0 )
            return kFinite[Below( std::size( kFinite ) )];
        const double real = std::bit_cast<double>( std::uint64_t( mRandom() ) );
        if ( mOptions.mOddReals )
            return Below( 8 ) == 0 ? -0.0 : Below( 8 ) == 0 ? NotANumber() : real;
        return real - real == 0.0 and real != 0.0 ? real : 0.5;
    }

    [[nodiscard]] double NotANumber()
    {
        return std::bit_cast<double>( ( mRandom() & 0x800FFFFFFFFFFFFFu ) | 0x7FF8000000000000u );
    }

    [[nodiscard]] double Date()
    {
        if ( mOptions.mAnyDates )
            return std::bit_cast<double>( std::uint64_t( mRandom() ) );
        constexpr std::int64_t kYearOne = -63113904000, kYear10000 = 252423993600;
        return double( kYearOne + std::int64_t( Below( std::uint64_t( kYear10000 - kYearOne ) ) ) );
    }

    void Append( Text& ioText, char32_t inScalar )
    {
        if ( inScalar == 0 and not mOptions.mNullCharacters )
            return;
        const bool isForbidden =
            ( inScalar < 0x20 and inScalar != '\t' and inScalar != '\n' ) or inScalar == 0xFFFE or inScalar == 0xFFFF;
        if ( isForbidden and not mOptions.mForbiddenCharacters )
            return;
        if ( inScalar >= 0x10000 )
            ioText += { char16_t( 0xD7C0 + ( inScalar >> 10 ) ), char16_t( 0xDC00 + ( inScalar & 0x3FF ) ) };
        else if ( inScalar < 0xD800 or inScalar > 0xDFFF )
            ioText += char16_t( inScalar );
        else if ( mOptions.mLoneSurrogates )
            ioText += char16_t( inScalar );
        // A surrogate is rare among all scalars, so ask for more of them.
        if ( mOptions.mLoneSurrogates and inScalar > 0xFF and Below( 20 ) == 0 )
            ioText += char16_t( 0xD800 + Below( 0x800 ) );
    }

    std::mt19937_64 mRandom;
    RandomPropertyListOptions mOptions;
    __SafeCFPropertyList mKept;
};
