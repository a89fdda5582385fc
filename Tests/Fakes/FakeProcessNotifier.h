// Remembers what was posted, and lets a test play another process.
#pragma once

#include "Platform/ProcessNotifications.h"

class FakeProcessNotifier final : public XProcessNotifier
{
public:
    void Post( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo ) override
    {
        mPosts.emplace_back( inName, inUserInfo );
    }
    void SetReceiver( Receiver inReceiver ) override { mReceiver = std::move( inReceiver ); }

    std::vector<std::pair<Text, CFContainer<XPlistDictionary>>> mPosts;
    Receiver mReceiver;
};
