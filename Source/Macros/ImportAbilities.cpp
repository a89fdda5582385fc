// One row for each type of action. An action that only computes, waits, asks or shows something has none of the
// abilities. Where an action can do a thing by one of its settings, it counts: the user is to be warned rather than
// calmed.
#include "Macros/ImportAbilities.h"

#include "Actions/HActionList.h"
#include "Actions/HBaseAction.h"
#include "Macros/MMacro.h"
#include "Utility/Text/Localization.h"

#include <algorithm>

namespace
{
constexpr std::uint32_t BitOf( MacroAbility inAbility )
{
    return 1u << std::size_t( inAbility );
}

constexpr std::uint32_t kScripts = BitOf( MacroAbility::kRunScripts );
constexpr std::uint32_t kReads = BitOf( MacroAbility::kReadFiles );
constexpr std::uint32_t kWrites = BitOf( MacroAbility::kWriteFiles );
constexpr std::uint32_t kNetwork = BitOf( MacroAbility::kUseNetwork );
constexpr std::uint32_t kMessages = BitOf( MacroAbility::kSendMessages );
constexpr std::uint32_t kPasswords = BitOf( MacroAbility::kUsePasswords );
constexpr std::uint32_t kTypes = BitOf( MacroAbility::kTypeAndClick );
constexpr std::uint32_t kClipboard = BitOf( MacroAbility::kUseClipboard );
constexpr std::uint32_t kPrograms = BitOf( MacroAbility::kControlPrograms );
constexpr std::uint32_t kScreen = BitOf( MacroAbility::kSeeScreen );
constexpr std::uint32_t kSystem = BitOf( MacroAbility::kChangeSystem );
constexpr std::uint32_t kMacros = BitOf( MacroAbility::kChangeMacros );

struct Row
{
    HActionType mType;
    std::uint32_t mAbilities;
};

// clang-format off
constexpr Row kRows[] = {
    { HActionType::kProgramSwitcher, kPrograms },
    { HActionType::kWindowSwitcher, kPrograms },
    { HActionType::kApplicationLauncher, kPrograms },
    { HActionType::kClipboardSwitcherCopy, kClipboard | kTypes },
    { HActionType::kClipboardSwitcherCut, kClipboard | kTypes },
    { HActionType::kClipboardSwitcherPaste, kClipboard | kTypes },
    { HActionType::kClipboardHistorySwitcher, kClipboard | kTypes },
    { HActionType::kSendMessageToEditor, kMacros },
    { HActionType::kDontRotateStatusMenu, 0 },
    { HActionType::kTypedStringDuplicatePalette, 0 },
    { HActionType::kSearch, kNetwork },
    { HActionType::kTriggerByName, kMacros },
    { HActionType::kShowPaletteOfMacros, 0 },
    { HActionType::kGetTouchBarSelection, 0 },
    { HActionType::kOCRImage, kReads | kClipboard },
    { HActionType::kBringWindowsForward, kPrograms },
    { HActionType::kSwitchToLastApplication, kPrograms },
    { HActionType::kSwitchToNextApplication, kPrograms },
    { HActionType::kActivateApplication, kPrograms },
    { HActionType::kApplyModifiersToApplication, kPrograms },
    { HActionType::kQuitOthers, kPrograms },
    { HActionType::kQuitAll, kPrograms },
    { HActionType::kQuitSpecificApp, kPrograms },
    { HActionType::kHideOthers, kPrograms },
    { HActionType::kHideAll, kPrograms },
    { HActionType::kHideCurrent, kPrograms },
    { HActionType::kHideSpecificApp, kPrograms },
    { HActionType::kShowAll, kPrograms },
    { HActionType::kShowSpecificApp, kPrograms },
    { HActionType::kFile, kReads | kWrites },
    { HActionType::kReadFile, kReads },
    { HActionType::kWriteFile, kWrites },
    { HActionType::kSetFileIcon, kReads | kWrites },
    { HActionType::kNewFolder, kWrites },
    { HActionType::kSplitPath, 0 },
    { HActionType::kPlugIn, kScripts },
    { HActionType::kGetFileAttribute, kReads },
    { HActionType::kSetFileAttribute, kWrites },
    { HActionType::kOpen1File, kReads | kPrograms },
    { HActionType::kOpenFinderSelection, kReads | kPrograms },
    { HActionType::kSystemPrefPane, kPrograms },
    { HActionType::kOpen1Password, kNetwork | kPasswords },
    { HActionType::kOpenURL, kNetwork },
    { HActionType::kGetURL, kNetwork | kWrites },
    { HActionType::kExecuteAppleScript, kScripts },
    { HActionType::kExecuteShellScript, kScripts },
    { HActionType::kExecuteJavaScriptForAutomation, kScripts },
    { HActionType::kExecuteJavaScriptForCustomPrompt, kScripts },
    { HActionType::kExecuteSwift, kScripts },
    { HActionType::kExecuteJavaScript, kScripts | kPrograms },
    { HActionType::kExecuteWorkflow, kScripts },
    { HActionType::kExecuteMacro, 0 },
    { HActionType::kMarkMacro, 0 },
    { HActionType::kSetMacroEnable, kMacros },
    { HActionType::kInsertText, kTypes | kClipboard },
    { HActionType::kSetFindPasteboard, kClipboard },
    { HActionType::kSetNetworkLocation, kSystem },
    { HActionType::kFastUserSwitch, kSystem },
    { HActionType::kSetKeyboardLayout, kSystem },
    { HActionType::kQuickMacro, kTypes },
    { HActionType::kSimulateKeystroke, kTypes },
    { HActionType::kTriggerMacroByHotKey, kMacros },
    { HActionType::kSimulateModifiers, kTypes },
    { HActionType::kSimulateHardwareKey, kTypes },
    { HActionType::kMouseMoveAndClick, kTypes },
    { HActionType::kScrollWheelEvent, kTypes },
    { HActionType::kSelectMenuItem, kTypes | kPrograms },
    { HActionType::kPressButton, kTypes | kPrograms },
    { HActionType::kDarkMode, kSystem },
    { HActionType::kSemaphore, 0 },
    { HActionType::kManipulateWindow, kPrograms },
    { HActionType::kHiliteLocation, 0 },
    { HActionType::kScreenCapture, kWrites | kClipboard | kScreen },
    { HActionType::kFindImage, kScreen },
    { HActionType::kTransformImage, kClipboard },
    { HActionType::kResizeImage, kClipboard },
    { HActionType::kCompositeImage, kClipboard },
    { HActionType::kCopyClipboard, kClipboard },
    { HActionType::kDrawImage, kClipboard },
    { HActionType::kGetImageSize, 0 },
    { HActionType::kTrimImage, kClipboard },
    { HActionType::kDisplayImage, 0 },
    { HActionType::kNewImage, kClipboard },
    { HActionType::kPause, 0 },
    { HActionType::kPauseUntil, 0 },
    { HActionType::kAssert, 0 },
    { HActionType::kFor, 0 },
    { HActionType::kWhile, 0 },
    { HActionType::kUntil, 0 },
    { HActionType::kRepeat, 0 },
    { HActionType::kGroup, 0 },
    { HActionType::kIfThenElse, 0 },
    { HActionType::kSwitch, 0 },
    { HActionType::kAlert, 0 },
    { HActionType::kComment, 0 },
    { HActionType::kCancel, 0 },
    { HActionType::kMacroGroupToggle, kMacros },
    { HActionType::kConcealMacroPalettes, 0 },
    { HActionType::kITunesControl, kPrograms },
    { HActionType::kQuickTimePlayerControl, kPrograms },
    { HActionType::kSafariControl, kNetwork | kPrograms },
    { HActionType::kClipboardSwitcherMacroAction, kClipboard },
    { HActionType::kCutCopyPaste, kTypes | kClipboard },
    { HActionType::kSetClipboardToText, kClipboard },
    { HActionType::kSetClipboardToPastClipboard, kClipboard },
    { HActionType::kSetClipboardToNamedClipboard, kClipboard },
    { HActionType::kDeletePastClipboard, kClipboard },
    { HActionType::kSaveClipboardToNamedClipboard, kClipboard },
    { HActionType::kFilterClipboard, kClipboard },
    { HActionType::kSearchReplaceClipboard, kClipboard },
    { HActionType::kApplyStyle, kClipboard },
    { HActionType::kApplyTextFactory, kScripts | kReads },
    { HActionType::kSetVariableToText, 0 },
    { HActionType::kSetVariablesToJSON, 0 },
    { HActionType::kSetJSONValue, 0 },
    { HActionType::kSetDictionaryToJSON, 0 },
    { HActionType::kSetDictionaryValue, 0 },
    { HActionType::kSetVariableToKeychainPassword, kPasswords },
    { HActionType::kSetKeychainPasswordToText, kPasswords },
    { HActionType::kSetVariableToSafariField, kPrograms },
    { HActionType::kSetSafariFieldToText, kTypes | kPrograms },
    { HActionType::kSetSafariCheckbox, kTypes | kPrograms },
    { HActionType::kSetSafariRadio, kTypes | kPrograms },
    { HActionType::kSetMailStatus, kPrograms },
    { HActionType::kMailSendMessage, kMessages | kReads },
    { HActionType::kSendSMS, kMessages },
    { HActionType::kSetVariableToCalculation, 0 },
    { HActionType::kSetActionDelay, 0 },
    { HActionType::kSearchReplaceVariable, 0 },
    { HActionType::kSearchReplace, kClipboard },
    { HActionType::kSearchVariable, 0 },
    { HActionType::kSearchRegEx, kClipboard },
    { HActionType::kSearchClipboard, kClipboard },
    { HActionType::kSubstring, kClipboard },
    { HActionType::kUseVariable, kPrograms },
    { HActionType::kFilterVariable, 0 },
    { HActionType::kFilter, kClipboard },
    { HActionType::kPromptWithList, 0 },
    { HActionType::kPromptForUserInput, 0 },
    { HActionType::kPromptForFile, 0 },
    { HActionType::kCustomPrompt, kScripts },
    { HActionType::kSpeakText, 0 },
    { HActionType::kPlaySound, kReads },
    { HActionType::kSystemAction, kSystem | kPrograms },
    { HActionType::kDebuggerAction, kMacros },
    { HActionType::kSystemVolume, kSystem },
    { HActionType::kSendMIDIMessage, 0 },
    { HActionType::kGrowl, 0 },
    { HActionType::kLog, 0 },
    { HActionType::kNotification, 0 },
    { HActionType::kStreamDeckShow, 0 },
    { HActionType::kStreamDeckSetTitle, 0 },
    { HActionType::kStreamDeckSetImage, 0 },
    { HActionType::kSetDesktopImage, kReads | kSystem },
    { HActionType::kApplicationsPaletteToggle, 0 },
    { HActionType::kSetClipboardToImage, kClipboard | kReads },
    { HActionType::kSetClipboardToFileReference, kClipboard },
};
// clang-format on
static_assert( std::size( kRows ) == kHActionTypeCount );

constexpr bool InEnumeratorOrder()
{
    for ( std::size_t i = 0; i < std::size( kRows ); ++i )
    {
        if ( kRows[i].mType != HActionType( i ) )
            return false;
    }
    return true;
}
static_assert( InEnumeratorOrder(), "one row for each HActionType, in its order" );

constexpr TextView kTextKeys[] = { u"ImportAbilityRunScripts", u"ImportAbilityReadFiles", u"ImportAbilityWriteFiles",
    u"ImportAbilityUseNetwork", u"ImportAbilitySendMessages", u"ImportAbilityUsePasswords",
    u"ImportAbilityTypeAndClick", u"ImportAbilityUseClipboard", u"ImportAbilityControlPrograms",
    u"ImportAbilitySeeScreen", u"ImportAbilityChangeSystem", u"ImportAbilityChangeMacros" };
static_assert( std::size( kTextKeys ) == kMacroAbilityCount );

// "Backup, Cleanup and 3 more"
Text SomeOf( const std::vector<Text>& inNames )
{
    constexpr std::size_t kMost = 3;
    Text text;
    for ( std::size_t i = 0; i < std::min( inNames.size(), kMost ); ++i )
        text += ( i > 0 ? u", " : u"" ) + inNames[i];
    if ( inNames.size() > kMost )
        return kvr_localizedFormat( u"ImportAndMoreFormat", text, inNames.size() - kMost );
    return text;
}
} // namespace

