// The findings of checks as SARIF 2.1.0, the form in which tools for code review take them: one run, with all rules
// that a check knows. Main thread.
#pragma once

#include "Macros/MLoadCheck.h"

#include <string>
#include <string_view>

class CheckSARIF
{
public:
    /// The path is as the user gave it.
    void AddFindings( const std::string& inPath, const MFileCheck& inCheck );
    /// A file that couldn't be checked at all, and why.
    void AddFailure( const std::string& inPath, const std::string& inSentence );
    /// The log; this is empty again afterwards.
    [[nodiscard]] __SafeCFPropertyList Take();

private:
    [[nodiscard]] __SafeCFPropertyList Result( const MFinding& inFinding, const __SafeCFPropertyList& inPlace ) const;

    XMutableArray mArtifacts, mResults, mNotifications;
    bool mHasFailed = false;
};

/// A path as a URI reference: relative stays relative, and every byte that may mean something else in a URI is
/// percent-encoded.
[[nodiscard]] std::string URIReferenceOf( std::string_view inPath );
