// Owners of what GLib hands out. Private to this folder.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

struct GUnref
{
    void operator()( gpointer inObject ) const { g_object_unref( inObject ); }
};
/// An object of GLib's type system.
template<class T>
using GObjectPtr = std::unique_ptr<T, GUnref>;

struct GVariantUnref
{
    void operator()( GVariant* inVariant ) const { g_variant_unref( inVariant ); }
};
using GVariantPtr = std::unique_ptr<GVariant, GVariantUnref>;

/// Sinks what a maker returned, so that it is ours.
[[nodiscard]] inline GVariantPtr Owned( GVariant* inVariant )
{
    return GVariantPtr( g_variant_ref_sink( inVariant ) );
}

struct GFreeMemory
{
    void operator()( void* inMemory ) const { g_free( inMemory ); }
};
using GString_ = std::unique_ptr<char, GFreeMemory>;

template<class T>
[[nodiscard]] GObjectPtr<T> Shared( T* inObject )
{
    return GObjectPtr<T>( inObject ? static_cast<T*>( g_object_ref( inObject ) ) : nullptr );
}

/// Where a call puts its error.
class GErrorHolder
{
public:
    GErrorHolder() = default;
    ~GErrorHolder() { g_clear_error( &mError ); }
    GErrorHolder( const GErrorHolder& ) = delete;
    GErrorHolder& operator=( const GErrorHolder& ) = delete;

    [[nodiscard]] GError** Out()
    {
        g_clear_error( &mError );
        return &mError;
    }
    [[nodiscard]] const GError* Get() const { return mError; }
    /// Why, for people.
    [[nodiscard]] std::string Message() const { return mError ? mError->message : "no reason was given"; }

private:
    GError* mError = nullptr;
};
