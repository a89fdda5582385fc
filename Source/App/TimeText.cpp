#include "App/TimeText.h"

#include <cmath>
#include <ctime>

std::string LocalTimeText( XAbsoluteTime inTime )
{
    constexpr double kSecondsFrom1970 = 978307200.0;
    const auto time = std::time_t( std::floor( inTime + kSecondsFrom1970 ) );
    std::tm parts{};
    char text[32] = "";
    if ( localtime_r( &time, &parts ) )
        (void)std::strftime( text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts );
    return text;
}
