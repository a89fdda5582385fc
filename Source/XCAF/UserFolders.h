// Where the files of the user go: the rules of the base folders (XDG). Any thread.
#pragma once

#include <filesystem>

/// The folder that the variable gives (a path that isn't absolute counts as not set), or else the one at this place below the home folder: for example
/// "XDG_STATE_HOME" and ".local/state". Nothing is made.
[[nodiscard]] std::filesystem::path kvr_userFolder( const char* inVariable, const char* inBelowHome );
