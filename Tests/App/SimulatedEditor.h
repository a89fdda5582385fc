// One editor process on a disk in memory, its clock and queues turned by hand. It can end in order, or die: then all that
// it had in memory and on queues is gone, nothing more reaches the disk, and the next start is another process. Its
// edits rename the one macro that the file has, so that a name stands for a state.
#pragma once

#include "App/KVAppDelegate.h"
#include "Defines/KVFolderLock.h"
#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/SimulatedDisk.h"
#include "Utility/Work/Random.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

class SimulatedEditor
{
public:
    static constexpr char kFolder[] = "/data", kMacrosFile[] = "/data/Korvalen Macros.plist";
    static constexpr char kShareFile[] = "/share/Macros.kvsync";
    static constexpr char kIncomingFile[] = "/data/Korvalen Macros From Shared.plist";
    static constexpr char kOverridesFile[] = "/data/Korvalen Enable Overrides";
    static constexpr char kSettingsFile[] = "/data/com.tessarine.korvalen.editor.plist";
    static constexpr char16_t kMacroUID[] = u"7D0C6A3E-40F5-4C57-9E0B-2F7A54B9D301";
    static constexpr double kNoon = 700056000, kDay = 86400; ///< kNoon is 2023-03-09T12:00:00Z

    /// KORVALEN_LONG_TESTS asks for all that takes minutes.
    [[nodiscard]] static bool IsLongRun();

    /// A macros file that loads without anything to do, with the macro of this name.
    [[nodiscard]] static std::string BytesWith( TextView inName );
    /// The macro's name in the bytes of a macros file; "unreadable" or "no macros file".
    [[nodiscard]] static std::string NameIn( std::string_view inBytes );
    /// A disk that an editor has left whose macro has this name; all of it has arrived.
    [[nodiscard]] static std::shared_ptr<SimulatedDisk> DiskWith( TextView inName );

    /// The editor's calls go to inCalls, which passes them on to the disk: for one that plays a faulty writer.
    explicit SimulatedEditor( SimulatedDisk& ioDisk, XFileCalls* inCalls = nullptr );
    /// Dies, if it runs.
    ~SimulatedEditor();
    SimulatedEditor( const SimulatedEditor& ) = delete;
    SimulatedEditor& operator=( const SimulatedEditor& ) = delete;

    /// A new process, which runs until it has nothing left to do. False when another holds the folder.
    bool Start();
    /// The next start, and what follows, meets it.
    void SetFaultOfStart( const SimulatedDisk::Fault& inFault ) { mFaultOfStart = inFault; }
    void Quit();
    void Die();
    /// So many seconds between one process and the next, or while one runs.
    void Wait( double inSeconds );
    /// The wall clock alone is set.
    void SetNow( double inNow );
    [[nodiscard]] double Now() const { return mNow; }
    void RunAll() { (void)mWorld->mWork.RunAll(); }

    void Rename( TextView inName );
    /// The macro's name; "none" without the macro.
    [[nodiscard]] static std::string Model();
    [[nodiscard]] static bool IsMacroEnabled();

    // What went wrong in this process, as far as somebody was told.
    [[nodiscard]] std::size_t CountFailedSaves() const;
    /// Log lines that tell of damage, loss or an error, and notices that nobody has answered; "" for none.
    [[nodiscard]] std::string Complaints() const;
    [[nodiscard]] const std::vector<XAlert>& Alerts() const { return mAlerts.mAlerts; }
    [[nodiscard]] ManualWorld& World() { return *mWorld; }

private:
    SimulatedDisk& mDisk;
    XFileCalls::Substitute mCallsInUse;
    XSeededRandom mRandom{ 1 };
    XRandom::Substitute mRandomInUse{ mRandom };
    FakeAlerts mAlerts;
    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    Platform::Substitute mPlatformInUse{ mPlatform };
    KVAppSubsystems mSubsystems;
    double mNow = kNoon;
    SimulatedDisk::Fault mFaultOfStart;

    // The process.
    std::unique_ptr<ManualWorld> mWorld;
    std::unique_ptr<ManualSleep> mSleep;
    std::optional<KVFolderLock> mLock;
    std::unique_ptr<KVAppDelegate> mDelegate;
};
