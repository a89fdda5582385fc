// What a crash, a failure or a power cut leaves of an atomic write, at every call; and that the disk that says so would
// have noticed a writer that leaves out a step.
#include "Tests/Support/SimulatedDisk.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace
{
const std::filesystem::path kFile = "/data/Korvalen Macros.plist";
constexpr std::string_view kOld = "the old bytes", kNew = "new bytes, which are longer";

std::span<const std::uint8_t> Bytes( std::string_view inBytes )
{
    return { reinterpret_cast<const std::uint8_t*>( inBytes.data() ), inBytes.size() };
}

SimulatedDisk& Prepare( SimulatedDisk& ioDisk )
{
    ioDisk.Put( kFile, kOld );
    ioDisk.ResetCount();
    return ioDisk;
}

using Writer = std::function<void( SimulatedDisk& )>;

// How many of the states that a power cut at any moment leaves are neither the old nor the new file; after the writer's
// return only the new one counts.
std::size_t CountBadStates( const Writer& inWrite )
{
    SimulatedDisk disk;
    Prepare( disk );
    std::size_t bad = 0;
    const auto check = [&]( bool inIsDone ) {
        for ( const auto& state : disk.PowerLossStates() )
        {
            const auto content = state->Content( kFile );
            bad += not( content == kNew or ( not inIsDone and content == kOld ) );
        }
    };
    disk.SetDidCall( [&] { check( false ); } );
    inWrite( disk );
    check( true );
    return bad;
}

void WriteByHand( SimulatedDisk& ioDisk, bool inSyncFile, bool inSyncFolder, bool inRenameFirst )
{
    const std::filesystem::path temporary = "/data/.datX";
    const int file = ioDisk.Open( temporary, XFileCalls::OpenFor::kCreateNew );
    (void)ioDisk.Write( file, Bytes( kNew ) );
    if ( inRenameFirst )
        (void)ioDisk.Rename( temporary, kFile );
    if ( inSyncFile )
        (void)ioDisk.FSync( file );
    (void)ioDisk.Close( file );
    if ( not inRenameFirst )
        (void)ioDisk.Rename( temporary, kFile );
    const int folder = ioDisk.Open( "/data", XFileCalls::OpenFor::kFolder );
    if ( inSyncFolder )
        (void)ioDisk.FSync( folder );
    (void)ioDisk.Close( folder );
}
} // namespace

TEST( DurableWritingTest, APowerCutLeavesTheOldOrTheNewBytes )
{
    EXPECT_EQ( CountBadStates( []( SimulatedDisk& disk ) {
        EXPECT_FALSE( XAtomicFile::Write( kFile, Bytes( kNew ), XAtomicFile::Links::kKeep, disk ) );
    } ),
        0u );
}

TEST( DurableWritingTest, AWriterThatLeavesOutAStepIsNoticed )
{
    EXPECT_EQ( CountBadStates( []( SimulatedDisk& disk ) { WriteByHand( disk, true, true, false ); } ), 0u );
    EXPECT_GT( CountBadStates( []( SimulatedDisk& disk ) { WriteByHand( disk, false, true, false ); } ), 0u );
    EXPECT_GT( CountBadStates( []( SimulatedDisk& disk ) { WriteByHand( disk, true, false, false ); } ), 0u );
    EXPECT_GT( CountBadStates( []( SimulatedDisk& disk ) { WriteByHand( disk, true, true, true ); } ), 0u );
}

TEST( DurableWritingTest, AKilledWriterLeavesTheOldOrTheNewBytes )
{
    for ( const bool after : { false, true } )
    {
        for ( std::size_t call = 1;; ++call )
        {
            SimulatedDisk disk;
            Prepare( disk ).SetKill( call, after );
            (void)XAtomicFile::Write( kFile, Bytes( kNew ), XAtomicFile::Links::kKeep, disk );
            if ( not disk.WasKilled() )
                break;
            const auto content = disk.Content( kFile );
            EXPECT_TRUE( content == kOld or content == kNew ) << "killed at call " << call;
        }
    }
}

TEST( DurableWritingTest, AFailedCallLeavesWholeBytesNoTemporaryAndADiskThatWorksAgain )
{
    for ( const int error : { ENOSPC, EIO, EDQUOT, EACCES, EROFS, EMFILE } )
    {
        for ( const bool fromThenOn : { false, true } )
        {
            for ( std::size_t call = 1;; ++call )
            {
                SCOPED_TRACE( "errno " + std::to_string( error ) + ( fromThenOn ? " from call " : " at call " ) +
                    std::to_string( call ) );
                SimulatedDisk disk;
                Prepare( disk ).SetFault( { call, error, fromThenOn } );
                const auto result = XAtomicFile::Write( kFile, Bytes( kNew ), XAtomicFile::Links::kKeep, disk );
                if ( not disk.HasFailed() )
                    break;
                const auto content = disk.Content( kFile );
                ASSERT_TRUE( content == kOld or content == kNew );
                EXPECT_TRUE( result or content == kNew );
                EXPECT_EQ( disk.WhatIsLeftOpen(), "" );
                // A disk that fails for good can't remove the temporary file either; then the error names it.
                const bool leavesTemporary = disk.Files().size() > 1;
                EXPECT_TRUE( not leavesTemporary or fromThenOn );
                EXPECT_TRUE( not leavesTemporary or ( result and not result->mLeftBehind.empty() ) );
                disk.SetFault( {} );
                EXPECT_FALSE( XAtomicFile::Write( kFile, Bytes( kNew ), XAtomicFile::Links::kKeep, disk ) );
                EXPECT_EQ( disk.Content( kFile ), kNew );
            }
        }
    }
}
