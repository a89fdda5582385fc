// The bytes of a macros file, shared and never changed: what was loaded or saved last, the snapshots of undo, and
// what the writer's queue has to write. The size is known at once; the bytes may be put together only when somebody
// asks for them. Any thread.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>

class MMacroFileData
{
public:
    explicit MMacroFileData( XBytes inBytes ) : mSize( inBytes.size() ), mBytes( std::move( inBytes ) ) {}
    /// Bytes that are put together by the first who asks. The function mustn't depend on the model, runs once, and gives
    /// exactly so many.
    MMacroFileData( std::size_t inSize, std::function<XBytes()> inAssemble )
        : mSize( inSize ),
          mAssemble( std::move( inAssemble ) )
    {}

    [[nodiscard]] std::size_t size() const { return mSize; }
    [[nodiscard]] std::span<const std::uint8_t> Span() const;
    /// SHA-256 as 64 hexadecimal digits; worked out once.
    [[nodiscard]] const std::string& Digest() const;

private:
    const std::size_t mSize;
    mutable std::mutex mMutex;
    mutable std::function<XBytes()> mAssemble; ///< empty when the bytes are there
    mutable XBytes mBytes;
    mutable std::string mDigest;
};

using MMacroFileDataPtr = std::shared_ptr<const MMacroFileData>;
