#include "App/DaemonLoginStatus.h"

#include "App/KVApplication.h"
#include "Platform/LoginItems.h"
#include "Platform/Platform.h"
#include "Platform/RunningApplications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <vector>

namespace
{
constexpr const char* kTag = "DaemonLoginStatus";

std::vector<DaemonLoginStatus::Delegate*> gDelegates;
int gInterestedParties = 0;
XLoginItems* gLoginItems = nullptr; // the list that is observed

struct Counts
{
    int mAny = 0, mGood = 0;
    [[nodiscard]] bool AreCorrect() const { return mAny == 1 and mGood == 1; }
};

bool IsSameFile( const std::filesystem::path& a, const std::filesystem::path& b )
{
    if ( a == b )
        return true;
    XFileStatus first, second;
    XFileCalls& calls = XFileCalls::Current();
    return calls.GetPathFacts( a, first ) == 0 and calls.GetPathFacts( b, second ) == 0 and
        first.mDevice == second.mDevice and first.mFile == second.mFile;
}

std::vector<XLoginItem> ItemsForAnyEngine()
{
    auto items = Platform::Current().LoginItems().GetLoginItems();
    std::erase_if(
        items, []( const XLoginItem& item ) { return item.mName.find( KVApplication::kEngineName ) == Text::npos; } );
    return items;
}

Counts Count()
{
    Counts counts;
    const auto engine = Platform::Current().RunningApplications().EngineExecutable();
    for ( const XLoginItem& item : ItemsForAnyEngine() )
    {
        ++counts.mAny;
        counts.mGood += engine and IsSameFile( item.mTarget, *engine );
    }
    XErrorHandler::PrivateMaybeLogFormat(
        kTag, "DaemonLoginStatus: Count gives any %d good %d", counts.mAny, counts.mGood );
    return counts;
}

void DeleteAll()
{
    for ( const XLoginItem& item : ItemsForAnyEngine() )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            kTag, "DaemonLoginStatus: Delete DaemonLoginStatus entry for %@", item.mTarget );
        if ( not Platform::Current().LoginItems().DeleteLoginItem( item ) )
            XErrorHandler::PrivateMaybeLogFormat( "always", "Can't delete the login item for %@", item.mTarget );
    }
}

void AddGood( const std::filesystem::path& inEngine )
{
    XErrorHandler::PrivateMaybeLogFormat( kTag, "DaemonLoginStatus: Add login item %@", inEngine );
    if ( not Platform::Current().LoginItems().AddLoginItem( KVApplication::kEngineName, inEngine ) )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't add a login item for %@", inEngine );
}

void TellDelegates()
{
    // One may stop while it is told.
    for ( DaemonLoginStatus::Delegate* const delegate : std::vector( gDelegates ) )
    {
        if ( std::find( gDelegates.begin(), gDelegates.end(), delegate ) != gDelegates.end() )
            delegate->daemonLoginStatusChanged();
    }
}
} // namespace

bool DaemonLoginStatus::GetDaemonLoginStatus()
{
    return Count().AreCorrect();
}

void DaemonLoginStatus::SetDaemonLoginStatus( bool inOn )
{
    const auto engine = Platform::Current().RunningApplications().EngineExecutable();
    if ( inOn and not engine )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "There is no engine that could start at login" );
        return;
    }
    DeleteAll();
    if ( inOn )
        AddGood( *engine );
}

void DaemonLoginStatus::EnsureCorrectDaemonLoginStatus()
{
    const Counts counts = Count();
    const auto engine = Platform::Current().RunningApplications().EngineExecutable();
    if ( counts.mAny < 1 or counts.AreCorrect() or not engine )
        return;
    DeleteAll();
    AddGood( *engine );
    XErrorHandler::PrivateMaybeLogFormat(
        "display", "Corrected Korvalen Engine Login Item entry after any %d good %d", counts.mAny, counts.mGood );
}

void DaemonLoginStatus::StartGeneralPreferences( Delegate& inDelegate )
{
    gDelegates.push_back( &inDelegate );
    if ( ++gInterestedParties > 1 )
        return;
    XAssertText( gLoginItems == nullptr, "gLoginItems == nullptr" );
    gLoginItems = &Platform::Current().LoginItems();
    gLoginItems->SetObserver( TellDelegates );
}

void DaemonLoginStatus::StopGeneralPreferences()
{
    XAssertText( gInterestedParties > 0, "gInterestedParties > 0" );
    if ( gInterestedParties == 0 )
        return;
    gDelegates.pop_back();
    if ( --gInterestedParties > 0 )
        return;
    gLoginItems->SetObserver( {} );
    gLoginItems = nullptr;
}
