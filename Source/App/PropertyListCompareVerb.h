// "plist compare": what differs between two property lists.
#pragma once

#include "App/Verb.h"

#include <string>

class PropertyListCompareVerb final : public Verb
{
public:
    explicit PropertyListCompareVerb( CLI::App& ioCommand );
    /// kDone when the values are equal, kFailed when they differ.
    [[nodiscard]] ExitStatus Run( VerbContext& ioContext ) override;

private:
    std::string mOldPath, mNewPath;
    bool mJSON = false;
};
