// Does something once in a process, whoever comes first; the others wait until it is done. Unlike
// the standard's guard, a call from inside itself is an assertion, not a hang, and ResetForTesting
// lets a test come first again.
#pragma once

#include "XCAF/XErrorHandler.h"

#include <atomic>
#include <mutex>
#include <thread>

class XOnce
{
public:
    template<class Function>
    void Do( const Function& inFunction )
    {
        if ( mDone.load( std::memory_order_acquire ) )
            return;
        if ( mRunner.load() == std::this_thread::get_id() )
        {
            XAssertText( false, "not IsRunningHere()" );
            return;
        }
        const std::scoped_lock lock( mMutex );
        if ( mDone.load( std::memory_order_relaxed ) )
            return;
        const Running running( mRunner );
        inFunction();
        mDone.store( true, std::memory_order_release );
    }

    /// True once it was done.
    [[nodiscard]] bool IsDone() const { return mDone.load( std::memory_order_acquire ); }
    void ResetForTesting() { mDone.store( false ); }

private:
    struct Running
    {
        explicit Running( std::atomic<std::thread::id>& ioRunner ) : mRunner( ioRunner )
        {
            mRunner.store( std::this_thread::get_id() );
        }
        ~Running() { mRunner.store( {} ); }
        std::atomic<std::thread::id>& mRunner;
    };

    std::mutex mMutex;
    std::atomic<std::thread::id> mRunner{};
    std::atomic<bool> mDone{ false };
};
