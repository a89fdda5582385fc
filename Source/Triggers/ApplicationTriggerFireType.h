// When an application trigger fires.
#pragma once

enum class ApplicationTriggerFireType { kLaunch, kActivate, kDeactivate, kQuit, kWhileActive, kWhileRunning };
