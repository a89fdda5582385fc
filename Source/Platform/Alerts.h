// What reaches the user or the system without a window of ours: the system log, the alert sound,
// alerts and user notifications. The platform's set does it; without one nothing is shown.
#pragma once

#include "CFMethods/Text.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

/// A window of the platform, as whoever made it knows it.
struct XPlatformWindow;

/// The numbers are the platform's.
enum class XAlertStyle { kWarning = 0, kInformational = 1, kCritical = 2 };

struct XAlert
{
    XAlertStyle mStyle = XAlertStyle::kWarning;
    Text mTitle, mText;
    std::vector<Text> mButtons;         ///< the first is the default
    XPlatformWindow* mWindow = nullptr; ///< a sheet of this window; without one the alert is modal
};

class XAlerts
{
public:
    /// The index of the button, or absent when nobody could be asked.
    using Answer = std::function<void( std::optional<std::size_t> )>;

    static constexpr int kAlertSound = 4096; ///< the sound that the user chose for alerts

    virtual ~XAlerts() = default;

    /// One message to the system log. Any thread, and must not log through XErrorHandler.
    virtual void SystemLog( TextView inMessage ) = 0;
    /// Any thread; doesn't wait for the sound's end.
    virtual void PlayAlertSound( int inSound ) = 0;
    /// Asks the user, and calls the answer once: before it returns for a modal alert, later for a sheet.
    /// Main thread.
    virtual void ShowAlert( const XAlert& inAlert, const Answer& inAnswer ) = 0;
    /// Posts a user notification. Main thread.
    virtual void Notify( TextView inTitle, TextView inText ) = 0;
    /// Whether this application is the one that the user works with. Main thread.
    [[nodiscard]] virtual bool IsApplicationActive() = 0;

    /// Shows nothing and drops every message; an alert is answered at once, by nobody.
    [[nodiscard]] static XAlerts& Absent();
};
