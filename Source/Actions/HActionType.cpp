#include "Actions/HActionType.h"

#include "Actions/APlugIn.h"
#include "Actions/ASetActionDelay.h"
#include "Actions/ASwitch.h"
#include "Actions/ApplicationActions.h"
#include "Actions/ClipboardActions.h"
#include "Actions/DictionaryActions.h"
#include "Actions/FileActions.h"
#include "Actions/FileAttributeActions.h"
#include "Actions/FilterActions.h"
#include "Actions/FlowControlActions.h"
#include "Actions/ImageActions.h"
#include "Actions/InternalActions.h"
#include "Actions/KeyboardActions.h"
#include "Actions/MacroActions.h"
#include "Actions/MailActions.h"
#include "Actions/MediaActions.h"
#include "Actions/MouseActions.h"
#include "Actions/NotificationActions.h"
#include "Actions/OpenActions.h"
#include "Actions/PaletteActions.h"
#include "Actions/PromptActions.h"
#include "Actions/SafariActions.h"
#include "Actions/ScreenActions.h"
#include "Actions/ScriptActions.h"
#include "Actions/SearchActions.h"
#include "Actions/SettingActions.h"
#include "Actions/SoundActions.h"
#include "Actions/StreamDeckActions.h"
#include "Actions/SubstringActions.h"
#include "Actions/SwitcherActions.h"
#include "Actions/SystemActions.h"
#include "Actions/TextActions.h"
#include "Actions/VariableActions.h"
#include "Actions/WebActions.h"
#include "Actions/WindowActions.h"
#include "XCAF/XErrorHandler.h"

#include <array>
#include <span>

// To add a type of action: an enumerator, a row here in its place, a class with its fields, a text for its
// title, and its lines in Tests/Actions/ActionCatalogue.txt.

