#include "Tests/Support/SimulatedDisk.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <stdexcept>

namespace
{
constexpr std::uint64_t kRoot = 1;
constexpr std::size_t kMostStates = 1'000'000;

int Fail( int inError )
{
    errno = inError;
    return -1;
}
} // namespace

SimulatedDisk::SimulatedDisk()
{
    mNodes[kRoot].mIsFolder = true;
    mNodes[kRoot].mMode = 0700;
}

void SimulatedDisk::SetFault( const Fault& inFault )
{
    mFault = inFault;
    mHasFailed = false;
}

void SimulatedDisk::SetKill( std::size_t inCall, bool inAfter )
{
    mKillCall = inCall;
    mKillAfter = inAfter;
    mWasKilled = false;
}

void SimulatedDisk::ResetCount()
{
    mCalls = 0;
    mLog.clear();
}

void SimulatedDisk::Restart()
{
    const std::scoped_lock lock( mMutex );
    mOpen.clear();
    mLocks.clear();
    mFault = {};
    mKillCall = 0;
    mWasKilled = false;
    mHasFailed = false;
    ResetCount();
}

void SimulatedDisk::SyncAll()
{
    const std::scoped_lock lock( mMutex );
    mPending.clear();
    for ( auto& [number, node] : mNodes )
    {
        node.mDurableBytes = node.mBytes;
        node.mDurableEntries = node.mEntries;
    }
}

std::shared_ptr<SimulatedDisk> SimulatedDisk::Copy() const
{
    const std::scoped_lock lock( mMutex );
    auto copy = std::make_shared<SimulatedDisk>();
    copy->mNodes = mNodes;
    copy->mLastNumber = mLastNumber;
    copy->mPending = mPending;
    copy->mTime = mTime;
    copy->mNanoseconds = mNanoseconds;
    return copy;
}

std::vector<std::shared_ptr<SimulatedDisk>> SimulatedDisk::PowerLossStates() const
{
    const std::scoped_lock lock( mMutex );
    std::vector<Number> unsynced;
    for ( const auto& [number, node] : mNodes )
    {
        if ( not node.mIsFolder and node.mBytes != node.mDurableBytes )
            unsynced.push_back( number );
    }
    constexpr std::size_t kWays = 4;
    std::size_t combinations = 1;
    for ( std::size_t i = 0; i < mPending.size() and combinations <= kMostStates; ++i )
        combinations *= 2;
    for ( std::size_t i = 0; i < unsynced.size() and combinations <= kMostStates; ++i )
        combinations *= kWays;
    if ( combinations > kMostStates )
        throw std::length_error( "too much is on its way to enumerate it" );

    std::vector<std::shared_ptr<SimulatedDisk>> states;
    std::set<std::string> seen;
    for ( std::size_t combination = 0; combination < combinations; ++combination )
    {
        auto state = std::make_shared<SimulatedDisk>();
        state->mNodes = mNodes;
        state->mLastNumber = mLastNumber;
        state->mTime = mTime;
        std::size_t choice = combination;
        for ( auto& [number, node] : state->mNodes )
            node.mEntries = node.mDurableEntries;
        for ( const Pending& pending : mPending )
        {
            if ( choice % 2 )
                Apply( pending, state->mNodes, false );
            choice /= 2;
        }
        for ( const Number number : unsynced )
        {
            Node& node = state->mNodes.at( number );
            const std::size_t half = ( node.mDurableBytes.size() + node.mBytes.size() ) / 2;
            switch ( choice % kWays )
            {
            case 0:
                node.mBytes = node.mDurableBytes;
                break;
            case 1:
                node.mBytes.resize( std::min( half, node.mBytes.size() ) );
                break;
            case 2:
                std::fill( node.mBytes.begin(), node.mBytes.end(), '\0' );
                break;
            default:
                break;
            }
            choice /= kWays;
        }
        state->SyncAll();
        if ( seen.insert( state->Fingerprint() ).second )
            states.push_back( std::move( state ) );
    }
    return states;
}

