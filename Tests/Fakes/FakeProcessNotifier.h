// Remembers what was posted, and lets a test play another process.
#pragma once

#include "Platform/ProcessNotifications.h"
#include "Utility/Work/Work.h"

#include <gtest/gtest.h>

class FakeProcessNotifier final : public XProcessNotifier
{
public:
    void Post( TextView inName, const CFContainer<XPlistDictionary>& inUserInfo, Audience inAudience ) override
    {
        EXPECT_TRUE( XIsMainThread() );
        mPosts.emplace_back( inName, inUserInfo );
        mAudiences.push_back( inAudience );
    }
    void SetReceiver( Receiver inReceiver ) override { mReceiver = std::move( inReceiver ); }

    std::vector<std::pair<Text, CFContainer<XPlistDictionary>>> mPosts;
    std::vector<Audience> mAudiences; ///< of the posts
    Receiver mReceiver;
};
