# Turns the files NAMES, a list parted by "|", of the folder INPUT into a source file OUTPUT: a table of name and
# bytes, in the order of the list.
string( REPLACE "|" ";" names "${NAMES}" )
set( arrays "" )
set( rows "" )
set( number 0 )
foreach ( name IN LISTS names )
    file( READ "${INPUT}/${name}" hex HEX )
    string( REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}" )
    string( APPEND arrays "const unsigned char kBytes${number}[] = { ${bytes} };\n" )
    string( APPEND rows
        "    { \"${name}\", { reinterpret_cast<const char*>( kBytes${number} ), sizeof( kBytes${number} ) } },\n" )
    math( EXPR number "${number} + 1" )
endforeach()
file( WRITE "${OUTPUT}" "#include \"KorvalenResources.h\"

namespace
{
${arrays}
const KorvalenResource kResources[] = {
${rows}};
}

std::span<const KorvalenResource> KorvalenLibraryResources()
{
    return kResources;
}
" )