void SimulatedDisk::Put( const std::filesystem::path& inPath, std::string_view inBytes )
{
    const std::scoped_lock lock( mMutex );
    Number folder = kRoot;
    for ( const auto& part : inPath.parent_path().relative_path() )
    {
        Number& next = mNodes[folder].mEntries[part.native()];
        if ( next == 0 )
        {
            next = ++mLastNumber;
            mNodes[next].mIsFolder = true;
            mNodes[next].mMode = 0700;
        }
        mNodes[folder].mDurableEntries[part.native()] = next;
        folder = next;
    }
    const Number number = ++mLastNumber;
    Node& node = mNodes[number];
    node.mBytes = node.mDurableBytes = inBytes;
    Touch( node );
    mNodes[folder].mEntries[inPath.filename().native()] = number;
    mNodes[folder].mDurableEntries[inPath.filename().native()] = number;
}

void SimulatedDisk::Delete( const std::filesystem::path& inPath )
{
    const std::scoped_lock lock( mMutex );
    if ( const Number folder = FindFolderOf( inPath ) )
    {
        mNodes[folder].mEntries.erase( inPath.filename().native() );
        mNodes[folder].mDurableEntries.erase( inPath.filename().native() );
    }
}

std::optional<std::string> SimulatedDisk::Content( const std::filesystem::path& inPath ) const
{
    const std::scoped_lock lock( mMutex );
    const Number number = Find( inPath );
    if ( number == 0 or mNodes.at( number ).mIsFolder )
        return {};
    return mNodes.at( number ).mBytes;
}

void SimulatedDisk::Collect(
    Number inFolder, const std::string& inPath, std::map<std::string, std::string>& ioFiles ) const
{
    for ( const auto& [name, number] : mNodes.at( inFolder ).mEntries )
    {
        const Node& node = mNodes.at( number );
        const std::string path = inPath + "/" + name;
        if ( node.mIsFolder )
            Collect( number, path, ioFiles );
        else
            ioFiles[path] = node.mBytes;
    }
}

std::map<std::string, std::string> SimulatedDisk::Files() const
{
    const std::scoped_lock lock( mMutex );
    std::map<std::string, std::string> files;
    Collect( kRoot, "", files );
    return files;
}

std::string SimulatedDisk::Fingerprint() const
{
    std::string result;
    for ( const auto& [path, bytes] : Files() )
        result += path + '\0' + std::to_string( bytes.size() ) + '\0' + bytes;
    return result;
}

std::string SimulatedDisk::WhatIsLeftOpen() const
{
    const std::scoped_lock lock( mMutex );
    std::string result;
    for ( const auto& [file, open] : mOpen )
        result += "descriptor " + std::to_string( file ) + " of node " + std::to_string( open.mNode ) + "; ";
    return result;
}

SimulatedDisk::Number SimulatedDisk::Find( const std::filesystem::path& inPath ) const
{
    Number number = kRoot;
    for ( const auto& part : inPath.relative_path() )
    {
        if ( part.empty() or part == "." )
            continue;
        const Node& node = mNodes.at( number );
        if ( not node.mIsFolder )
            return errno = ENOTDIR, 0;
        const auto entry = node.mEntries.find( part.native() );
        if ( entry == node.mEntries.end() )
            return errno = ENOENT, 0;
        number = entry->second;
    }
    return number;
}

SimulatedDisk::Number SimulatedDisk::FindFolderOf( const std::filesystem::path& inPath ) const
{
    const Number folder = Find( inPath.parent_path() );
    if ( folder != 0 and not mNodes.at( folder ).mIsFolder )
        return errno = ENOTDIR, 0;
    return folder;
}

bool SimulatedDisk::IsFaulty() const
{
    return mFault.mCall != 0 and ( mCalls == mFault.mCall or ( mFault.mFromThenOn and mCalls > mFault.mCall ) );
}

bool SimulatedDisk::Begin( std::string inWhat, int& outError )
{
    outError = EIO;
    if ( mWasKilled )
        return false;
    ++mCalls;
    mLog.push_back( std::move( inWhat ) );
    if ( mKillCall == mCalls and not mKillAfter )
    {
        mWasKilled = true;
        return false;
    }
    if ( IsFaulty() )
    {
        mHasFailed = true;
        if ( mFault.mIsShortWrite )
            return true;
        outError = mFault.mError;
        return false;
    }
    return true;
}

void SimulatedDisk::End()
{
    if ( mKillCall == mCalls and mKillAfter )
        mWasKilled = true;
    if ( mDidCall and not mWasKilled )
        mDidCall();
}

