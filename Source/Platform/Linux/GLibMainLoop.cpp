#include "Platform/Linux/GLibMainLoop.h"

#include <glib-unix.h>

#include <atomic>
#include <exception>
#include <utility>
#include <vector>

namespace
{
// A source of its own in place of g_main_context_invoke, which would run the block inside the very call that queues it
// when that comes from the main thread.
struct QueueSource
{
    GSource mSource;
    const std::function<void()>* mDrain;
};

gboolean DispatchQueue( GSource* inSource, GSourceFunc, gpointer )
{
    g_source_set_ready_time( inSource, -1 ); // before draining: what comes meanwhile wakes us again
    ( *reinterpret_cast<QueueSource*>( inSource )->mDrain )();
    return G_SOURCE_CONTINUE;
}

GSourceFuncs gQueueSourceFunctions = { nullptr, nullptr, DispatchQueue, nullptr, nullptr, nullptr };

struct SourceUnref
{
    void operator()( GSource* inSource ) const { g_source_unref( inSource ); }
};
} // namespace

struct GLibMainLoop::Parts
{
    explicit Parts( XWork& inWork ) : mWork( inWork ) {}

    // No exception may pass through GLib's frames: it is kept until the loop is ours again.
    void Guarded( const XBlock& inBlock )
    {
        try
        {
            inBlock();
        }
        catch ( ... )
        {
            if ( not mException )
                mException = std::current_exception();
        }
    }
    void Rethrow()
    {
        if ( mException )
            std::rethrow_exception( std::exchange( mException, nullptr ) );
    }

    struct Signals
    {
        Parts* mParts;
        XBlock mBlock;
    };

    XWork& mWork;
    std::function<void()> mDrain;
    std::shared_ptr<GSource> mQueueSource; // shared with the wake-up, which may outlive the loop
    std::atomic<std::size_t> mStops{ 0 };
    std::exception_ptr mException;
    std::vector<std::unique_ptr<Signals>> mSignals;
    std::vector<guint> mSignalSources;
};

GLibMainLoop::GLibMainLoop( XWork& inWork ) : mParts( std::make_unique<Parts>( inWork ) )
{
    mParts->mDrain = [parts = mParts.get()] {
        parts->Guarded( [parts] { parts->mWork.DrainMainQueue(); } );
        if ( parts->mException ) // blocks behind the one that threw are still waiting
            g_source_set_ready_time( parts->mQueueSource.get(), 0 );
    };
    GSource* const source = g_source_new( &gQueueSourceFunctions, sizeof( QueueSource ) );
    reinterpret_cast<QueueSource*>( source )->mDrain = &mParts->mDrain;
    g_source_set_static_name( source, "main queue" );
    g_source_set_can_recurse( source, TRUE ); // an inner Run drains as well
    g_source_set_ready_time( source, 0 );     // blocks may be waiting already
    g_source_attach( source, nullptr );
    mParts->mQueueSource = std::shared_ptr<GSource>( source, SourceUnref() );
    inWork.SetMainWakeUp( [queueSource = mParts->mQueueSource] { g_source_set_ready_time( queueSource.get(), 0 ); } );
}

GLibMainLoop::~GLibMainLoop()
{
    mParts->mWork.SetMainWakeUp( {} );
    g_source_destroy( mParts->mQueueSource.get() );
    for ( const guint source : mParts->mSignalSources )
        g_source_remove( source );
}

void GLibMainLoop::Run()
{
    while ( mParts->mStops.load() == 0 )
    {
        g_main_context_iteration( nullptr, TRUE );
        mParts->Rethrow();
    }
    --mParts->mStops;
}

void GLibMainLoop::Stop()
{
    ++mParts->mStops;
    g_main_context_wakeup( nullptr );
}

void GLibMainLoop::RunOnce()
{
    g_main_context_iteration( nullptr, FALSE );
    mParts->Rethrow();
}

void GLibMainLoop::OnSignals( std::initializer_list<int> inSignals, XBlock inBlock )
{
    Parts::Signals& signals = *mParts->mSignals.emplace_back(
        std::make_unique<Parts::Signals>( Parts::Signals{ mParts.get(), std::move( inBlock ) } ) );
    const auto arrived = []( gpointer inData ) -> gboolean {
        const auto& data = *static_cast<const Parts::Signals*>( inData );
        data.mParts->Guarded( data.mBlock );
        return G_SOURCE_CONTINUE;
    };
    for ( const int number : inSignals )
        mParts->mSignalSources.push_back( g_unix_signal_add( number, arrived, &signals ) );
}
