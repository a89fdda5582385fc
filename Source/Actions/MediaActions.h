// The actions that control players.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"

enum class ITunesCommand : std::int32_t {
    kPlayPause,
    kStop,
    kRewind,
    kFastForward,
    kPause,
    kNextTrack,
    kBackTrack,
    kPlayRandomTrack,
    kPlayNamedTrack,
    kPlayNamedPlaylist,
    kPlayRandomPlaylistTrack,
    kIncreaseVolume,
    kDecreaseVolume,
    kSetVolume,
    kIncreaseRating,
    kDecreaseRating,
    kSetRating,
};
inline constexpr TextView kITunesCommandNames[] = { u"PlayPause", u"Stop", u"Rewind", u"FastForward", u"Pause",
    u"NextTrack", u"BackTrack", u"PlayRandomTrack", u"PlayNamedTrack", u"PlayNamedPlaylist", u"PlayRandomPlaylistTrack",
    u"IncreaseVolume", u"DecreaseVolume", u"SetVolume", u"IncreaseRating", u"DecreaseRating", u"SetRating" };
static_assert( std::size( kITunesCommandNames ) == std::size_t( ITunesCommand::kSetRating ) + 1 );
constexpr auto NamesOf( ITunesCommand )
{
    return std::span( kITunesCommandNames );
}

class AiTunesControl final : public HActionOf<AiTunesControl, HActionType::kITunesControl>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    [[nodiscard]] std::vector<Text> GetAddActionByNameExtraSearchString() const override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    ITunesCommand mCommand = ITunesCommand();
    XText mArgument = SharedText<u"">();
};

enum class QuickTimePlayerCommand : std::int32_t {
    kPlay,
    kPlayPause,
    kPause,
    kStepForward,
    kStepBackward,
    kIncreaseVolume,
    kDecreaseVolume,
    kSetVolume,
};
inline constexpr TextView kQuickTimePlayerCommandNames[] = { u"Play", u"PlayPause", u"Pause", u"StepForward",
    u"StepBackward", u"IncreaseVolume", u"DecreaseVolume", u"SetVolume" };
static_assert( std::size( kQuickTimePlayerCommandNames ) == std::size_t( QuickTimePlayerCommand::kSetVolume ) + 1 );
constexpr auto NamesOf( QuickTimePlayerCommand )
{
    return std::span( kQuickTimePlayerCommandNames );
}

class AQuickTimePlayerControl final : public HActionOf<AQuickTimePlayerControl, HActionType::kQuickTimePlayerControl>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    QuickTimePlayerCommand mCommand = QuickTimePlayerCommand();
    XText mArgument = SharedText<u"">();
};
