#include "XCAF/KVNotifications.h"

#include "Platform/Platform.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"
#include "XCAF/XNotificationCenter.h"

#include <gtest/gtest.h>
#include <set>

namespace
{
using Payload = CFContainer<XPlistDictionary>;
using Audience = XProcessNotifier::Audience;

struct Notifications : testing::Test
{
    Notifications()
    {
        mPlatform.SetProcessNotifier( mNotifier );
        XNotificationCenter::ListenToOtherProcesses();
    }
    /// How often an observer hears what another process posts.
    int Heard( TextView inName, const Payload& inPayload, bool inFromEngine )
    {
        int heard = 0;
        const BlockNotificationObserver observer(
            XNotificationCenter::Reach::kDistributed, inName, [&]( const auto& ) { ++heard; } );
        mNotifier.mReceiver( inName, inPayload, inFromEngine );
        mWorld.mWork.RunAll();
        return heard;
    }

    ManualWorld mWorld;
    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
};

Payload With( const __SafeCFPropertyList& inValue )
{
    XMutableDictionary payload;
    payload.Set( CFSTR( "Value" ), inValue );
    return payload.Seal();
}

__SafeCFPropertyList DataOf( std::size_t inSize )
{
    const std::vector<std::uint8_t> bytes( inSize );
    return XPlistData::Make( bytes );
}

__SafeCFPropertyList Nested( std::size_t inDepth )
{
    __SafeCFPropertyList value;
    for ( std::size_t i = 0; i < inDepth; ++i )
    {
        XMutableArray array;
        array.Append( value );
        value = array.Seal();
    }
    return value;
}

/// A few arrays, each of which holds the next one twice.
__SafeCFPropertyList Bomb()
{
    __SafeCFPropertyList value = __SafeCFPropertyList::Integer( 1 );
    for ( int i = 0; i < 60; ++i )
    {
        XMutableArray array;
        array.Append( value );
        array.Append( value );
        value = array.Seal();
    }
    return value;
}
} // namespace

TEST_F( Notifications, NamesAreThoseOfTheWireAndStandInOrder )
{
    EXPECT_EQ( KVNotifications::kLoadMacroFiles, u"KV_LoadMacroFiles" );
    EXPECT_EQ( KVNotifications::kkExcludedApplicationsReloadPreferences, u"KV_kExcludedApplicationsReloadPreferences" );
    std::set<Text> names;
    for ( const auto& row : KVNotifications::AllNotifications() )
        EXPECT_TRUE( names.insert( Text( row.mName ) ).second ) << UTF8FromText( row.mName );
    EXPECT_EQ( names.size(), 67u );
}

TEST_F( Notifications, WhatMakesSomethingRunGoesToTheEngineAlone )
{
    const struct
    {
        TextView mName;
        Audience mAudience;
    } kCases[] = { { u"KV_ExecuteMacro", Audience::kEngineOnly }, { u"KV_DoExecuteActions", Audience::kEngineOnly },
        { u"KV_CancelExecution", Audience::kEngineOnly }, { u"KV_StartRecording", Audience::kEngineOnly },
        { u"KV_QuitEngine", Audience::kEngineOnly }, { u"KV_TesseractRequestDownload", Audience::kEngineOnly },
        { u"KV_LoadMacroFiles", Audience::kEverybody }, { u"KV_LoadClipData", Audience::kEverybody },
        { u"KV_ExcludedApplicationsChanged", Audience::kEverybody }, { u"KV_Unheard", Audience::kEverybody } };
    for ( const auto& [name, audience] : kCases )
    {
        XNotificationCenter::PostNotification( name, nullptr, true );
        EXPECT_EQ( mNotifier.mAudiences.back(), audience ) << UTF8FromText( name );
    }
}

TEST_F( Notifications, WhatMakesSomethingHappenHereIsTakenFromTheEngineAlone )
{
    for ( const TextView name :
        { u"KV_QuitEditor", u"KV_SetMacroEnable", u"KV_SharingIncomingChange", u"KV_RecordedAction",
            u"KV_MacroStatsUpdated", u"KV_LargeTextChanged", u"KV_ExecuteMacro", u"KV_CompiledTextResult" } )
    {
        EXPECT_EQ( Heard( name, nullptr, true ), 1 ) << UTF8FromText( name );
        EXPECT_EQ( Heard( name, nullptr, false ), 0 ) << UTF8FromText( name );
        EXPECT_EQ( mWorld.mLog.CountContaining( "Refused the notification " + UTF8FromText( name ) ), 1u );
    }
    EXPECT_EQ( Heard( u"KV_ShowStatusMenuChanged", nullptr, false ), 1 );
    EXPECT_EQ( Heard( u"KV_MacroNameChanged", nullptr, true ), 0 ); // never leaves a process
}

TEST_F( Notifications, PayloadsAreFlatWhereNothingElseIsToldAndNeverLarge )
{
    constexpr std::size_t kMost = KVNotifications::kMaxPayloadBytes;
    const struct
    {
        TextView mName;
        __SafeCFPropertyList mValue;
        bool mPasses;
    } kCases[] = {
        { u"KV_CheckCommunicationReply", __SafeCFPropertyList::Integer( 1 ), true },
        { u"KV_CheckCommunicationReply", __SafeCFPropertyList::String( u"text" ), true },
        { u"KV_CheckCommunicationReply", Nested( 1 ), false },
        { u"KV_Unheard", Nested( 1 ), false },
        { u"KV_RecordedAction", Nested( 1 ), true },
        { u"KV_RecordedAction", Nested( KVNotifications::kMaxPayloadDepth - 1 ), true },
        { u"KV_RecordedAction", Nested( KVNotifications::kMaxPayloadDepth ), false },
        { u"KV_RecordedAction", Nested( 100'000 ), false },
        { u"KV_RecordedAction", Bomb(), false },
        { u"KV_RecordedAction", DataOf( kMost - 100 ), true },
        { u"KV_RecordedAction", DataOf( kMost + 1 ), false },
        { u"KV_CheckCommunicationReply", __SafeCFPropertyList::String( Text( kMost / 2 - 50, u'\u20AC' ) ), true },
        { u"KV_CheckCommunicationReply", __SafeCFPropertyList::String( Text( kMost / 2 + 1, u'\u20AC' ) ), false },
    };
    for ( const auto& [name, value, passes] : kCases )
    {
        (void)mWorld.mLog.Take();
        EXPECT_EQ( Heard( name, With( value ), true ), passes ) << UTF8FromText( name );
        EXPECT_EQ( mWorld.mLog.Take().size(), not passes );
        const std::size_t posts = mNotifier.mPosts.size();
        XNotificationCenter::PostNotification( name, With( value ), true );
        mWorld.mWork.RunAll();
        EXPECT_EQ( mNotifier.mPosts.size() - posts, passes ) << UTF8FromText( name );
        EXPECT_EQ( mWorld.mLog.Take().size(), not passes );
    }
}

TEST_F( Notifications, AStrangersNameDoesNotFillTheLog )
{
    mNotifier.mReceiver( Text( 1'000'000, u'x' ), With( Nested( 1 ) ), false );
    const auto lines = mWorld.mLog.Take();
    ASSERT_EQ( lines.size(), 1u );
    EXPECT_LT( lines[0].size(), 1000u );
}
