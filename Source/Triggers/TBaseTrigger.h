// A trigger says when a macro starts. A macro owns its triggers through a TTriggerList; the engine does the
// watching, this program stores and shows them. Main thread.
#pragma once

#include "CFMethods/ClonePtr.h"
#include "CFMethods/PropertyList.h"
#include "Triggers/TriggerType.h"

#include <memory>
#include <vector>

class MMacro;
class StringSearchee;

class TBaseTrigger
{
public:
    virtual ~TBaseTrigger() = default;

    virtual void SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const = 0;
    /// Throws XException when a required key is missing.
    virtual void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary ) = 0;
    /// Orders two triggers of one kind: -1, 0 or 1.
    [[nodiscard]] virtual int CompareWithSame( const TBaseTrigger& inOther ) const = 0;
    [[nodiscard]] virtual std::unique_ptr<TBaseTrigger> Clone() const = 0;
    virtual void UpdateForPasteOrAdd() {}
    virtual void UpdateForStartingEdit() {}
    [[nodiscard]] virtual TriggerType GetTriggerType() const = 0;
    /// True for a trigger that could never fire, such as a hot key without a key: loading leaves it out.
    [[nodiscard]] virtual bool TriggerIsUseless() const { return false; }
    [[nodiscard]] virtual Text GetTriggerTypeDescription() const = 0;
    [[nodiscard]] virtual Text GetDescription() const = 0;
    [[nodiscard]] virtual Text GetShortDescription() const { return GetDescription(); }
    /// The type description, the description and the short description, each as trigger text.
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const;

    /// Throws XException for a value that is no dictionary, an unknown kind or a missing required key.
    [[nodiscard]] static std::unique_ptr<TBaseTrigger> CreateFromPropertyList( const __SafeCFPropertyList& inValue );
    [[nodiscard]] __SafeCFPropertyList CopyToPropertyList() const;
    [[nodiscard]] std::optional<Text> GetTriggerXML() const;
    /// Null when the text doesn't parse; throws as CreateFromPropertyList.
    [[nodiscard]] static std::unique_ptr<TBaseTrigger> CreateFromTriggerXML( TextView inText );
    /// By kind, then by CompareWithSame: -1, 0 or 1.
    [[nodiscard]] int CompareWith( const TBaseTrigger& inOther ) const;

    /// The macro that holds the trigger; not owned.
    void SetMacro( MMacro* inMacro ) { mMacro = inMacro; }
    [[nodiscard]] MMacro* GetMacro() const { return mMacro; }

private:
    MMacro* mMacro = nullptr;
};

/// A macro's triggers, in order.
class TTriggerList
{
public:
    void AppendValue( ClonePtr<TBaseTrigger> inTrigger ) { mTriggers.push_back( std::move( inTrigger ) ); }
    /// An index beyond the end appends.
    void InsertValueAtIndex( std::size_t inIndex, ClonePtr<TBaseTrigger> inTrigger );
    /// Asserts that the index is one of the list's.
    void RemoveValueAtIndex( std::size_t inIndex );
    [[nodiscard]] std::size_t GetCount() const { return mTriggers.size(); }
    [[nodiscard]] TBaseTrigger* GetValueAtIndex( std::size_t inIndex ) const { return mTriggers[inIndex].Get(); }
    void RemoveAllValues() { mTriggers.clear(); }
    template<class Block>
    void DoForEveryValue( const Block& inBlock ) const
    {
        for ( const ClonePtr<TBaseTrigger>& trigger : mTriggers )
            inBlock( *trigger );
    }

private:
    std::vector<ClonePtr<TBaseTrigger>> mTriggers;
};
