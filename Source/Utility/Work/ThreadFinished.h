// Tokens by which a worker tells the main thread that it has finished, and holders that carry its
// result as well. Tokens change on the main queue only: what the main thread sees stays true
// until it returns to its loop.
#pragma once

#include <cstdint>
#include <memory>

namespace ThreadFinished
{
using Token = std::uint64_t;
inline constexpr Token kNull = 0;

/// A token that is live until Finished. Main thread; from another it is an assertion, and kNull.
[[nodiscard]] Token GetNewToken();
/// The token stops being live, on the main queue; kNull does nothing. Any thread.
void Finished( Token inToken );
/// Any thread.
[[nodiscard]] bool IsLive( Token inToken );
} // namespace ThreadFinished

/// Waits for the result of one worker at a time. The holder belongs to the main thread; the worker knows
/// only the token, so that the holder may go, or start anew, at any time.
class ThreadDataHolder
{
public:
    using Token = ThreadFinished::Token;
    static constexpr Token kNull = ThreadFinished::kNull;

    ThreadDataHolder() = default;
    ~ThreadDataHolder() { AbandonToken(); }
    ThreadDataHolder( const ThreadDataHolder& ) = delete;
    ThreadDataHolder& operator=( const ThreadDataHolder& ) = delete;

    /// Takes a new token, to be handed to the worker; an earlier one is abandoned, its result dropped.
    /// From another thread than the main one it is an assertion, and kNull.
    Token Start();
    /// Whether the worker of the present token has delivered. Then GetResult has it.
    [[nodiscard]] bool IsFinished();
    /// The result, or null before it is there.
    [[nodiscard]] const std::shared_ptr<void>& GetResult() const { return mResult; }
    [[nodiscard]] Token GetToken() const { return mToken; }
    /// Forgets token and result; what the worker delivers later is dropped.
    void AbandonToken();

    /// Delivers the result on the main queue. It is dropped there if nobody waits for it. Any thread.
    static void Finished( Token inToken, std::shared_ptr<void> inResult );

private:
    Token mToken = kNull;
    std::shared_ptr<void> mResult;
};
