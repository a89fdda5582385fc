// A macros file with a flipped bit or a missing end is refused with a reason or read as some other
// sound value; never a crash, never a value that doesn't survive being written. The normal run
// takes a file of a few kilobytes; with KORVALEN_LONG_TESTS=1 it is 100 KB, which takes long.
#include "CFMethods/PropertyListCodec.h"
#include "Tests/CFMethods/RandomPropertyList.h"
#include "Tests/Support/LongTests.h"

#include <gtest/gtest.h>

namespace
{
// A group with one macro of one action and one trigger, as the editor writes them, with some leaf beside.
__SafeCFPropertyList Group( int inNumber, RandomPropertyList& ioRandom )
{
    const auto listOf = []( XMutableDictionary& ioOnly ) {
        XMutableArray list;
        list.Append( ioOnly.Seal() );
        return list.Seal();
    };
    XMutableDictionary action, trigger, macro, group;
    action.SetText( CFSTR( "MacroActionType" ), u"InsertText" );
    action.SetText( CFSTR( "Text" ), ioRandom.String() );
    action.SetReal( CFSTR( "TimeOutPeriod" ), 0.25 * inNumber );
    action.Set( CFSTR( "StyledText" ), ioRandom.Leaf() );
    trigger.SetText( CFSTR( "MacroTriggerType" ), u"HotKey" );
    trigger.SetInteger( CFSTR( "KeyCode" ), inNumber );
    macro.Set( CFSTR( "Actions" ), listOf( action ) );
    macro.Set( CFSTR( "Triggers" ), listOf( trigger ) );
    macro.SetText( CFSTR( "Name" ), u"Größe " + TextFromASCII( std::to_string( inNumber ) ) );
    macro.SetBoolean( CFSTR( "IsActive" ), inNumber % 2 == 0 );
    group.Set( CFSTR( "Macros" ), listOf( macro ) );
    group.Set( CFSTR( "LastUsed" ), XPlistDate::Make( 700000000.5 + inNumber ) );
    return group.Seal();
}

XBytes MacrosFile( std::size_t inSize )
{
    RandomPropertyList random( 1, { .mLongLengths = false } );
    std::vector<__SafeCFPropertyList> groups;
    for ( ;; )
    {
        groups.push_back( Group( int( groups.size() ), random ) );
        XMutableArray array;
        for ( const __SafeCFPropertyList& group : groups )
            array.Append( group );
        XMutableDictionary file;
        file.Set( CFSTR( "MacroGroups" ), array.Seal() );
        XBytes bytes = WriteBinaryPropertyList( file.Seal() );
        if ( bytes.size() >= inSize )
            return bytes;
    }
}

const XBytes& DamagedFile()
{
    static const XBytes gFile = MacrosFile( ShortOrLong<std::size_t>( 3000, 100'000 ) );
    return gFile;
}

testing::AssertionResult IsRefusedOrSound( std::span<const std::uint8_t> inBytes )
{
    const XPlistReadResult read = ReadBinaryPropertyList( inBytes );
    if ( not read.mValue )
    {
        if ( read.mFault and not read.mFault->mMessage.empty() and read.mFault->mOffset <= inBytes.size() )
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "refused without a reason";
    }
    if ( read.mFault )
        return testing::AssertionFailure() << "both read and refused";
    const XPlistReadResult again = ReadBinaryPropertyList( WriteBinaryPropertyList( read.mValue ).Span() );
    if ( again.mFault )
        return testing::AssertionFailure() << "what was read is refused when written: " << again.mFault->mMessage;
    if ( not( again.mValue == read.mValue ) )
        return testing::AssertionFailure() << "what was read differs when written";
    return testing::AssertionSuccess();
}

constexpr std::size_t kShards = 8;

class Damage : public testing::TestWithParam<std::size_t>
{};
} // namespace

TEST_P( Damage, OfOneBitIsRefusedOrReadAsASoundValue )
{
    const XBytes& file = DamagedFile();
    XBytes copy( file.View() );
    for ( std::size_t at = GetParam(); at < file.size(); at += kShards )
    {
        for ( unsigned bit = 0; bit < 8; ++bit )
        {
            copy.data()[at] = std::uint8_t( file.data()[at] ^ ( 1u << bit ) );
            ASSERT_TRUE( IsRefusedOrSound( copy.Span() ) ) << "byte " << at << ", bit " << bit;
        }
        copy.data()[at] = file.data()[at];
    }
}

TEST_P( Damage, OfTheEndIsRefused )
{
    const XBytes& file = DamagedFile();
    for ( std::size_t size = GetParam(); size < file.size(); size += kShards )
    {
        // In a buffer of its own, so that reading behind the end is seen.
        const XBytes cut( file.View().substr( 0, size ) );
        ASSERT_TRUE( IsRefusedOrSound( cut.Span() ) ) << size;
        ASSERT_TRUE( ReadBinaryPropertyList( cut.Span() ).mFault ) << size;
    }
}

INSTANTIATE_TEST_SUITE_P( Shard, Damage, testing::Range( std::size_t( 0 ), kShards ) );
