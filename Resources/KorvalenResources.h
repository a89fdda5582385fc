// The resources that are compiled into the program.
#pragma once

#include <span>
#include <string_view>

/// Resources/Localizable.plist: an XML property list of key to English text.
[[nodiscard]] std::string_view KorvalenLocalizableResource();

struct KorvalenResource
{
    std::string_view mName; ///< of the file
    std::string_view mBytes;
};
/// Resources/Korvalen Libraries: the default libraries, in the order of their names.
[[nodiscard]] std::span<const KorvalenResource> KorvalenLibraryResources();
