// The factory of a kind of trigger: its trigger, icon and manager come from one place. There is one instance for
// each kind, which lives as long as the program. Main thread.
#pragma once

#include "Triggers/TriggerType.h"

#include <functional>
#include <memory>

class TBaseTrigger;
class XIcon;

/// What acts on the triggers of one kind while the program runs. Whoever can watch for them has one.
class TBaseTriggerTypeManager
{
public:
    virtual ~TBaseTriggerTypeManager() = default;
};

class TTriggerFactory
{
public:
    TTriggerFactory( const TTriggerFactory& ) = delete;
    TTriggerFactory& operator=( const TTriggerFactory& ) = delete;

    /// A number out of range gives the hot key factory.
    [[nodiscard]] static const TTriggerFactory& GetTriggerFactory( TriggerType inType );

    using ManagerMaker = std::function<std::unique_ptr<TBaseTriggerTypeManager>( TriggerType )>;
    /// Where managers come from; an empty function takes it away.
    static void InstallManagers( ManagerMaker inMaker );

    [[nodiscard]] virtual TriggerType GetTriggerType() const = 0;
    [[nodiscard]] virtual XIcon GetTriggerIcon() const;
    /// A new trigger with default values.
    [[nodiscard]] virtual std::unique_ptr<TBaseTrigger> CreateTrigger() const = 0;
    /// Null where nothing watches for the kind, as everywhere that no managers were installed.
    [[nodiscard]] virtual std::unique_ptr<TBaseTriggerTypeManager> CreateTriggerManager() const;

protected:
    constexpr TTriggerFactory() = default;
    ~TTriggerFactory() = default;
};