void SimulatedDisk::Apply( const Pending& inPending, Nodes& ioNodes, bool inDurable )
{
    for ( const auto& [folder, name, number] : inPending.mChanges )
    {
        auto& entries = inDurable ? ioNodes[folder].mDurableEntries : ioNodes[folder].mEntries;
        if ( number == 0 )
            entries.erase( name );
        else
            entries[name] = number;
    }
}

void SimulatedDisk::Apply( Pending inPending )
{
    Apply( inPending, mNodes, false );
    for ( const auto& change : inPending.mChanges )
        Touch( mNodes[change.mFolder] );
    mPending.push_back( std::move( inPending ) );
}

SimulatedDisk::OpenFile* SimulatedDisk::FileOf( int inFile )
{
    const auto found = mOpen.find( inFile );
    return found == mOpen.end() ? nullptr : &found->second;
}

// Each change has a time of its own, as on a file system with fine dates.
void SimulatedDisk::Touch( Node& ioNode )
{
    ioNode.mModified = mTime;
    ioNode.mModifiedNanoseconds = ++mNanoseconds;
}

XFileStatus SimulatedDisk::FactsOf( Number inNode ) const
{
    const Node& node = mNodes.at( inNode );
    XFileStatus facts;
    facts.mKind = node.mIsFolder ? XFileStatus::Kind::kFolder : XFileStatus::Kind::kRegular;
    facts.mMode = node.mMode;
    facts.mDevice = 1;
    facts.mFile = inNode;
    facts.mSize = node.mBytes.size();
    facts.mModifiedSeconds = node.mModified;
    facts.mModifiedNanoseconds = node.mModifiedNanoseconds;
    return facts;
}

int SimulatedDisk::Open( const std::filesystem::path& inPath, OpenFor inPurpose )
{
    const std::scoped_lock lock( mMutex );
    if ( mWasKilled )
        return Fail( EIO );
    Number number = Find( inPath );
    const bool makes = inPurpose == OpenFor::kCreateNew or ( inPurpose == OpenFor::kLock and number == 0 );
    if ( number == 0 and not makes )
        return -1;
    if ( number != 0 and inPurpose == OpenFor::kCreateNew )
        return Fail( EEXIST );
    if ( number != 0 and mNodes.at( number ).mIsFolder != ( inPurpose == OpenFor::kFolder ) )
    {
        // Reading a folder can begin, as with the system; writing can't.
        if ( inPurpose == OpenFor::kFolder )
            return Fail( ENOTDIR );
        if ( inPurpose != OpenFor::kRead )
            return Fail( EISDIR );
    }
    int error = 0;
    if ( not Begin( "open " + inPath.native(), error ) )
        return Fail( error );
    if ( makes )
    {
        const Number folder = FindFolderOf( inPath );
        if ( folder == 0 )
            return -1;
        number = ++mLastNumber;
        Touch( mNodes[number] );
        Apply( { { { folder, inPath.filename().native(), number } } } );
    }
    mOpen[++mLastFile] = { number, 0,
        inPurpose == OpenFor::kCreateNew or inPurpose == OpenFor::kUpdate or inPurpose == OpenFor::kLock };
    End();
    return mLastFile;
}

std::ptrdiff_t SimulatedDisk::Read( int inFile, std::span<std::uint8_t> outBytes )
{
    const std::scoped_lock lock( mMutex );
    OpenFile* const file = FileOf( inFile );
    if ( not file )
        return Fail( EBADF );
    if ( mNodes[file->mNode].mIsFolder )
        return Fail( EISDIR );
    int error = 0;
    if ( not Begin( "read", error ) )
        return Fail( error );
    const std::string& bytes = mNodes[file->mNode].mBytes;
    const std::size_t count = file->mAt < bytes.size() ? std::min( outBytes.size(), bytes.size() - file->mAt ) : 0;
    std::copy_n( bytes.begin() + std::ptrdiff_t( std::min( file->mAt, bytes.size() ) ), count, outBytes.begin() );
    file->mAt += count;
    End();
    return std::ptrdiff_t( count );
}

