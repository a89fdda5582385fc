// A disk in memory behind XFileCalls, on which everything can go wrong: the n-th call fails, the process is killed
// before or after it, or the power goes. For the last it keeps, beside what a running program sees, what has
// reached the disk for sure and what is still on its way; every state that the latter allows can be enumerated.
//
// What is on its way: an entry of a folder (made, renamed, removed) until the folder is flushed, and the bytes of a file
// until the file is. Entries may arrive in any combination; the bytes of a file arrive not at all, half, as zeros of the full
// length, or whole.
#pragma once

#include "XCAF/XFileWriting.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class SimulatedDisk final : public XFileCalls
{
public:
    /// The root folder "/" exists.
    SimulatedDisk();

    // How to fail. Calls are counted from 1 since the last reset of the count; those that only look aren't counted.
    struct Fault
    {
        std::size_t mCall = 0; ///< 0: none
        int mError = 0;        ///< what the call fails with; a write fails after half of its bytes
        bool mFromThenOn = false;
        bool mIsShortWrite = false; ///< nothing fails: a write takes half of its bytes, if it is this call
    };
    void SetFault( const Fault& inFault );
    /// The process dies before (or after) the call of this number: nothing that it does later reaches the disk.
    void SetKill( std::size_t inCall, bool inAfter );
    /// Now.
    void Kill() { mWasKilled = true; }
    [[nodiscard]] bool WasKilled() const { return mWasKilled; }
    [[nodiscard]] bool HasFailed() const { return mHasFailed; }
    void ResetCount();
    [[nodiscard]] std::size_t CountCalls() const { return mCalls; }
    /// "rename /a/b /a/c" of each counted call.
    [[nodiscard]] const std::vector<std::string>& Log() const { return mLog; }

    /// The process is gone and another begins: descriptors and locks are forgotten, faults too.
    void Restart();
    /// Everything that is on its way arrives, as when the system had time.
    void SyncAll();

    /// Each state that a power cut at this moment may leave, equal ones once. Throws std::length_error beyond a million.
    [[nodiscard]] std::vector<std::shared_ptr<SimulatedDisk>> PowerLossStates() const;
    /// After each counted call from now on, calls back; the disk mustn't be changed by it.
    void SetDidCall( std::function<void()> inDidCall ) { mDidCall = std::move( inDidCall ); }
    [[nodiscard]] std::shared_ptr<SimulatedDisk> Copy() const;

    // For tests to look at and prepare; not counted, durable at once.
    void Put( const std::filesystem::path& inPath, std::string_view inBytes );
    [[nodiscard]] std::optional<std::string> Content( const std::filesystem::path& inPath ) const;
    void Delete( const std::filesystem::path& inPath );
    /// Every file, with its bytes.
    [[nodiscard]] std::map<std::string, std::string> Files() const;
    /// Text that is equal exactly for equal trees.
    [[nodiscard]] std::string Fingerprint() const;
    /// "" or what is wrong: an open descriptor, a lock.
    [[nodiscard]] std::string WhatIsLeftOpen() const;
    void SetTime( std::int64_t inSeconds ) { mTime = inSeconds; }

    int Open( const std::filesystem::path& inPath, OpenFor inPurpose ) override;
    std::ptrdiff_t Read( int inFile, std::span<std::uint8_t> outBytes ) override;
    std::ptrdiff_t Write( int inFile, std::span<const std::uint8_t> inBytes ) override;
    int FSync( int inFile ) override;
    int ChangeMode( int inFile, std::uint32_t inMode ) override;
    int Lock( int inFile ) override;
    int TryLock( int inFile ) override;
    int Truncate( int inFile, std::uint64_t inSize ) override;
    int Close( int inFile ) override;
    int Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override;
    int RenameToNew( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override;
    int Unlink( const std::filesystem::path& inPath ) override;
    int MakeFolder( const std::filesystem::path& inPath ) override;
    int RemoveFolder( const std::filesystem::path& inPath ) override;
    int ReadFolder( const std::filesystem::path& inPath, std::vector<std::string>& outNames ) override;
    int GetFacts( int inFile, XFileStatus& outFacts ) override;
    int GetPathFacts( const std::filesystem::path& inPath, XFileStatus& outFacts ) override;
    int GetLinkFacts( const std::filesystem::path& inPath, XFileStatus& outFacts ) override;
    int ReadLink( const std::filesystem::path& inPath, std::filesystem::path& outTarget ) override;

private:
    using Number = std::uint64_t; ///< of a file or folder
    struct Node
    {
        bool mIsFolder = false;
        std::uint32_t mMode = 0600;
        std::int64_t mModified = 0, mModifiedNanoseconds = 0;
        std::string mBytes, mDurableBytes;
        std::map<std::string, Number> mEntries, mDurableEntries;
    };
    /// A change of entries that hasn't reached the disk: names that go, names that come.
    struct Pending
    {
        struct Change
        {
            Number mFolder;
            std::string mName;
            Number mNode; ///< 0: the name goes
        };
        std::vector<Change> mChanges;
    };
    struct OpenFile
    {
        Number mNode;
        std::size_t mAt = 0;
        bool mMayWrite = false;
    };
    using Nodes = std::map<Number, Node>;

    // All under the mutex.
    [[nodiscard]] Number Find( const std::filesystem::path& inPath ) const; ///< 0, with errno
    [[nodiscard]] Number FindFolderOf( const std::filesystem::path& inPath ) const;
    [[nodiscard]] bool Begin( std::string inWhat, int& outError ); ///< false: the call fails with this
    void End();
    [[nodiscard]] bool IsFaulty() const; ///< the call that has begun
    void Apply( Pending inPending );
    static void Apply( const Pending& inPending, Nodes& ioNodes, bool inDurable );
    [[nodiscard]] int RenameLocked(
        const std::filesystem::path& inFrom, const std::filesystem::path& inTo, bool inNew );
    [[nodiscard]] OpenFile* FileOf( int inFile );
    void Touch( Node& ioNode );
    [[nodiscard]] XFileStatus FactsOf( Number inNode ) const;
    void Collect( Number inFolder, const std::string& inPath, std::map<std::string, std::string>& ioFiles ) const;

    mutable std::recursive_mutex mMutex;
    Nodes mNodes;
    Number mLastNumber = 1;
    std::vector<Pending> mPending;
    std::map<int, OpenFile> mOpen;
    std::map<Number, int> mLocks; ///< the descriptor that has it
    int mLastFile = 100;
    std::int64_t mTime = 1700000000, mNanoseconds = 0;

    Fault mFault;
    std::size_t mKillCall = 0;
    bool mKillAfter = false, mWasKilled = false, mHasFailed = false;
    std::size_t mCalls = 0;
    std::vector<std::string> mLog;
    std::function<void()> mDidCall;
};
