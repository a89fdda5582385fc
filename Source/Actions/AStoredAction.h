// Stands in for the action types whose own classes are still to be written: it has the type's title and
// traits and all base fields, and keeps the type's own keys as the file has them, so that they
// are written back unchanged. When a type gets its class, its row in HActionType.cpp makes that one.
#pragma once

#include "Actions/HBaseAction.h"

class AStoredAction final : public HBaseAction
{
public:
    explicit AStoredAction( HActionType inType );

    [[nodiscard]] HActionType GetActionType() const override { return mType; }
    [[nodiscard]] std::unique_ptr<HBaseAction> Clone() const override;
    /// Each stored key, whichever it is.
    void SaveToDictionary( XMutableDictionary& ioDictionary ) const override;
    using HBaseAction::SaveToDictionary;
    void InitializeFromDictionary( const XPlistDictionary& inDictionary ) override;
    void DescribeFields( HFieldVisitor& inVisitor ) override;

    /// The type's own keys. Never null.
    [[nodiscard]] const CFContainer<XPlistDictionary>& GetStoredKeys() const { return mKeys; }

private:
    HActionType mType;
    CFContainer<XPlistDictionary> mKeys;
};
