// One step of a macro. This program creates, edits, stores, shows and searches actions; running them is
// the engine's. A concrete action derives from HActionOf and states its fields in DescribeFields; what is
// known of its type beside them is a row of the table in HActionType.cpp. An action is owned by exactly
// one list, or by the caller that received it. Main thread.
#pragma once

#include "Actions/ActionColor.h"
#include "Actions/HActionList.h"
#include "Actions/HActionType.h"
#include "Actions/HFieldVisitor.h"
#include "CFMethods/NodeAllocator.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class StringSearchee;
class StringSearcher;
class XIcon;

/// Whether the steps that a recording added are saved with an action.
enum class RecordedDetails : bool { kNo, kYes };

class HBaseAction
{
public:
    virtual ~HBaseAction();
    HBaseAction& operator=( const HBaseAction& ) = delete;

    // A file is half a million actions.
    [[nodiscard]] static void* operator new( std::size_t inBytes ) { return NodeAllocator::AllocateObject( inBytes ); }
    static void operator delete( void* inAction, std::size_t inBytes )
    {
        NodeAllocator::FreeObject( inAction, inBytes );
    }

    // Making

    /// A new action with default values; null for a number that is no type.
    [[nodiscard]] static std::unique_ptr<HBaseAction> CreateActionOfType( HActionType inType );
    /// Throws XException for what can't be understood: no dictionary, an unknown type, a required key.
    [[nodiscard]] static std::unique_ptr<HBaseAction> CreateFromPropertyList( const __SafeCFPropertyList& inValue );
    /// Null when the text is no XML property list of an action.
    [[nodiscard]] static std::unique_ptr<HBaseAction> CreateFromActionXML( TextView inText );

    // The property-list form

    /// A base key is only there when it says something, so that a plain action holds its type and its own keys.
    [[nodiscard]] CFContainer<XPlistDictionary> CopyToPropertyList(
        RecordedDetails inDetails = RecordedDetails::kNo ) const;
    /// That form as XML text; absent when a value has no XML form.
    [[nodiscard]] std::optional<Text> GetActionXML() const;
    /// Each field once, with its key.
    virtual void DescribeFields( HFieldVisitor& inVisitor );
    /// The type's own keys. The default writes and reads the described fields.
    virtual void SaveToDictionary( XMutableDictionary& ioDictionary ) const;
    virtual void SaveToDictionary( XMutableDictionary& ioDictionary, RecordedDetails inDetails ) const;
    virtual void InitializeFromDictionary( const XPlistDictionary& inDictionary );
    /// The action that stands for the one just read: null for that one, or the modern form of a legacy type.
    [[nodiscard]] virtual std::unique_ptr<HBaseAction> CleanActionAfterInitialization(
        const XPlistDictionary& inDictionary );
    /// Reads the base fields; absent and ill-typed ones take their defaults.
    virtual void ResetBaseProperties( const XPlistDictionary& inDictionary );
    [[nodiscard]] virtual std::unique_ptr<HBaseAction> Clone() const = 0;
    /// Orders actions by type, then by their own fields, which is how equal ones are found. The base fields
    /// don't count.
    [[nodiscard]] int CompareFields( const HBaseAction& inOther ) const;

    /// Refreshes values that are held in conditions, collections or sources.
    virtual void UpdateToDefaultValues( bool inFlag );
    /// The action was pasted or added: its references follow the mapping of the insertion.
    virtual void UpdateForPasteOrAdd();
    /// Two neighbouring recorded actions as one; null when they stay two.
    [[nodiscard]] virtual std::unique_ptr<HBaseAction> Merge( const HBaseAction& inNext ) const;
    [[nodiscard]] virtual bool IsA( const HBaseAction& inOther ) const;

    // Base fields

    [[nodiscard]] virtual bool IsActive() const;
    virtual void SetIsActive( bool inActive );
    [[nodiscard]] virtual bool IsDisclosed() const;
    virtual void SetIsDisclosed( bool inDisclosed );
    /// Seconds; 0 stands for the type's default.
    [[nodiscard]] double GetTimeOutPeriod() const { return mTimeOutPeriod; }
    void SetTimeOutPeriod( double inSeconds ) { mTimeOutPeriod = inSeconds; }
    [[nodiscard]] bool GetTimeOutAbortsMacro() const { return mTimeOutAbortsMacro; }
    void SetTimeOutAbortsMacro( bool inAborts ) { mTimeOutAbortsMacro = inAborts; }
    [[nodiscard]] bool GetNotifyOnTimeOut() const { return mNotifyOnTimeOut; }
    void SetNotifyOnTimeOut( bool inNotify ) { mNotifyOnTimeOut = inNotify; }
    /// What counts: the action's own setting or the type's.
    [[nodiscard]] bool GetStopOnFailure() const;
    void SetStopOnFailure( bool inStop );
    [[nodiscard]] bool GetNotifyOnFailure() const { return mNotifyOnFailure; }
    void SetNotifyOnFailure( bool inNotify ) { mNotifyOnFailure = inNotify; }
    [[nodiscard]] ActionColor::Type GetActionColor() const { return mColor; }
    void SetActionColor( ActionColor::Type inColor ) { mColor = inColor; }
    /// A title of the user's that replaces the description; may be null.
    [[nodiscard]] const XText& GetActionName() const { return mName; }
    void SetActionName( const XText& inName ) { mName = inName; }
    [[nodiscard]] const XText& GetActionNotes() const { return mNotes; }
    void SetActionNotes( const XText& inNotes ) { mNotes = inNotes; }

