// The types of action, and all that is known of a type beside its fields: one row of one table.
// A file holds a type only by its key, never by its number.
#pragma once

#include "CFMethods/PropertyList.h"

#include <memory>
#include <optional>

class HBaseAction;

enum class HActionType : std::int32_t {
    kProgramSwitcher,
    kWindowSwitcher,
    kApplicationLauncher,
    kClipboardSwitcherCopy,
    kClipboardSwitcherCut,
    kClipboardSwitcherPaste,
    kClipboardHistorySwitcher,
    kSendMessageToEditor,
    kDontRotateStatusMenu,
    kTypedStringDuplicatePalette,
    kSearch,
    kTriggerByName,
    kShowPaletteOfMacros,
    kGetTouchBarSelection,
    kOCRImage,
    kBringWindowsForward,
    kSwitchToLastApplication,
    kSwitchToNextApplication,
    kActivateApplication,
    kApplyModifiersToApplication,
    kQuitOthers,
    kQuitAll,
    kQuitSpecificApp,
    kHideOthers,
    kHideAll,
    kHideCurrent,
    kHideSpecificApp,
    kShowAll,
    kShowSpecificApp,
    kFile,
    kReadFile,
    kWriteFile,
    kSetFileIcon,
    kNewFolder,
    kSplitPath,
    kPlugIn,
    kGetFileAttribute,
    kSetFileAttribute,
    kOpen1File,
    kOpenFinderSelection,
    kSystemPrefPane,
    kOpen1Password,
    kOpenURL,
    kGetURL,
    kExecuteAppleScript,
    kExecuteShellScript,
    kExecuteJavaScriptForAutomation,
    kExecuteJavaScriptForCustomPrompt,
    kExecuteSwift,
    kExecuteJavaScript,
    kExecuteWorkflow,
    kExecuteMacro,
    kMarkMacro,
    kSetMacroEnable,
    kInsertText,
    kSetFindPasteboard,
    kSetNetworkLocation,
    kFastUserSwitch,
    kSetKeyboardLayout,
    kQuickMacro,
    kSimulateKeystroke,
    kTriggerMacroByHotKey,
    kSimulateModifiers,
    kSimulateHardwareKey,
    kMouseMoveAndClick,
    kScrollWheelEvent,
    kSelectMenuItem,
    kPressButton,
    kDarkMode,
    kSemaphore,
    kManipulateWindow,
    kHiliteLocation,
    kScreenCapture,
    kFindImage,
    kTransformImage,
    kResizeImage,
    kCompositeImage,
    kCopyClipboard,
    kDrawImage,
    kGetImageSize,
    kTrimImage,
    kDisplayImage,
    kNewImage,
    kPause,
    kPauseUntil,
    kAssert,
    kFor,
    kWhile,
    kUntil,
    kRepeat,
    kGroup,
    kIfThenElse,
    kSwitch,
    kAlert,
    kComment,
    kCancel,
    kMacroGroupToggle,
    kConcealMacroPalettes,
    kITunesControl,
    kQuickTimePlayerControl,
    kSafariControl,
    kClipboardSwitcherMacroAction,
    kCutCopyPaste,
    kSetClipboardToText,
    kSetClipboardToPastClipboard,
    kSetClipboardToNamedClipboard,
    kDeletePastClipboard,
    kSaveClipboardToNamedClipboard,
    kFilterClipboard,
    kSearchReplaceClipboard,
    kApplyStyle,
    kApplyTextFactory,
    kSetVariableToText,
    kSetVariablesToJSON,
    kSetJSONValue,
    kSetDictionaryToJSON,
    kSetDictionaryValue,
    kSetVariableToKeychainPassword,
    kSetKeychainPasswordToText,
    kSetVariableToSafariField,
    kSetSafariFieldToText,
    kSetSafariCheckbox,
    kSetSafariRadio,
    kSetMailStatus,
    kMailSendMessage,
    kSendSMS,
    kSetVariableToCalculation,
    kSetActionDelay,
    kSearchReplaceVariable,
    kSearchReplace,
    kSearchVariable,
    kSearchRegEx,
    kSearchClipboard,
    kSubstring,
    kUseVariable,
    kFilterVariable,
    kFilter,
    kPromptWithList,
    kPromptForUserInput,
    kPromptForFile,
    kCustomPrompt,
    kSpeakText,
    kPlaySound,
    kSystemAction,
    kDebuggerAction,
    kSystemVolume,
    kSendMIDIMessage,
    kGrowl,
    kLog,
    kNotification,
    kStreamDeckShow,
    kStreamDeckSetTitle,
    kStreamDeckSetImage,
    kSetDesktopImage,
    kApplicationsPaletteToggle,
    kSetClipboardToImage,
    kSetClipboardToFileReference
};
inline constexpr std::size_t kHActionTypeCount = std::size_t( HActionType::kSetClipboardToFileReference ) + 1;

/// What the failure of an action of a type does to its macro, unless the action says otherwise.
enum class HFailure : std::uint8_t {
    kNever, ///< the type can't fail
    kGoOn,
    kStop,
};

struct HActionTypeRow
{
    HActionType mType;
    std::string_view mKey; ///< as stored in "MacroActionType"
    double mTimeOut;       ///< seconds; 0 for a type without a time-out
    HFailure mFailure;
    std::unique_ptr<HBaseAction> ( *mMake )( HActionType inType );
    const char* mTitleKey = nullptr; ///< null: "hk" and the key
};

/// The row of a type, which must be one of the enumeration.
[[nodiscard]] const HActionTypeRow& RowOf( HActionType inType );

/// The type of a key, compared exactly; absent when it is none.
[[nodiscard]] std::optional<HActionType> HActionTypeFromKey( const XPlistString& inKey );

/// The key as a text; one shared text for each type.
[[nodiscard]] const XText& KeyOf( HActionType inType );
