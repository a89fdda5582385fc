// What starts at login, as the desktop's autostart entries. Only the user's own folder is looked at, for what the system
// starts isn't the user's to delete. Private to this folder. Main thread.
#pragma once

#include "Platform/Linux/GLibHolders.h"
#include "Platform/LoginItems.h"
#include "Utility/Work/Work.h"

class LinuxLoginItems final : public XLoginItems
{
public:
    /// The folder of the entries; it needn't exist.
    LinuxLoginItems( std::filesystem::path inFolder, XWork& inWork );
    ~LinuxLoginItems() override;

    [[nodiscard]] std::vector<XLoginItem> GetLoginItems() const override;
    bool AddLoginItem( TextView inName, const std::filesystem::path& inTarget ) override;
    bool DeleteLoginItem( const XLoginItem& inItem ) override;
    void SetObserver( std::function<void()> inObserver ) override;

private:
    void Changed();

    std::filesystem::path mFolder;
    XWork& mWork;
    // Shared with what is queued, which finds it empty when the observer has gone.
    std::shared_ptr<std::function<void()>> mObserver = std::make_shared<std::function<void()>>();
    std::shared_ptr<bool> mIsTold = std::make_shared<bool>( false ); // a call is on its way
    GObjectPtr<GFileMonitor> mMonitor;
};
