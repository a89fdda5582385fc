// One branch of a switch: a test, and the actions that run when it holds. The list of branches
// owns them, and a switch holds that list shared. Main thread.
#pragma once

#include "Actions/HActionList.h"
#include "Actions/HFieldVisitor.h"
#include "Actions/SharedText.h"
#include "Conditions/GenericCondition.h"

#include <memory>
#include <optional>
#include <vector>

class HCaseEntry
{
public:
    /// The default entry: contains "", and does nothing.
    HCaseEntry() = default;
    /// As LoadFromPropertyList.
    explicit HCaseEntry( const __SafeCFPropertyList& inValue ) { LoadFromPropertyList( inValue ); }
    ~HCaseEntry();
    HCaseEntry( HCaseEntry&& ioOther ) noexcept = delete;
    /// Takes over what the other entry says; each keeps its identity for scripts.
    HCaseEntry& operator=( HCaseEntry&& ioOther ) noexcept;

    [[nodiscard]] std::unique_ptr<HCaseEntry> Clone() const;
    void DescribeFields( HFieldVisitor& inVisitor );
    /// Throws "dictionary && dictionary->IsCorrectTypeID()" when the value isn't a dictionary.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList() const;

    [[nodiscard]] std::optional<Text> GetCaseEntryXML() const;
    /// A default entry for every text that can't be understood.
    [[nodiscard]] static std::unique_ptr<HCaseEntry> CreateFromCaseEntryXML( TextView inText );

    /// Otherwise marks the branch that is taken when no other is.
    [[nodiscard]] GenericConditionType GetConditionType() const { return mType; }
    void SetConditionType( GenericConditionType inType ) { mType = inType; }
    [[nodiscard]] const XText& GetTestValue() const { return mTestValue; }
    void SetTestValue( const XText& inValue ) { mTestValue = inValue; }
    [[nodiscard]] HActionList& GetActionList() const { return mActions.GetList(); }
    [[nodiscard]] std::shared_ptr<HActionList> GetSharedActionList() const { return mActions.GetShared(); }
    [[nodiscard]] bool GetActionListDisclosed() const { return mActions.mDisclosed; }
    void SetActionListDisclosed( bool inDisclosed ) { mActions.mDisclosed = inDisclosed; }

    [[nodiscard]] Text GetDescription() const;
    void AddMatchStringsForConditions( StringSearchee& ioSearchee ) const;
    void AddMatchStringsForActions( StringSearchee& ioSearchee ) const;

    /// Taken when first asked for; unique among case entries, in this run.
    [[nodiscard]] std::uint64_t GetAppleScriptUID() const;
    [[nodiscard]] static HCaseEntry* GetCaseEntryForAppleScriptUID( std::uint64_t inUID );

private:
    HCaseEntry( const HCaseEntry& inOther );

    GenericConditionType mType = GenericConditionType::kContains;
    XText mTestValue = SharedText<u"">();
    HActions mActions;
    mutable std::uint64_t mAppleScriptUID = 0;
};

class HCaseEntryList
{
public:
    using Index = std::int64_t;

    [[nodiscard]] std::unique_ptr<HCaseEntryList> Clone() const;
    [[nodiscard]] Index GetCount() const { return Index( mCaseEntries.size() ); }

    void AppendEntry( std::unique_ptr<HCaseEntry> inEntry );
    /// Clears the list; an element that can't be understood is left out without a word. A value that isn't an array
    /// leaves none.
    void LoadFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] CFContainer<XPlistArray> CopyToPropertyList() const;

    // An index that is none is asserted, and nothing happens.
    [[nodiscard]] HCaseEntry* GetCaseEntry( Index inIndex ) const;
    void InsertEntryAt( Index inIndex, std::unique_ptr<HCaseEntry> inEntry ); ///< the count itself appends
    void ReplaceEntryAtIndex( Index inIndex, std::unique_ptr<HCaseEntry> inEntry );
    void RemoveEntryAtIndex( Index inIndex );

    void AddMatchStringsForConditions( StringSearchee& ioSearchee ) const;
    void AddMatchStringsForActions( StringSearchee& ioSearchee ) const;

private:
    [[nodiscard]] bool IsIndex( Index inIndex ) const;

    std::vector<std::unique_ptr<HCaseEntry>> mCaseEntries;
};
