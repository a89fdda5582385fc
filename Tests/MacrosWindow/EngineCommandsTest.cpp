#include "MacrosWindow/EngineCommands.h"

#include "Defines/KVPreferences.h"
#include "Macros/MMacroApplication.h"
#include "MacrosWindow/MacrosWindowInterface.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "MacrosWindow/SetEnable.h"
#include "Platform/Platform.h"
#include "Tests/Fakes/FakeProcessNotifier.h"
#include "Tests/Fakes/ManualWorld.h"
#include "Tests/Macros/MacroFixtures.h"
#include "Tests/Support/ScratchFolder.h"
#include "XCAF/KVNotifications.h"

namespace
{
/// An application whose save is just the domain's.
struct SavingApplication final : MMacroApplication
{
    explicit SavingApplication( MMacroDomain& ioDomain ) : mDomain( ioDomain ) {}
    [[nodiscard]] bool NeedSaveAllMacros() const override { return mNeedsSave; }
    void SaveAllMacrosIfNecessary() override
    {
        if ( std::exchange( mNeedsSave, false ) )
            (void)mDomain.GetPropertyList();
    }
    MMacroDomain& mDomain;
    bool mNeedsSave = false;
};

/// Remembers what it is told.
struct ListeningWindow final : MacrosWindow
{
    ListeningWindow() { MacrosWindowInterface::AddWindow( *this ); }
    ~ListeningWindow() override { MacrosWindowInterface::RemoveWindow( *this ); }
    [[nodiscard]] const XText& windowUID() const override { return mUID; }
    void noteChange( const MacrosWindowChange& inChange ) override { mTypes.push_back( inChange.mType ); }
    [[nodiscard]] CFContainer<XPlistDictionary> savedSelectionState() const override { return nullptr; }
    void didReloadMacros( const CFContainer<XPlistDictionary>& ) override {}
    void didDeferredSaveAllMacros() override {}
    void showNeedSaveView( bool ) override {}
    void stopRecording() override {}
    void close() override {}

    XText mUID = u"W";
    std::vector<MacrosWindowChangeType> mTypes;
};

struct EngineCommandsTest : DomainWorld
{
    EngineCommandsTest()
    {
        mPlatform.SetProcessNotifier( mNotifier );
        KVPreferences::UseFolder( mFolder.Path() );
        mDomain.LoadFromPropertyList(
            FileWith( { GroupWith( u"G", { MacroWith( u"A" ), MacroWith( u"B", { { "IsActive", Bool( false ) } } ) } ),
                SmartGroupWith( u"S", { Str( u"x" ) } ) } ) );
        (void)mLog.Take();
    }
    ~EngineCommandsTest() override
    {
        MacrosWindowUndo::Reset();
        KVPreferences::UseFolder( {} );
    }
    static __SafeCFPropertyList Bool( bool inValue ) { return __SafeCFPropertyList::Boolean( inValue ); }
    [[nodiscard]] static bool IsActive( TextView inUID )
    {
        return MMacroSerializedObject::FindObjectByUID( XText( inUID ) )->IsActive();
    }
    [[nodiscard]] Text LastPosted( const char* inKey ) const
    {
        return TextAt( __SafeCFPropertyList( mNotifier.mPosts.back().second ), inKey );
    }

    XManualWork mWork{ mClock };
    XWork::Substitute mWorkInUse{ mWork };
    ScratchFolder mFolder;
    FakeProcessNotifier mNotifier;
    Platform mPlatform;
    Platform::Substitute mInUse{ mPlatform };
    SavingApplication mApplication{ mDomain };
    MMacroApplication::Scope mApplicationInUse{ mApplication };
    ListeningWindow mWindow;
};
} // namespace

