// A macros file with a flipped bit or a missing end is refused with a reason, or loads with a report of what would
// be lost; and what was loaded is sound: saved, it loads again without loss. The normal run flips a bit of each byte
// of a small example. With KORVALEN_LONG_TESTS=1 it flips every bit of a file of 100 KB, which takes long.
#include "CFMethods/PropertyListCodec.h"
#include "Macros/MLoadCheck.h"
#include "Macros/MMacroDomain.h"
#include "Tests/Support/LongTests.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace
{
bool IsLongRun()
{
    return ShortOrLong( false, true );
}

__SafeCFPropertyList Example( const char* inName )
{
    const XFileContent file = ReadWholeFile(
        std::filesystem::path( KORVALEN_TESTS_FOLDER ) / ".." / "Examples" / inName, std::size_t( 1 ) << 20 );
    return ReadPropertyList( file.mBytes.Span() ).mValue;
}

// The groups of the wide example again and again, their names and UIDs numbered, until the file is large enough.
XBytes WideFile( std::size_t inSize )
{
    const __SafeCFPropertyList wide = Example( "Wide.plist" );
    CFContainer<XPlistArray> groups;
    EXPECT_TRUE( wide.AsDictionary()->Get( CFSTR( "MacroGroups" ), groups ) );
    XMutableArray all;
    for ( int round = 0;; ++round )
    {
        std::vector<__SafeCFPropertyList> soFar;
        for ( const XPlistNode* const node : groups->Nodes() )
        {
            XMutableDictionary group;
            group.SetAll( *__SafeCFPropertyList( node ).AsDictionary() );
            group.SetText(
                CFSTR( "UID" ), TextFromASCII( std::to_string( round ) + "-" + std::to_string( soFar.size() ) ) );
            group.SetText( CFSTR( "Name" ), u"Größe " + TextFromASCII( std::to_string( round ) ) );
            soFar.emplace_back( group.Seal() );
            all.Append( soFar.back() );
        }
        const CFContainer<XPlistArray> sealed = all.Seal();
        XMutableDictionary file;
        file.SetAll( *wide.AsDictionary() );
        file.Set( CFSTR( "MacroGroups" ), sealed );
        XBytes bytes = WriteBinaryPropertyList( file.Seal() );
        if ( bytes.size() >= inSize )
            return bytes;
        for ( const XPlistNode* const node : sealed->Nodes() )
            all.Append( __SafeCFPropertyList( node ) );
    }
}

const XBytes& File()
{
    static const XBytes gFile =
        IsLongRun() ? WideFile( 100'000 ) : WriteBinaryPropertyList( Example( "Friendly.plist" ) );
    return gFile;
}

testing::AssertionResult IsRefusedOrReported( std::span<const std::uint8_t> inBytes )
{
    const XPlistReadResult read = ReadPropertyList( inBytes );
    if ( read.mFault )
        return testing::AssertionResult( not read.mFault->mMessage.empty() );
    if ( FileKindOf( read.mValue ) != MFileKind::kMacrosFile )
        return testing::AssertionSuccess(); // refused as a file without macros
    (void)CheckFile( read.mValue );
    __SafeCFPropertyList saved;
    {
        MMacroDomain domain;
        domain.LoadFromPropertyList( read.mValue );
        saved = domain.GetPropertyList();
    }
    const MFileCheck again = CheckFile( saved );
    for ( const MFinding& finding : again.mFindings )
    {
        if ( finding.IsLoss() )
            return testing::AssertionFailure() << "what was saved would lose " << UTF8FromText( finding.mPath ) << " "
                                               << UTF8FromText( finding.mKey ) << ": " << UTF8FromText( finding.mText );
    }
    return testing::AssertionSuccess();
}

constexpr std::size_t kShards = 4;

class DamagedMacros : public testing::TestWithParam<std::size_t>
{};
} // namespace

TEST_P( DamagedMacros, OfOneBitAreRefusedOrReported )
{
    const XBytes& file = File();
    XBytes copy( file.View() );
    for ( std::size_t at = GetParam(); at < file.size(); at += kShards )
    {
        for ( unsigned bit = 0; bit < 8; ++bit )
        {
            if ( not IsLongRun() and bit != at / kShards % 8 )
                continue;
            copy.data()[at] ^= std::uint8_t( 1u << bit );
            ASSERT_TRUE( IsRefusedOrReported( copy.Span() ) ) << "byte " << at << " bit " << bit;
            copy.data()[at] = file.data()[at];
        }
    }
}

TEST_P( DamagedMacros, CutOffAreRefusedOrReported )
{
    const XBytes& file = File();
    for ( std::size_t length = GetParam(); length < file.size(); length += kShards )
        ASSERT_TRUE( IsRefusedOrReported( file.Span().first( length ) ) ) << length << " bytes";
}

INSTANTIATE_TEST_SUITE_P( Shards, DamagedMacros, testing::Range( std::size_t( 0 ), kShards ) );
