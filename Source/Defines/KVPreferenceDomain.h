// One preference domain: a property-list file, a dictionary of settings, that several processes
// read and write. A read looks whether the file is still the one that was read last, and reads it
// again if not. A write takes the lock file beside it, reads what is there now, changes its own keys and
// replaces the file: so processes that set different keys lose nothing. Any thread.
//
// A file that can't be understood reads as empty, and is set aside before the first write. A
// value that couldn't be written stays in memory, is what reads give, and goes with the next write.
#pragma once

#include "CFMethods/PropertyList.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

class KVPreferenceDomain
{
public:
    /// Larger files are refused, as if they couldn't be understood.
    static constexpr std::size_t kMaxFileSize = std::size_t( 64 ) << 20;

    /// Keeps the bytes of a file that can't be understood, which is about to be replaced, and tells about it. Called without
    /// a lock, so it may log and read settings. An error is a reason not to replace the file.
    using Keep = std::function<std::optional<XFileError>(
        const std::filesystem::path& inFile, std::span<const std::uint8_t> inBytes, const std::string& inReason )>;

    /// The file needs not exist; its folder is made by the first write. Without a Keep a damaged file is never replaced.
    explicit KVPreferenceDomain(
        std::filesystem::path inFile, Keep inKeep = {}, XFileCalls& inCalls = XFileCalls::Current() );

    /// The value of a key as the file has it now, or null.
    [[nodiscard]] __SafeCFPropertyList Get( const XKey& inKey );

    /// Sets or, with null, removes. False when the value couldn't be written; it is logged, and kept in memory.
    bool Set( const XKey& inKey, __SafeCFPropertyList inValue );

    /// Reads and sets under the lock, so that two processes can't both see a missing value and each make one. The function
    /// gives the new value, or the old one to leave it; it runs under a mutex of this domain, so it mustn't
    /// log, and again when a damaged file was set aside meanwhile. The result is the value that stands.
    __SafeCFPropertyList Change(
        const XKey& inKey, const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange );

    /// Tries again to write what couldn't be written. True when nothing is left.
    bool WriteUnsaved();

private:
    /// Runs the work under the mutex and then, without it, logs what it had to say: logging itself
    /// reads settings.
    template<class Work>
    auto Locked( Work inWork );

    enum class Outcome { kDone, kFailed, kMustKeep };
    struct Damage
    {
        std::shared_ptr<const XBytes> mBytes;
        std::string mReason;
    };
    /// Does the work, which is to write, under the mutex; when a damaged file is in the way, again after it was set aside.
    template<class Work>
    bool WriteBy( const Work& inWork );
    [[nodiscard]] bool SetAside( const Damage& inDamage );

    // All of these are called under mMutex.
    void Refresh();
    void ReadFile();
    [[nodiscard]] bool IsUnchanged();
    [[nodiscard]] __SafeCFPropertyList Find( const XKey& inKey ) const;
    [[nodiscard]] Outcome Write();
    [[nodiscard]] Outcome WriteUnderLock();
    [[nodiscard]] Outcome Failed( std::string inWhy );
    [[nodiscard]] std::optional<std::string> Lock( XOpenFile& outLock );

    std::filesystem::path mFile;
    Keep mKeep;
    XFileCalls& mCalls;
    std::mutex mMutex;

    CFContainer<XPlistDictionary> mSettings; ///< of the file that was read last; null for none
    std::map<std::string, __SafeCFPropertyList, std::less<>> mUnsaved; ///< null to remove

    bool mHasRead = false;
    XFileStatus mFacts;             ///< of the file that was read last, if mOpenFile is open
    XOpenFile mOpenFile;            ///< it, held open: see IsUnchanged
    Damage mDamage;                 ///< if it can't be understood
    bool mIsKept = false;           ///< the damaged file was set aside
    std::string mFault;             ///< why it can't be read or understood; "" when it can, or isn't there
    std::vector<std::string> mNews; ///< to be logged
};
