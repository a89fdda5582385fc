// The resources that are compiled into the program.
#pragma once

#include <string_view>

/// Resources/Localizable.plist: an XML property list of key to English text.
[[nodiscard]] std::string_view KorvalenLocalizableResource();
