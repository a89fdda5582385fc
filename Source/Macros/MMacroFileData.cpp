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
    {
        const std::scoped_lock lock( mMutex );
        if ( not mDigest.empty() )
            return mDigest;
    }
    // Worked out unlocked: it takes a second for a large file, and who needs the bytes mustn't wait.
    const auto bytes = Span();
    char digits[SHA256_DIGEST_STRING_LENGTH] = {};
    SHA256Data( bytes.data(), bytes.size(), digits );
    const std::scoped_lock lock( mMutex );
    if ( mDigest.empty() )
        mDigest = digits;
    return mDigest;
}