std::vector<MacroAbility> AbilitiesOf( HActionType inType )
{
    std::vector<MacroAbility> abilities;
    for ( std::size_t i = 0; i < kMacroAbilityCount; ++i )
    {
        if ( kRows[std::size_t( inType )].mAbilities & BitOf( MacroAbility( i ) ) )
            abilities.push_back( MacroAbility( i ) );
    }
    return abilities;
}

void ImportAbilities::Add( const MMacro& inMacro )
{
    Add( *inMacro.GetActionList(), inMacro.GetName() );
}

void ImportAbilities::Add( const HActionList& inActions, const Text& inMacroName )
{
    std::uint32_t bits = 0;
    inActions.DoForEveryActionAndSubAction(
        [&bits]( HBaseAction& action ) { bits |= kRows[std::size_t( action.GetActionType() )].mAbilities; } );
    for ( std::size_t i = 0; i < kMacroAbilityCount; ++i )
    {
        if ( bits & BitOf( MacroAbility( i ) ) )
            mMacros[MacroAbility( i )].push_back( inMacroName );
    }
}

std::vector<Text> ImportAbilities::Describe() const
{
    std::vector<Text> lines;
    for ( const auto& [ability, names] : mMacros )
        lines.push_back( kvr_localizedFormat(
            u"ImportAbilityLineFormat", kvr_localized( kTextKeys[std::size_t( ability )] ), SomeOf( names ) ) );
    return lines;
}
