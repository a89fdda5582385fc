#include "XCAF/KVDiagnostics.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>

namespace
{
bool IsReportName( std::string_view inName )
{
    constexpr std::string_view kStart = "Korvalen", kEnd = ".crash";
    return inName.size() >= kStart.size() + kEnd.size() and inName.starts_with( kStart ) and
        inName.ends_with( kEnd ) and inName.find( '\n' ) == std::string_view::npos;
}
} // namespace

std::vector<std::filesystem::path> KVDiagnostics::CheckForNew( const std::filesystem::path& inFolder )
{
    std::vector<std::filesystem::path> reports;
    std::error_code error;
    std::filesystem::directory_iterator entry( inFolder, error );
    while ( not error and entry != std::filesystem::directory_iterator() )
    {
        std::error_code ofEntry;
        if ( IsReportName( entry->path().filename().native() ) and entry->is_regular_file( ofEntry ) )
            reports.push_back( entry->path() );
        entry.increment( error );
    }
    std::sort( reports.begin(), reports.end() );
    XErrorHandler::PrivateMaybeLogFormat(
        "ReportCrash", "Found %lu crash reports in %@", std::uint64_t( reports.size() ), inFolder );
    return reports;
}
