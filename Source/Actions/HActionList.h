// An ordered list that owns its actions: a macro's actions, or those of a container. Actions keep
// their address as long as they stand in a list, and iteration stands a change elsewhere in the list.
// Main thread.
#pragma once

#include "CFMethods/PropertyList.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <list>
#include <memory>

class HBaseAction;
class StringSearchee;
class XIcon;

class HActionList
{
public:
    using Block = std::function<void( HBaseAction& inAction )>;
    /// Makes the words that introduce a list; asked only by those who show them.
    using Words = std::function<Text()>;
    using ListBlock = std::function<void( const Words& inWords, const HActionList& inList )>;
    using Index = std::int64_t;
    /// What IndexOfAction answers for an action that isn't in the list.
    static constexpr Index kNotFound = std::numeric_limits<Index>::max();

    HActionList();
    ~HActionList();
    HActionList( const HActionList& ) = delete;
    HActionList& operator=( const HActionList& ) = delete;

    /// A new list of clones, in order.
    [[nodiscard]] std::unique_ptr<HActionList> Clone() const;

    void AppendAction( std::unique_ptr<HBaseAction> inAction );
    /// Appends what can be understood. Each other element is left out with a line in the log, and told to the
    /// load observer. Throws "actions && actions->IsCorrectTypeID()" when the value isn't an array.
    void LoadActionsFromPropertyList( const __SafeCFPropertyList& inArray );
    /// Pasting and importing: the same within an insertion, and nothing is logged. A value that isn't an array
    /// appends nothing.
    void AppendActionsFromPList( const __SafeCFPropertyList& inObject );

    [[nodiscard]] Index GetCount() const { return Index( mActionList.size() ); }
    [[nodiscard]] bool Empty() const { return mActionList.empty(); }
    [[nodiscard]] bool AnyEnabled() const;

    // Indexes count from 0; one below 1 is the first action, one past the end is asserted.

    /// Null past the end.
    [[nodiscard]] HBaseAction* GetAction( Index inIndex ) const;
    /// Before the action at the index; the count itself appends.
    void InsertActionAt( Index inIndex, std::unique_ptr<HBaseAction> inAction );
    /// Afterwards the action stands at the index inTo, whichever way it moves.
    void RelocateActionToIndex( Index inFrom, Index inTo );
    void SetActionAtIndex( Index inIndex, std::unique_ptr<HBaseAction> inAction );
    void RemoveActionAtIndex( Index inIndex );
    /// Null past the end.
    [[nodiscard]] std::unique_ptr<HBaseAction> ExtractAndRemoveAction( Index inIndex );
    /// By identity, not by content.
    [[nodiscard]] Index IndexOfAction( const HBaseAction* inAction ) const;

    /// The block may remove the action that it is given.
    void DoForEveryAction( const Block& inBlock ) const;
    /// Depth first, a container before what it holds.
    void DoForEveryActionAndSubAction( const Block& inBlock ) const;

    [[nodiscard]] CFContainer<XPlistArray> CopyActionsToPropertyList() const;
    /// The array always, the disclosed key only (as false) when not disclosed.
    void SaveToDictionary(
        XMutableDictionary& ioDictionary, bool inDisclosed, const XKey& inListKey, const XKey& inDisclosedKey ) const;
    /// Loads when the list's key is there, throwing as LoadActionsFromPropertyList does; disclosed unless the
    /// dictionary says otherwise.
    void LoadActionsFromDictionary(
        const XPlistDictionary& inDictionary, bool& outDisclosed, const XKey& inListKey, const XKey& inDisclosedKey );

    void AddMatchStrings( StringSearchee& ioSearchee ) const;
    /// The icon of a macro that holds this list, as seen from the action, which may be null.
    [[nodiscard]] XIcon GetXIconForAction( const HBaseAction* inAction ) const;

    /// Have the engine run the list, one action, or one action without a word to the user.
    void TryActions() const;
    static void TryAction( const HBaseAction& inAction );
    static void DoActionQuietly( const HBaseAction& inAction );

private:
    using Actions = std::list<std::unique_ptr<HBaseAction>>;

    /// The node at the index; asserts "it != mActionList.end()" when there is none.
    [[nodiscard]] Actions::iterator IteratorForIndex( Index inIndex ) const;
    void PrivateExecute( bool inTrying ) const;

    mutable Actions mActionList; // an iterator into it lets a const list hand out its actions
};

/// A field that is a list of actions: the list is shared with whoever shows it, a copy of the field
/// has a list of its own.
class HActions
{
public:
    HActions() : mList( std::make_shared<HActionList>() ) {}
    HActions( const HActions& inOther ) : mDisclosed( inOther.mDisclosed ), mList( inOther.mList->Clone() ) {}
    HActions( HActions&& ) = default;
    HActions& operator=( HActions inOther ) noexcept
    {
        mDisclosed = inOther.mDisclosed;
        mList.swap( inOther.mList );
        return *this;
    }
    ~HActions() = default;

    [[nodiscard]] HActionList& GetList() const { return *mList; }
    [[nodiscard]] const std::shared_ptr<HActionList>& GetShared() const { return mList; }

    bool mDisclosed = true;

private:
    std::shared_ptr<HActionList> mList;
};