    // Traits. The defaults answer from the type's row.

    [[nodiscard]] virtual HActionType GetActionType() const = 0;
    [[nodiscard]] virtual bool HasTimeOut() const;
    [[nodiscard]] virtual double DefaultTimeOutPeriod() const; ///< seconds
    [[nodiscard]] virtual bool ActionCanFail() const;
    [[nodiscard]] virtual bool DefaultStopOnFailure() const;
    [[nodiscard]] virtual bool IsLoop() const;
    [[nodiscard]] virtual bool IsClickAction() const;
    [[nodiscard]] virtual bool CanBeInstigatedByClickAction() const;

    // Actions within

    [[nodiscard]] virtual bool HasSubActions() const;
    [[nodiscard]] virtual bool IsEmptyOfActions() const;
    /// Each list that the action holds, with what makes the words that introduce it ("" for the only one).
    virtual void DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const;
    virtual void DoForEverySubAction( const HActionList::Block& inBlock ) const;

    // Words. A title is the type's; a description tells what this action does.

    [[nodiscard]] static Text GetActionTypeTitle( HActionType inType );
    [[nodiscard]] virtual Text GetActionTitle() const;
    [[nodiscard]] virtual Text GetNewActionTitle() const;
    [[nodiscard]] virtual Text GetWikiActionTitle() const;
    [[nodiscard]] virtual Text GetActionDescriptionString() const;
    [[nodiscard]] virtual Text GetActionDescriptionDefaultString() const;
    [[nodiscard]] virtual Text GetActionHTMLDescriptionString() const;
    [[nodiscard]] virtual Text GetActionExtraHTML() const;
    /// May a macro without a name take the description for its title?
    [[nodiscard]] virtual bool MacroUseGetActionDescriptionStringForTitle() const;
    /// Further words by which the add-action search finds the type.
    [[nodiscard]] virtual std::vector<Text> GetAddActionByNameExtraSearchString() const;
    [[nodiscard]] virtual std::optional<Text> GetToolTip() const;
    /// The texts of this action that could be meant as regular expressions.
    [[nodiscard]] virtual std::vector<Text> ActionCouldBeRegExStrings() const;
    /// The name of the action's page in the help.
    [[nodiscard]] virtual Text WikiName() const;
    [[nodiscard]] virtual Text WikiURL() const;
    /// Where the help has the page of a name.
    [[nodiscard]] static Text WikiURL( TextView inName );

    // Icons

    [[nodiscard]] static XIcon GetActionTypeXIcon( HActionType inType );
    [[nodiscard]] virtual XIcon GetActionXIcon() const;
    [[nodiscard]] virtual XIcon GetActionDescriptionXIcon() const;
    [[nodiscard]] virtual XIcon GetActionDescriptionXIconWithDisabledBadge() const;

    // Searching

    virtual void AddMatchStrings( StringSearchee& ioSearchee ) const;
    virtual void AddMatchStringsForSubActions( StringSearchee& ioSearchee ) const;
    /// Does the action match, with all that it holds? A search for nothing finds everything.
    [[nodiscard]] bool MatchesTextSearch( StringSearcher& ioSearcher ) const;
    /// Of what matched, that which matches by its own words: a container isn't one for the sake of what it holds.
    [[nodiscard]] bool MatchesTextSearchJustContainer( bool inMatches, StringSearcher& ioSearcher ) const;

    // The identity of an action for scripts: a number for this run, taken when first asked for.

    [[nodiscard]] std::uint64_t GetAppleScriptUID() const;
    /// Takes over the identity of an action that this one replaces, and which must be gone already.
    void ReuseAppleScriptUID( std::uint64_t inUID );
    /// Null for 0 and for a number that no living action has.
    [[nodiscard]] static HBaseAction* GetActionForAppleScriptUID( std::uint64_t inUID );

protected:
    HBaseAction();
    /// Everything but the identity for scripts: a clone is another action to them.
    HBaseAction( const HBaseAction& inOther );

    [[nodiscard]] virtual Text InternalGetActionDescriptionString() const;
    [[nodiscard]] virtual Text InternalGetActionHTMLDescriptionString() const;

private:
    enum class StopOnFailure : std::int32_t { kNo, kYes, kAsType };

    void SaveTimeOut( XMutableDictionary& ioDictionary ) const;
    void SaveFailure( XMutableDictionary& ioDictionary ) const;

    bool mActive = true;
    bool mDisclosed = true;
    double mTimeOutPeriod = 0;
    bool mTimeOutAbortsMacro = true;
    bool mNotifyOnTimeOut = true;
    StopOnFailure mStopOnFailure = StopOnFailure::kAsType;
    bool mNotifyOnFailure = true;
    ActionColor::Type mColor = ActionColor::Type::kNone;
    XText mName;
    XText mNotes;
    mutable std::uint64_t mAppleScriptUID = 0; // 0: not asked for yet
};

/// What a concrete class gets for naming itself and its type.
template<class Action, HActionType kType, class Base = HBaseAction>
class HActionOf : public Base
{
public:
    [[nodiscard]] HActionType GetActionType() const override { return kType; }
    [[nodiscard]] std::unique_ptr<HBaseAction> Clone() const override
    {
        return std::make_unique<Action>( static_cast<const Action&>( *this ) );
    }
};

/// The key of a type's title, to be localised; "" for a number that is no type.
[[nodiscard]] Text kHotKeyActionName( HActionType inType );
