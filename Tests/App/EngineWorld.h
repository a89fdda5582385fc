// A world with a fake engine: its processes, its executable in a folder of data files, and whatever the desktop says.
#pragma once

#include "Defines/KVPreferences.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeAlerts.h"
#include "Tests/Fakes/FakeLoginItems.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/FakeRunningApplications.h"
#include "Tests/Fakes/FakeTrash.h"
#include "Tests/Fakes/FakeWorkspace.h"
#include "Tests/Fakes/ManualSleep.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XNotificationCenter.h"

#include <gtest/gtest.h>

class EngineWorld : public testing::Test
{
protected:
    EngineWorld()
    {
        XErrorHandler::ResetForTesting();
        XErrorHandler::SetPreferenceSource(
            { []( TextView ) { return std::optional<Text>( u"engine DaemonLoginStatus" ); },
                []( TextView ) { return std::optional<bool>(); } } );
        (void)XErrorHandler::MaybeShouldLog( "engine" ); // reads the settings, and says so in the log
        (void)mWorld.mLog.Take();
        mPlatform.SetAlerts( mAlerts );
        mPlatform.SetFileFacts( mTrash );
        mPlatform.SetLoginItems( mLoginItems );
        mPlatform.SetProcessNotifier( mNotifier );
        mPlatform.SetRunningApplications( mApplications );
        mPlatform.SetWorkspace( mWorkspace );
        KVPreferences::UseFolder( mFolder.Path() );
        XNotificationCenter::ListenToOtherProcesses();
        mFolder.Write( "engine", "the engine" );
        mApplications.mEngine = mFolder / "engine";
        mSleep.mMeanwhile = [this] { mApplications.Tick(); };
    }
    ~EngineWorld() override
    {
        KVPreferences::UseFolder( {} );
        XErrorHandler::ResetForTesting();
    }

    ManualWorld mWorld;
    ManualSleep mSleep{ mWorld.mClock };
    ScratchFolder mFolder;
    FakeAlerts mAlerts;
    FakeTrash mTrash;
    FakeLoginItems mLoginItems;
    FakeProcessNotifier mNotifier;
    FakeRunningApplications mApplications;
    FakeWorkspace mWorkspace;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
};
