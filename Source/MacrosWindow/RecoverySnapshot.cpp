#include "MacrosWindow/RecoverySnapshot.h"

#include "Defines/KVNotices.h"
#include "Defines/SetAside.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileEncoder.h"
#include "Macros/MMacroPreferenceFile.h"
#include "MacrosWindow/MacrosWindowUndo.h"
#include "Utility/Text/Localization.h"
#include "Utility/Work/PerformCoalesced.h"
#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <atomic>
#include <vector>

namespace
{
constexpr std::size_t kMostFileBytes = std::size_t( 2 ) << 30;
constexpr char16_t kNotice[] = u"RecoverySnapshot";

struct State
{
    bool mIsWaiting = false; ///< for the time of the next copy
    std::shared_ptr<int> mTarget = std::make_shared<int>();
};
State gState;

PerformCoalesced::Target Target()
{
    return PerformCoalesced::Target( gState.mTarget, u"RecoverySnapshot" );
}

/// Writes and removes the copies of this process, in the order of the edits and saves.
class RecoveryQueue
{
public:
    explicit RecoveryQueue( XWork& inWork )
        : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.RecoverySnapshot" ) )
    {}

    void KeepSoon( const MMacroFileDataPtr& inModel )
    {
        ++mPending;
        mQueue->Async( [this, inModel] {
            Keep( *inModel );
            mIsThere = mOurs.has_value();
            --mPending;
        } );
    }
    /// Costs nothing when there is no copy, as after most edits.
    void RemoveSoon( const MMacroFileDataPtr& inSaved )
    {
        if ( mPending > 0 or mIsThere )
            mQueue->Async( [this, inSaved] {
                RemoveIfSaved( *inSaved );
                mIsThere = mOurs.has_value();
            } );
    }

    void Wait()
    {
        mQueue->Sync( [] {} );
    }

private:
    void Keep( const MMacroFileData& inModel )
    {
        const auto before = SetAside::List( SetAside::Kind::kRecovery );
        if ( SetAside::Keep( SetAside::Kind::kRecovery, inModel.Span(), u"edits that wait for their save" ) )
            return;
        for ( const SetAside::Entry& entry : SetAside::List( SetAside::Kind::kRecovery ) )
        {
            const bool isNew = std::none_of( before.begin(), before.end(),
                [&]( const SetAside::Entry& other ) { return other.mPath == entry.mPath; } );
            if ( isNew )
                Replace( entry );
        }
    }

    // The macros file is compared, for the write may have failed, and then the copy is all that there is.
    void RemoveIfSaved( const MMacroFileData& inSaved )
    {
        MMacroPreferenceFile::WaitForQueue();
        const XFileContent file = ReadWholeFile( MMacroPreferenceFile::MacrosFilePath(), kMostFileBytes );
        const auto onDisk = file.mBytes.Span(), saved = inSaved.Span();
        if ( not file.mError and std::equal( onDisk.begin(), onDisk.end(), saved.begin(), saved.end() ) )
            Replace( {} );
    }

    /// Only what this process has put there goes: a copy of an earlier one may still be wanted.
    void Replace( std::optional<SetAside::Entry> inEntry )
    {
        if ( mOurs and ( not inEntry or inEntry->mPath != mOurs->mPath ) )
            SetAside::Remove( *mOurs );
        mOurs = std::move( inEntry );
    }

    std::shared_ptr<XQueue> mQueue;
    std::optional<SetAside::Entry> mOurs; ///< on the queue only
    std::atomic<int> mPending = 0;
    std::atomic<bool> mIsThere = false;
};

/// The queue goes with its environment; a block of it never outlives it.
RecoveryQueue& TheQueue()
{
    return XWork::Current().Shared<RecoveryQueue>();
}

void TakeSnapshot()
{
    gState.mIsWaiting = false;
    if ( not MacrosWindowUndo::NeedSaveAllMacros() )
        return;
    TheQueue().KeepSoon( RecoverySnapshot::EncodeModel() );
}

/// The groups of a macros file: what a save changes without an edit is left out.
__SafeCFPropertyList GroupsIn( const XFileContent& inFile )
{
    __SafeCFPropertyList groups;
    if ( inFile.mError )
        return groups;
    const auto properties = ReadPropertyList( inFile.mBytes.Span() );
    if ( const XPlistDictionary* const dictionary = properties.mValue.AsDictionary() )
        (void)dictionary->Get( CFSTR( "MacroGroups" ), groups );
    return groups;
}

/// A copy that was found stays until somebody takes it out, which a recovery snapshot doesn't: it becomes one of
/// edits that weren't saved. Where it lies now.
std::filesystem::path KeepForGood( const SetAside::Entry& inEntry, const XFileContent& inFile )
{
    if ( inFile.mError or
        SetAside::Keep( SetAside::Kind::kUnsaved, inFile.mBytes.Span(), u"edits that weren't saved before the end" ) )
        return inEntry.mPath;
    const auto kept = SetAside::List( SetAside::Kind::kUnsaved );
    const auto same = std::find_if(
        kept.begin(), kept.end(), [&]( const SetAside::Entry& other ) { return other.mDigest == inEntry.mDigest; } );
    if ( same == kept.end() )
        return inEntry.mPath;
    SetAside::Remove( inEntry );
    return same->mPath;
}
} // namespace

MMacroFileDataPtr RecoverySnapshot::EncodeModel()
{
    return MMacroFileEncoder::EncodeSnapshot( *MMacroDomain::Get() );
}

void RecoverySnapshot::NoteEdit()
{
    if ( gState.mIsWaiting )
        return; // the time stands: further edits don't push it back
    gState.mIsWaiting = true;
    const auto saved = MMacroPreferenceFile::SavedData();
    PerformCoalesced::Perform( Target(), u"RecoverySnapshot",
        saved and saved->size() > kLargeBytes ? kLargeDelay : kDelay,
        []( const std::shared_ptr<void>& ) { TakeSnapshot(); } );
}

void RecoverySnapshot::NoteSave()
{
    if ( gState.mIsWaiting )
        PerformCoalesced::Cancel( Target(), u"RecoverySnapshot" );
    gState.mIsWaiting = false;
    if ( const auto saved = MMacroPreferenceFile::SavedData() )
        TheQueue().RemoveSoon( saved );
}

void RecoverySnapshot::WaitForQueue()
{
    TheQueue().Wait();
}

void RecoverySnapshot::FoundAtStart()
{
    const auto entries = SetAside::List( SetAside::Kind::kRecovery );
    if ( entries.empty() )
        return;
    const auto saved = GroupsIn( ReadWholeFile( MMacroPreferenceFile::MacrosFilePath(), kMostFileBytes ) );
    for ( const SetAside::Entry& entry : entries )
    {
        const XFileContent file = ReadWholeFile( entry.mPath, kMostFileBytes );
        const auto groups = GroupsIn( file );
        if ( groups and groups == saved )
        {
            SetAside::Remove( entry ); // the process ended after the save and before the removal
            continue;
        }
        const auto path = KeepForGood( entry, file );
        KVNotices::Post( { kNotice, kvr_localized( u"kvNoticeRecoveryTitle" ),
            kvr_localizedFormat( u"kvNoticeRecoveryText", path.filename() ), path } );
    }
}

void RecoverySnapshot::Reset()
{
    gState = State();
}
