// How a legacy type of action becomes its modern form while it is read.
#pragma once

#include "Actions/HBaseAction.h"
#include "Macros/MLoadObserver.h"

/// A new action of the modern type with the base properties of the legacy one's dictionary, whose own values the caller
/// then moves over. Tells the load observer, if there is one.
template<class Modern>
[[nodiscard]] std::unique_ptr<Modern> MakeModernForm(
    const HBaseAction& inLegacy, const XPlistDictionary& inDictionary )
{
    auto modern = std::make_unique<Modern>();
    modern->ResetBaseProperties( inDictionary );
    if ( MLoadObserver* observer = MLoadObserver::Current() )
        observer->DidUpgradeType(
            inDictionary, KeyOf( inLegacy.GetActionType() ).GetText(), KeyOf( modern->GetActionType() ).GetText() );
    return modern;
}
