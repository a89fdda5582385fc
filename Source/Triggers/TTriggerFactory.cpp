// One row for each kind, in the order of TriggerType. To add a kind: an enumerator with its name, a class, a row.
#include "Triggers/TTriggerFactory.h"

#include "Defines/KVIconRegistry.h"
#include "Triggers/ApplicationTriggers.h"
#include "Triggers/DeviceTriggers.h"
#include "Triggers/KeyTriggers.h"
#include "Triggers/PlainTriggers.h"
#include "Triggers/TFolderTrigger.h"
#include "Triggers/TGestureTrigger.h"
#include "Triggers/THIDTrigger.h"
#include "Triggers/TMIDITrigger.h"
#include "Triggers/TRemoteTrigger.h"
#include "Triggers/TimeTriggers.h"

namespace
{
template<class ATrigger>
class TTriggerFactoryOf final : public TTriggerFactory
{
public:
    constexpr TTriggerFactoryOf() = default;
    [[nodiscard]] TriggerType GetTriggerType() const override { return ATrigger::kTriggerType; }
    [[nodiscard]] std::unique_ptr<TBaseTrigger> CreateTrigger() const override { return std::make_unique<ATrigger>(); }
};

using THotKeyFactory = TTriggerFactoryOf<THotKeyTrigger>;
using TApplicationFactory = TTriggerFactoryOf<TApplicationTrigger>;
using TTimeFactory = TTriggerFactoryOf<TTimeTrigger>;
using TWakeFactory = TTriggerFactoryOf<TWakeTrigger>;
using TSleepFactory = TTriggerFactoryOf<TSleepTrigger>;
using TMacroPaletteFactory = TTriggerFactoryOf<TMacroPaletteTrigger>;
using TStatusMenuFactory = TTriggerFactoryOf<TStatusMenuTrigger>;
using TPublicWebFactory = TTriggerFactoryOf<TPublicWebTrigger>;
using TTypedStringFactory = TTriggerFactoryOf<TTypedStringTrigger>;
using TMIDIFactory = TTriggerFactoryOf<TMIDITrigger>;
using TVolumeFactory = TTriggerFactoryOf<TVolumeTrigger>;
using TUSBFactory = TTriggerFactoryOf<TUSBDeviceTrigger>;
using TWirelessNetworkFactory = TTriggerFactoryOf<TWirelessNetworkTrigger>;
using THIDFactory = TTriggerFactoryOf<THIDTrigger>;
using TClipboardFactory = TTriggerFactoryOf<TClipboardTrigger>;
using TFocusedWindowFactory = TTriggerFactoryOf<TFocusedWindowTrigger>;
using TFolderFactory = TTriggerFactoryOf<TFolderTrigger>;
using TClipboardFilterFactory = TTriggerFactoryOf<TClipboardFilterTrigger>;
using TGestureFactory = TTriggerFactoryOf<TGestureTrigger>;
using TRemoteFactory = TTriggerFactoryOf<TRemoteTrigger>;
using TAudioOutputDeviceFactory = TTriggerFactoryOf<TAudioOutputDeviceTrigger>;
using TIdleFactory = TTriggerFactoryOf<TIdleTrigger>;
using TCronFactory = TTriggerFactoryOf<TCronTrigger>;
using TDraggedFileFactory = TTriggerFactoryOf<TDraggedFileTrigger>;
using TDisplayFactory = TTriggerFactoryOf<TDisplayTrigger>;

template<class AFactory>
const AFactory gFactory;

struct TriggerFactoryRow
{
    TriggerType mType;
    const TTriggerFactory* mFactory;
};

constexpr TriggerFactoryRow kFactories[] = {
    { TriggerType::kHotKey, &gFactory<THotKeyFactory> },
    { TriggerType::kApplication, &gFactory<TApplicationFactory> },
    { TriggerType::kTime, &gFactory<TTimeFactory> },
    { TriggerType::kWake, &gFactory<TWakeFactory> },
    { TriggerType::kSleep, &gFactory<TSleepFactory> },
    { TriggerType::kMacroPalette, &gFactory<TMacroPaletteFactory> },
    { TriggerType::kStatusMenu, &gFactory<TStatusMenuFactory> },
    { TriggerType::kPublicWeb, &gFactory<TPublicWebFactory> },
    { TriggerType::kTypedString, &gFactory<TTypedStringFactory> },
    { TriggerType::kMIDI, &gFactory<TMIDIFactory> },
    { TriggerType::kVolume, &gFactory<TVolumeFactory> },
    { TriggerType::kUSBDevice, &gFactory<TUSBFactory> },
    { TriggerType::kWirelessNetwork, &gFactory<TWirelessNetworkFactory> },
    { TriggerType::kHID, &gFactory<THIDFactory> },
    { TriggerType::kClipboard, &gFactory<TClipboardFactory> },
    { TriggerType::kFocussedWindow, &gFactory<TFocusedWindowFactory> },
    { TriggerType::kFolder, &gFactory<TFolderFactory> },
    { TriggerType::kClipboardFilter, &gFactory<TClipboardFilterFactory> },
    { TriggerType::kGesture, &gFactory<TGestureFactory> },
    { TriggerType::kRemote, &gFactory<TRemoteFactory> },
    { TriggerType::kAudioOutputDevice, &gFactory<TAudioOutputDeviceFactory> },
    { TriggerType::kIdle, &gFactory<TIdleFactory> },
    { TriggerType::kCron, &gFactory<TCronFactory> },
    { TriggerType::kDraggedFile, &gFactory<TDraggedFileFactory> },
    { TriggerType::kDisplay, &gFactory<TDisplayFactory> },
};

consteval bool InEnumeratorOrder()
{
    for ( std::size_t i = 0; i < std::size( kFactories ); ++i )
    {
        if ( std::size_t( kFactories[i].mType ) != i )
            return false;
    }
    return true;
}
static_assert( std::size( kFactories ) == std::size( kTriggerTypeNames ) );
static_assert( InEnumeratorOrder(), "one row for each TriggerType, in its order" );

TTriggerFactory::ManagerMaker gMakeManager;
} // namespace

const TTriggerFactory& TTriggerFactory::GetTriggerFactory( TriggerType inType )
{
    const auto index = std::size_t( inType );
    return *kFactories[index < std::size( kFactories ) ? index : 0].mFactory;
}

void TTriggerFactory::InstallManagers( ManagerMaker inMaker )
{
    gMakeManager = std::move( inMaker );
}

XIcon TTriggerFactory::GetTriggerIcon() const
{
    return XIcon( KVIconRegistry::kTrigger );
}

std::unique_ptr<TBaseTriggerTypeManager> TTriggerFactory::CreateTriggerManager() const
{
    return gMakeManager ? gMakeManager( GetTriggerType() ) : nullptr;
}
