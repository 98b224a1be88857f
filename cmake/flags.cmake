# Flags of every target. Results must not depend on compiler, level or processor: no contraction
# into fused multiply-add, and never fast-math.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -ffp-contract=off)
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
