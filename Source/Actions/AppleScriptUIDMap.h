// The numbers by which scripts refer to objects of one kind in this run. Callers keep to one thread.
#pragma once

#include "Utility/Work/Random.h"
#include "XCAF/XErrorHandler.h"

#include <cstdint>
#include <map>

template<class Object>
class AppleScriptUIDMap
{
public:
    explicit AppleScriptUIDMap( const char* inWhat ) : mWhat( inWhat ) {}

    /// A number that no object has.
    [[nodiscard]] std::uint64_t GetNewUID()
    {
        do
        {
            if ( ++mLastUID >= kWrapsAt )
            {
                XErrorHandler::PrivateMaybeLogFormat( "always", "AppleScript %s UID Wrapped", mWhat );
                mLastUID = ( XRandom::Bits() & 0xFFFFFFFF ) + 1000;
            }
        } while ( mObjects.contains( mLastUID ) );
        return mLastUID;
    }
    [[nodiscard]] Object* Find( std::uint64_t inUID ) const
    {
        const auto found = mObjects.find( inUID );
        return inUID != 0 and found != mObjects.end() ? found->second : nullptr;
    }
    [[nodiscard]] bool Contains( std::uint64_t inUID ) const { return mObjects.contains( inUID ); }
    void Set( std::uint64_t inUID, Object* inObject ) { mObjects[inUID] = inObject; }
    /// Removes the entry if it is this object's.
    void Remove( std::uint64_t inUID, const Object* inObject )
    {
        const auto found = mObjects.find( inUID );
        if ( found != mObjects.end() and found->second == inObject )
            mObjects.erase( found );
    }

    /// For tests of what happens when the numbers run out.
    void SetLastUID( std::uint64_t inUID ) { mLastUID = inUID; }

private:
    static constexpr std::uint64_t kWrapsAt = 0x4000000000000001;

    const char* mWhat;
    std::map<std::uint64_t, Object*> mObjects;
    std::uint64_t mLastUID = 0;
};
