// Ordered containers with a flag that says whether they own their values. A macro group keeps its
// macros in one, keyed by serial number, so that walking it is walking in order of creation.
#pragma once

#include <map>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

template<class K, class V>
class XSerialMap
{
public:
    explicit XSerialMap( bool inOwnsValues = false ) : mOwnsValues( inOwnsValues ) {}
    virtual ~XSerialMap() { RemoveAllValues(); }
    XSerialMap( const XSerialMap& ) = delete;
    XSerialMap& operator=( const XSerialMap& ) = delete;

    /// Replaces the value of an equal key, without destroying it.
    void SetValue( const K& inKey, V inValue ) { mMap.insert_or_assign( inKey, std::move( inValue ) ); }
    [[nodiscard]] std::size_t GetCount() const { return mMap.size(); }

    /// In key order. The block may remove the value that it is given.
    template<class Block>
    void ApplyBlock( const Block& inBlock ) const
    {
        for ( auto at = mMap.begin(); at != mMap.end(); )
        {
            const V value = ( at++ )->second;
            inBlock( value );
        }
    }
    /// The same with a plain function and one opaque context.
    void ApplyFunction( void ( *inFunction )( V inValue, void* inContext ), void* inContext ) const
    {
        ApplyBlock( [=]( V value ) { inFunction( value, inContext ); } );
    }
    [[nodiscard]] std::vector<V> GetValues() const
    {
        std::vector<V> values;
        values.reserve( mMap.size() );
        for ( const auto& [key, value] : mMap )
            values.push_back( value );
        return values;
    }

    /// Takes the key out; its value isn't destroyed.
    void RemoveValue( const K& inKey ) { mMap.erase( inKey ); }
    /// Destroys every value as well when the map owns them.
    void RemoveAllValues()
    {
        // Out of reach first: a value may take itself out of the map while it is destroyed.
        const std::map<K, V> values = std::exchange( mMap, {} );
        if constexpr ( std::is_pointer_v<V> )
        {
            if ( mOwnsValues )
            {
                for ( const auto& [key, value] : values )
                    delete value;
            }
        }
    }

private:
    std::map<K, V> mMap;
    bool mOwnsValues;
};

/// The same thing for a set of keys.
template<class K>
class XSerialSet
{
public:
    virtual ~XSerialSet() = default;
    void AddValue( const K& inKey ) { mSet.insert( inKey ); }
    [[nodiscard]] bool Contains( const K& inKey ) const { return mSet.contains( inKey ); }
    [[nodiscard]] std::size_t GetCount() const { return mSet.size(); }
    template<class Block>
    void ApplyBlock( const Block& inBlock ) const
    {
        for ( auto at = mSet.begin(); at != mSet.end(); )
        {
            const K key = *at++;
            inBlock( key );
        }
    }
    void ApplyFunction( void ( *inFunction )( K inKey, void* inContext ), void* inContext ) const
    {
        ApplyBlock( [=]( const K& key ) { inFunction( key, inContext ); } );
    }
    [[nodiscard]] std::vector<K> GetValues() const { return { mSet.begin(), mSet.end() }; }
    void RemoveValue( const K& inKey ) { mSet.erase( inKey ); }
    void RemoveAllValues() { mSet.clear(); }

private:
    std::set<K> mSet;
};
