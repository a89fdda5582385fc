# Turns INPUT into a source file OUTPUT that holds its bytes.
file( READ "${INPUT}" hex HEX )
string( REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}" )
string( REGEX REPLACE "(0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],)" "\\1\n" bytes "${bytes}" )
file( WRITE "${OUTPUT}" "#include \"KorvalenResources.h\"

namespace
{
const unsigned char kBytes[] = {
${bytes} };
}

std::string_view KorvalenLocalizableResource()
{
    return { reinterpret_cast<const char*>( kBytes ), sizeof( kBytes ) };
}
" )