std::ptrdiff_t SimulatedDisk::Write( int inFile, std::span<const std::uint8_t> inBytes )
{
    const std::scoped_lock lock( mMutex );
    OpenFile* const file = FileOf( inFile );
    if ( not file or not file->mMayWrite )
        return Fail( EBADF );
    const auto put = [&]( std::size_t count ) {
        Node& node = mNodes[file->mNode];
        if ( node.mBytes.size() < file->mAt + count )
            node.mBytes.resize( file->mAt + count );
        std::copy_n( inBytes.begin(), count, node.mBytes.begin() + std::ptrdiff_t( file->mAt ) );
        file->mAt += count;
        Touch( node );
    };
    int error = 0;
    if ( not Begin( "write " + std::to_string( inBytes.size() ), error ) )
    {
        // A disk that gets full has taken some.
        if ( not mWasKilled and error == ENOSPC )
            put( inBytes.size() / 2 );
        return Fail( error );
    }
    const std::size_t taken = IsFaulty() and mFault.mIsShortWrite ? ( inBytes.size() + 1 ) / 2 : inBytes.size();
    put( taken );
    End();
    return std::ptrdiff_t( taken );
}

int SimulatedDisk::FSync( int inFile )
{
    const std::scoped_lock lock( mMutex );
    const OpenFile* const file = FileOf( inFile );
    if ( not file )
        return Fail( EBADF );
    int error = 0;
    Node& node = mNodes[file->mNode];
    if ( not Begin( node.mIsFolder ? "sync folder" : "sync file", error ) )
        return Fail( error );
    if ( not node.mIsFolder )
    {
        node.mDurableBytes = node.mBytes;
    }
    else
    {
        // A rename arrives whole or not at all, so it arrives with the first of its two folders.
        const auto arrives = [&]( const Pending& pending ) {
            return std::any_of( pending.mChanges.begin(), pending.mChanges.end(),
                [&]( const Pending::Change& change ) { return change.mFolder == file->mNode; } );
        };
        for ( const Pending& pending : mPending )
        {
            if ( arrives( pending ) )
                Apply( pending, mNodes, true );
        }
        std::erase_if( mPending, arrives );
    }
    End();
    return 0;
}

int SimulatedDisk::ChangeMode( int inFile, std::uint32_t inMode )
{
    const std::scoped_lock lock( mMutex );
    const OpenFile* const file = FileOf( inFile );
    int error = 0;
    if ( not file or not Begin( "change mode", error ) )
        return Fail( file ? error : EBADF );
    mNodes[file->mNode].mMode = inMode;
    End();
    return 0;
}

int SimulatedDisk::Lock( int inFile )
{
    // One process at a time: whoever would wait here would wait for itself.
    return TryLock( inFile );
}

int SimulatedDisk::TryLock( int inFile )
{
    const std::scoped_lock lock( mMutex );
    const OpenFile* const file = FileOf( inFile );
    int error = 0;
    if ( not file or not Begin( "lock", error ) )
        return Fail( file ? error : EBADF );
    const auto holder = mLocks.find( file->mNode );
    if ( holder != mLocks.end() and holder->second != inFile )
        return Fail( EWOULDBLOCK );
    mLocks[file->mNode] = inFile;
    End();
    return 0;
}

int SimulatedDisk::Truncate( int inFile, std::uint64_t inSize )
{
    const std::scoped_lock lock( mMutex );
    const OpenFile* const file = FileOf( inFile );
    int error = 0;
    if ( not file or not file->mMayWrite or not Begin( "truncate", error ) )
        return Fail( file and file->mMayWrite ? error : EBADF );
    mNodes[file->mNode].mBytes.resize( inSize );
    Touch( mNodes[file->mNode] );
    End();
    return 0;
}

int SimulatedDisk::Close( int inFile )
{
    const std::scoped_lock lock( mMutex );
    const OpenFile* const file = FileOf( inFile );
    if ( not file )
        return Fail( EBADF );
    const auto holder = mLocks.find( file->mNode );
    if ( holder != mLocks.end() and holder->second == inFile )
        mLocks.erase( holder );
    const bool mayWrite = file->mMayWrite;
    mOpen.erase( inFile );
    if ( not mayWrite or mWasKilled )
        return 0;
    int error = 0;
    if ( not Begin( "close", error ) )
        return Fail( error );
    End();
    return 0;
}

