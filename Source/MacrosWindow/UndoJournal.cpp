// A save hands the new state to the macros file and to the journal at once, on two queues, and the process may die between.
// So a journal that is one step ahead of the macros file is taken that step back. One that is behind, by a save of which
// it wasn't told or because somebody else replaced the macros file, ends with a step back to the state that it knows.
#include "MacrosWindow/UndoJournal.h"

#include "Defines/KVPreferences.h"
#include "Macros/SavedStates.h"
#include "Utility/Work/AsyncCoallescedWriter.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>
#include <cerrno>
#include <set>

namespace
{
using UndoJournal::Stacks;

constexpr std::size_t kMostBytes = std::size_t( 64 ) << 20;
constexpr std::int64_t kVersion = 1;

struct Journal
{
    UndoEntry mPresent; ///< its digest and size
    Stacks mStacks;
};

CFContainer<XPlistDictionary> EntryToPropertyList( const UndoEntry& inEntry )
{
    XMutableDictionary entry;
    entry.SetText( CFSTR( "Digest" ), XText( XPlistString::MakeASCII( inEntry.Digest() ) ) );
    entry.SetInteger( CFSTR( "Size" ), std::int64_t( inEntry.undoDataSize() ) );
    if ( inEntry.mTitle )
        entry.SetText( CFSTR( "Title" ), *inEntry.mTitle );
    if ( inEntry.mSelection )
        entry.Set( CFSTR( "Selection" ), __SafeCFPropertyList( inEntry.mSelection ) );
    return entry.Seal();
}

__SafeCFPropertyList StackToPropertyList( const std::deque<UndoEntry>& inStack )
{
    XMutableArray stack;
    stack.Reserve( inStack.size() );
    for ( const UndoEntry& entry : inStack )
        stack.Append( EntryToPropertyList( entry ) );
    return stack.Seal();
}

bool Write( const UndoEntry& inPresent, const Stacks& inStacks )
{
    XMutableDictionary journal;
    journal.SetInteger( CFSTR( "Version" ), kVersion );
    journal.Set( CFSTR( "Present" ), EntryToPropertyList( inPresent ) );
    journal.Set( CFSTR( "Undo" ), StackToPropertyList( inStacks.mUndo ) );
    journal.Set( CFSTR( "Redo" ), StackToPropertyList( inStacks.mRedo ) );
    const auto error = XAtomicFile::Write(
        UndoJournal::Path(), WriteBinaryPropertyList( journal.Seal() ).Span(), XAtomicFile::Links::kReplace );
    if ( error )
        XErrorHandler::PrivateMaybeLogFormat( "always", "Can't keep the steps of undo: %@", error->Describe() );
    return not error;
}

std::optional<UndoEntry> EntryFromPropertyList( const __SafeCFPropertyList& inValue )
{
    const XPlistDictionary* const dictionary = inValue.AsDictionary();
    UndoEntry entry;
    XText digest, title;
    std::int64_t size = 0;
    if ( not dictionary or not dictionary->Get( CFSTR( "Digest" ), digest ) or
        not dictionary->Get( CFSTR( "Size" ), size ) or size < 0 )
        return {};
    entry.mDigest = digest.GetUTF8();
    entry.mDataSize = std::size_t( size );
    if ( dictionary->Get( CFSTR( "Title" ), title ) )
        entry.mTitle = title.GetText();
    (void)dictionary->Get( CFSTR( "Selection" ), entry.mSelection );
    return entry;
}

bool StackFromPropertyList( const XPlistDictionary& inJournal, const XKey& inKey, std::deque<UndoEntry>& outStack )
{
    CFContainer<XPlistArray> stack;
    if ( not inJournal.Get( inKey, stack ) )
        return false;
    for ( std::size_t i = 0; i < stack->GetCount(); ++i )
    {
        auto entry = EntryFromPropertyList( stack->GetValueAt( i ) );
        if ( not entry )
            return false;
        outStack.push_back( std::move( *entry ) );
    }
    return true;
}

/// Absent when there is none; one that can't be understood is logged.
std::optional<Journal> ReadJournal()
{
    const XFileContent content = ReadWholeFile( UndoJournal::Path(), kMostBytes );
    if ( content.mError and content.mError->mCode == ENOENT )
        return {};
    const auto properties = content.mError ? XPlistReadResult() : ReadPropertyList( content.mBytes.Span() );
    const XPlistDictionary* const dictionary = properties.mValue.AsDictionary();
    Journal journal;
    std::int64_t version = 0;
    __SafeCFPropertyList presentValue;
    if ( dictionary and dictionary->Get( CFSTR( "Version" ), version ) and version == kVersion and
        dictionary->Get( CFSTR( "Present" ), presentValue ) and
        StackFromPropertyList( *dictionary, CFSTR( "Undo" ), journal.mStacks.mUndo ) and
        StackFromPropertyList( *dictionary, CFSTR( "Redo" ), journal.mStacks.mRedo ) )
    {
        if ( auto present = EntryFromPropertyList( presentValue ) )
        {
            journal.mPresent = std::move( *present );
            return journal;
        }
    }
    XErrorHandler::PrivateMaybeLogFormat( "always", "Can't read the steps of undo in %@: %@", UndoJournal::Path(),
        content.mError ? content.mError->Describe() : std::string( "it isn't understood" ) );
    return {};
}

/// Takes the last step from one stack to the other, if it leads to this state.
bool Follow(
    const std::string& inDigest, Journal& ioJournal, std::deque<UndoEntry>& ioFrom, std::deque<UndoEntry>& ioTo )
{
    if ( ioFrom.empty() or ioFrom.back().mDigest != inDigest )
        return false;
    UndoEntry step = ioFrom.back();
    ioFrom.pop_back();
    std::swap( step.mDigest, ioJournal.mPresent.mDigest );
    std::swap( step.mDataSize, ioJournal.mPresent.mDataSize );
    ioTo.push_back( std::move( step ) );
    return true;
}

/// The state that the journal knows, or one that stands for it; null when its bytes are gone.
MMacroFileDataPtr LoadPresent( const std::string& inDigest, const Journal& inJournal )
{
    SavedStates::WaitForQueue(); // a load that makes changes has what it loaded kept
    const std::vector<SavedStates::State> states = SavedStates::List();
    const auto isPresent = [&]( const SavedStates::State& state ) {
        return state.mDigest == inJournal.mPresent.mDigest;
    };
    if ( std::any_of( states.begin(), states.end(), isPresent ) )
        return SavedStates::Load( inJournal.mPresent.mDigest );
    // The last save of a run isn't kept when it wrote what the one before had: that one, the newest, stands for it.
    const auto newest = std::find_if( states.begin(), states.end(),
        [&inDigest]( const SavedStates::State& state ) { return state.mDigest != inDigest; } );
    return newest == states.end() ? nullptr : SavedStates::Load( newest->mDigest );
}

__SafeCFPropertyList GroupsIn( const MMacroFileData& inData )
{
    __SafeCFPropertyList groups;
    const auto properties = ReadPropertyList( inData.Span() );
    if ( const XPlistDictionary* const dictionary = properties.mValue.AsDictionary() )
        (void)dictionary->Get( CFSTR( "MacroGroups" ), groups );
    return groups;
}

/// The state that the journal knows becomes a step without a title, for nobody knows what was done since.
void StepFromPresent( const MMacroFileData& inPresent, Journal& ioJournal )
{
    const MMacroFileDataPtr before = LoadPresent( inPresent.Digest(), ioJournal );
    if ( before and GroupsIn( *before ) == GroupsIn( inPresent ) )
        return; // saved once more, without an edit
    XErrorHandler::PrivateMaybeLogFormat(
        "always", "The macros were changed since the last step of undo; going back to it is a step too" );
    ioJournal.mStacks.mRedo.clear();
    auto& undo = ioJournal.mStacks.mUndo;
    if ( before and ( undo.empty() or undo.back().mDigest != before->Digest() ) )
        undo.push_back( { u"", nullptr, nullptr, before->Digest(), before->size() } );
}

void LeaveOutMissing( const std::set<std::string>& inKept, std::deque<UndoEntry>& ioStack )
{
    std::erase_if( ioStack, [&]( const UndoEntry& entry ) {
        if ( inKept.contains( entry.mDigest ) )
            return false;
        XErrorHandler::PrivateMaybeLogFormat(
            "always", "A step of undo is gone: “%@”, %@", entry.mTitle.value_or( Text() ), entry.mDigest );
        return true;
    } );
}
} // namespace

