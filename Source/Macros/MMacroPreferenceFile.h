// What loading the macros file asks of the macros file: that it be saved again although nobody edited
// anything, because something in it was brought up to date. Main thread.
#pragma once

namespace MMacroPreferenceFile
{
/// The load that is running changed something that must reach the disk.
void SetLoadAllMacrosNeedsSave();
/// True if that was asked since the last time; asking clears it.
[[nodiscard]] bool TakeLoadAllMacrosNeedsSave();
} // namespace MMacroPreferenceFile
