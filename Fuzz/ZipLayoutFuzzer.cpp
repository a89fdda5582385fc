// Whatever the bytes, a layout that isn't refused keeps its promises: entries that lie one behind the other within the
// file, names that stay below a folder, and sizes within the limits.
#include "Macros/ZipLayout.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace
{
void Require( bool inHolds, const char* inWhat )
{
    if ( inHolds )
        return;
    std::fprintf( stderr, "%s\n", inWhat );
    std::abort();
}

bool StaysBelow( const std::string& inName )
{
    const std::filesystem::path path( inName ), folder( "/folder" );
    const std::filesystem::path reached = ( folder / path ).lexically_normal();
    return path.is_relative() and reached == folder / path and reached.native().starts_with( folder.native() + "/" );
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const std::uint8_t* inBytes, std::size_t inSize )
{
    const ZipLayout layout = ReadZipLayout( { inBytes, inSize } );
    Require( not layout.mFault or layout.mEntries.empty(), "what is refused has entries" );
    Require( layout.mEntries.size() <= ZipLayout::kMostEntries, "too many entries" );
    std::uint64_t end = 0, size = 0;
    std::set<std::string> names;
    for ( const ZipEntry& entry : layout.mEntries )
    {
        Require( entry.mOffset >= end and entry.mEnd > entry.mOffset and entry.mEnd <= inSize, "entries overlap" );
        Require( StaysBelow( entry.mName ), "a name leads elsewhere" );
        Require( names.insert( entry.mName ).second, "a name stands twice" );
        end = entry.mEnd;
        size += entry.mSize;
    }
    Require( size <= ZipLayout::kMostBytes, "too many bytes" );
    return 0;
}
