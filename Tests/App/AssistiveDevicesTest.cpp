#include "App/AssistiveDevices.h"

#include "Tests/App/EngineWorld.h"
#include "Utility/Text/Localization.h"

namespace
{
struct Accessibility : EngineWorld
{
    Accessibility() { mWorkspace.mNeedsPermission = true; }
    [[nodiscard]] bool Warns()
    {
        mAlerts.mAlerts.clear();
        AssistiveDevices::WarnAccessibilitIsRequiredForOperation();
        return not mAlerts.mAlerts.empty();
    }
};
} // namespace

TEST_F( Accessibility, BothNeedThePermissionAndTheEngineIsAskedEachTime )
{
    for ( const bool isTrusted : { false, true } )
    {
        for ( const int engine : { -1, 0, 1 } ) // it never said, no, yes
        {
            mWorkspace.mIsTrusted = isTrusted;
            KVPreferences::Remove( KVPreferences::kEngineHasAssistiveDevicesID );
            if ( engine >= 0 )
                KVPreferences::SetBoolean( KVPreferences::kEngineHasAssistiveDevicesID, engine == 1 );
            mNotifier.mPosts.clear();
            EXPECT_EQ( AssistiveDevices::EnabledForBoth(), isTrusted and engine == 1 );
            ASSERT_EQ( mNotifier.mPosts.size(), 1u );
            EXPECT_EQ( mNotifier.mPosts[0].first, u"KV_CheckAssistiveDevicesEnabled" );
            EXPECT_EQ( AssistiveDevices::Enabled(), isTrusted );
        }
    }
    EXPECT_EQ( mWorkspace.mPrompts, 0 );
}

TEST_F( Accessibility, WhereNoPermissionIsNeededOnlyTheEnginesNoCounts )
{
    mWorkspace.mNeedsPermission = false;
    EXPECT_TRUE( AssistiveDevices::EnabledForBoth() );
    EXPECT_FALSE( Warns() );
    KVPreferences::SetBoolean( KVPreferences::kEngineHasAssistiveDevicesID, false );
    EXPECT_FALSE( AssistiveDevices::EnabledForBoth() );
}

TEST_F( Accessibility, TheWarningComesUntilTheUserHasEnough )
{
    mWorkspace.mIsTrusted = false;
    mAlerts.mButton = 1; // ignore
    EXPECT_TRUE( Warns() );
    EXPECT_EQ( mAlerts.mAlerts[0].mTitle, kvr_localized( u"WarnAccessibilityTitle" ) );
    EXPECT_EQ( mAlerts.mAlerts[0].mButtons.size(), 3u );
    mAlerts.mButton = 0; // to the settings
    EXPECT_TRUE( Warns() );
    EXPECT_EQ( mWorkspace.mPanesOpened, 1 );
    mAlerts.mButton = 2; // not again
    EXPECT_TRUE( Warns() );
    EXPECT_FALSE( Warns() );
    EXPECT_EQ( mWorkspace.mPanesOpened, 1 );

    // Once both have the permission, losing it is news again.
    AssistiveDevices::ForceSystemToNoticeUs();
    EXPECT_FALSE( Warns() );
    mWorkspace.mIsTrusted = true;
    KVPreferences::SetBoolean( KVPreferences::kEngineHasAssistiveDevicesID, true );
    AssistiveDevices::ForceSystemToNoticeUs();
    mWorkspace.mIsTrusted = false;
    EXPECT_TRUE( Warns() );
}

TEST_F( Accessibility, TheSystemIsMadeToNoticeAProgramThatItDoesNotTrust )
{
    AssistiveDevices::ForceSystemToNoticeUs();
    EXPECT_EQ( mWorkspace.mAccessibilityRequests, 0 );
    mWorkspace.mIsTrusted = false;
    AssistiveDevices::ForceSystemToNoticeUs();
    EXPECT_EQ( mWorkspace.mAccessibilityRequests, 1 );
    EXPECT_EQ( mWorkspace.mPrompts, 1 );
}

TEST_F( Accessibility, TheGeneralAlertOffersHelp )
{
    mAlerts.mButton = 2;
    AssistiveDevices::AccessibilitIsRequiredGenerallyAlert();
    mWorld.mWork.RunAll();
    ASSERT_EQ( mAlerts.mAlerts.size(), 2u );
    EXPECT_EQ( mAlerts.mAlerts[0].mTitle, kvr_localized( u"UniversalAccessWarningTitle" ) );
    EXPECT_EQ( mAlerts.mAlerts[1].mTitle, kvr_localized( u"WarnAccessibilityHelpTitle" ) );
    mAlerts.mButton = 0;
    AssistiveDevices::AccessibilitIsRequiredGenerallyAlert();
    EXPECT_EQ( mWorkspace.mPanesOpened, 1 );
}
