// A set with a lock around each operation. Any thread.
#pragma once

#include <mutex>
#include <set>

template<class Value>
class ThreadSafeSet
{
public:
    void Insert( const Value& inValue )
    {
        const std::scoped_lock lock( mMutex );
        mValues.insert( inValue );
    }
    /// True when it was there.
    bool Remove( const Value& inValue )
    {
        const std::scoped_lock lock( mMutex );
        return mValues.erase( inValue ) > 0;
    }
    [[nodiscard]] bool Contains( const Value& inValue ) const
    {
        const std::scoped_lock lock( mMutex );
        return mValues.count( inValue ) > 0;
    }

private:
    mutable std::mutex mMutex;
    std::set<Value> mValues;
};
