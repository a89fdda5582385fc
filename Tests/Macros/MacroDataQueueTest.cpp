// The queue that writes the macros file, under a scheduler that tries orders of events from a seed: saves, reloads,
// files that come in, an engine that is held back and let know, and the end.
#include "Macros/MMacroFileSaving.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/MMacroSharing.h"
#include "Tests/Macros/MacrosFileWorld.h"

#include <random>

namespace
{
using namespace MMacroPreferenceFile;
using namespace MMacroFileSaving;

constexpr unsigned kSeeds = 1000;
constexpr int kOperations = 8;

/// Remembers what the macros file was replaced by.
class RecordingDisk final : public FaultyDisk
{
public:
    std::filesystem::path mWatched;
    std::vector<std::string> mWrites;

    int Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo ) override
    {
        if ( inTo == mWatched )
            mWrites.emplace_back( ReadWholeFile( inFrom, 1 << 20, XFileCalls::System() ).mBytes.View() );
        return FaultyDisk::Rename( inFrom, inTo );
    }
};

class MacroDataQueueTest : public MacrosFileWorld
{
protected:
    MacroDataQueueTest()
    {
        mRecorder.mWatched = MacrosFilePath();
        MMacroSharedIncomingFileLock::InitializeSharingLockSemaphoreName();
    }

    void Begin( unsigned inSeed )
    {
        mWorld.mWork.RunAll();
        mDomain.reset();
        MMacroPreferenceFile::Reset();
        mDomain = std::make_unique<MMacroDomain>();
        // Each seed begins with an empty folder, or they would take longer and longer.
        for ( const SetAside::Entry& entry : SetAside::List() )
            SetAside::Remove( entry );
        mSeed = inSeed;
        mRandom32.seed( inSeed );
        mWorld.mWork.SetChooser( [this]( std::size_t inCount ) { return mRandom32() % inCount; } );
        mRecorder.mWrites.clear();
        mNotifier.mPosts.clear();
        mCalls.clear();
        mLast = nullptr;
        mWritesBeforeEngine.reset();
    }
    void End()
    {
        FinalSaveAllMacros();
        NoteCall();
        RunAll();
        mWorld.mWork.SetChooser( {} );
    }
    std::string NextFile()
    {
        return BytesOf(
            CurrentFile( TextFromUTF8( "State " + std::to_string( mSeed ) + "-" + std::to_string( ++mNumber ) ) ) );
    }
    void RunSome()
    {
        for ( auto blocks = mRandom32() % 4; blocks > 0 and mWorld.mWork.RunOne(); --blocks )
            NoteCall();
    }
    void RunAll()
    {
        while ( mWorld.mWork.RunOne() )
            NoteCall();
    }
    /// One block or operation makes at most one call, so none is missed.
    void NoteCall()
    {
        if ( const auto saved = LastSaved(); saved != mLast )
        {
            mLast = saved;
            mCalls.emplace_back( saved->Span().begin(), saved->Span().end() );
        }
    }
    void LetEngine()
    {
        if ( not mWritesBeforeEngine )
            mWritesBeforeEngine = mRecorder.mWrites.size();
        InitialEngineFinishedRelaunching();
    }
    void Operate()
    {
        switch ( mRandom32() % 8 )
        {
        case 0:
        case 1:
            AddGroup( TextFromUTF8( "Edit " + std::to_string( ++mNumber ) ) );
            return SaveAllMacros();
        case 2:
            return SaveMacroData( nullptr, DataOf( NextFile() ), Change::kLocal, Afterwards::kReload );
        case 3:
            return UndoRedoMacroData( DataOf( NextFile() ) );
        case 4:
            mFolder.Write( "Korvalen Macros From Shared.plist", NextFile() );
            return ProcessSharingIncomingChange();
        case 5:
            if ( LastSaved() )
                ReloadAllMacros();
            return;
        case 6:
            return WaitForQueue();
        default:
            return LetEngine();
        }
    }

    RecordingDisk mRecorder;
    XFileCalls::Substitute mRecorderInUse{ mRecorder };
    std::mt19937 mRandom32;
    unsigned mSeed = 0;
    int mNumber = 0;
    std::vector<std::string> mCalls;
    MMacroFileDataPtr mLast;
    std::optional<std::size_t> mWritesBeforeEngine;
};
} // namespace

TEST_F( MacroDataQueueTest, WritesComeInTheOrderOfTheCallsAndTheEngineHearsOfEachOnce )
{
    std::size_t heldBack = 0, received = 0;
    for ( unsigned seed = 0; seed < kSeeds and not HasFailure(); ++seed )
    {
        SCOPED_TRACE( seed );
        Begin( seed );
        for ( int i = 0; i < kOperations; ++i )
        {
            Operate();
            NoteCall();
            RunSome();
        }
        End();
        EXPECT_EQ( mRecorder.mWrites, mCalls );
        EXPECT_EQ( MacrosFile(), mCalls.back() );

        const std::size_t before = mWritesBeforeEngine.value_or( mRecorder.mWrites.size() );
        if ( not mWritesBeforeEngine )
        {
            EXPECT_EQ( PostsOf( u"KV_LoadMacroFiles" ), 0u );
        }
        LetEngine();
        LetEngine();
        RunAll();
        EXPECT_EQ( PostsOf( u"KV_LoadMacroFiles" ), ( before > 0 ) + ( mRecorder.mWrites.size() - before ) );
        heldBack += before > 0;
        received += std::size_t( mReloads > 0 );
        // What was shown last is what the file holds, so that a reload changes nothing.
        ReloadAllMacros();
        EXPECT_EQ( MacrosFile(), mCalls.back() );
    }
    EXPECT_GT( heldBack, kSeeds / 2 ) << "the seeds try what they are for";
    EXPECT_GT( received, kSeeds / 2 );
}
