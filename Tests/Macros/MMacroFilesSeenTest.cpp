#include "Macros/MMacroFilesSeen.h"

#include "Tests/Fakes/ManualWorld.h"

#include <gtest/gtest.h>

namespace
{
MMacroFileDataPtr File( int inNumber )
{
    return std::make_shared<const MMacroFileData>( XBytes( "file " + std::to_string( inNumber ) ) );
}
} // namespace

TEST( MMacroFilesSeen, AGenerationGoesWhenTheOneAfterItIsFull )
{
    const ManualWorld world;
    for ( int i = 0; i < 51; ++i )
        MMacroFilesSeen::AddSeen( File( i ) );
    EXPECT_TRUE( MMacroFilesSeen::ContainsSeen( File( 0 ), false ) ) << "what was added before is there";
    EXPECT_FALSE( MMacroFilesSeen::ContainsSeen( File( 51 ), false ) );
    EXPECT_FALSE( MMacroFilesSeen::ContainsSeen( File( 51 ), true ) ) << "asked before it was added";
    for ( int i = 52; i < 102; ++i )
        EXPECT_FALSE( MMacroFilesSeen::ContainsSeen( File( i ), true ) );
    EXPECT_TRUE( MMacroFilesSeen::ContainsSeen( File( 0 ), false ) ) << "51 in either generation";
    MMacroFilesSeen::AddSeen( File( 102 ) );
    EXPECT_FALSE( MMacroFilesSeen::ContainsSeen( File( 0 ), false ) );
    EXPECT_FALSE( MMacroFilesSeen::ContainsSeen( File( 50 ), false ) );
    EXPECT_TRUE( MMacroFilesSeen::ContainsSeen( File( 51 ), false ) );
}
