// Times for people, in this computer's time. Any thread.
#pragma once

#include "Utility/Work/Clock.h"

#include <string>

/// "2024-03-01 09:05:59".
[[nodiscard]] std::string LocalTimeText( XAbsoluteTime inTime );
