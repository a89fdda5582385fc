// The programs that ours is compared with, in the same run: libplist and pugixml in this process,
// Python's plistlib and any command as children.
#pragma once

#include "CFMethods/PropertyListCodec.h"

#include <map>
#include <optional>
#include <plist/plist.h>
#include <string>
#include <vector>

/// Owns a libplist tree.
class LibplistTree
{
public:
    LibplistTree( XPlistFormat inFormat, std::string_view inBytes );
    ~LibplistTree() { plist_free( mRoot ); }
    LibplistTree( const LibplistTree& ) = delete;
    LibplistTree& operator=( const LibplistTree& ) = delete;

    /// Writes and throws the bytes away; the result is their count.
    [[nodiscard]] std::size_t Write( XPlistFormat inFormat ) const;
    [[nodiscard]] bool IsNull() const { return mRoot == nullptr; }

private:
    plist_t mRoot = nullptr;
};

/// True when pugixml parses the bytes.
[[nodiscard]] bool ParseWithPugixml( std::string_view inXML );

/// Seconds of "binary-read", "binary-write", "xml-read", "xml-write" as plistlib measures itself;
/// empty without python3.
[[nodiscard]] std::map<std::string, double> TimePlistlib( std::string_view inBinary, std::string_view inXML );

/// Starts a program with its output thrown away and waits; the exit status, or absent if it didn't start.
[[nodiscard]] std::optional<int> RunProgram( const std::vector<std::string>& inArguments );
