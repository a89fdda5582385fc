// A check loads the file with a recorder watching, saves the result, and walks the source beside the saved value.
// Elements of a list pair off in order once those that were dropped are set aside; groups, which a save sorts, are
// found by their UID. Every difference becomes a finding: with a reason when the recorder heard of one, and as a
// plain change otherwise.
#include "Macros/MLoadCheck.h"

#include "Actions/HActionList.h"
#include "Actions/HActionType.h"
#include "Actions/HBaseAction.h"
#include "CFMethods/PropertyListText.h"
#include "Macros/MLoadReasons.h"
#include "Macros/MLoadRecorder.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Utility/Text/Format.h"
#include "XCAF/XException.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr const char* kKindNames[] = { "macros file", "kvmacros file", "kvactions file", "kvlibrary file" };
static_assert( std::size( kKindNames ) == std::size_t( MFileKind::kLibrary ) + 1 );

using Rule = MLoadRule;

const XPlistArray* ArrayOf( const XPlistDictionary* inDictionary, const XKey& inKey )
{
    return inDictionary ? __SafeCFPropertyList( inDictionary->Find( inKey ) ).AsArray() : nullptr;
}

Text TextOf( const XPlistDictionary* inDictionary, const XKey& inKey )
{
    const XPlistString* const string =
        inDictionary ? __SafeCFPropertyList( inDictionary->Find( inKey ) ).AsString() : nullptr;
    return string ? string->GetText() : Text();
}

Text Brief( const __SafeCFPropertyList& inValue )
{
    return TextFromUTF8( BriefText( inValue ) );
}

// "action 3", "trigger 1", "then action 2": an element by the list that it stands in.
Text ElementName( TextView inListKey, std::size_t inIndex )
{
    constexpr struct
    {
        TextView mKey, mName;
    } kLists[] = { { u"MacroGroups", u"group" }, { u"Items", u"group" }, { u"Macros", u"macro" },
        { u"Triggers", u"trigger" }, { u"Actions", u"action" }, { u"ThenActions", u"then action" },
        { u"ElseActions", u"else action" }, { u"CaseEntries", u"case" }, { u"ConditionList", u"condition" },
        { u"CollectionList", u"collection" } };
    for ( const auto& [key, name] : kLists )
    {
        if ( key == inListKey )
            return kvr_format( u"%@ %lu", name, inIndex + 1 );
    }
    return kvr_format( u"%@ %lu", inListKey, inIndex + 1 );
}

// A UID that the file doesn't have: not a default, for it is another one with each load.
bool IsFreshUID( const XPlistString& inKey, const __SafeCFPropertyList& inNew )
{
    constexpr std::size_t kUUIDLength = 36;
    const XPlistString* const uid = inNew.AsString();
    const Text key = inKey.GetText();
    return uid and uid->GetLength() == kUUIDLength and ( key.ends_with( u"UID" ) or key.ends_with( u"UID2" ) );
}

// Groups and macros are told by their names.
bool IsListOfNamed( TextView inListKey )
{
    return inListKey == u"MacroGroups" or inListKey == u"Items" or inListKey == u"Macros";
}

// Where a walk is: a chain on the stack, the innermost first. Only a finding makes a text of it, for most places have
// none.
struct Step
{
    static constexpr std::size_t kNoIndex = std::size_t( -1 );

    const Step* mOuter;
    TextView mKey; ///< of a list when there is an index
    std::size_t mIndex = kNoIndex;
    const __SafeCFPropertyList* mElement = nullptr; ///< with an index

    [[nodiscard]] Text Name() const
    {
        if ( mIndex == kNoIndex )
            return Text( mKey );
        const Text name = IsListOfNamed( mKey ) ? TextOf( mElement->AsDictionary(), CFSTR( "Name" ) ) : Text();
        return name.empty() ? ElementName( mKey, mIndex ) : name;
    }
};

Text PathOf( const Step* inStep )
{
    if ( not inStep )
        return {};
    const Text outer = PathOf( inStep->mOuter );
    return outer.empty() ? inStep->Name() : outer + u" › " + inStep->Name();
}

class Checker
{
public:
    Checker( MLoadRecorder& inRecorder, MFileCheck& outCheck ) : mRecorder( inRecorder ), mCheck( outCheck ) {}

