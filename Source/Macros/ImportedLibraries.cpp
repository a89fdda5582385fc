#include "Macros/ImportedLibraries.h"

#include "Defines/KVPreferences.h"

#include <optional>
#include <set>

namespace
{
std::optional<std::set<Text>> gImportedLibraries;

std::set<Text>& Libraries()
{
    if ( not gImportedLibraries )
        gImportedLibraries = KVPreferences::GetSet( KVPreferences::kImportedLibrariesID ).value_or( std::set<Text>() );
    return *gImportedLibraries;
}
} // namespace

bool ImportedLibraries::WasImported( TextView inUID )
{
    return Libraries().contains( Text( inUID ) );
}

void ImportedLibraries::Imported( TextView inUID )
{
    if ( Libraries().emplace( inUID ).second )
        (void)KVPreferences::Set( KVPreferences::kImportedLibrariesID, Libraries() );
}

void ImportedLibraries::Reset()
{
    gImportedLibraries.reset();
}
