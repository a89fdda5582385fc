#include "Defines/KVVersion.h"
#include "Tests/Support/LogCapture.h"

#include <gtest/gtest.h>

TEST( KVVersionTest, NumbersCountByValueAndLettersRise )
{
    const LogCapture log;
    const std::pair<TextView, TextView> rising[] = { { u"1", u"1.1" }, { u"1.1.12", u"1.2.1" }, { u"1d1", u"1" },
        { u"1.2d1", u"1.2" }, { u"1.2.3d1", u"1.2.3d2" }, { u"1.2.3", u"1.2.4d1" }, { u"1.2.3", u"2.2.3d1" },
        { u"1d2", u"2d1" }, { u"1.3", u"1.30" }, { u"1.3", u"1.19" }, { u"1.19", u"1.30" }, { u"1d9", u"1a1" },
        { u"1a9", u"1b1" }, { u"1b9", u"1f0" }, { u"1f0", u"1f1" }, { u"9", u"10" },
        { u"1.0.99999999999999999999", u"1.0.100000000000000000000" } };
    for ( const auto& [lower, higher] : rising )
    {
        SCOPED_TRACE( UTF8FromText( lower ) + " before " + UTF8FromText( higher ) );
        EXPECT_TRUE( KVVersion::Compare( lower, higher ) < 0 );
        EXPECT_TRUE( KVVersion::Compare( higher, lower ) > 0 );
    }
    const std::pair<TextView, TextView> equal[] = { { u"1", u"1.0.0f0" }, { u"1.0", u"1" }, { u"01.2", u"1.02" },
        { u"1.0.0d01", u"1d1" }, { u"0", u"000.0.0" } };
    for ( const auto& [a, b] : equal )
        EXPECT_TRUE( KVVersion::Compare( a, b ) == 0 ) << UTF8FromText( a ) << " is " << UTF8FromText( b );
    EXPECT_TRUE( log.Lines().empty() );
}

TEST( KVVersionTest, AnotherFormIsAssertedAndStillCompared )
{
    for ( const TextView strange : { u"", u"1.", u".1", u"1.2.3.4", u"1x1", u"1d", u"v1", u"1 ", u"1.2.3\n" } )
    {
        const LogCapture log;
        (void)KVVersion::Compare( strange, u"1" );
        EXPECT_GT( log.CountAssertions( "IsVersion( version )" ), 0u ) << UTF8FromText( strange );
        EXPECT_TRUE( KVVersion::Compare( strange, strange ) == 0 );
    }
}
