// The one seam for randomness: UUIDs, jitter and chances come from here, so that tests can fix
// them. Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>

class XRandom
{
public:
    virtual ~XRandom() = default;
    [[nodiscard]] virtual std::uint64_t Next() = 0; ///< 64 random bits; called under a lock

    /// 64 random bits from the source in use: the system's unless another was installed.
    [[nodiscard]] static std::uint64_t Bits();

    class Substitute
    {
    public:
        explicit Substitute( XRandom& inRandom );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        XRandom* mPrevious;
    };
};

/// A repeatable source (splitmix64 of the seed).
class XSeededRandom final : public XRandom
{
public:
    explicit XSeededRandom( std::uint64_t inSeed ) : mState( inSeed ) {}
    [[nodiscard]] std::uint64_t Next() override;

private:
    std::uint64_t mState;
};

/// `uuidString`: a random UUID (version 4) as 36 upper-case hexadecimal digits and hyphens.
[[nodiscard]] Text uuidString();
