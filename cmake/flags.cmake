# Languages, folders and flags of every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ${PROJECT_IS_TOP_LEVEL})
# Every source keeps its private names to itself, which one joined source could not.
set(CMAKE_UNITY_BUILD OFF)

set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# Results must not depend on compiler, level or processor: no contraction into fused multiply-add, and
# never fast-math. Warnings are errors in the presets only: another compiler, or level, may have other ones.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${QUELL_WARNINGS_ARE_ERRORS}>:-Werror> -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13 AND
   NOT QUELL_WARNINGS_ARE_ERRORS)
    # At -O3, which no preset uses, it warns of every text put before a std::string.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A GNU-unique symbol would pin the model in its host: it could never be unloaded.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
endif()
if(QUELL_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(QUELL_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()
