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
    TextView mIcon; // a name of the icon registry
    const TTriggerFactory* mFactory;
};

// Of the kinds that no built-in icon pictures.
constexpr TextView kPlainIcon = u"Trigger";

constexpr TriggerFactoryRow kFactories[] = {
    { TriggerType::kHotKey, u"Keyboard", &gFactory<THotKeyFactory> },
    { TriggerType::kApplication, u"Application", &gFactory<TApplicationFactory> },
    { TriggerType::kTime, kPlainIcon, &gFactory<TTimeFactory> },
    { TriggerType::kWake, kPlainIcon, &gFactory<TWakeFactory> },
    { TriggerType::kSleep, kPlainIcon, &gFactory<TSleepFactory> },
    { TriggerType::kMacroPalette, kPlainIcon, &gFactory<TMacroPaletteFactory> },
    { TriggerType::kStatusMenu, kPlainIcon, &gFactory<TStatusMenuFactory> },
    { TriggerType::kPublicWeb, u"WebPage", &gFactory<TPublicWebFactory> },
    { TriggerType::kTypedString, u"Keyboard", &gFactory<TTypedStringFactory> },
    { TriggerType::kMIDI, kPlainIcon, &gFactory<TMIDIFactory> },
    { TriggerType::kVolume, kPlainIcon, &gFactory<TVolumeFactory> },
    { TriggerType::kUSBDevice, kPlainIcon, &gFactory<TUSBFactory> },
    { TriggerType::kWirelessNetwork, kPlainIcon, &gFactory<TWirelessNetworkFactory> },
    { TriggerType::kHID, kPlainIcon, &gFactory<THIDFactory> },
    { TriggerType::kClipboard, u"Clipboard", &gFactory<TClipboardFactory> },
    { TriggerType::kFocussedWindow, u"Window", &gFactory<TFocusedWindowFactory> },
    { TriggerType::kFolder, u"Folder", &gFactory<TFolderFactory> },
    { TriggerType::kClipboardFilter, u"Clipboard", &gFactory<TClipboardFilterFactory> },
    { TriggerType::kGesture, kPlainIcon, &gFactory<TGestureFactory> },
    { TriggerType::kRemote, u"WebPage", &gFactory<TRemoteFactory> },
    { TriggerType::kAudioOutputDevice, kPlainIcon, &gFactory<TAudioOutputDeviceFactory> },
    { TriggerType::kIdle, kPlainIcon, &gFactory<TIdleFactory> },
    { TriggerType::kCron, kPlainIcon, &gFactory<TCronFactory> },
    { TriggerType::kDraggedFile, u"File", &gFactory<TDraggedFileFactory> },
    { TriggerType::kDisplay, u"Screen", &gFactory<TDisplayFactory> },
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
    return XIcon( kFactories[std::size_t( GetTriggerType() )].mIcon, KVIconRegistry::kTrigger );
}

std::unique_ptr<TBaseTriggerTypeManager> TTriggerFactory::CreateTriggerManager() const
{
    return gMakeManager ? gMakeManager( GetTriggerType() ) : nullptr;
}
