// When an application trigger fires, and how files name that.
#pragma once

#include "CFMethods/Text.h"

#include <span>

enum class ApplicationTriggerFireType { kLaunch, kActivate, kDeactivate, kQuit, kWhileActive, kWhileRunning };
inline constexpr TextView kApplicationTriggerFireTypeNames[] = { u"Launch", u"Activate", u"Deactivate", u"Quit",
    u"WhileActive", u"WhileRunning" };
static_assert(
    std::size( kApplicationTriggerFireTypeNames ) == std::size_t( ApplicationTriggerFireType::kWhileRunning ) + 1 );
constexpr auto NamesOf( ApplicationTriggerFireType )
{
    return std::span( kApplicationTriggerFireTypeNames );
}
