// The icon of the status menu as users exchange it: a zip file with images that are named "StatusMenuIcon", one for
// each state and scale ("StatusMenuIcon.png", "StatusMenuIconDisabled@2x.png"), loose or in a folder. They are kept in
// the folder "Status Menu Icons" among the data files. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>

namespace StatusMenuIcon
{
/// Does the listing, a line for each file, name such images, and nothing that makes it a plug-in?
[[nodiscard]] bool UnzipLikelyContains( TextView inListing );
/// Takes one entry of an unzipped file, an image or a folder of images, in place of an older one of its name. False
/// for anything else.
bool ImportUnzipped( const std::filesystem::path& inPath );
} // namespace StatusMenuIcon
