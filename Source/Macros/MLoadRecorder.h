// Keeps what a load does to its source, for MLoadCheck to explain differences with. Elements are told apart by
// the identity of their values, which the caller keeps alive. Main thread.
#pragma once

#include "CFMethods/PropertyListReadObserver.h"
#include "Macros/MLoadObserver.h"

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class MLoadRecorder final : public MLoadObserver, public XPlistReadObserver
{
public:
    struct UIDs
    {
        XText mFile, mObject;
    };
    /// What was told of a key.
    struct Told
    {
        MLoadRule mRule;
        Text mReason;
    };
    /// A key of one dictionary. Keys are told apart by their hash: a file has a thousand of them at most.
    struct KeyID
    {
        const XPlistDictionary* mDictionary;
        std::uint32_t mHash;

        KeyID( const XPlistDictionary& inDictionary, const XKey& inKey )
            : mDictionary( &inDictionary ),
              mHash( inKey.Hash() )
        {}
        KeyID( const XPlistDictionary& inDictionary, const XPlistString& inKey )
            : mDictionary( &inDictionary ),
              mHash( inKey.KeyHash() )
        {}
        friend bool operator==( const KeyID&, const KeyID& ) = default;
    };

    void DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason ) override;
    void DidReadOlderKey( const XPlistDictionary& inSource, const XKey& inOlder, const XKey& inCurrent ) override;
    void DidUpgradeType( const XPlistDictionary& inSource, TextView inOlder, TextView inCurrent ) override;
    void DidUpgradeValue( const XPlistDictionary& inSource, const XKey& inKey, TextView inReason ) override;
    void DidRepair( const XPlistDictionary& inSource, const XKey& inKey, MLoadRule inRule, TextView inReason ) override;
    void DidReadUID( const XPlistDictionary& inSource, const XText& inFileUID, const XText& inUID ) override;
    void DidRead( const XPlistDictionary& inDictionary, const XKey& inKey ) override;
    void DidMisread( const XPlistDictionary& inDictionary, const XKey& inKey ) override;
    void DidTake( const XPlistDictionary& inDictionary, const XKey& inKey ) override;

    /// What was left out of a list, by index; empty when nothing was.
    [[nodiscard]] const std::map<std::size_t, Text>& DroppedFrom( const XPlistArray& inList ) const;
    // Of keys that stand in their dictionary; of others nothing is kept.
    [[nodiscard]] bool WasRead( const KeyID& inKey ) const { return Has( inKey, kRead ); }
    /// Read, but never with the type that was asked for.
    [[nodiscard]] bool WasOnlyMisread( const KeyID& inKey ) const
    {
        return Has( inKey, kMisread ) and not Has( inKey, kTaken );
    }
    // Each is null when nothing was told of the key.
    [[nodiscard]] const Told* RepairOf( const KeyID& inKey ) const { return Find( mRepairs, inKey ); }
    [[nodiscard]] const Told* UpgradeOf( const KeyID& inKey ) const { return Find( mUpgrades, inKey ); }
    /// Why a key that the source hasn't is there: an older one stood for it.
    [[nodiscard]] const Told* OriginOf( const KeyID& inKey ) const { return Find( mOrigins, inKey ); }
    /// The UIDs of the object that was made of this value; of several, each once, in order of loading.
    [[nodiscard]] UIDs TakeUIDs( const XPlistDictionary& inSource );

private:
    struct Hash
    {
        std::size_t operator()( const KeyID& inKey ) const
        {
            return std::hash<const void*>()( inKey.mDictionary ) * 31 + inKey.mHash;
        }
    };
    using Tellings = std::unordered_map<KeyID, Told, Hash>;

    // Reads are many, a hundred for each macro, and what is kept of them is what a check takes its time for: so each
    // is one bit, at the place that the key has in its dictionary.
    enum Way : std::size_t { kRead, kMisread, kTaken, kWays };
    struct Reads
    {
        static constexpr std::size_t kMostKeys = 64;
        std::uint64_t mKeys[kWays] = {};
    };
    struct UIDList
    {
        std::vector<UIDs> mUIDs;
        std::size_t mNext = 0;
    };

    static const Told* Find( const Tellings& inTellings, const KeyID& inKey );
    void Record( const KeyID& inKey, Way inWay );
    [[nodiscard]] bool Has( const KeyID& inKey, Way inWay ) const;

    std::unordered_map<const XPlistArray*, std::map<std::size_t, Text>> mDropped;
    std::unordered_map<const XPlistDictionary*, UIDList> mUIDs;
    std::unordered_map<const XPlistDictionary*, Reads> mReads;
    std::unordered_set<KeyID, Hash> mReadsOfLongOnes[kWays]; ///< of dictionaries with more keys than bits
    Tellings mRepairs, mUpgrades, mOrigins;

    // The reads of a dictionary come one after the other, and each is told twice: asked for, then taken or not.
    const XPlistDictionary* mLastDictionary = nullptr;
    Reads* mLastReads = nullptr;
    std::uint32_t mLastHash = 0;
    std::size_t mLastAt = 0;
};
