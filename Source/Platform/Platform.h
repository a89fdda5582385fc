// What the platform can do for us, one small interface for each subject. Code of every folder asks
// Platform::Current(); where the platform has nothing to say, the absent set answers empty, and
// nobody has to ask first whether there is one.
//
// To add a service: a header of its own with the abstract class and, beside it, a static
// `Absent()` that gives the one that answers nothing; then here a declaration, an accessor with its
// setter, and a member with its line in the constructor. A set for a real platform stands in a folder below this
// one, makes a Platform of its own objects at start-up and substitutes it.
#pragma once

class XAlerts;
class XApplications;
class XDesktopFileFacts;
class XEditorService;
class XLoginItems;
class XProcessNotifier;
class XRunningApplications;
class XSearchIndex;
class XWorkspace;

class Platform
{
public:
    /// The absent set.
    Platform();

    [[nodiscard]] XAlerts& Alerts() const { return *mAlerts; }
    [[nodiscard]] XApplications& Applications() const { return *mApplications; }
    [[nodiscard]] XDesktopFileFacts& FileFacts() const { return *mFileFacts; }
    [[nodiscard]] XEditorService& EditorService() const { return *mEditorService; }
    [[nodiscard]] XLoginItems& LoginItems() const { return *mLoginItems; }
    [[nodiscard]] XProcessNotifier& ProcessNotifier() const { return *mProcessNotifier; }
    [[nodiscard]] XRunningApplications& RunningApplications() const { return *mRunningApplications; }
    [[nodiscard]] XSearchIndex& SearchIndex() const { return *mSearchIndex; }
    [[nodiscard]] XWorkspace& Workspace() const { return *mWorkspace; }

    // The service must outlive the platform's use.
    void SetAlerts( XAlerts& inService ) { mAlerts = &inService; }
    void SetApplications( XApplications& inService ) { mApplications = &inService; }
    void SetFileFacts( XDesktopFileFacts& inService ) { mFileFacts = &inService; }
    void SetEditorService( XEditorService& inService ) { mEditorService = &inService; }
    void SetLoginItems( XLoginItems& inService ) { mLoginItems = &inService; }
    void SetProcessNotifier( XProcessNotifier& inService ) { mProcessNotifier = &inService; }
    void SetRunningApplications( XRunningApplications& inService ) { mRunningApplications = &inService; }
    void SetSearchIndex( XSearchIndex& inService ) { mSearchIndex = &inService; }
    void SetWorkspace( XWorkspace& inService ) { mWorkspace = &inService; }

    /// The platform in use: the absent set unless another was substituted. Any thread.
    [[nodiscard]] static const Platform& Current();

    /// Puts a platform in use for as long as this object lives. To change one service, copy
    /// Current() and set that service. Main thread, while nothing else runs.
    class Substitute
    {
    public:
        explicit Substitute( const Platform& inPlatform );
        ~Substitute();
        Substitute( const Substitute& ) = delete;
        Substitute& operator=( const Substitute& ) = delete;

    private:
        const Platform* mPrevious;
    };

private:
    XAlerts* mAlerts;
    XApplications* mApplications;
    XDesktopFileFacts* mFileFacts;
    XEditorService* mEditorService;
    XLoginItems* mLoginItems;
    XProcessNotifier* mProcessNotifier;
    XRunningApplications* mRunningApplications;
    XSearchIndex* mSearchIndex;
    XWorkspace* mWorkspace;
};
