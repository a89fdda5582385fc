// The palette theme that a group names. What a theme looks like is the theme editor's matter; here a theme is
// either the plain default or a stored dictionary, which is kept as it stands.
#pragma once

#include "CFMethods/PropertyList.h"

struct ThemedPaletteInfo
{
    bool mFlags[7] = { true, true, false, true, true, false, false }; // the first: the plain default
    std::int32_t mNumbers[2] = { 16, 88 };
    XText mThemeName = u"Traditional";
    std::int32_t mLastNumber = 1;
    bool mLastFlag = false;
    CFContainer<XPlistDictionary> mStored; ///< what a file held; null for the plain default

    [[nodiscard]] bool IsPlainDefault() const { return mFlags[0]; }
    void LoadFromPropertyList( CFContainer<XPlistDictionary> inStored )
    {
        mStored = std::move( inStored );
        mFlags[0] = not mStored;
    }
};
