// Any text is a cron expression or an error, and what is one has a sentence and a next time that its fields allow.
#include "Utility/Cron/CronSchedule.h"
#include "XCAF/XErrorHandlerTesting.h"

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize( int*, char*** )
{
    // An assertion in the code under test counts as a find.
    XErrorHandler::SetSinkForTesting( []( bool, TextView inMessage ) {
        if ( inMessage.starts_with( u"Assertion Failed" ) )
            std::abort();
    } );
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput( const std::uint8_t* inBytes, std::size_t inSize )
{
    const Text text = TextFromUTF8( { reinterpret_cast<const char*>( inBytes ), inSize } );
    CronParser::Entry entry;
    if ( CronParser::ParseString( text, entry ) )
    {
        if ( not( entry == CronParser::Entry() ) )
            std::abort();
        return 0;
    }
    if ( CronParser::DisplayEntryValue( entry ).empty() )
        std::abort();
    static const XTimeZone gZone = *XTimeZone::FromName( u"Europe/Berlin" );
    constexpr XAbsoluteTime kAfter = 818000000.0;
    const auto next = CronSchedule::NextTime( entry, kAfter, gZone );
    if ( not next )
        return 0;
    const XCivilTime civil = gZone.CivilTime( *next );
    const bool allowed = *next > kAfter and entry.mMinutes[std::size_t( civil.mMinute )] and
        entry.mHours[std::size_t( civil.mHour )] and entry.mMonths[std::size_t( civil.mMonth - 1 )] and
        entry.mYears[std::size_t( civil.mYear - CronParser::kFirstYear )];
    if ( not allowed )
        std::abort();
    return 0;
}