int SimulatedDisk::RenameLocked( const std::filesystem::path& inFrom, const std::filesystem::path& inTo, bool inNew )
{
    const Number node = Find( inFrom ), fromFolder = FindFolderOf( inFrom ), toFolder = FindFolderOf( inTo );
    if ( node == 0 or fromFolder == 0 or toFolder == 0 )
        return Fail( ENOENT );
    if ( const Number target = Find( inTo ) )
    {
        if ( inNew )
            return Fail( EEXIST );
        if ( mNodes[target].mIsFolder and not mNodes[node].mIsFolder )
            return Fail( EISDIR );
    }
    int error = 0;
    if ( not Begin( "rename " + inFrom.native() + " " + inTo.native(), error ) )
        return Fail( error );
    Apply( { { { fromFolder, inFrom.filename().native(), 0 }, { toFolder, inTo.filename().native(), node } } } );
    End();
    return 0;
}

int SimulatedDisk::Rename( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
    const std::scoped_lock lock( mMutex );
    return RenameLocked( inFrom, inTo, false );
}

int SimulatedDisk::RenameToNew( const std::filesystem::path& inFrom, const std::filesystem::path& inTo )
{
    const std::scoped_lock lock( mMutex );
    return RenameLocked( inFrom, inTo, true );
}

int SimulatedDisk::Unlink( const std::filesystem::path& inPath )
{
    const std::scoped_lock lock( mMutex );
    const Number node = Find( inPath );
    if ( node == 0 )
        return -1;
    if ( mNodes[node].mIsFolder )
        return Fail( EISDIR );
    int error = 0;
    if ( not Begin( "unlink " + inPath.native(), error ) )
        return Fail( error );
    Apply( { { { FindFolderOf( inPath ), inPath.filename().native(), 0 } } } );
    End();
    return 0;
}

int SimulatedDisk::MakeFolder( const std::filesystem::path& inPath )
{
    const std::scoped_lock lock( mMutex );
    if ( Find( inPath ) )
        return Fail( EEXIST );
    const Number folder = FindFolderOf( inPath );
    if ( folder == 0 )
        return -1;
    int error = 0;
    if ( not Begin( "make folder " + inPath.native(), error ) )
        return Fail( error );
    const Number number = ++mLastNumber;
    mNodes[number].mIsFolder = true;
    mNodes[number].mMode = 0700;
    Touch( mNodes[number] );
    Apply( { { { folder, inPath.filename().native(), number } } } );
    End();
    return 0;
}

int SimulatedDisk::RemoveFolder( const std::filesystem::path& inPath )
{
    const std::scoped_lock lock( mMutex );
    const Number node = Find( inPath );
    if ( node == 0 )
        return -1;
    if ( not mNodes[node].mIsFolder )
        return Fail( ENOTDIR );
    if ( not mNodes[node].mEntries.empty() )
        return Fail( ENOTEMPTY );
    int error = 0;
    if ( not Begin( "remove folder " + inPath.native(), error ) )
        return Fail( error );
    Apply( { { { FindFolderOf( inPath ), inPath.filename().native(), 0 } } } );
    End();
    return 0;
}

int SimulatedDisk::ReadFolder( const std::filesystem::path& inPath, std::vector<std::string>& outNames )
{
    const std::scoped_lock lock( mMutex );
    outNames.clear();
    const Number node = mWasKilled ? 0 : Find( inPath );
    if ( node == 0 )
        return mWasKilled ? Fail( EIO ) : -1;
    if ( not mNodes[node].mIsFolder )
        return Fail( ENOTDIR );
    for ( const auto& [name, number] : mNodes[node].mEntries )
        outNames.push_back( name );
    return 0;
}

int SimulatedDisk::GetFacts( int inFile, XFileStatus& outFacts )
{
    const std::scoped_lock lock( mMutex );
    const OpenFile* const file = FileOf( inFile );
    if ( not file )
        return Fail( EBADF );
    outFacts = FactsOf( file->mNode );
    return 0;
}

int SimulatedDisk::GetPathFacts( const std::filesystem::path& inPath, XFileStatus& outFacts )
{
    const std::scoped_lock lock( mMutex );
    const Number node = Find( inPath );
    if ( node == 0 )
        return -1;
    outFacts = FactsOf( node );
    return 0;
}

int SimulatedDisk::GetLinkFacts( const std::filesystem::path& inPath, XFileStatus& outFacts )
{
    return GetPathFacts( inPath, outFacts );
}

int SimulatedDisk::ReadLink( const std::filesystem::path& inPath, std::filesystem::path& )
{
    const std::scoped_lock lock( mMutex );
    return Find( inPath ) ? Fail( EINVAL ) : -1;
}
