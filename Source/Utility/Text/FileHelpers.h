// Files by their paths as texts: facts, and small changes on disk. Nothing here throws: a change
// answers whether it was made, and logs under "File" why not. A path with a NUL names no file. A
// "~" isn't expanded. Existing files are never overwritten. Any thread; these wait for the disk.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>
#include <filesystem>
#include <optional>

/// The path for the system; absent when it is empty or holds a NUL, which would cut it short.
[[nodiscard]] std::optional<std::filesystem::path> kvr_fileSystemPath( TextView inPath );

/// Is there something, behind links?
[[nodiscard]] bool existsPath( TextView inPath );
[[nodiscard]] bool kvr_existsDirectory( TextView inPath );
/// In bytes; absent when it isn't a file.
[[nodiscard]] std::optional<std::uint64_t> kvr_fileSize( TextView inPath );

/// What the desktop calls such a file ("PNG image"); empty when it doesn't know.
[[nodiscard]] Text fileKind( TextView inPath );
/// The name that the desktop shows for the file, else the last component.
[[nodiscard]] Text fileDisplayName( TextView inPath );
/// The same without ".app": what people call an application or file.
[[nodiscard]] Text displayName( TextView inPath );
/// The name that a bundle gives itself, else the display name.
[[nodiscard]] Text bundleName( TextView inPath );

/// Deletes a file, a link (not its target) or an empty folder.
bool deleteFile( TextView inPath );
/// Creates the folder and those above it that are missing; true as well when it exists.
bool createFolder( TextView inPath );
/// Moves it to the desktop's trash; false where there is none.
bool trashFile( TextView inPath );
/// Moves the file or folder, whole, into another folder under its own name; to another disk by copying first.
bool moveFileToFolder( TextView inPath, TextView inFolder );
/// Gives another name in the same folder. The name has no slash, and isn't "." or "..".
bool renameFile( TextView inPath, TextView inName );

/// Creates an empty file of a new name in the folder of temporary files, readable by its owner only, and gives
/// its path: the base name made safe, a hyphen, random digits and the extension. Absent when that fails.
[[nodiscard]] std::optional<Text> tempFileWithBasename( TextView inBasename, TextView extension = {} );
