// A macro: triggers that say when it runs, and an ordered list of actions that says what it does. A group
// owns it, or an insertion in progress does. Main thread.
#pragma once

#include "Actions/HAppleScriptActionList.h"
#include "Macros/MMacroSerializedObject.h"
#include "Triggers/TBaseTrigger.h"

#include <memory>

class HActionList;
class HBaseAction;
class StringSearcher;

class MMacro : public MMacroSerializedObject, public HAppleScriptActionList
{
public:
    MMacro();
    /// Loads; throws XException when "Triggers" or "Actions" is missing.
    explicit MMacro( const __SafeCFPropertyList& inValue );
    ~MMacro() override;

    /// The stored name; else the first action's words; else the text for an untitled macro.
    [[nodiscard]] Text GetName() const override;
    /// A name that the macro would show anyway isn't stored, so the macro goes on following its first action.
    void SetName( const XText& inName ) override;
    [[nodiscard]] const XText& GetStoredName() const { return mName; } ///< null for none
    [[nodiscard]] Text GetUnambiguousName() const override;
    [[nodiscard]] XAbsoluteTime GetModificationTime() const override { return mModificationTime; }
    void SetModificationTime( XAbsoluteTime inTime )
    {
        mModificationTime = inTime;
        DidChange();
    }
    void SetCustomIconData( const __SafeCFPropertyList& inData ) override;
    [[nodiscard]] XIcon GetXIcon() const override { return GetXIconForAction( nullptr ); }
    bool SetTimesIfNotSet( XAbsoluteTime inTime ) override;
    using MMacroSerializedObject::SetTimesIfNotSet;
    [[nodiscard]] MMacro* GetAsMacro() override { return this; }
    [[nodiscard]] const MMacro* GetAsMacro() const override { return this; }
    void AddMatchStrings( StringSearchee& ioSearchee ) const override;
    /// Name, UID, triggers and actions.
    void AddOwnMatchStrings( StringSearchee& ioSearchee ) const override;
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const override;
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue ) override;
    [[nodiscard]] Text SerializedObjectKindName() const override;

    /// True when there is no name, or one that was made up for an untitled macro.
    [[nodiscard]] virtual bool UntitledMacro() const;
    /// The custom icon, else one for the actions with this action preferred (null for none).
    [[nodiscard]] virtual XIcon GetXIconForAction( const HBaseAction* inAction ) const;
    [[nodiscard]] std::shared_ptr<HActionList> GetActionList() const override { return mActions; }
    [[nodiscard]] bool GetActionListDisclosed() const override { return true; }
    /// A macro's list is always disclosed: calling this is a mistake.
    void SetActionListDisclosed( bool inDisclosed ) override;
    virtual void EditorChangedActionList() { DidChangeActionList(); }
    virtual void AppleScriptChangedActionList() { DidChangeActionList(); }
    [[nodiscard]] virtual bool GetHideFromInspector() const { return false; }
    [[nodiscard]] virtual bool GetExcludeFromModificationTime() const { return false; }
    /// Actions, nested ones too, then triggers replace the UIDs that they hold by the insertion's mapping.
    virtual void UpdateForPasteOrAdd();
    virtual void UpdateForStartingEdit();

    [[nodiscard]] MMacroGroup* GetOwningGroup() const { return mOwningGroup; }
    /// Leaves the old owner, if any, then belongs to the new one; the group's InsertMacro does the rest.
    void SetOwningGroup( MMacroGroup* inGroup );

    [[nodiscard]] const TTriggerList& GetTriggerList() const { return mTriggers; }
    /// Each trigger points back to this macro afterwards.
    void SetTriggerList( TTriggerList inTriggers );
    void AppendAction( std::unique_ptr<HBaseAction> inAction );
    /// What the macro is known by: the first hot key; else the first trigger, of any kind or but for palettes.
    [[nodiscard]] const TBaseTrigger* GetDisplayTriggerFromMacro( bool inAllowAny ) const;
    /// A searcher with nothing to test matches everything.
    [[nodiscard]] bool MatchesTextSearch( StringSearcher& ioSearcher ) const;

    [[nodiscard]] std::unique_ptr<MMacro> Clone( CloneFor inWhat ) const;

    // Two distinct macros never compare as equal: the serial number decides in the end.
    static int CompareAlphabetically( const MMacro* inA, const MMacro* inB, void* inContext = nullptr );
    static int CompareByModification( const MMacro* inA, const MMacro* inB, void* inContext = nullptr );
    static int CompareByExecution( const MMacro* inA, const MMacro* inB, void* inContext = nullptr );
    static int CompareByUseCount( const MMacro* inA, const MMacro* inB, void* inContext = nullptr );
    static int CompareByTimeSaved( const MMacro* inA, const MMacro* inB, void* inContext = nullptr );
    static int CompareByTrigger( const MMacro* inA, const MMacro* inB, void* inContext = nullptr );

private:
    void DestroyAll();
    /// Of a macro as a constructor leaves it.
    void Fill( const __SafeCFPropertyList& inValue );
    void DidChangeActionList();
    void LoadTriggers( const XPlistArray& inTriggers );
    [[nodiscard]] Text ComputedName() const;

    MMacroGroup* mOwningGroup = nullptr;
    XText mName;
    TTriggerList mTriggers;
    std::shared_ptr<HActionList> mActions;
    XAbsoluteTime mModificationTime = 0;
    mutable XIcon mIcon;
    bool mFlag = false;
};
