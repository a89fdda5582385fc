// Every state of the macros file that was saved, for a mistake that is noticed late, and for undo after a restart. A
// state is known by its digest; states share what they have in common, and are compressed. They lie below "Set
// Aside". What stays: see kFewest and the others. Any thread; keeping is done on a queue of its own,
// "com.tessarine.korvalen.SavedStates", so that nobody waits for it.
#pragma once

#include "CFMethods/PropertyListCodec.h"
#include "Macros/MMacroFileData.h"
#include "Utility/Work/Clock.h"

#include <optional>
#include <string>
#include <vector>

namespace SavedStates
{
struct State
{
    std::string mDigest; ///< SHA-256, 64 hexadecimal digits
    XAbsoluteTime mTime = 0;
    std::uint64_t mSize = 0; ///< of the macros file
};

/// Keeps a state; a failure is logged, and told by a notice once.
void KeepSoon( const MMacroFileDataPtr& inData );
/// The same, but a state that is there keeps its time.
void KeepSoonIfMissing( const MMacroFileDataPtr& inData );
/// Returns when everything that was asked for is kept.
void WaitForQueue();
/// The newest first.
[[nodiscard]] std::vector<State> List();
/// The bytes, checked against the digest; null when they are gone or damaged, which is logged.
[[nodiscard]] MMacroFileDataPtr Load( const std::string& inDigest );

// All states of the last days stay as long as they take no more than so many bytes on disk; the newest ones stay in
// any case.
inline constexpr double kKeepSeconds = 7 * 86400.0;
inline constexpr std::size_t kFewest = 50, kNewestAlways = 10;
inline constexpr std::uint64_t kMostBytes = std::uint64_t( 1 ) << 30;
/// Another limit than kMostBytes for tests; main thread, while the queue is empty.
void SetMostBytesForTesting( std::uint64_t inBytes );
} // namespace SavedStates
