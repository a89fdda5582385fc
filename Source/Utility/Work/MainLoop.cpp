#include "Utility/Work/MainLoop.h"

XMainLoop::XMainLoop( XWork& inWork ) : mWork( inWork )
{
    mWork.SetMainWakeUp( [state = mState] {
        const std::scoped_lock lock( state->mMutex );
        state->mIsWoken = true;
        state->mChanged.notify_all();
    } );
}

XMainLoop::~XMainLoop()
{
    mWork.SetMainWakeUp( {} );
}

void XMainLoop::Run()
{
    State& state = *mState;
    std::unique_lock lock( state.mMutex );
    const auto isStopped = [&] {
        const std::scoped_lock check( state.mMutex );
        return state.mStops > 0;
    };
    while ( state.mStops == 0 )
    {
        state.mIsWoken = false; // before draining: what comes meanwhile wakes us again
        lock.unlock();
        DrainOnce();
        const bool isDone = mWork.RunUntil( isStopped );
        lock.lock();
        if ( not isDone )
            state.mChanged.wait( lock, [&] { return state.mIsWoken or state.mStops > 0; } );
    }
    --state.mStops;
    state.mIsWoken = true; // the outer run looks again
}

void XMainLoop::Stop()
{
    const std::scoped_lock lock( mState->mMutex );
    ++mState->mStops;
    mState->mChanged.notify_all();
}
