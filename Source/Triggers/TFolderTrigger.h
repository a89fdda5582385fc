// The trigger of a folder in which things appear or disappear.
#pragma once

#include "Triggers/DirectoryMonitor.h"
#include "Triggers/TBaseTrigger.h"

class TFolderTrigger final : public TTriggerOf<TFolderTrigger, TriggerType::kFolder>
{
public:
    void DescribeFields( HFieldVisitor& inVisitor ) override;
    /// Throws "dictionary->Get( CFSTR("Interest"), interest )" without a dictionary there.
    void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary ) override;
    [[nodiscard]] Text GetDescription() const override;
    [[nodiscard]] Text GetShortDescription() const override;

    [[nodiscard]] const DirectoryMonitor::Interest& GetInterest() const { return mInterest; }
    void SetInterest( DirectoryMonitor::Interest inInterest ) { mInterest = std::move( inInterest ); }

private:
    DirectoryMonitor::Interest mInterest;
};
