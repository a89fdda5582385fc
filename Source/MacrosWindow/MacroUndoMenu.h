// The Undo and Redo items of the Edit menu, as far as undo of macros needs to know them. Main thread.
#pragma once

#include "CFMethods/Text.h"

#include <cstdint>

enum class EditMenuAction : std::uint8_t {
    kOriginal, ///< what the item does in a text
    kMacrosUndo,
    kMacrosRedo,
};

class EditMenuItem
{
public:
    virtual ~EditMenuItem() = default;
    [[nodiscard]] virtual EditMenuAction GetAction() const = 0;
    virtual void SetAction( EditMenuAction inAction ) = 0;
    virtual void SetTitle( TextView inTitle ) = 0;
};

class EditMenu
{
public:
    virtual ~EditMenu() = default;
    /// Is a list of macros, or another place where undo is about macros, in front?
    [[nodiscard]] virtual bool IsMacroContextFront() const = 0;
    [[nodiscard]] virtual EditMenuItem& UndoItem() = 0;
    [[nodiscard]] virtual EditMenuItem& RedoItem() = 0;
};