    void WalkMacrosFile( const XPlistDictionary& inSource, const XPlistDictionary& inSaved );
    void WalkGroups( const XPlistArray& inSource, const XPlistArray* inSaved, TextView inListKey );
    void WalkActions( const XPlistArray& inSource, const XPlistArray& inSaved );
    void NoteUnreadKeys( const XPlistDictionary& inSource, std::initializer_list<std::string_view> inKnown );

private:
    // Takes a step for as long as the object lives.
    struct Within
    {
        Within( Checker& ioChecker, Step inStep ) : mChecker( ioChecker ), mStep( inStep )
        {
            mStep.mOuter = std::exchange( mChecker.mStep, &mStep );
        }
        ~Within() { mChecker.mStep = mStep.mOuter; }
        Within( const Within& ) = delete;
        Within& operator=( const Within& ) = delete;

        Checker& mChecker;
        Step mStep;
    };

    void Note( Rule inRule, TextView inKey, Text inText )
    {
        mCheck.mFindings.push_back( { inRule, PathOf( mStep ), Text( inKey ), std::move( inText ) } );
    }
    void WalkValue(
        const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inOld, const XPlistNode* inNew );
    void WalkDictionary( const XPlistDictionary& inSource, const XPlistDictionary& inSaved );
    void WalkArray( const XPlistArray& inSource, const XPlistArray& inSaved, TextView inListKey );
    void WalkElement( const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew );
    void NoteDropped( const XPlistArray& inSource, TextView inListKey );
    void NoteMissing( const XPlistDictionary& inSource, const XPlistDictionary& inSaved, const XPlistString& inKey,
        const XPlistNode* inOld );
    void NoteChanged(
        const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inOld, const XPlistNode* inNew );
    void NoteAdded( const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inNew );
    void NoteUID( const MLoadRecorder::UIDs& inUIDs );

    MLoadRecorder& mRecorder;
    MFileCheck& mCheck;
    const Step* mStep = nullptr;
};

void Checker::WalkMacrosFile( const XPlistDictionary& inSource, const XPlistDictionary& inSaved )
{
    // Every save writes these anew.
    constexpr std::string_view kOfEachSave[] = { "PreferenceSavedDate", "PreferenceSaveUUID", "Version" };
    for ( const auto& entry : inSource.GetEntries() )
    {
        const bool isOfEachSave =
            std::ranges::any_of( kOfEachSave, [&entry]( std::string_view key ) { return entry.mKey->Equals( key ); } );
        if ( not isOfEachSave and not entry.mKey->Equals( std::string_view( "MacroGroups" ) ) )
            WalkValue( inSource, *entry.mKey, entry.mValue,
                inSaved.Find( XText( CFContainer<XPlistString>::Share( entry.mKey ) ) ) );
    }
    for ( const char* const key : { "MacroDefaultsVersion", "MacroPreferencesVersion" } )
    {
        if ( not inSource.Find( XKey( key ) ) )
            Note( Rule::kDefaultWritten, TextFromASCII( key ), u"would be written as 0" );
    }
    if ( const XPlistArray* const groups = ArrayOf( &inSource, CFSTR( "MacroGroups" ) ) )
        WalkGroups( *groups, ArrayOf( &inSaved, CFSTR( "MacroGroups" ) ), u"MacroGroups" );
}

void Checker::WalkGroups( const XPlistArray& inSource, const XPlistArray* inSaved, TextView inListKey )
{
    std::map<Text, const XPlistDictionary*> savedByUID;
    for ( std::size_t i = 0; inSaved and i < inSaved->GetCount(); ++i )
    {
        const XPlistDictionary* const saved = __SafeCFPropertyList( inSaved->NodeAt( i ) ).AsDictionary();
        savedByUID.emplace( TextOf( saved, CFSTR( "UID" ) ), saved );
    }
    const auto& dropped = mRecorder.DroppedFrom( inSource );
    NoteDropped( inSource, inListKey );
    for ( std::size_t i = 0; i < inSource.GetCount(); ++i )
    {
        const __SafeCFPropertyList element( inSource.NodeAt( i ) );
        const XPlistDictionary* const source = element.AsDictionary();
        if ( not source or dropped.contains( i ) )
            continue;
        const Within within( *this, { nullptr, inListKey, i, &element } );
        const MLoadRecorder::UIDs uids = mRecorder.TakeUIDs( *source );
        NoteUID( uids );
        const auto saved = savedByUID.find( uids.mObject.GetText() );
        if ( saved != savedByUID.end() )
            WalkDictionary( *source, *saved->second );
        else
            Note( Rule::kChangedValue, {}, u"it isn't in what would be saved" );
    }
}

