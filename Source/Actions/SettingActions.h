// The actions that change settings of the system and its look.
#pragma once

#include "Actions/HBaseAction.h"
#include "Actions/SharedText.h"

class ASetFindPasteboard final : public HActionOf<ASetFindPasteboard, HActionType::kSetFindPasteboard>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mText = SharedText<u"">();
};

class ASetNetworkLocation final : public HActionOf<ASetNetworkLocation, HActionType::kSetNetworkLocation>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mNetworkLocation = SharedText<u"">();
};

class AFastUserSwitch final : public HActionOf<AFastUserSwitch, HActionType::kFastUserSwitch>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mUserName = SharedText<u"">();
};

class ASetKeyboardLayout final : public HActionOf<ASetKeyboardLayout, HActionType::kSetKeyboardLayout>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    XText mID = SharedText<u"">();
    XText mName = SharedText<u"">(); // for display, where the layout isn't installed
};

/// The system's look, or that of this program alone.
enum class DarkModeAction { kLight, kDark, kToggle, kKVSystem, kKVLight, kKVDark, kKVToggle };
inline constexpr TextView kDarkModeActionNames[] = { u"Light", u"Dark", u"Toggle", u"KVSystem", u"KVLight", u"KVDark",
    u"KVToggle" };
static_assert( std::size( kDarkModeActionNames ) == std::size_t( DarkModeAction::kKVToggle ) + 1 );
constexpr auto NamesOf( DarkModeAction )
{
    return std::span( kDarkModeActionNames );
}

class ADarkMode final : public HActionOf<ADarkMode, HActionType::kDarkMode>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;

protected:
    [[nodiscard]] Text InternalGetActionDescriptionString() const override;

private:
    DarkModeAction mAction = DarkModeAction::kLight;
};
