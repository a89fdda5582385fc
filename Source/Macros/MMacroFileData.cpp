#include "Macros/MMacroFileData.h"

#include "XCAF/XErrorHandler.h"

#include <sha2.h>

std::span<const std::uint8_t> MMacroFileData::Span() const
{
    const std::scoped_lock lock( mMutex );
    if ( mAssemble )
    {
        mBytes = mAssemble();
        mAssemble = nullptr;
        XAssert( mBytes.size() == mSize );
    }
    return mBytes.Span();
}

const std::string& MMacroFileData::Digest() const
{
    const auto bytes = Span();
    const std::scoped_lock lock( mMutex );
    if ( mDigest.empty() )
    {
        char digits[SHA256_DIGEST_STRING_LENGTH] = {};
        mDigest = SHA256Data( bytes.data(), bytes.size(), digits );
    }
    return mDigest;
}
