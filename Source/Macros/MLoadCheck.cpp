// A check loads the file with a recorder watching, saves the result, and walks the source beside the saved value.
// Elements of a list pair off in order once those that were dropped are set aside; groups, which a save sorts, are
// found by their UID. Every difference becomes a finding: with a reason when the recorder heard of one, and as a
// plain change otherwise.
#include "Macros/MLoadCheck.h"

#include "Actions/HActionList.h"
#include "Actions/HActionType.h"
#include "Actions/HBaseAction.h"
#include "CFMethods/PropertyListText.h"
#include "Macros/MLoadRecorder.h"
#include "Macros/MMacro.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroInsertion.h"
#include "Utility/Text/Format.h"
#include "XCAF/XException.h"

#include <algorithm>

namespace
{
constexpr const char* kKindNames[] = { "macros file", "kvmacros file", "kvactions file", "kvlibrary file" };
static_assert( std::size( kKindNames ) == std::size_t( MFileKind::kLibrary ) + 1 );

constexpr const char* kRuleNames[] = { "dropped", "unread-key", "setting-lost", "repaired", "wrong-type", "upgraded",
    "defaulted", "left-out", "uid-replaced", "changed" };
static_assert( std::size( kRuleNames ) == std::size_t( MFinding::Rule::kChanged ) + 1 );

using Rule = MFinding::Rule;

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

// What a failed read says in the words of the code, in words for people.
Text ReasonForPeople( const __SafeCFPropertyList& inElement, TextView inListKey, TextView inReason )
{
    const XPlistDictionary* const dictionary = inElement.AsDictionary();
    if ( not dictionary )
        return inReason.ends_with( u"->IsCorrectTypeID()" )
            ? kvr_format( u"it is no dictionary, but of type %s", NameOf( inElement.GetType() ) )
            : Text( inReason );
    const auto unknown = [dictionary]( const XKey& key, TextView format ) {
        const Text name = TextOf( dictionary, key );
        return name.empty() ? kvr_format( u"its key “%@” is missing or no text", key.Name() )
                            : kvr_format( format, name );
    };
    if ( inReason == u"good" and inListKey == u"ConditionList" )
        return unknown( CFSTR( "ConditionType" ), u"no condition type is called “%@”" );
    if ( inReason == u"good" and inListKey == u"CollectionList" )
        return unknown( CFSTR( "CollectionType" ), u"no collection type is called “%@”" );
    if ( inReason == u"good" or inReason == u"action" )
        return unknown( CFSTR( "MacroActionType" ), u"no action type is called “%@”" );
    if ( inReason == u"false" )
        return unknown( CFSTR( "MacroTriggerType" ), u"no kind of trigger is called “%@”" );
    if ( inReason == u"dictionary->Get( CFSTR(\"SearchStrings\"), strings )" )
        return u"it has neither a list “Macros”, as a group has, nor “SearchStrings”, as a smart group has";
    if ( inReason == u"actions" )
        return u"its key “Actions” is missing or no array";
    constexpr TextView kRead = u"dictionary->Get( CFSTR(\"";
    if ( inReason.starts_with( kRead ) )
    {
        const TextView rest = inReason.substr( kRead.size() );
        return kvr_format( u"its key “%@” is missing or of the wrong type", rest.substr( 0, rest.find( u'"' ) ) );
    }
    if ( inReason == u"actions && actions->IsCorrectTypeID()" )
        return u"a list of actions in it is no array";
    return Text( inReason );
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

class Checker
{
public:
    Checker( MLoadRecorder& inRecorder, MFileCheck& outCheck ) : mRecorder( inRecorder ), mCheck( outCheck ) {}

    void WalkMacrosFile( const XPlistDictionary& inSource, const XPlistDictionary& inSaved );
    void WalkGroups( const XPlistArray& inSource, const XPlistArray* inSaved, TextView inListKey );
    void WalkActions( const XPlistArray& inSource, const XPlistArray& inSaved );
    void NoteUnreadKeys( const XPlistDictionary& inSource, std::initializer_list<std::string_view> inKnown );

private:
    struct Step
    {
        Step( Checker& ioChecker, const Text& inName ) : mChecker( ioChecker ), mLength( ioChecker.mPath.size() )
        {
            if ( not mChecker.mPath.empty() )
                mChecker.mPath += u" › ";
            mChecker.mPath += inName;
        }
        ~Step() { mChecker.mPath.resize( mLength ); }

        Checker& mChecker;
        std::size_t mLength;
    };

    void Note( Rule inRule, bool inIsLoss, TextView inKey, Text inText )
    {
        mCheck.mFindings.push_back( { inRule, inIsLoss, mPath, Text( inKey ), std::move( inText ) } );
    }
    void WalkValue(
        const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inOld, const XPlistNode* inNew );
    void WalkDictionary( const XPlistDictionary& inSource, const XPlistDictionary& inSaved );
    void WalkArray( const XPlistArray& inSource, const XPlistArray& inSaved, TextView inListKey );
    void WalkElement( const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew, const Text& inName );
    void NoteDropped( const XPlistArray& inSource, TextView inListKey );
    void NoteMissing( const XPlistDictionary& inSource, const XPlistDictionary& inSaved, const XPlistString& inKey,
        const XPlistNode* inOld );
    void NoteChanged(
        const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inOld, const XPlistNode* inNew );
    void NoteAdded( const XPlistDictionary& inSource, const XPlistString& inKey, const XPlistNode* inNew );
    void NoteUID( const MLoadRecorder::UIDs& inUIDs );
    [[nodiscard]] static Text NameOfObject( const XPlistDictionary* inDictionary, const Text& inOtherwise );

    MLoadRecorder& mRecorder;
    MFileCheck& mCheck;
    Text mPath;
};

Text Checker::NameOfObject( const XPlistDictionary* inDictionary, const Text& inOtherwise )
{
    const Text name = TextOf( inDictionary, CFSTR( "Name" ) );
    return name.empty() ? inOtherwise : name;
}

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
            Note( Rule::kDefaulted, false, TextFromASCII( key ), u"would be written as 0" );
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
        const XPlistDictionary* const source = __SafeCFPropertyList( inSource.NodeAt( i ) ).AsDictionary();
        if ( not source or dropped.contains( i ) )
            continue;
        const Step step( *this, NameOfObject( source, ElementName( inListKey, i ) ) );
        const MLoadRecorder::UIDs uids = mRecorder.TakeUIDs( *source );
        NoteUID( uids );
        const auto saved = savedByUID.find( uids.mObject.GetText() );
        if ( saved != savedByUID.end() )
            WalkDictionary( *source, *saved->second );
        else
            Note( Rule::kDropped, true, {}, u"it isn't in what would be saved" );
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
            Note( Rule::kUnreadKey, true, entry.mKey->GetText(),
                u"nothing reads it: " + Brief( __SafeCFPropertyList( entry.mValue ) ) );
    }
}

