// What happened to the model, told to every open window by MacrosWindowInterface::NoteChange. Passed by reference and
// never stored. Main thread.
#pragma once

#include <cstdint>
#include <set>

class MMacroSerializedObject;

enum class MacrosWindowChangeType : std::uint8_t {
    kMacroGroupDeleted = 0,
    kMacroGroupAdded = 1,
    kMacroGroupChanged = 2,
    kMacroSmartGroupDeleted = 3,
    kMacroSmartGroupAdded = 4,
    kReserved = 5, ///< nobody sends it
    kMacroSmartGroupChanged = 6,
    kMacroDeleted = 7,
    kMacroAdded = 8,
    kMacroMoved = 9,
    kMacroChanged = 10,
    kThemeChanged = 11,
};

enum class MacrosWindowChangeSelect : std::uint8_t {
    kNoChange = 0,
    kSelect = 1,
    kSelectAndEdit = 2,
};

struct MacrosWindowChange
{
    MacrosWindowChangeType mType = MacrosWindowChangeType::kReserved;
    const void* mSource = nullptr; ///< the window or controller that made the change; may be null
    std::set<MMacroSerializedObject*> mObjects;
    MacrosWindowChangeSelect mSelect = MacrosWindowChangeSelect::kNoChange;
    std::set<MMacroSerializedObject*> mSelectObjects; ///< for the window that is the source
};
