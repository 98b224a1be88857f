# Writes a C++ source whose functions give the contents of files: NAME=FILE pairs in ASSETS,
# separated by "|". References to source maps are left out: a browser would ask for them.
set(source "// Generated.\n#include \"quell/report/assets.h\"\n\nnamespace quell {\n\n")
string(REPLACE "|" ";" pairs "${ASSETS}")
foreach(pair IN LISTS pairs)
    string(REGEX MATCH "^([A-Za-z]+)=(.*)$" match "${pair}")
    set(name ${CMAKE_MATCH_1})
    file(READ "${CMAKE_MATCH_2}" hex HEX)
    # From "//# sourceMappingURL=" or "/*# sourceMappingURL=" on, which ends a minified file.
    string(REGEX REPLACE "2f(2f|2a)2320736f757263654d617070696e6755524c3d.*$" "" hex "${hex}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
    string(APPEND source
        "std::string_view ${name}()\n{\n    static const unsigned char bytes[] = {${bytes}};\n"
        "    return {reinterpret_cast<const char*>(bytes), sizeof bytes};\n}\n\n")
endforeach()
file(WRITE "${OUTPUT}" "${source}}  // namespace quell\n")
