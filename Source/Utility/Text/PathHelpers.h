// Paths as texts: taking them apart and putting them together, by the rules of "/". Nothing in
// here touches the disk but what its comment says; FileHelpers.h does. Runs of slashes count as
// one, a trailing one doesn't count, and the root is its own last component. Any thread.
#pragma once

#include "CFMethods/Text.h"

/// Begins with "/" or "~".
[[nodiscard]] bool kvr_pathIsAbsolute( TextView inPath );

/// "scratch.tiff" of "/tmp/scratch.tiff" and of "/tmp/scratch.tiff/"; "/" of "/".
[[nodiscard]] Text lastPathComponent( TextView inPath );
/// "/tmp" of "/tmp/scratch.tiff", "/" of "/tmp" and "/", "" of "scratch.tiff".
[[nodiscard]] Text stringByDeletingLastPathComponent( TextView inPath );
/// One slash between them; an empty component leaves the path as it is.
[[nodiscard]] Text stringByAppendingPathComponent( TextView inPath, TextView inComponent );

/// What stands behind the last dot of the last component: "gz" of "a.tar.gz". Leading dots begin no extension, and
/// a last dot has none: "" of ".profile", "..", "name.".
[[nodiscard]] Text pathExtension( TextView inPath );
/// Without the extension and its dot, and without trailing slashes.
[[nodiscard]] Text stringByDeletingPathExtension( TextView inPath );

/// "~" and "~user" at the start become the home folder; a user who isn't known stays as typed. Reads the user database.
[[nodiscard]] Text stringByExpandingTildeInPath( TextView inPath );
/// The home folder at the start becomes "~".
[[nodiscard]] Text stringByAbbreviatingWithTildeInPath( TextView inPath );
/// Tilde expanded, and every link on the way followed as far as the path exists. Reads the disk.
[[nodiscard]] Text stringByResolvingSymlinksInPath( TextView inPath );
/// Tilde expanded; runs of slashes, "." and a trailing slash removed. In absolute paths ".." is removed as well, through
/// the link if its folder is one. Reads the disk.
[[nodiscard]] Text stringByStandardizingPath( TextView inPath );

/// Ends in ".app" in any case, with something before it.
[[nodiscard]] bool kvr_nameHasAppSuffix( TextView inName );
[[nodiscard]] Text kvr_nameWithoutAppSuffix( TextView inName );

/// A name that any file system takes: each of `!,;:/\`, CR and LF becomes "-".
[[nodiscard]] Text kvr_saferFileName( TextView inName );

/// The file URL, "file:///tmp/a%20b". A relative path counts from the current folder; a folder that exists ends in "/".
/// Reads the disk for that.
[[nodiscard]] Text urlForPath( TextView inPath );

/// -1, 0 or 1: component by component as a file list is sorted, so that what a folder holds stands together, right
/// behind it.
[[nodiscard]] int pathStandardCompare( TextView inPath, TextView inOther );