std::filesystem::path UndoJournal::Path()
{
    return KVPreferences::FilePath( u"Korvalen Undo.plist" );
}

void UndoJournal::WriteSoon( const MMacroFileDataPtr& inPresent, Stacks inStacks )
{
    AsyncCoallescedWriter* const writer = AsyncCoallescedWriter::asyncCoallescedWriter( u"UndoJournal" );
    if ( not writer or not inPresent )
        return;
    UndoEntry present;
    present.mData = inPresent;
    writer->asyncCoallescedWrite(
        [present = std::move( present ), stacks = std::move( inStacks )] { return Write( present, stacks ); } );
}

std::optional<UndoJournal::Stacks> UndoJournal::Read( const MMacroFileData& inPresent )
{
    auto journal = ReadJournal();
    if ( not journal )
        return {};
    auto& [undo, redo] = journal->mStacks;
    const std::string& digest = inPresent.Digest();
    if ( journal->mPresent.mDigest != digest and not Follow( digest, *journal, undo, redo ) and
        not Follow( digest, *journal, redo, undo ) )
        StepFromPresent( inPresent, *journal );
    std::set<std::string> kept;
    for ( const SavedStates::State& state : SavedStates::List() )
        kept.insert( state.mDigest );
    LeaveOutMissing( kept, undo );
    LeaveOutMissing( kept, redo );
    return std::move( journal->mStacks );
}
