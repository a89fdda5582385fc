// Asking another program: a shell, Python. Tests compare its answers with ours.
#pragma once

#include "CFMethods/Text.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

/// What the command writes when it reads the input.
inline std::string OutputOf( const std::string& inCommand, const std::string& inInput )
{
    const std::string file = testing::TempDir() + "korvalen-judge-" + std::to_string( std::random_device()() );
    std::ofstream( file, std::ios::binary ) << inInput;
    std::string output;
    const std::unique_ptr<FILE, int ( * )( FILE* )> pipe(
        popen( ( inCommand + " < '" + file + "'" ).c_str(), "r" ), pclose );
    char buffer[65536];
    while ( const std::size_t count = pipe ? fread( buffer, 1, sizeof( buffer ), pipe.get() ) : 0 )
        output.append( buffer, count );
    std::remove( file.c_str() );
    return output;
}

/// Random texts out of an alphabet that a test finds likely, and of all characters.
class TextFuzzer
{
public:
    explicit TextFuzzer( unsigned inSeed, Text inLikely ) : mRandom( inSeed ), mLikely( std::move( inLikely ) ) {}

    Text Next( std::size_t inMaximum, bool inNUL = false )
    {
        Text result;
        for ( std::size_t i = 0, n = mRandom() % ( inMaximum + 1 ); i < n; ++i )
        {
            if ( mRandom() % 4 )
                result += mLikely[mRandom() % mLikely.size()];
            else
                AppendScalar( result, char32_t( mRandom() % ( mRandom() % 2 ? 0x110000 : 0x180 ) ), inNUL );
        }
        return result;
    }

    std::mt19937 mRandom;

private:
    static void AppendScalar( Text& ioText, char32_t inScalar, bool inNUL )
    {
        if ( inScalar >= 0x10000 )
        {
            ioText += char16_t( 0xD7C0 + ( inScalar >> 10 ) );
            ioText += char16_t( 0xDC00 + ( inScalar & 0x3FF ) );
        }
        else if ( ( inScalar < 0xD800 or inScalar >= 0xE000 ) and ( inScalar != 0 or inNUL ) )
            ioText += char16_t( inScalar );
    }

    Text mLikely;
};