TEST_F( EngineCommandsTest, RunningAMacroNamesTheSaveThatWasMadeForIt )
{
    EngineCommands::ExecuteMacro( u"A" );
    ASSERT_EQ( mNotifier.mPosts.size(), 1u );
    EXPECT_EQ( mNotifier.mPosts[0].first, u"KV_ExecuteMacro" );
    EXPECT_EQ( mNotifier.mAudiences[0], XProcessNotifier::Audience::kEngineOnly );
    EXPECT_EQ( KeysOf( __SafeCFPropertyList( mNotifier.mPosts[0].second ) ), std::vector<std::string>{ "UID" } );

    mApplication.mNeedsSave = true;
    EngineCommands::ExecuteMacro( u"A" );
    EXPECT_FALSE( mApplication.mNeedsSave );
    EXPECT_EQ( mNotifier.mPosts.size(), 1u );
    (void)mDomain.GetPropertyList(); // another save before the next turn
    mWork.RunAll();
    ASSERT_EQ( mNotifier.mPosts.size(), 2u );
    EXPECT_EQ( LastPosted( "UID" ), u"A" );
    EXPECT_EQ( LastPosted( "LastSaveUID" ), MMacroDomain::LastSaveUUID().GetText() );
    EXPECT_EQ( LastPosted( "LastSaveUID" ).size(), 36u );
}

TEST_F( EngineCommandsTest, WhatTheEngineEnablesIsAnEditLikeAnyOther )
{
    // Records of the file are as long as real UIDs make them.
    const std::string nul( 1, '\0' );
    const std::string uidA = "AAAAAAAA-0000-4000-8000-000000000000", uidB = "BBBBBBBB-0000-4000-8000-000000000000";
    mDomain.LoadFromPropertyList( FileWith( { GroupWith( u"G",
        { MacroWith( TextFromUTF8( uidA ) ),
            MacroWith( TextFromUTF8( uidB ), { { "IsActive", Bool( false ) } } ) } ) } ) );
    const std::string unknown = "CCCCCCCC-0000-4000-8000-000000000000";
    mFolder.Write( "Korvalen Enable Overrides", "0:" + uidA + nul + "1:" + uidB + nul + "1:" + unknown + nul );
    EngineCommands::SetMacroEnable();
    EXPECT_FALSE( IsActive( TextFromUTF8( uidA ) ) );
    EXPECT_TRUE( IsActive( TextFromUTF8( uidB ) ) );
    EXPECT_EQ( mWindow.mTypes, std::vector( 2, MacrosWindowChangeType::kMacroChanged ) );
    EXPECT_EQ( MacrosWindowUndo::UndoCount(), 1u ); // one save, one step
    EXPECT_TRUE( MacrosWindowUndo::NeedSaveAllMacros() );
    EXPECT_EQ( mFolder.Read( "Korvalen Enable Overrides" ), "" );
    EngineCommands::SetMacroEnable();
    EXPECT_EQ( mWindow.mTypes.size(), 2u );
}

TEST_F( EngineCommandsTest, EnablingSaysWhatKindOfObjectChangedAndNothingIfNoneDid )
{
    const struct
    {
        TextView mUID;
        bool mEnable;
        std::vector<MacrosWindowChangeType> mTypes;
    } kCases[] = {
        { u"A", true, {} },
        { u"A", false, { MacrosWindowChangeType::kMacroChanged } },
        { u"B", false, {} },
        { u"B", true, { MacrosWindowChangeType::kMacroChanged } },
        { u"G", false, { MacrosWindowChangeType::kMacroGroupChanged } },
        { u"S", false, { MacrosWindowChangeType::kMacroSmartGroupChanged } },
    };
    for ( const auto& [uid, enable, types] : kCases )
    {
        mWindow.mTypes.clear();
        MacrosWindowUndo::Reset();
        AppleScriptSetEnable( *MMacroSerializedObject::FindObjectByUID( XText( uid ) ), enable, u"Engine" );
        EXPECT_EQ( IsActive( uid ), enable );
        EXPECT_EQ( mWindow.mTypes, types );
        EXPECT_EQ( MacrosWindowUndo::UndoCount(), types.size() );
    }
}

TEST_F( EngineCommandsTest, TheModelsPostsGoToTheEngine )
{
    EngineCommands::Poster poster;
    const HEngineNotificationPoster::Scope scope( poster );
    XMutableDictionary information;
    information.Set( CFSTR( "Actions" ), Array( { Dict( {} ) } ) );
    HEngineNotificationPoster::Current().PostToEngine( KVNotifications::kDoExecuteActions, information.Seal() );
    ASSERT_EQ( mNotifier.mPosts.size(), 1u );
    EXPECT_EQ( mNotifier.mAudiences[0], XProcessNotifier::Audience::kEngineOnly );
}
