#include "App/DescriptorBuffer.h"

#include <cerrno>
#include <unistd.h>

DescriptorBuffer::DescriptorBuffer( int inDescriptor ) : mDescriptor( inDescriptor )
{
    setp( mBuffer.data(), mBuffer.data() + mBuffer.size() );
}

int DescriptorBuffer::Finish()
{
    sync();
    return mError;
}

void DescriptorBuffer::WriteAll( const char* inBytes, std::size_t inCount )
{
    while ( inCount > 0 and mError == 0 )
    {
        const ssize_t written = ::write( mDescriptor, inBytes, inCount );
        if ( written < 0 and errno != EINTR )
            mError = errno;
        if ( written > 0 )
        {
            inBytes += written;
            inCount -= std::size_t( written );
        }
    }
}

int DescriptorBuffer::sync()
{
    WriteAll( pbase(), std::size_t( pptr() - pbase() ) );
    setp( mBuffer.data(), mBuffer.data() + mBuffer.size() );
    return mError == 0 ? 0 : -1;
}

DescriptorBuffer::int_type DescriptorBuffer::overflow( int_type inCharacter )
{
    if ( sync() != 0 )
        return traits_type::eof();
    if ( not traits_type::eq_int_type( inCharacter, traits_type::eof() ) )
        sputc( traits_type::to_char_type( inCharacter ) );
    return traits_type::not_eof( inCharacter );
}

std::streamsize DescriptorBuffer::xsputn( const char* inBytes, std::streamsize inCount )
{
    if ( inCount < epptr() - pptr() )
        return std::streambuf::xsputn( inBytes, inCount );
    // Files are written as they are, without a way through the buffer.
    if ( sync() == 0 )
        WriteAll( inBytes, std::size_t( inCount ) );
    return mError == 0 ? inCount : 0;
}
