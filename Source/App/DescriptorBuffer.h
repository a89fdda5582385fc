// A stream buffer over a file descriptor that remembers why writing failed, which the standard streams forget.
// Main thread; the descriptor stays open.
#pragma once

#include <array>
#include <streambuf>

class DescriptorBuffer final : public std::streambuf
{
public:
    explicit DescriptorBuffer( int inDescriptor );
    ~DescriptorBuffer() override { sync(); }

    /// Writes what is left. The `errno` of the first failure, or 0; after a failure everything is dropped.
    [[nodiscard]] int Finish();

protected:
    int_type overflow( int_type inCharacter ) override;
    std::streamsize xsputn( const char* inBytes, std::streamsize inCount ) override;
    int sync() override;

private:
    void WriteAll( const char* inBytes, std::size_t inCount );

    const int mDescriptor;
    int mError = 0;
    std::array<char, 16384> mBuffer;
};
