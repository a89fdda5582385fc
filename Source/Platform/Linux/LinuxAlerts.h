// Alerts of a program without windows: lines on stderr, and the desktop's notifications where a bus has them. Nobody can
// answer. Private to this folder.
#pragma once

#include "Platform/Alerts.h"
#include "Platform/Linux/BusConnection.h"

class LinuxAlerts final : public XAlerts
{
public:
    /// The connection must outlive this object.
    LinuxAlerts( const BusConnection& inBus, XWork& inWork ) : mConnection( inBus ), mWork( inWork ) {}

    void SystemLog( TextView inMessage ) override;
    void PlayAlertSound( int inSound ) override;
    void ShowAlert( const XAlert& inAlert, const Answer& inAnswer ) override;
    void Notify( TextView inTitle, TextView inText ) override;
    /// Whether we are the program that the terminal shows.
    [[nodiscard]] bool IsApplicationActive() override;

private:
    void NotifyDesktop( TextView inTitle, TextView inText, bool inIsCritical );

    const BusConnection& mConnection;
    XWork& mWork;
};

/// "korvalen: title: text" with a line break at the end, as it may go to a terminal: what would steer the
/// terminal, and line breaks, are blanks.
[[nodiscard]] std::string AlertLine( TextView inTitle, TextView inText );