void Checker::NoteUID( const MLoadRecorder::UIDs& inUIDs )
{
    if ( inUIDs.mFile.Equals( inUIDs.mObject ) )
        return;
    if ( IsEmpty( inUIDs.mFile ) )
        Note( Rule::kUIDReplaced, false, u"UID", u"it has no UID, and would get a fresh one" );
    else
        Note( Rule::kUIDReplaced, true, u"UID",
            kvr_format( u"another object holds %@; it would get a fresh one", inUIDs.mFile ) );
}

void Checker::NoteDropped( const XPlistArray& inSource, TextView inListKey )
{
    for ( const auto& [index, reason] : mRecorder.DroppedFrom( inSource ) )
    {
        const __SafeCFPropertyList element( inSource.NodeAt( index ) );
        const bool isNamed = inListKey == u"MacroGroups" or inListKey == u"Items" or inListKey == u"Macros";
        const Text name = ElementName( inListKey, index );
        const Step step( *this, isNamed ? NameOfObject( element.AsDictionary(), name ) : name );
        Note( Rule::kDropped, true, {}, ReasonForPeople( element, inListKey, reason ) );
    }
}

void Checker::WalkArray( const XPlistArray& inSource, const XPlistArray& inSaved, TextView inListKey )
{
    const auto& dropped = mRecorder.DroppedFrom( inSource );
    NoteDropped( inSource, inListKey );
    if ( inSource.GetCount() - dropped.size() != inSaved.GetCount() )
    {
        Note( Rule::kChanged, inSaved.GetCount() < inSource.GetCount(), inListKey,
            kvr_format( u"its %lu elements would be %lu", inSource.GetCount(), inSaved.GetCount() ) );
        return;
    }
    std::size_t next = 0;
    for ( std::size_t i = 0; i < inSource.GetCount(); ++i )
    {
        if ( dropped.contains( i ) )
            continue;
        const __SafeCFPropertyList old( inSource.NodeAt( i ) );
        const Text name = ElementName( inListKey, i );
        WalkElement( old, __SafeCFPropertyList( inSaved.NodeAt( next++ ) ),
            inListKey == u"Macros" ? NameOfObject( old.AsDictionary(), name ) : name );
    }
}

