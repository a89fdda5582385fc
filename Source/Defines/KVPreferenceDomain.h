// One preference domain: a property-list file, a dictionary of settings, that several processes
// read and write. A read looks whether the file is still the one that was read last, and reads it
// again if not. A write takes the lock file beside it, reads what is there now, changes its own keys and
// replaces the file: so processes that set different keys lose nothing. Any thread.
//
// A file that can't be understood reads as empty, and is copied aside before the first write. A
// value that couldn't be written stays in memory, is what reads give, and goes with the next write.
#pragma once

#include "CFMethods/PropertyList.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

class KVPreferenceDomain
{
public:
    /// Larger files are refused, as if they couldn't be understood.
    static constexpr std::size_t kMaxFileSize = std::size_t( 64 ) << 20;

    /// The file needs not exist; its folder is made by the first write.
    explicit KVPreferenceDomain( std::filesystem::path inFile, XFileCalls& inCalls = XFileCalls::Current() );

    /// The value of a key as the file has it now, or null.
    [[nodiscard]] __SafeCFPropertyList Get( const XKey& inKey );

    /// Sets or, with null, removes. False when the value couldn't be written; it is logged, and kept in memory.
    bool Set( const XKey& inKey, __SafeCFPropertyList inValue );

    /// Reads and sets under the lock, so that two processes can't both see a missing value and each make one. The function
    /// gives the new value, or the old one to leave it; it runs under a mutex of this domain, so it mustn't
    /// log. The result is the value that stands.
    __SafeCFPropertyList Change(
        const XKey& inKey, const std::function<__SafeCFPropertyList( const __SafeCFPropertyList& inOld )>& inChange );

    /// Tries again to write what couldn't be written. True when nothing is left.
    bool WriteUnsaved();

private:
    /// Runs the work under the mutex and then, without it, logs what it had to say: logging itself
    /// reads settings.
    template<class Work>
    auto Locked( Work inWork );

    // All of these are called under mMutex.
    void Refresh();
    void ReadFile();
    [[nodiscard]] bool IsUnchanged();
    [[nodiscard]] __SafeCFPropertyList Find( const XKey& inKey ) const;
    bool Write();
    bool Succeed( std::optional<std::string> inError );
    [[nodiscard]] std::optional<std::string> WriteUnderLock();
    [[nodiscard]] std::optional<std::string> SetDamagedFileAside();
    [[nodiscard]] std::optional<std::string> Lock( XOpenFile& outLock );

    std::filesystem::path mFile;
    XFileCalls& mCalls;
    std::mutex mMutex;

    CFContainer<XPlistDictionary> mSettings; ///< of the file that was read last; null for none
    std::map<std::string, __SafeCFPropertyList, std::less<>> mUnsaved; ///< null to remove

    bool mHasRead = false;
    XFileStatus mFacts;             ///< of the file that was read last, if mOpenFile is open
    XOpenFile mOpenFile;            ///< it, held open: see IsUnchanged
    XBytes mDamaged;                ///< its bytes, if they can't be understood
    std::string mFault;             ///< why it can't be read or understood; "" when it can, or isn't there
    std::vector<std::string> mNews; ///< to be logged
};
