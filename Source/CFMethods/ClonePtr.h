// Owning pointer whose copy clones what it points to. Conditions, collections and triggers are held in
// vectors of it.
#pragma once

#include <memory>

template<class T>
class ClonePtr
{
public:
    ClonePtr() = default;
    ClonePtr( std::unique_ptr<T> inObject ) : mObject( std::move( inObject ) ) {}
    ClonePtr( const ClonePtr& inOther ) : mObject( inOther.mObject ? inOther.mObject->Clone() : nullptr ) {}
    ClonePtr( ClonePtr&& ) noexcept = default;
    ClonePtr& operator=( ClonePtr inOther ) noexcept
    {
        mObject.swap( inOther.mObject );
        return *this;
    }
    ~ClonePtr() = default;

    [[nodiscard]] T* Get() const { return mObject.get(); }
    T* operator->() const { return mObject.get(); }
    T& operator*() const { return *mObject; }
    explicit operator bool() const { return bool( mObject ); }

private:
    std::unique_ptr<T> mObject;
};
