// The main loop of the program on a desktop: it runs the main queue and whatever else belongs to GLib's default
// context (the bus, file monitors, signals), asleep while there is nothing. Takes the place of XMainLoop.
#pragma once

#include "Utility/Work/Work.h"

#include <initializer_list>

class GLibMainLoop
{
public:
    explicit GLibMainLoop( XWork& inWork = XWork::Current() );
    ~GLibMainLoop();
    GLibMainLoop( const GLibMainLoop& ) = delete;
    GLibMainLoop& operator=( const GLibMainLoop& ) = delete;

    /// Runs until Stop; may be called from a block of the main queue, and then Stop ends the inner run first. An exception
    /// out of a block leaves by way of this call. Main thread.
    void Run();
    /// Ends Run after the blocks that are due now; one that comes before Run ends it at once. Any thread.
    void Stop();
    /// Runs what is due now, without waiting. Main thread.
    void RunOnce();

    /// Calls the block, on the main thread, each time that one of the signals arrives (SIGHUP, SIGINT, SIGTERM); they no
    /// longer end the process by themselves. Until this object goes. Main thread.
    void OnSignals( std::initializer_list<int> inSignals, XBlock inBlock );

private:
    struct Parts;
    std::unique_ptr<Parts> mParts;
};
