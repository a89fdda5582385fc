// Is the program run from a place where a quarantined copy would be?
#include "App/KVAppTranslocate.h"

#include "Macros/MMacroApplication.h"
#include "Tests/App/EngineWorld.h"
#include "Utility/Text/Localization.h"

namespace
{
struct Translocation : EngineWorld, MMacroApplication
{
    void terminate() override { ++mTerminations; }

    MMacroApplication::Scope mScope{ *this };
    int mTerminations = 0;
};
} // namespace

TEST( KVAppTranslocate, APathIsJudgedByItsStartAndTheWord )
{
    const struct
    {
        TextView mPath;
        bool mIsTranslocated;
    } kCases[] = { { u"/private/var/folders/x/AppTranslocation/y/Korvalen", true },
        { u"/home/me/Translocation/korvalen", true }, { u"/tmp/korvalen", true }, { u"/private/var/db/k", true },
        { u"/var/folders/k", true }, { u"/tmp", false }, { u"/home/tmp/korvalen", false },
        { u"/home/var/private/korvalen", false }, { u"/opt/translocation/korvalen", false }, { u"tmp/korvalen", false },
        { u"/variable/korvalen", false }, { u"", false } };
    for ( const auto& [path, isTranslocated] : kCases )
        EXPECT_EQ( KVAppTranslocate::IsProbablyTranslocatedPath( path ), isTranslocated ) << UTF8FromText( path );
}

TEST_F( Translocation, TheEngineAnswersThroughItsSettingAndIsAskedEachTime )
{
    for ( const char* const own : { "/usr/bin/korvalen", "/private/var/korvalen" } )
    {
        mApplications.mOwn = own;
        const bool isOwn = std::string( own ) != "/usr/bin/korvalen";
        for ( const bool engine : { true, false } )
        {
            mNotifier.mPosts.clear();
            (void)mWorld.mLog.Take();
            KVPreferences::SetBoolean( KVPreferences::kEngineIsTranslocatedID, engine );
            EXPECT_EQ( KVAppTranslocate::EitherIsProbablyTranslocated(), isOwn or engine );
            EXPECT_EQ(
                mWorld.mLog.CountContaining( "AppTranslocation Security is active, this will cause problems" ), isOwn );
            ASSERT_EQ( mNotifier.mPosts.size(), 1u );
            EXPECT_EQ( mNotifier.mPosts[0].first, u"KV_CheckTranslocated" );
        }
    }
}

TEST_F( Translocation, TheSecondButtonQuitsAndTheThirdLeadsToHelp )
{
    for ( std::size_t button = 0; button < 3; ++button )
    {
        mTerminations = 0;
        mWorkspace.mURLs.clear();
        mAlerts.mButton = button;
        KVAppTranslocate::ShowTranslocationWarningSheet();
        EXPECT_EQ( mTerminations, button == 1 );
        EXPECT_EQ( mWorkspace.mURLs.size(), button == 2 );
    }
    ASSERT_EQ( mAlerts.mAlerts.size(), 3u );
    EXPECT_EQ( mAlerts.mAlerts[0].mTitle, kvr_localized( u"TranslocationWarningTitle" ) );
    EXPECT_EQ( mAlerts.mAlerts[0].mButtons.size(), 3u );
}
