# korvalen_add_layer( NAME row-above... ): one row of the architecture as one library. It
# sees the rows it names and nothing below them, so that a wrong arrow does not link.
function( korvalen_add_layer NAME )
    add_library( ${NAME} STATIC )
    target_include_directories( ${NAME} PUBLIC ${CMAKE_SOURCE_DIR}/Source )
    target_link_libraries( ${NAME} PUBLIC ${ARGN} PRIVATE korvalen_warnings )
    target_precompile_headers( ${NAME} PRIVATE
        <algorithm> <array> <cstdint> <functional> <map> <memory> <optional> <span> <string>
        <string_view> <unordered_map> <utility> <vector> )
endfunction()
