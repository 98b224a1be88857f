# The library in its three shapes, all of the same objects: the shared library with every public
# interface, the archive that quell, tests and benchmarks link, and the slim model file.
set(layers dataflow_objects parser_base parser_store parser_read parser_check ami_objects
    model_objects)
set(layer_files)
foreach(layer ${layers})
    if(TARGET ${layer})
        list(APPEND layer_files $<TARGET_OBJECTS:${layer}>)
    endif()
endforeach()

add_library(quell_static STATIC ${layer_files})
set_target_properties(quell_static PROPERTIES OUTPUT_NAME Quell_PCIe_Gen2_Tx)

# A plug-in must not disturb its host: the C++ library is linked in and kept inside, own calls bind
# inside, and data stays interposable so that an ordinary program can set the exported switches.
function(quell_plugin target exports)
    target_link_options(${target} PRIVATE
        -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/${exports}
        -Wl,-Bsymbolic-functions)
    if(NOT QUELL_SANITIZE)
        target_link_options(${target} PRIVATE -static-libstdc++ -shared-libgcc -Wl,-z,defs)
    endif()
    set_property(TARGET ${target} APPEND PROPERTY
        LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/${exports})
endfunction()

add_library(quell_shared SHARED ${layer_files})
set_target_properties(quell_shared PROPERTIES OUTPUT_NAME Quell_PCIe_Gen2_Tx)
quell_plugin(quell_shared exports_library.map)

foreach(library quell_static quell_shared)
    target_include_directories(${library} INTERFACE
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/quell>)
endforeach()
add_library(quell::static ALIAS quell_static)
add_library(quell::shared ALIAS quell_shared)

add_library(quell_model MODULE ${layer_files})
set_target_properties(quell_model PROPERTIES
    PREFIX ""
    OUTPUT_NAME quell_pcie_gen2_tx
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/kit)
quell_plugin(quell_model exports_model.map)
if(NOT QUELL_SANITIZE)
    # Only what the two entry points reach, and the identity lines.
    target_link_options(quell_model PRIVATE -Wl,--gc-sections -Wl,-s)
endif()