void Checker::WalkElement( const __SafeCFPropertyList& inOld, const __SafeCFPropertyList& inNew, const Text& inName )
{
    const Step step( *this, inName );
    const XPlistDictionary *const source = inOld.AsDictionary(), *const saved = inNew.AsDictionary();
    if ( source and saved )
    {
        // Only macros and groups have a UID that the recorder heard of.
        const MLoadRecorder::UIDs uids = mRecorder.TakeUIDs( *source );
        if ( not uids.mObject.IsNull() )
            NoteUID( uids );
        WalkDictionary( *source, *saved );
    }
    else if ( inOld.AsArray() and inNew.AsArray() )
        WalkArray( *inOld.AsArray(), *inNew.AsArray(), u"element" );
    else if ( not( inOld == inNew ) )
        Note( Rule::kChanged, true, {}, kvr_format( u"%@ would become %@", Brief( inOld ), Brief( inNew ) ) );
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
    if ( const Text* const repair = mRecorder.RepairOf( { inSource, inKey } ) )
        Note( Rule::kRepaired, true, inKey.GetText(), value + u": " + *repair );
    else
        Note( Rule::kDefaulted, false, inKey.GetText(), value );
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
    // What was set right or upgraded as a whole is told as a whole.
    const MLoadRecorder::KeyID id( inSource, inKey );
    if ( ( mRecorder.RepairOf( id ) or mRecorder.UpgradeOf( id ) ) and not( old == saved ) )
        NoteChanged( inSource, inKey, inOld, inNew );
    // A list may hold the same elements and yet have lost some: what was dropped is asked for each list.
    else if ( old.AsArray() and saved.AsArray() )
        WalkArray( *old.AsArray(), *saved.AsArray(), inKey.GetText() );
    else if ( old.AsDictionary() and saved.AsDictionary() )
    {
        const Step step( *this, inKey.GetText() );
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
    if ( const Text* const upgrade = mRecorder.UpgradeOf( id ) )
        Note( Rule::kUpgraded, false, key, *upgrade );
    else if ( const Text* const repair = mRecorder.RepairOf( id ) )
        Note( Rule::kRepaired, true, key, value + u": " + *repair );
    else if ( not mRecorder.WasRead( id ) )
        Note( Rule::kUnreadKey, true, key, u"nothing reads it: " + value );
    else if ( mRecorder.WasOnlyMisread( id ) )
        Note( Rule::kWrongType, true, key, value + u" has the wrong type; its default stands" );
    else if ( IsLostSetting( key, __SafeCFPropertyList( inOld ), inSaved ) )
        Note( Rule::kSettingLost, true, key, value + u" has no effect on this type, and isn't kept" );
    else
        Note( Rule::kLeftOut, false, key, value + u" holds without being written" );
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
    if ( const Text* const upgrade = mRecorder.UpgradeOf( id ) )
        Note( Rule::kUpgraded, false, key, change + u": " + *upgrade );
    else if ( const Text* const repair = mRecorder.RepairOf( id ) )
        Note( Rule::kRepaired, true, key, change + u": " + *repair );
    else if ( mRecorder.WasOnlyMisread( id ) )
        Note( Rule::kWrongType, true, key, change + u": it has the wrong type" );
    else
        Note( Rule::kChanged, not( a and b and a->AsReal() == b->AsReal() ), key, change );
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

const char* NameOf( MFinding::Rule inRule )
{
    return kRuleNames[std::size_t( inRule )];
}

bool MFileCheck::LosesSomething() const
{
    return std::ranges::any_of( mFindings, &MFinding::mIsLoss );
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
