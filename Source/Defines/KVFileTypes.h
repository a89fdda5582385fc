// What kind of file a path names, for file choosers and for what is dropped. A type that the platform
// knows decides where there is one; otherwise the extension, whose case doesn't matter. Any thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <filesystem>

namespace KVFileTypes
{
using Path = std::filesystem::path;

/// A folder that the user can look into.
[[nodiscard]] bool ShouldShowFolder( const Path& inPath );
/// A file, or a folder that shows as one.
[[nodiscard]] bool ShouldShowFileOrPackage( const Path& inPath );
[[nodiscard]] bool ShouldShowImage( const Path& inPath );
/// A script that was saved as an application counts as well; its signature is read from the bundle.
[[nodiscard]] bool IsAppleScriptFilename( const Path& inPath );
/// The same, as choosers ask it.
[[nodiscard]] bool ShouldShowAppleScriptFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowShellScriptFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowSwiftScriptFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowJavaScriptFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowTextFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowHTMLFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowTextFactoryFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowWorkflowFilename( const Path& inPath );
[[nodiscard]] bool ShouldShowApplication( const Path& inPath );

/// What the information file of an application bundle calls the application; null when it says nothing.
[[nodiscard]] XText BundleIdentifier( const Path& inPath );
} // namespace KVFileTypes
