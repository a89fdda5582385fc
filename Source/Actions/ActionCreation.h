// Actions that are made for something the user does with other things: dropping a file, or moving
// actions into a container. Main thread.
#pragma once

#include "Actions/HBaseAction.h"

#include <filesystem>
#include <memory>

class MMacro;

/// What the user can move selected actions into.
enum class EngroupSelection : std::int32_t {
    kFor,
    kGroup,
    kIfThen,
    kIfElse,
    kRepeat,
    kSwitch,
    kUntil,
    kWhile,
    kNewMacro, ///< a macro of its own, which is executed in their place
};

/// Who selected the actions.
class EngroupSelector
{
public:
    virtual ~EngroupSelector() = default;
    /// A new macro in the place that fits the selection, or null.
    [[nodiscard]] virtual MMacro* newMacroForEngroup() = 0;
};

/// The container, and the list that receives the selected actions; both null when there is none.
struct EngroupResult
{
    std::unique_ptr<HBaseAction> mContainer;
    std::shared_ptr<HActionList> mList;
};

[[nodiscard]] EngroupResult CreateActionForForEngroup( EngroupSelector& inSelector, EngroupSelection inSelection );

/// An action that does what fits a dropped file, and its title ("Open ‘Letters’"). The path is stored with
/// "~" for the home folder.
[[nodiscard]] std::unique_ptr<HBaseAction> CreateActionForDraggedPath(
    const std::filesystem::path& inPath, Text& outTitle );
