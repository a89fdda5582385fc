// Watches a load for what it leaves out, and says it in words: for those who load only a part, like an import, where
// the full comparison of MLoadCheck has no place. Main thread.
#pragma once

#include "Macros/MLoadObserver.h"

#include <vector>

class MLoadDrops final : public MLoadObserver
{
public:
    void DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView inReason ) override;
    void DidReadOlderKey( const XPlistDictionary&, const XKey&, const XKey& ) override {}
    void DidUpgradeType( const XPlistDictionary&, TextView, TextView ) override {}
    void DidUpgradeValue( const XPlistDictionary&, const XKey&, TextView ) override {}
    void DidRepair( const XPlistDictionary&, const XKey&, MLoadRule, TextView ) override {}
    void DidReadUID( const XPlistDictionary& inSource, const XText& inFileUID, const XText& inUID ) override;

    /// One line for each, in the order in which they were met, as the source has them: "My Macro › element 3 of
    /// “Actions”: no action type is called “Zap”".
    [[nodiscard]] std::vector<Text> Describe( const __SafeCFPropertyList& inSource ) const;
    /// The macro or group that was begun last; "" before there was one.
    [[nodiscard]] Text LastName() const;

private:
    struct Drop
    {
        CFContainer<XPlistArray> mList; // held, so that its address stays its identity
        std::size_t mIndex;
        Text mReason;
    };
    std::vector<Drop> mDrops;
    CFContainer<XPlistDictionary> mLast;
};