void Checker::WalkActions( const XPlistArray& inSource, const XPlistArray& inSaved )
{
    WalkArray( inSource, inSaved, u"Actions" );
}

void Checker::NoteUnreadKeys( const XPlistDictionary& inSource, std::initializer_list<std::string_view> inKnown )
{
    for ( const auto& entry : inSource.GetEntries() )
    {
        const auto isKey = [&entry]( std::string_view known ) { return entry.mKey->Equals( known ); };
        if ( not std::ranges::any_of( inKnown, isKey ) )
            Note( Rule::kUnknownKey, entry.mKey->GetText(),
                u"nothing reads it: " + Brief( __SafeCFPropertyList( entry.mValue ) ) );
    }
}

void Checker::NoteUID( const MLoadRecorder::UIDs& inUIDs )
{
    if ( inUIDs.mFile.Equals( inUIDs.mObject ) )
        return;
    if ( IsEmpty( inUIDs.mFile ) )
        Note( Rule::kUIDAdded, u"UID", u"it has no UID, and would get a fresh one" );
    else
        Note( Rule::kUIDReplaced, u"UID",
            kvr_format( u"another object holds %@; it would get a fresh one", inUIDs.mFile ) );
}

void Checker::NoteDropped( const XPlistArray& inSource, TextView inListKey )
{
    for ( const auto& [index, reason] : mRecorder.DroppedFrom( inSource ) )
    {
        const __SafeCFPropertyList element( inSource.NodeAt( index ) );
        const Within within( *this, { nullptr, inListKey, index, &element } );
        MDropReason forPeople = DropReasonOf( element, inListKey, reason );
        Note( forPeople.mRule, {}, std::move( forPeople.mText ) );
    }
}

void Checker::WalkArray( const XPlistArray& inSource, const XPlistArray& inSaved, TextView inListKey )
{
    const auto& dropped = mRecorder.DroppedFrom( inSource );
    NoteDropped( inSource, inListKey );
    if ( inSource.GetCount() - dropped.size() != inSaved.GetCount() )
    {
        const bool grows = inSaved.GetCount() > inSource.GetCount() - dropped.size();
        Note( grows ? Rule::kElementsAdded : Rule::kChangedValue, inListKey,
            kvr_format( u"its %lu elements would be %lu", inSource.GetCount(), inSaved.GetCount() ) );
        return;
    }
    std::size_t next = 0;
    for ( std::size_t i = 0; i < inSource.GetCount(); ++i )
    {
        if ( dropped.contains( i ) )
            continue;
        const __SafeCFPropertyList old( inSource.NodeAt( i ) );
        const Within within( *this, { nullptr, inListKey, i, &old } );
        WalkElement( old, __SafeCFPropertyList( inSaved.NodeAt( next++ ) ) );
    }
}

void Checker::WalkElement( const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew )
{
    const XPlistDictionary *const source = inOld.AsDictionary(), *const saved = inNew.AsDictionary();
    if ( source and saved )
    {
        // Only macros and groups have a UID that the recorder heard of.
        const bool isMacro = mStep and mStep->mKey == u"Macros";
        const MLoadRecorder::UIDs uids = isMacro ? mRecorder.TakeUIDs( *source ) : MLoadRecorder::UIDs();
        if ( not uids.mObject.IsNull() )
            NoteUID( uids );
        WalkDictionary( *source, *saved );
    }
    else if ( inOld.AsArray() and inNew.AsArray() )
        WalkArray( *inOld.AsArray(), *inNew.AsArray(), u"element" );
    else if ( not( inOld == inNew ) )
        Note( Rule::kChangedValue, {}, kvr_format( u"%@ would become %@", Brief( inOld ), Brief( inNew ) ) );
}

