// Lets one place watch which keys of which dictionaries a load asks for, so that a report can
// name the keys that nothing reads without a second list of all keys that could go stale.
#pragma once

#include "CFMethods/PropertyList.h"

class XPlistReadObserver
{
public:
    virtual ~XPlistReadObserver() = default;
    /// A key was asked for, whether it is there or not. Called on the thread that reads.
    virtual void DidRead( const XPlistDictionary& inDictionary, const XKey& inKey ) = 0;
    /// A value stood there, but of another type than was asked for, or a number that doesn't fit.
    virtual void DidMisread( const XPlistDictionary&, const XKey& ) {}
    /// The value was taken.
    virtual void DidTake( const XPlistDictionary&, const XKey& ) {}

    /// Watches the reads of this thread for as long as the object lives.
    class Scope
    {
    public:
        explicit Scope( XPlistReadObserver& inObserver );
        ~Scope();
        Scope( const Scope& ) = delete;
        Scope& operator=( const Scope& ) = delete;

    private:
        XPlistReadObserver* mPrevious;
    };
};
