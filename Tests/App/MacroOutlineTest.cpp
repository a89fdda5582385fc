#include "CFMethods/PropertyListCodec.h"
#include "Tests/App/KorvalenRun.h"
#include "Tests/Macros/MacroFixtures.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace
{
struct MacroOutlines : MacroWorld
{
    MacroOutlines()
    {
        const __SafeCFPropertyList triggers = Array( { HotKeyTrigger( 45, 6144 ), HotKeyTrigger( 32767 ),
            Trigger( u"Cron", { { "Cron", Str( u"0 9\t* * MON-FRI" ) } } ) } );
        const __SafeCFPropertyList file = FileWith( {
            GroupWith( u"G", { MacroWith( u"1", { { "Name", Str( u"Morning" ) }, { "Triggers", triggers } } ) },
                { { "Activate", Str( u"ToggleWithTrigger" ) }, { "KeyCode", Int( 45 ) },
                    { "Modifiers", Int( 6144 ) } } ),
            GroupWith( u"H", {} ),
        } );
        mFile = mFolder.File( "macros.plist", WriteBinaryPropertyList( file ).View() );
    }
    std::string Show( const std::vector<std::string>& inRest )
    {
        std::vector<std::string> arguments = { "show", mFile };
        arguments.insert( arguments.end(), inRest.begin(), inRest.end() );
        return RunKorvalenWith( arguments ).mOutput;
    }

    KorvalenFolder mFolder;
    std::string mFile;
};
} // namespace

TEST_F( MacroOutlines, TheHotKeyOfAGroupIsAKeystroke )
{
    EXPECT_THAT( Show( { "Group G" } ), HasSubstr( "\n  Hot key: ⌃⌥N\n" ) );
    EXPECT_THAT( Show( { "Group G", "--json" } ), HasSubstr( "\"hotKey\": \"⌃⌥N\"" ) );
    EXPECT_THAT( Show( { "Group H" } ), Not( HasSubstr( "Hot key" ) ) );
    EXPECT_THAT( Show( { "Group H", "--json" } ), Not( HasSubstr( "hotKey" ) ) );
}

TEST_F( MacroOutlines, TriggersAreALineEachWithoutThoseThatCouldNeverFire )
{
    EXPECT_THAT( Show( { "Morning" } ),
        HasSubstr( "  Triggered by:\n    - The hot key ⌃⌥N is pressed\n"
                   "    - At the times of the cron expression “0 9 * * MON-FRI”: At 9:00 on Mon-Fri in every month\n"
                   "  Does nothing\n" ) );
}
