// A trigger says when a macro starts. A macro owns its triggers through a TTriggerList; the engine does the
// watching, this program stores and shows them. A kind derives from TTriggerOf and states its fields in
// DescribeFields; its factory is a row of the table in TTriggerFactory.cpp. Main thread.
#pragma once

#include "CFMethods/ClonePtr.h"
#include "CFMethods/PropertyList.h"
#include "Triggers/TriggerType.h"

#include <memory>
#include <vector>

class HFieldVisitor;
class MMacro;
class StringSearchee;
class StringSearcher;
class TDraggedFileTrigger;
class THIDTrigger;
class THotKeyTrigger;
class TTriggerFactory;
class TTypedStringTrigger;
class XIcon;

class TBaseTrigger
{
public:
    virtual ~TBaseTrigger() = default;
    TBaseTrigger& operator=( const TBaseTrigger& ) = delete;

    /// The kind's own keys. The default writes and reads the described fields.
    virtual void SaveSubclassToDictionary( XMutableDictionary& ioDictionary ) const;
    /// Fills a fresh trigger. Throws XException when a required key is missing.
    virtual void LoadSubclassFromDictionary( const XPlistDictionary& inDictionary );
    /// Orders two triggers of one kind by their fields: -1, 0 or 1.
    [[nodiscard]] virtual int CompareWithSame( const TBaseTrigger& inOther ) const;
    /// Each field once, with its key; a kind without fields has none to describe.
    virtual void DescribeFields( HFieldVisitor& ) {}
    /// The same trigger of no macro.
    [[nodiscard]] virtual std::unique_ptr<TBaseTrigger> Clone() const = 0;
    virtual void UpdateForPasteOrAdd() {}
    virtual void UpdateForStartingEdit() {}
    [[nodiscard]] virtual TriggerType GetTriggerType() const = 0;
    [[nodiscard]] const TTriggerFactory& GetTriggerFactory() const;

    // Null but for the kind that is asked for.
    [[nodiscard]] virtual THotKeyTrigger* GetAsHotKeyTrigger() { return nullptr; }
    [[nodiscard]] virtual TTypedStringTrigger* GetAsTypedStringTrigger() { return nullptr; }
    [[nodiscard]] virtual THIDTrigger* GetAsHIDTrigger() { return nullptr; }
    [[nodiscard]] virtual TDraggedFileTrigger* GetAsDraggedFileTrigger() { return nullptr; }

    /// Is this the hot key of that key code and those modifiers, of which only command, shift, option and control
    /// count?
    [[nodiscard]] virtual bool MatchesHotKey( unsigned inKey, unsigned inModifiers ) const;
    /// True for a trigger that could never fire, such as a hot key without a key: loading leaves it out.
    [[nodiscard]] virtual bool TriggerIsUseless() const { return false; }

    // Words: what sort of trigger this is, when it fires, and that in few words.
    [[nodiscard]] virtual Text GetTriggerTypeDescription() const;
    [[nodiscard]] virtual Text GetDescription() const = 0;
    [[nodiscard]] virtual Text GetShortDescription() const { return GetDescription(); }
    [[nodiscard]] virtual XIcon GetXIcon() const;

    /// The type description, the description and the short description, each as trigger text.
    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// A search for nothing finds everything.
    [[nodiscard]] bool MatchesTextSearch( StringSearcher& ioSearcher ) const;

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

protected:
    TBaseTrigger() = default;
    /// All but the macro: a clone is nobody's until it is put into one.
    TBaseTrigger( const TBaseTrigger& ) {}

private:
    MMacro* mMacro = nullptr;
};

/// What a concrete class gets for naming itself and its kind.
template<class ATrigger, TriggerType kType>
class TTriggerOf : public TBaseTrigger
{
public:
    static constexpr TriggerType kTriggerType = kType;

    [[nodiscard]] TriggerType GetTriggerType() const override { return kType; }
    [[nodiscard]] std::unique_ptr<TBaseTrigger> Clone() const override
    {
        return std::make_unique<ATrigger>( static_cast<const ATrigger&>( *this ) );
    }
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
