// The catalogues of types that those who write the help start from: text files with one line for each type, sorted
// by title, whose fields stand between tabs.
#pragma once

#include "CFMethods/Text.h"

#include <filesystem>
#include <vector>

struct WikiHelpLine
{
    Text mSortTitle; ///< by what the line is sorted; not written
    Text mPage;      ///< the name of the type's page in the help
    Text mTitle;
    Text mSubject; ///< what the type is about
    Text mExample; ///< the description of a new one
};

/// Replaces the file. False when it can't be written.
[[nodiscard]] bool kvr_writeWikiHelpData( const std::filesystem::path& inFile, std::vector<WikiHelpLine> inLines );