void Checker::WalkDictionary( const XPlistDictionary& inSource, const XPlistDictionary& inSaved )
{
    // Both stand in the order of their keys, so one walk meets every key of either.
    const auto source = inSource.GetEntries(), saved = inSaved.GetEntries();
    for ( std::size_t i = 0, j = 0; i < source.size() or j < saved.size(); )
    {
        const int order = i == source.size() ? 1 : j == saved.size() ? -1 : source[i].mKey->Compare( *saved[j].mKey );
        if ( order > 0 )
        {
            NoteAdded( inSource, *saved[j].mKey, saved[j].mValue );
            ++j;
            continue;
        }
        if ( order < 0 )
            NoteMissing( inSource, inSaved, *source[i].mKey, source[i].mValue );
        else
            WalkValue( inSource, *source[i].mKey, source[i].mValue, saved[j++].mValue );
        ++i;
    }
}

void Checker::NoteAdded( const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inNew )
{
    if ( inKey.Equals( std::string_view( "UID" ) ) )
        return; // told of with the object
    const Text value = u"would be written as " + Brief( __SafeCFPropertyList( inNew ) );
    const MLoadRecorder::KeyID id( inSource, inKey );
    if ( const auto* const repair = mRecorder.RepairOf( id ) )
        Note( repair->mRule, inKey.GetText(), value + u": " + repair->mReason );
    else if ( const auto* const origin = mRecorder.OriginOf( id ) )
        Note( origin->mRule, inKey.GetText(), value + u": " + origin->mReason );
    else if ( IsFreshUID( inKey, __SafeCFPropertyList( inNew ) ) )
        Note( Rule::kUIDAdded, inKey.GetText(), value + u": a fresh one" );
    else
        Note( Rule::kDefaultWritten, inKey.GetText(), value );
}

void Checker::WalkValue(
    const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inOld, const XPlistNode* inNew )
{
    const __SafeCFPropertyList old( inOld ), saved( inNew );
    if ( not saved )
    {
        NoteMissing( inSource, inSource, inKey, inOld );
        return;
    }
    const bool isContainer = old.AsArray() or old.AsDictionary();
    if ( not isContainer and old == saved )
        return; // nearly all values of nearly all files
    // What was set right or upgraded as a whole is told as a whole.
    const MLoadRecorder::KeyID id( inSource, inKey );
    if ( ( mRecorder.RepairOf( id ) or mRecorder.UpgradeOf( id ) ) and not( old == saved ) )
        NoteChanged( inSource, inKey, inOld, inNew );
    // A list may hold the same elements and yet have lost some: what was dropped is asked for each list.
    else if ( old.AsArray() and saved.AsArray() )
        WalkArray( *old.AsArray(), *saved.AsArray(), inKey.GetText() );
    else if ( old.AsDictionary() and saved.AsDictionary() )
    {
        const Text key = inKey.GetText();
        const Within within( *this, { nullptr, key } );
        WalkDictionary( *old.AsDictionary(), *saved.AsDictionary() );
    }
    else if ( not( old == saved ) )
        NoteChanged( inSource, inKey, inOld, inNew );
}

// Settings of time-outs and failures are written by types that can have them, and only where they differ from what
// holds anyway. On any other type they have no place; those that ask for nothing unusual are no loss.
bool IsLostSetting( TextView inKey, const __SafeCFPropertyList& inValue, const XPlistDictionary& inSaved )
{
    constexpr TextView kSettings[] = { u"TimeOutPeriod", u"TimeOutAbortsMacro", u"NotifyOnTimeOut", u"StopOnFailure",
        u"NotifyOnFailure" };
    if ( std::ranges::find( kSettings, inKey ) == std::end( kSettings ) or
        not inSaved.Contains( CFSTR( "MacroActionType" ) ) )
        return false;
    const auto action = HBaseAction::CreateFromPropertyList( __SafeCFPropertyList( &inSaved ) );
    const bool isOfFailure = inKey == u"StopOnFailure" or inKey == u"NotifyOnFailure";
    if ( isOfFailure ? action->ActionCanFail() : action->HasTimeOut() )
        return false;
    if ( const XPlistNumber* const period = inValue.AsNumber() )
        return period->AsReal() > 0;
    const XPlistBoolean* const flag = inValue.AsBoolean();
    return flag and flag->GetValue() == ( inKey == u"StopOnFailure" );
}

