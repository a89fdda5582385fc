// The least that a reader of the binary form can do: look at every offset, type byte and content
// byte once and build nothing. What a reader takes beyond it is the price of the tree.
#pragma once

#include <cstdint>
#include <span>

/// Trusts its input. The result depends on every byte, so that no compiler leaves the work out.
[[nodiscard]] std::uint64_t BareScan( std::span<const std::uint8_t> inBytes );
