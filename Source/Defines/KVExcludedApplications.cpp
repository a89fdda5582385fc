#include "Defines/KVExcludedApplications.h"

#include "Defines/KVPreferences.h"
#include "Utility/Work/Work.h"
#include "XCAF/KVNotifications.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XNotificationCenter.h"

#include <mutex>
#include <utility>

namespace
{
using KVPreferences::PreferenceID;

struct Lists
{
    explicit Lists( XWork& ) {}

    std::mutex mMutex;
    XApplicationList mAlwaysVisible, mApplicationsPalette, mNoClipboard;
    bool mIsObserving = false;
    bool mIsLoaded = false; // one for all three: the engine doesn't tell which it has changed
};

XApplicationList Load( const PreferenceID& inID )
{
    XApplicationList list;
    const auto value = KVPreferences::GetPropertyList( inID );
    if ( not value )
        return list;
    try
    {
        list.LoadFromPropertyList( value );
    }
    catch ( const XException& exception )
    {
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "The setting %s isn't a list of applications: %s", inID.Key().Name(), exception.what() );
    }
    return list;
}

void Observe( Lists& ioLists )
{
    if ( std::exchange( ioLists.mIsObserving, true ) )
        return;
    XNotificationCenter::AddCocoaObserver( &ioLists, KVNotifications::kExcludedApplicationsPaletteChangedByEngine,
        [&ioLists]( const XNotificationCenter::Notification& ) {
            {
                const std::scoped_lock lock( ioLists.mMutex );
                ioLists.mIsLoaded = false;
            }
            XNotificationCenter::PostApplicationInternalNotification(
                KVNotifications::kkExcludedApplicationsReloadPreferences, nullptr, nullptr );
        } );
}

/// Under the lock.
void LoadIfNeeded( Lists& ioLists )
{
    Observe( ioLists );
    if ( std::exchange( ioLists.mIsLoaded, true ) )
        return;
    ioLists.mAlwaysVisible = Load( KVPreferences::kExcludedApplicationsID );
    ioLists.mApplicationsPalette = Load( KVPreferences::kExcludedApplicationsPaletteID );
    ioLists.mNoClipboard = Load( KVPreferences::kExcludedClipboardHistoryApplicationsID );
}

XApplicationList Loaded( XApplicationList Lists::*inList )
{
    Lists& lists = XWork::Current().Shared<Lists>();
    const std::scoped_lock lock( lists.mMutex );
    LoadIfNeeded( lists );
    return lists.*inList;
}

void Store( XApplicationList Lists::*inList, const PreferenceID& inID, const XApplicationList& inApplications )
{
    {
        Lists& lists = XWork::Current().Shared<Lists>();
        const std::scoped_lock lock( lists.mMutex );
        LoadIfNeeded( lists );
        lists.*inList = inApplications;
    }
    KVPreferences::Set( inID, inApplications.CopyToPropertyList() );
    XNotificationCenter::PostNotification( KVNotifications::kExcludedApplicationsChanged, nullptr, true );
}
} // namespace

XApplicationList KVExcludedApplications::GetAlwaysVisible()
{
    return Loaded( &Lists::mAlwaysVisible );
}

XApplicationList KVExcludedApplications::GetApplicationsPalette()
{
    return Loaded( &Lists::mApplicationsPalette );
}

XApplicationList KVExcludedApplications::GetNoClipboard()
{
    return Loaded( &Lists::mNoClipboard );
}

void KVExcludedApplications::SetAlwaysVisible( const XApplicationList& inApplications )
{
    Store( &Lists::mAlwaysVisible, KVPreferences::kExcludedApplicationsID, inApplications );
}

void KVExcludedApplications::SetApplicationsPalette( const XApplicationList& inApplications )
{
    Store( &Lists::mApplicationsPalette, KVPreferences::kExcludedApplicationsPaletteID, inApplications );
}

void KVExcludedApplications::SetNoClipboard( const XApplicationList& inApplications )
{
    Store( &Lists::mNoClipboard, KVPreferences::kExcludedClipboardHistoryApplicationsID, inApplications );
}
