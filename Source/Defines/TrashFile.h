// Taking away what may be somebody's own. Any thread.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>

/// Moves the file to the desktop's trash or, where there is none, to the folder "Set Aside". False, logged, when
/// neither takes it: it stays then. The reason is a clause in English, for the log.
bool kvr_trashOrSetAside( const std::filesystem::path& inFile, TextView inReason );