void Checker::NoteMissing( const XPlistDictionary& inSource, const XPlistDictionary& inSaved, const XPlistString& inKey,
    const XPlistNode* inOld )
{
    const MLoadRecorder::KeyID id( inSource, inKey );
    const Text key = inKey.GetText(), value = Brief( __SafeCFPropertyList( inOld ) );
    if ( const auto* const upgrade = mRecorder.UpgradeOf( id ) )
        Note( upgrade->mRule, key, upgrade->mReason );
    else if ( const auto* const repair = mRecorder.RepairOf( id ) )
        Note( repair->mRule, key, value + u": " + repair->mReason );
    else if ( not mRecorder.WasRead( id ) )
        Note( Rule::kUnknownKey, key, u"nothing reads it: " + value );
    else if ( mRecorder.WasOnlyMisread( id ) )
        Note( Rule::kWrongTypeDefaulted, key, value + u" has the wrong type; its default stands" );
    else if ( IsLostSetting( key, __SafeCFPropertyList( inOld ), inSaved ) )
        Note( Rule::kUnusedSetting, key, value + u" has no effect on this type, and isn't kept" );
    else
        Note( Rule::kKeyWithoutEffect, key, value + u" has no effect here, and isn't written" );
}

void Checker::NoteChanged(
    const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inOld, const XPlistNode* inNew )
{
    if ( inKey.Equals( std::string_view( "UID" ) ) and mRecorder.WasRead( { inSource, CFSTR( "UID" ) } ) )
        return; // told of with the object
    const MLoadRecorder::KeyID id( inSource, inKey );
    const __SafeCFPropertyList old( inOld ), saved( inNew );
    const Text key = inKey.GetText();
    const Text change = kvr_format( u"%@ would become %@", Brief( old ), Brief( saved ) );
    const XPlistNumber *const a = old.AsNumber(), *const b = saved.AsNumber();
    if ( const auto* const upgrade = mRecorder.UpgradeOf( id ) )
        Note( upgrade->mRule, key, change + u": " + upgrade->mReason );
    else if ( const auto* const repair = mRecorder.RepairOf( id ) )
        Note( repair->mRule, key, change + u": " + repair->mReason );
    else if ( mRecorder.WasOnlyMisread( id ) and a and b )
        Note( Rule::kOutOfRange, key, change + u": it doesn't fit" );
    else if ( mRecorder.WasOnlyMisread( id ) )
        Note( Rule::kWrongTypeDefaulted, key, change + u": it has the wrong type" );
    else if ( a and b and a->AsReal() == b->AsReal() )
        Note( Rule::kNumberForm, key, change );
    else
        Note( Rule::kChangedValue, key, change );
}

void Count( HBaseAction& inAction, MFileContents& ioContents )
{
    ++ioContents.mActions;
    ++ioContents.mActionsByType[KeyOf( inAction.GetActionType() ).GetUTF8()];
}

void Count( const MMacroDomain& inDomain, MFileContents& ioContents )
{
    ioContents.mGroups = inDomain.GetMacroGroupCount();
    ioContents.mSmartGroups = inDomain.GetMacroSmartGroupCount();
    inDomain.DoForEveryMacro( [&ioContents]( MMacroGroup&, MMacro& macro ) {
        ++ioContents.mMacros;
        macro.GetTriggerList().DoForEveryValue( [&ioContents]( const TBaseTrigger& trigger ) {
            ++ioContents.mTriggers;
            ++ioContents.mTriggersByKind[std::string( kTriggerTypeNames[std::size_t( trigger.GetTriggerType() )] )];
        } );
        macro.GetActionList()->DoForEveryActionAndSubAction(
            [&ioContents]( HBaseAction& action ) { Count( action, ioContents ); } );
    } );
}

bool IsAction( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    return dictionary and dictionary->Contains( CFSTR( "MacroActionType" ) );
}

bool IsGroupEntry( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    return dictionary and
        ( dictionary->Contains( CFSTR( "Macros" ) ) or dictionary->Contains( CFSTR( "SearchStrings" ) ) );
}

