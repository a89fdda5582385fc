// Runs code on a thread whose stack is too small for any recursion by the depth of an input.
#pragma once

#include <cstddef>
#include <functional>
#include <pthread.h>
#include <stdexcept>

inline constexpr std::size_t kSmallStack = 256 * 1024;

inline void RunOnSmallStack( const std::function<void()>& inBody )
{
    pthread_attr_t attributes;
    pthread_attr_init( &attributes );
    pthread_attr_setstacksize( &attributes, kSmallStack );
    pthread_t thread = {};
    const auto run = []( void* inFunction ) -> void* {
        ( *static_cast<const std::function<void()>*>( inFunction ) )();
        return nullptr;
    };
    const int failure = pthread_create( &thread, &attributes, run, const_cast<std::function<void()>*>( &inBody ) );
    pthread_attr_destroy( &attributes );
    if ( failure != 0 )
        throw std::runtime_error( "no thread with a small stack" );
    pthread_join( thread, nullptr );
}