namespace
{
template<class Action>
std::unique_ptr<HBaseAction> Make( HActionType )
{
    return std::make_unique<Action>();
}

// One of the types that share a class.
template<class Action, auto kArgument>
std::unique_ptr<HBaseAction> MakeOf( HActionType )
{
    return std::make_unique<Action>( kArgument );
}

// Types whose time-out or failure depends on their fields override what stands here.
// clang-format off
constexpr HActionTypeRow kActionTypes[] = {
    // type, key, time-out, on failure, make, title
    { HActionType::kProgramSwitcher, "ProgramSwitcher", 0, HFailure::kNever, Make<AProgramSwitcher> },
    { HActionType::kWindowSwitcher, "WindowSwitcher", 0, HFailure::kNever, Make<AWindowSwitcher> },
    { HActionType::kApplicationLauncher, "ApplicationLauncher", 0, HFailure::kNever, Make<AApplicationLauncher> },
    { HActionType::kClipboardSwitcherCopy, "ClipboardSwitcherCopy", 0, HFailure::kNever, MakeOf<AClipboardSwitcher, HActionType::kClipboardSwitcherCopy> },
    { HActionType::kClipboardSwitcherCut, "ClipboardSwitcherCut", 0, HFailure::kNever, MakeOf<AClipboardSwitcher, HActionType::kClipboardSwitcherCut> },
    { HActionType::kClipboardSwitcherPaste, "ClipboardSwitcherPaste", 0, HFailure::kNever, MakeOf<AClipboardSwitcher, HActionType::kClipboardSwitcherPaste> },
    { HActionType::kClipboardHistorySwitcher, "ClipboardHistorySwitcher", 0, HFailure::kNever, Make<AClipboardHistorySwitcher> },
    { HActionType::kSendMessageToEditor, "SendMessageToEditor", 0, HFailure::kNever, Make<ASendMessageToEditor> },
    { HActionType::kDontRotateStatusMenu, "DontRotateStatusMenu", 0, HFailure::kNever, Make<ADontRotateStatusMenu> },
    { HActionType::kTypedStringDuplicatePalette, "TypedStringDuplicatePalette", 0, HFailure::kNever, Make<ATypedStringDuplicatePalette> },
    { HActionType::kSearch, "Search", 180, HFailure::kNever, Make<ASearch> },
    { HActionType::kTriggerByName, "TriggerByName", 180, HFailure::kNever, Make<ATriggerByName> },
    { HActionType::kShowPaletteOfMacros, "ShowPaletteOfMacros", 356400, HFailure::kNever, Make<AShowPaletteOfMacros> },
    { HActionType::kGetTouchBarSelection, "GetTouchBarSelection", 60, HFailure::kNever, Make<AGetTouchBarSelection> },
    { HActionType::kOCRImage, "OCRImage", 60, HFailure::kNever, Make<AOCRImage> },
    { HActionType::kBringWindowsForward, "BringWindowsForward", 0, HFailure::kNever, Make<ABringWindowsForward> },
    { HActionType::kSwitchToLastApplication, "SwitchToLastApplication", 20, HFailure::kNever, Make<ALastApplication> },
    { HActionType::kSwitchToNextApplication, "SwitchToNextApplication", 20, HFailure::kNever, Make<ANextApplication> },
    { HActionType::kActivateApplication, "ActivateApplication", 20, HFailure::kGoOn, Make<AActivateApplication> },
    { HActionType::kApplyModifiersToApplication, "ApplyModifiersToApplication", 20, HFailure::kGoOn, Make<AApplyModifiersToApplication> },
    { HActionType::kQuitOthers, "QuitOthers", 0, HFailure::kNever, MakeOf<AQuitApplications, AQuitApplications::Scope::kOthers> },
    { HActionType::kQuitAll, "QuitAll", 0, HFailure::kNever, MakeOf<AQuitApplications, AQuitApplications::Scope::kAll> },
    { HActionType::kQuitSpecificApp, "QuitSpecificApp", 0, HFailure::kNever, Make<AQuitSpecificApplication> },
    { HActionType::kHideOthers, "HideOthers", 0, HFailure::kNever, MakeOf<AHideApplications, AHideApplications::Scope::kOthers> },
    { HActionType::kHideAll, "HideAll", 0, HFailure::kNever, MakeOf<AHideApplications, AHideApplications::Scope::kAll> },
    { HActionType::kHideCurrent, "HideCurrent", 0, HFailure::kNever, MakeOf<AHideApplications, AHideApplications::Scope::kCurrent> },
    { HActionType::kHideSpecificApp, "HideSpecificApp", 0, HFailure::kNever, Make<AHideSpecificApplication> },
    { HActionType::kShowAll, "ShowAll", 0, HFailure::kNever, Make<AShowApplications> },
    { HActionType::kShowSpecificApp, "ShowSpecificApp", 0, HFailure::kNever, Make<AShowSpecificApplication> },
    { HActionType::kFile, "File", 0, HFailure::kGoOn, Make<AFile> },
    { HActionType::kReadFile, "ReadFile", 0, HFailure::kGoOn, Make<AReadFile> },
    { HActionType::kWriteFile, "WriteFile", 0, HFailure::kGoOn, Make<AWriteFile> },
    { HActionType::kSetFileIcon, "SetFileIcon", 0, HFailure::kGoOn, Make<ASetFileIcon> },
    { HActionType::kNewFolder, "NewFolder", 0, HFailure::kGoOn, Make<ANewFolder> },
    { HActionType::kSplitPath, "SplitPath", 0, HFailure::kStop, Make<ASplitPath> },
    { HActionType::kPlugIn, "PlugIn", 356400, HFailure::kStop, Make<APlugIn> },
    { HActionType::kGetFileAttribute, "GetFileAttribute", 0, HFailure::kGoOn, Make<AGetFileAttribute> },
    { HActionType::kSetFileAttribute, "SetFileAttribute", 0, HFailure::kGoOn, Make<ASetFileAttribute> },
    { HActionType::kOpen1File, "Open1File", 0, HFailure::kStop, Make<AOpen1File> },
    { HActionType::kOpenFinderSelection, "OpenFinderSelection", 0, HFailure::kNever, Make<AOpenFinderSelection> },
    { HActionType::kSystemPrefPane, "SystemPrefPane", 20, HFailure::kGoOn, Make<AOpenPrefPane> },
    { HActionType::kOpen1Password, "Open1Password", 0, HFailure::kGoOn, Make<AOpen1Password> },
    { HActionType::kOpenURL, "OpenURL", 20, HFailure::kGoOn, Make<AOpenURL> },
    { HActionType::kGetURL, "GetURL", 20, HFailure::kStop, Make<AGetURL> },
    { HActionType::kExecuteAppleScript, "ExecuteAppleScript", 356400, HFailure::kStop, Make<AExecuteAppleScript> },
    { HActionType::kExecuteShellScript, "ExecuteShellScript", 356400, HFailure::kStop, Make<AExecuteShellScript> },
    { HActionType::kExecuteJavaScriptForAutomation, "ExecuteJavaScriptForAutomation", 356400, HFailure::kStop, Make<AExecuteJavaScriptForAutomation> },
    { HActionType::kExecuteJavaScriptForCustomPrompt, "ExecuteJavaScriptForCustomPrompt", 20, HFailure::kStop, Make<AExecuteJavaScriptForCustomPrompt> },
    { HActionType::kExecuteSwift, "ExecuteSwift", 356400, HFailure::kStop, Make<AExecuteSwiftScript> },
    { HActionType::kExecuteJavaScript, "ExecuteJavaScript", 356400, HFailure::kStop, Make<AExecuteJavaScript> },
    { HActionType::kExecuteWorkflow, "ExecuteWorkflow", 356400, HFailure::kNever, Make<AExecuteWorkflow> },
    { HActionType::kExecuteMacro, "ExecuteMacro", 356400, HFailure::kNever, Make<AExecuteMacro> },
    { HActionType::kMarkMacro, "MarkMacro", 0, HFailure::kGoOn, Make<AMarkMacro> },
    { HActionType::kSetMacroEnable, "SetMacroEnable", 0, HFailure::kNever, Make<ASetMacroEnable> },
    { HActionType::kInsertText, "InsertText", 0, HFailure::kNever, Make<AInsertText> },
    { HActionType::kSetFindPasteboard, "SetFindPasteboard", 5, HFailure::kNever, Make<ASetFindPasteboard> },
    { HActionType::kSetNetworkLocation, "SetNetworkLocation", 0, HFailure::kNever, Make<ASetNetworkLocation> },
    { HActionType::kFastUserSwitch, "FastUserSwitch", 0, HFailure::kNever, Make<AFastUserSwitch> },
    { HActionType::kSetKeyboardLayout, "SetKeyboardLayout", 0, HFailure::kGoOn, Make<ASetKeyboardLayout> },
    { HActionType::kQuickMacro, "QuickMacro", 0, HFailure::kNever, Make<AQuickMacro> },
    { HActionType::kSimulateKeystroke, "SimulateKeystroke", 0, HFailure::kNever, Make<ASimulateKeystroke> },
    { HActionType::kTriggerMacroByHotKey, "TriggerMacroByHotKey", 0, HFailure::kStop, Make<ATriggerMacroByHotKey> },
    { HActionType::kSimulateModifiers, "SimulateModifiers", 0, HFailure::kNever, Make<ASimulateModifiers> },
    { HActionType::kSimulateHardwareKey, "SimulateHardwareKey", 0, HFailure::kNever, Make<ASimulateHardwareKey> },
    { HActionType::kMouseMoveAndClick, "MouseMoveAndClick", 0, HFailure::kStop, Make<AMouseMoveAndClick> },
    { HActionType::kScrollWheelEvent, "ScrollWheelEvent", 0, HFailure::kGoOn, Make<AScrollWheelEvent> },
    { HActionType::kSelectMenuItem, "SelectMenuItem", 0, HFailure::kStop, Make<ASelectMenuItem> },
    { HActionType::kPressButton, "PressButton", 0, HFailure::kStop, Make<APressButton>, "hkPressButtonItem" },
    { HActionType::kDarkMode, "DarkMode", 0, HFailure::kNever, Make<ADarkMode> },
    { HActionType::kSemaphore, "Semaphore", 3600, HFailure::kStop, Make<ASemaphore> },
    { HActionType::kManipulateWindow, "ManipulateWindow", 0, HFailure::kGoOn, Make<AManipulateWindow> },
    { HActionType::kHiliteLocation, "HiliteLocation", 356400, HFailure::kGoOn, Make<AHiliteLocation> },
    { HActionType::kScreenCapture, "ScreenCapture", 0, HFailure::kGoOn, Make<AScreenCapture> },
    { HActionType::kFindImage, "FindImage", 0, HFailure::kGoOn, Make<AFindImage> },
    { HActionType::kTransformImage, "TransformImage", 0, HFailure::kGoOn, Make<ATransformImage> },
    { HActionType::kResizeImage, "ResizeImage", 0, HFailure::kGoOn, Make<AResizeImage> },
    { HActionType::kCompositeImage, "CompositeImage", 0, HFailure::kGoOn, Make<ACompositeImage> },
    { HActionType::kCopyClipboard, "CopyClipboard", 0, HFailure::kGoOn, Make<ACopyClipboard> },
    { HActionType::kDrawImage, "DrawImage", 0, HFailure::kGoOn, Make<ADrawImage> },
    { HActionType::kGetImageSize, "GetImageSize", 0, HFailure::kNever, Make<AGetImageSize> },
    { HActionType::kTrimImage, "TrimImage", 0, HFailure::kGoOn, Make<ATrimImage> },
    { HActionType::kDisplayImage, "DisplayImage", 0, HFailure::kNever, Make<ADisplayImage> },
    { HActionType::kNewImage, "NewImage", 0, HFailure::kGoOn, Make<ANewImage> },
    { HActionType::kPause, "Pause", 356400, HFailure::kGoOn, Make<APause> },
    { HActionType::kPauseUntil, "PauseUntil", 356400, HFailure::kNever, Make<APauseUntil> },
    { HActionType::kAssert, "Assert", 0, HFailure::kStop, Make<AAssert> },
    { HActionType::kFor, "For", 356400, HFailure::kNever, Make<AFor> },
    { HActionType::kWhile, "While", 356400, HFailure::kNever, Make<AWhile> },
    { HActionType::kUntil, "Until", 356400, HFailure::kNever, Make<AUntil> },
    { HActionType::kRepeat, "Repeat", 356400, HFailure::kGoOn, Make<ARepeat> },
    { HActionType::kGroup, "Group", 356400, HFailure::kNever, Make<AGroup> },
    { HActionType::kIfThenElse, "IfThenElse", 356400, HFailure::kNever, Make<AIfThenElse> },
    { HActionType::kSwitch, "Switch", 0, HFailure::kNever, Make<ASwitch> },
    { HActionType::kAlert, "Alert", 180, HFailure::kNever, Make<AAlert> },
    { HActionType::kComment, "Comment", 0, HFailure::kNever, Make<AComment> },
    { HActionType::kCancel, "Cancel", 0, HFailure::kNever, Make<ACancel> },
    { HActionType::kMacroGroupToggle, "MacroGroupToggle", 0, HFailure::kNever, Make<AMacroGroupToggle> },
    { HActionType::kConcealMacroPalettes, "ConcealMacroPalettes", 0, HFailure::kNever, Make<AConcealMacroPalettes> },
    { HActionType::kITunesControl, "iTunesControl", 0, HFailure::kGoOn, Make<AiTunesControl> },
    { HActionType::kQuickTimePlayerControl, "QuickTimePlayerControl", 0, HFailure::kGoOn, Make<AQuickTimePlayerControl> },
    { HActionType::kSafariControl, "SafariControl", 356400, HFailure::kGoOn, Make<ASafariControl> },
    { HActionType::kClipboardSwitcherMacroAction, "ClipboardSwitcherMacroAction", 10, HFailure::kNever, Make<AClipboardSwitcherMacroAction>, "hkClipboardSwitcher" },
    { HActionType::kCutCopyPaste, "CutCopyPaste", 10, HFailure::kNever, Make<ACutCopyPaste> },
    { HActionType::kSetClipboardToText, "SetClipboardToText", 0, HFailure::kGoOn, Make<ASetClipboardToText> },
    { HActionType::kSetClipboardToPastClipboard, "SetClipboardToPastClipboard", 0, HFailure::kGoOn, Make<ASetClipboardToPastClipboard> },
    { HActionType::kSetClipboardToNamedClipboard, "SetClipboardToNamedClipboard", 0, HFailure::kNever, Make<ASetClipboardToNamedClipboard> },
    { HActionType::kDeletePastClipboard, "DeletePastClipboard", 0, HFailure::kGoOn, Make<ADeletePastClipboard> },
    { HActionType::kSaveClipboardToNamedClipboard, "SaveClipboardToNamedClipboard", 0, HFailure::kNever, Make<ASaveClipboardToNamedClipboard> },
    { HActionType::kFilterClipboard, "FilterClipboard", 0, HFailure::kNever, Make<AFilterClipboard> },
    { HActionType::kSearchReplaceClipboard, "SearchReplaceClipboard", 0, HFailure::kGoOn, Make<ASearchReplaceClipboard> },
    { HActionType::kApplyStyle, "ApplyStyle", 0, HFailure::kGoOn, Make<AApplyStyle> },
    { HActionType::kApplyTextFactory, "ApplyTextFactory", 0, HFailure::kGoOn, Make<AApplyTextFactory> },
    { HActionType::kSetVariableToText, "SetVariableToText", 0, HFailure::kStop, Make<ASetVariableToText> },
    { HActionType::kSetVariablesToJSON, "SetVariablesToJSON", 0, HFailure::kStop, Make<ASetVariablesToJSON> },
    { HActionType::kSetJSONValue, "SetJSONValue", 0, HFailure::kStop, Make<ASetJSONValue> },
    { HActionType::kSetDictionaryToJSON, "SetDictionaryToJSON", 0, HFailure::kStop, Make<ASetDictionaryToJSON> },
    { HActionType::kSetDictionaryValue, "SetDictionaryValue", 0, HFailure::kStop, Make<ASetDictionaryValue> },
    { HActionType::kSetVariableToKeychainPassword, "SetVariableToKeychainPassword", 0, HFailure::kStop, Make<ASetVariableToKeychainPassword> },
    { HActionType::kSetKeychainPasswordToText, "SetKeychainPasswordToText", 0, HFailure::kNever, Make<ASetKeychainPasswordToText> },
    { HActionType::kSetVariableToSafariField, "SetVariableToSafariField", 0, HFailure::kGoOn, Make<ASetVariableToSafariField> },
    { HActionType::kSetSafariFieldToText, "SetSafariFieldToText", 0, HFailure::kGoOn, Make<ASetSafariFieldToText> },
    { HActionType::kSetSafariCheckbox, "SetSafariCheckbox", 0, HFailure::kGoOn, Make<ASetSafariCheckbox> },
    { HActionType::kSetSafariRadio, "SetSafariRadio", 0, HFailure::kGoOn, Make<ASetSafariRadio> },
    { HActionType::kSetMailStatus, "SetMailStatus", 0, HFailure::kGoOn, Make<ASetMailStatus> },
    { HActionType::kMailSendMessage, "MailSendMessage", 0, HFailure::kNever, Make<AMailSendMessage> },
    { HActionType::kSendSMS, "SendSMS", 0, HFailure::kStop, Make<ASendSMS> },
    { HActionType::kSetVariableToCalculation, "SetVariableToCalculation", 0, HFailure::kStop, Make<ASetVariableToCalculation> },
    { HActionType::kSetActionDelay, "SetActionDelay", 0, HFailure::kNever, Make<ASetActionDelay> },
    { HActionType::kSearchReplaceVariable, "SearchReplaceVariable", 0, HFailure::kNever, Make<ASearchReplaceVariable> },
    { HActionType::kSearchReplace, "SearchReplace", 0, HFailure::kGoOn, Make<ASearchReplace> },
    { HActionType::kSearchVariable, "SearchVariable", 0, HFailure::kStop, Make<ASearchVariable> },
    { HActionType::kSearchRegEx, "SearchRegEx", 0, HFailure::kStop, Make<ASearchRegEx> },
    { HActionType::kSearchClipboard, "SearchClipboard", 0, HFailure::kStop, Make<ASearchClipboard> },
    { HActionType::kSubstring, "Substring", 0, HFailure::kGoOn, Make<ASubstring> },
    { HActionType::kUseVariable, "UseVariable", 0, HFailure::kGoOn, Make<AUseVariable> },
    { HActionType::kFilterVariable, "FilterVariable", 0, HFailure::kNever, Make<AFilterVariable> },
    { HActionType::kFilter, "Filter", 0, HFailure::kNever, Make<AFilter> },
    { HActionType::kPromptWithList, "PromptWithList", 356400, HFailure::kStop, Make<APromptWithList> },
    { HActionType::kPromptForUserInput, "PromptForUserInput", 356400, HFailure::kNever, Make<APromptForUserInput> },
    { HActionType::kPromptForFile, "PromptForFile", 0, HFailure::kStop, Make<APromptForFile> },
    { HActionType::kCustomPrompt, "CustomPrompt", 356400, HFailure::kStop, Make<ACustomPrompt> },
    { HActionType::kSpeakText, "SpeakText", 356400, HFailure::kNever, Make<ASpeakText> },
    { HActionType::kPlaySound, "PlaySound", 356400, HFailure::kGoOn, Make<APlaySound> },
    { HActionType::kSystemAction, "SystemAction", 0, HFailure::kGoOn, Make<ASystemAction> },
    { HActionType::kDebuggerAction, "DebuggerAction", 0, HFailure::kNever, Make<ADebuggerAction> },
    { HActionType::kSystemVolume, "SystemVolume", 0, HFailure::kNever, Make<ASystemVolume> },
    { HActionType::kSendMIDIMessage, "SendMIDIMessage", 0, HFailure::kStop, Make<ASendMIDIMessage> },
    { HActionType::kGrowl, "Growl", 0, HFailure::kNever, Make<AGrowl> },
    { HActionType::kLog, "Log", 0, HFailure::kNever, Make<ALog> },
    { HActionType::kNotification, "Notification", 0, HFailure::kNever, Make<ANotification> },
    { HActionType::kStreamDeckShow, "StreamDeckShow", 0, HFailure::kNever, Make<AStreamDeckShow> },
    { HActionType::kStreamDeckSetTitle, "StreamDeckSetTitle", 0, HFailure::kNever, Make<AStreamDeckSetTitle> },
    { HActionType::kStreamDeckSetImage, "StreamDeckSetImage", 0, HFailure::kGoOn, Make<AStreamDeckSetImage> },
    { HActionType::kSetDesktopImage, "SetDesktopImage", 0, HFailure::kStop, Make<ASetDesktopImage> },
    { HActionType::kApplicationsPaletteToggle, "ApplicationsPaletteToggle", 0, HFailure::kNever, Make<AApplicationsPaletteToggle> },
    { HActionType::kSetClipboardToImage, "SetClipboardToImage", 0, HFailure::kStop, Make<ASetClipboardToImage> },
    { HActionType::kSetClipboardToFileReference, "SetClipboardToFileReference", 0, HFailure::kStop, Make<ASetClipboardToFileReference> },
};
// clang-format on
static_assert( std::size( kActionTypes ) == kHActionTypeCount );

constexpr bool InEnumeratorOrder( std::span<const HActionTypeRow> inRows )
{
    for ( std::size_t i = 0; i < inRows.size(); ++i )
    {
        if ( std::size_t( inRows[i].mType ) != i )
            return false;
    }
    return true;
}
static_assert( InEnumeratorOrder( kActionTypes ), "one row for each HActionType, in its order" );

// A file of a hundred thousand macros asks for a type half a million times, so that the keys stand in an
// open hash table, made by the compiler.
constexpr std::size_t kSlotCount = 512;
constexpr std::uint8_t kNoType = 0xFF;
static_assert( kHActionTypeCount < kNoType );

constexpr std::array<std::uint8_t, kSlotCount> MakeSlots()
{
    std::array<std::uint8_t, kSlotCount> slots{};
    slots.fill( kNoType );
    for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
    {
        std::size_t at = XKey( kActionTypes[i].mKey ).Hash() % kSlotCount;
        while ( slots[at] != kNoType )
            at = ( at + 1 ) % kSlotCount;
        slots[at] = std::uint8_t( i );
    }
    return slots;
}
constexpr auto kSlots = MakeSlots();
} // namespace

const HActionTypeRow& RowOf( HActionType inType )
{
    XAssertText( std::size_t( inType ) < kHActionTypeCount, "theKey" );
    return kActionTypes[std::size_t( inType ) < kHActionTypeCount ? std::size_t( inType ) : 0];
}

std::optional<HActionType> HActionTypeFromKey( const XPlistString& inKey )
{
    if ( not inKey.IsASCII() )
        return {};
    for ( std::size_t at = XKey( inKey.ASCII() ).Hash() % kSlotCount; kSlots[at] != kNoType;
          at = ( at + 1 ) % kSlotCount )
    {
        const HActionTypeRow& row = kActionTypes[kSlots[at]];
        if ( row.mKey == inKey.ASCII() )
            return row.mType;
    }
    return {};
}

const XText& KeyOf( HActionType inType )
{
    static const auto gKeys = [] {
        std::array<XText, kHActionTypeCount> keys;
        for ( std::size_t i = 0; i < kHActionTypeCount; ++i )
            keys[i] = XText( XPlistString::InternASCII( kActionTypes[i].mKey ) );
        return keys;
    }();
    return gKeys[std::size_t( RowOf( inType ).mType )];
}
