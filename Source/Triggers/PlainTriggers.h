// The triggers without fields: all that there is to say of them is their kind.
#pragma once

#include "Triggers/TBaseTrigger.h"

/// The text of "tWakeTriggerDesc" and its like.
[[nodiscard]] Text PlainTriggerDescription( TriggerType inType );

/// The description is a text of the kind.
template<class ATrigger, TriggerType kType>
class TPlainTriggerOf : public TTriggerOf<ATrigger, kType>
{
public:
    [[nodiscard]] Text GetDescription() const override { return PlainTriggerDescription( kType ); }
};

class TWakeTrigger final : public TPlainTriggerOf<TWakeTrigger, TriggerType::kWake>
{};

class TSleepTrigger final : public TPlainTriggerOf<TSleepTrigger, TriggerType::kSleep>
{};

class TMacroPaletteTrigger final : public TPlainTriggerOf<TMacroPaletteTrigger, TriggerType::kMacroPalette>
{};

class TStatusMenuTrigger final : public TPlainTriggerOf<TStatusMenuTrigger, TriggerType::kStatusMenu>
{};

class TPublicWebTrigger final : public TPlainTriggerOf<TPublicWebTrigger, TriggerType::kPublicWeb>
{};

class TClipboardTrigger final : public TPlainTriggerOf<TClipboardTrigger, TriggerType::kClipboard>
{};

class TClipboardFilterTrigger final : public TPlainTriggerOf<TClipboardFilterTrigger, TriggerType::kClipboardFilter>
{};

class TAudioOutputDeviceTrigger final
    : public TPlainTriggerOf<TAudioOutputDeviceTrigger, TriggerType::kAudioOutputDevice>
{};

class TDraggedFileTrigger final : public TPlainTriggerOf<TDraggedFileTrigger, TriggerType::kDraggedFile>
{
public:
    [[nodiscard]] TDraggedFileTrigger* GetAsDraggedFileTrigger() override { return this; }
};

class TDisplayTrigger final : public TPlainTriggerOf<TDisplayTrigger, TriggerType::kDisplay>
{};