// Exports hold what a macros file holds under its one key, so they are checked as one.
void CheckGroups(
    const __SafeCFPropertyList& inFile, const XPlistArray* inExport, TextView inListKey, MFileCheck& outCheck )
{
    __SafeCFPropertyList file = inFile;
    if ( inExport )
    {
        XMutableDictionary wrapper;
        wrapper.Set( CFSTR( "MacroGroups" ), __SafeCFPropertyList( inExport ) );
        file = wrapper.Seal();
    }
    MLoadRecorder recorder;
    MMacroDomain domain;
    {
        const MLoadObserver::Scope loads( recorder );
        const XPlistReadObserver::Scope reads( recorder );
        domain.LoadFromPropertyList( file );
    }
    Count( domain, outCheck.mContents );
    const __SafeCFPropertyList saved = domain.GetPropertyList();
    Checker checker( recorder, outCheck );
    if ( inExport )
        checker.WalkGroups( *inExport, ArrayOf( saved.AsDictionary(), CFSTR( "MacroGroups" ) ), inListKey );
    else
        checker.WalkMacrosFile( *file.AsDictionary(), *saved.AsDictionary() );
}

void CheckActions( const __SafeCFPropertyList& inFile, MFileCheck& outCheck )
{
    XMutableArray wrapper;
    if ( not inFile.AsArray() )
        wrapper.Append( inFile );
    const __SafeCFPropertyList array = inFile.AsArray() ? inFile : __SafeCFPropertyList( wrapper.Seal() );
    MLoadRecorder recorder;
    HActionList actions;
    {
        const MLoadObserver::Scope loads( recorder );
        const XPlistReadObserver::Scope reads( recorder );
        MMacroInsertion::Start();
        actions.LoadActionsFromPropertyList( array );
        MMacroInsertion::Finish();
    }
    actions.DoForEveryActionAndSubAction( [&outCheck]( HBaseAction& action ) { Count( action, outCheck.mContents ); } );
    Checker( recorder, outCheck ).WalkActions( *array.AsArray(), *actions.CopyActionsToPropertyList() );
}
} // namespace

const char* NameOf( MFileKind inKind )
{
    return kKindNames[std::size_t( inKind )];
}

bool MFileCheck::LosesSomething() const
{
    return std::ranges::any_of( mFindings, &MFinding::IsLoss );
}

std::optional<MFileKind> FileKindOf( const __SafeCFPropertyList& inValue )
{
    if ( const XPlistDictionary* const dictionary = inValue.AsDictionary() )
    {
        if ( ArrayOf( dictionary, CFSTR( "MacroGroups" ) ) )
            return MFileKind::kMacrosFile;
        if ( ArrayOf( dictionary, CFSTR( "Items" ) ) )
            return MFileKind::kLibrary;
        if ( IsAction( inValue ) )
            return MFileKind::kActionsExport;
        return {};
    }
    const XPlistArray* const array = inValue.AsArray();
    for ( std::size_t i = 0; array and i < array->GetCount(); ++i )
    {
        if ( IsGroupEntry( array->GetValueAt( i ) ) )
            return MFileKind::kMacrosExport;
        if ( IsAction( array->GetValueAt( i ) ) )
            return MFileKind::kActionsExport;
    }
    return {};
}

MFileCheck CheckFile( const __SafeCFPropertyList& inValue )
{
    MFileCheck check;
    const std::optional<MFileKind> kind = FileKindOf( inValue );
    XThrowIfNotText( kind, "it holds neither macros nor actions" );
    check.mKind = *kind;
    switch ( check.mKind )
    {
    case MFileKind::kMacrosFile:
        CheckGroups( inValue, nullptr, {}, check );
        break;
    case MFileKind::kMacrosExport:
        CheckGroups( inValue, inValue.AsArray(), u"MacroGroups", check );
        break;
    case MFileKind::kLibrary:
    {
        MLoadRecorder nothing;
        Checker( nothing, check )
            .NoteUnreadKeys( *inValue.AsDictionary(),
                { "UID", "Category1", "Category2", "Description", "Author", "AuthorURL", "Items",
                    "CanDragToMacroGroup" } );
        CheckGroups( inValue, ArrayOf( inValue.AsDictionary(), CFSTR( "Items" ) ), u"Items", check );
        break;
    }
    case MFileKind::kActionsExport:
        CheckActions( inValue, check );
        break;
    }
    return check;
}
