// Remembers what was shown, and answers alerts with a button.
#pragma once

#include "Platform/Alerts.h"

#include <mutex>

class FakeAlerts final : public XAlerts
{
public:
    void SystemLog( TextView inMessage ) override
    {
        const std::scoped_lock lock( mMutex );
        mSystemLog.emplace_back( inMessage );
    }
    void PlayAlertSound( int inSound ) override
    {
        const std::scoped_lock lock( mMutex );
        mSounds.push_back( inSound );
    }
    void ShowAlert( const XAlert& inAlert, const Answer& inAnswer ) override
    {
        mAlerts.push_back( inAlert );
        if ( inAnswer )
            inAnswer( mButton );
    }
    void Notify( TextView inTitle, TextView inText ) override { mNotifications.emplace_back( inTitle, inText ); }
    bool IsApplicationActive() override { return mIsActive; }

    std::mutex mMutex;
    std::vector<Text> mSystemLog;
    std::vector<int> mSounds;
    std::vector<XAlert> mAlerts;
    std::vector<std::pair<Text, Text>> mNotifications;
    std::size_t mButton = 0;
    bool mIsActive = false;
};
