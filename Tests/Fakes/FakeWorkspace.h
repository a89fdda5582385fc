// A desktop that remembers what it was asked to show, with keys that a test holds down.
#pragma once

#include "Platform/Workspace.h"

#include <vector>

class FakeWorkspace final : public XWorkspace
{
public:
    bool OpenURL( TextView inURL ) override
    {
        mURLs.emplace_back( inURL );
        return mCanOpen;
    }
    bool OpenFile( const std::filesystem::path& inPath ) override
    {
        mFiles.push_back( inPath );
        return mCanOpen;
    }
    bool Reveal( const std::filesystem::path& inPath ) override
    {
        mRevealed.push_back( inPath );
        return mCanOpen;
    }
    [[nodiscard]] std::uint32_t ModifierFlags() const override { return mModifiers; }
    [[nodiscard]] bool IsTrustedForAccessibility( bool inAsk ) const override
    {
        mPrompts += inAsk and not mIsTrusted;
        return mIsTrusted;
    }
    [[nodiscard]] bool NeedsAccessibilityPermission() const override { return mNeedsPermission; }
    void MakeAccessibilityRequest() override { ++mAccessibilityRequests; }
    void OpenAccessibilityPane() override { ++mPanesOpened; }

    std::vector<Text> mURLs;
    std::vector<std::filesystem::path> mFiles, mRevealed;
    std::uint32_t mModifiers = 0;
    bool mCanOpen = true, mIsTrusted = true, mNeedsPermission = false;
    mutable int mPrompts = 0;
    int mAccessibilityRequests = 0, mPanesOpened = 0;
};
