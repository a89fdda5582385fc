// Stands in for the kinds of trigger whose own class is still to be written: it knows its kind and keeps
// every other key as it stands, so that a file passes through unharmed.
#pragma once

#include "Triggers/TBaseTrigger.h"

class TStoredTrigger final : public TBaseTrigger
{
public:
    explicit TStoredTrigger( TriggerType inType ) : mType( inType ) {}

    void SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const override;
    void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary ) override;
    [[nodiscard]] int CompareWithSame( const TBaseTrigger& inOther ) const override;
    [[nodiscard]] std::unique_ptr<TBaseTrigger> Clone() const override;
    [[nodiscard]] TriggerType GetTriggerType() const override { return mType; }
    [[nodiscard]] Text GetTriggerTypeDescription() const override;
    [[nodiscard]] Text GetDescription() const override { return GetTriggerTypeDescription(); }

private:
    TriggerType mType;
    CFContainer<XPlistDictionary> mKeys; // all but the kind; null for a new trigger
};
