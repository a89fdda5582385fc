// What the macro store asks of the application around it. The application installs itself at start-up; without one
// nothing of it happens. Main thread, unless told otherwise.
#pragma once

class MMacroApplication
{
public:
    virtual ~MMacroApplication() = default;
    /// Has termination begun? Any thread.
    [[nodiscard]] virtual bool isTerminating() const { return false; }
    /// Ends the application in good order, in a later turn of the main loop.
    virtual void terminate() {}
    /// Results that scripts were given are out of date.
    virtual void macrosSavedClearAppleScriptCaches() {}
    /// The macros file was replaced: the model has to be loaded again, and windows told.
    virtual void HandleReloadMacros() {}
    /// Saves at once if edits wait for their save.
    virtual void SaveAllMacrosIfNecessary() {}
    /// Do edits wait for their save?
    [[nodiscard]] virtual bool NeedSaveAllMacros() const { return false; }

    [[nodiscard]] static MMacroApplication& Current();

    /// Installs an application for as long as this object lives. Main thread.
    class Scope
    {
    public:
        explicit Scope( MMacroApplication& inApplication );
        ~Scope();
        Scope( const Scope& ) = delete;
        Scope& operator=( const Scope& ) = delete;

    private:
        MMacroApplication* mPrevious;
    };
};
