// The macros file on disk: the first load with its upgrades and default macros, the save with its background
// writer, the reload, dated revisions and their culling, and what comes in from a shared file. The main thread builds
// bytes, and the queue "com.tessarine.korvalen.MacroData" writes them in the order of the calls. Main thread, unless told
// otherwise.
#pragma once

#include "Macros/MMacroFileData.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace MMacroPreferenceFile
{
/// Loads the macros, upgrades them, adds default macros, saves if anything changed, and sees to the revisions. Once, from
/// start-up. Throws XException for a file that is a property list but no macros file; the file isn't touched then.
void InitialLoadAllMacros();

/// Rebuilds the domain from the bytes of the last load or save. Never throws. Whoever calls it because the file
/// changed, and not to undo, has pending edits saved first.
void ReloadAllMacros();
/// Writes the domain now; doesn't wait for the disk.
void SaveAllMacros();
/// At termination: the last save, and the wait for the queue.
void FinalSaveAllMacros();
/// Returns when the queue has written what it was given.
void WaitForQueue();

/// The bytes of the last load or save; null before there are any.
[[nodiscard]] MMacroFileDataPtr SavedData();
/// Makes these bytes the macros file, and waits for the queue. The model isn't reloaded, unless by the block, which runs
/// while the queue writes: a large file takes both a second.
void UndoRedoMacroData( const MMacroFileDataPtr& inData, const std::function<void()>& inMeanwhile = {} );
/// The same with the bytes of a shared file, and reloads; edits that wait are saved first, and what is replaced is set
/// aside. Sharing that was disabled goes on. False, logged and told, when that or the write failed: then nothing was replaced.
bool SaveRemoteMacroShareFileData( const MMacroFileDataPtr& inData );
/// Writes the last saved bytes to a shared file; false, logged, when that failed.
bool CopyMacroShareFileToRemote( const std::filesystem::path& inPath );
/// The engine has placed an incoming shared file. Works on a queue of its own.
void ProcessSharingIncomingChange();

/// Goes back to a revision if it can be read. False when it can't: nothing was changed then.
bool RevertToRevision( TextView inDate );
/// The dates of the revisions that there are, ascending.
[[nodiscard]] std::vector<Text> Revisions();
[[nodiscard]] std::filesystem::path RevisionPath( TextView inDate );
/// What a menu of revisions shows, ascending: the date and its title.
struct RevertMenuItem
{
    Text mTitle, mDate;
};
[[nodiscard]] std::vector<RevertMenuItem> FillRevertMenu();

[[nodiscard]] std::filesystem::path MacrosFilePath();

/// The load that is running changed something that must reach the disk.
void SetLoadAllMacrosNeedsSave();
/// True if that was asked since the last time; asking clears it.
[[nodiscard]] bool TakeLoadAllMacrosNeedsSave();

/// The engine was launched or found: the notification that was held back goes out.
void InitialEngineFinishedRelaunching();

/// A macros file that is no macros file ends the start. With this it is set aside, and the start goes on as with no file;
/// for a start where nobody can be asked.
void SetBeginAnew( bool inBeginAnew );
[[nodiscard]] bool BeginsAnew();

/// Sharing stands still because the shared file comes from a newer version. Any thread.
[[nodiscard]] bool IsSharingDisabledBecauseOfNewerVersion();
/// A reload has failed in the middle: nothing is saved until one has succeeded, or the disk would lose what the model
/// lacks.
[[nodiscard]] bool IsSavingLatchedOff();

/// Forgets everything, as before the start. Nothing may be under way. For the end of the application and for tests.
void Reset();
} // namespace MMacroPreferenceFile
