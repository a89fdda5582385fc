#include "Macros/RevisionDates.h"

#include "Utility/Text/Localization.h"
#include "Utility/Work/Clock.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <memory>
#include <unicode/datefmt.h>
#include <unicode/gregocal.h>

namespace
{
constexpr double k2001 = 978307200; // in the Unix epoch

bool IsDigit( char16_t inUnit )
{
    return inUnit >= u'0' and inUnit <= u'9';
}

// ^2[0-9][0-9][0-9]_[0-9][0-9]_[0-9][0-9]$
bool LooksLikeDay( TextView inDate )
{
    constexpr TextView kForm = u"2999_99_99";
    if ( inDate.size() != kForm.size() or inDate[0] != u'2' )
        return false;
    for ( std::size_t i = 1; i < kForm.size(); ++i )
    {
        if ( kForm[i] == u'_' ? inDate[i] != u'_' : not IsDigit( inDate[i] ) )
            return false;
    }
    return true;
}

int NumberAt( TextView inDate, std::size_t inIndex, std::size_t inLength )
{
    int number = 0;
    for ( std::size_t i = 0; i < inLength; ++i )
        number = number * 10 + ( inDate[inIndex + i] - u'0' );
    return number;
}

Text LongDate( int inYear, int inMonth, int inDay )
{
    UErrorCode error = U_ZERO_ERROR;
    icu::GregorianCalendar calendar( inYear, inMonth - 1, inDay, 12, 0, 0, error );
    calendar.setLenient( false );
    const UDate date = calendar.getTime( error ); // fails for a day that the calendar doesn't have
    const std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createDateInstance( icu::DateFormat::kLong, icu::Locale::getDefault() ) );
    if ( U_FAILURE( error ) or not format )
        return {};
    icu::UnicodeString text;
    format->format( date, text );
    return Text( text.getBuffer(), std::size_t( text.length() ) );
}
} // namespace

Text RevisionDates::GetCurrentSaveDate()
{
    const auto now = std::time_t( std::floor( XClock::Current().Now() + k2001 ) );
    std::tm local{};
    localtime_r( &now, &local );
    return kvr_format( u"%04d_%02d_%02d", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday );
}

Text RevisionDates::BeforeCurrentVersionSaveDate()
{
    return u"0000_01_02";
}

Text RevisionDates::GetThisLaunchSaveDate()
{
    return u"9999_01_01";
}

Text RevisionDates::GetBeforeRevertSaveDate()
{
    return u"9999_01_02";
}

Text RevisionDates::GetBeforeSharingSyncSaveDate()
{
    return u"9999_01_03";
}

bool RevisionDates::IsBeforeVersionSaveDate( TextView inDate )
{
    return inDate.starts_with( u"0000" );
}

Text RevisionDates::DisplayNameForRevision( TextView inDate )
{
    if ( LooksLikeDay( inDate ) )
        return LongDate( NumberAt( inDate, 0, 4 ), NumberAt( inDate, 5, 2 ), NumberAt( inDate, 8, 2 ) );
    return kvr_localized( u"kRevisions" + Text( inDate ) );
}

void RevisionDates::RemoveAnyUncullableRevisions( std::vector<Text>& ioDates )
{
    const Text today = GetCurrentSaveDate();
    std::erase_if( ioDates, [&today]( const Text& date ) {
        return date == today or date.starts_with( u"0000" ) or date.starts_with( u"9999" );
    } );
}
