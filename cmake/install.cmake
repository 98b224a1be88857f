# Where things belong: the library and its headers for programs that embed it, the kit for
# simulators, the command for people.
install(TARGETS quell_shared quell_static
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY model dataflow ami IbisParser
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quell
    FILES_MATCHING
        PATTERN "*.h"
        PATTERN "keywords.inc"
        PATTERN "*_internal.h" EXCLUDE
        PATTERN "kit" EXCLUDE
        PATTERN "IbisParser/base" EXCLUDE
        PATTERN "IbisParser/store" EXCLUDE
        PATTERN "IbisParser/read" EXCLUDE
        PATTERN "IbisParser/check" EXCLUDE)
install(TARGETS quell_model LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/quell)
install(FILES model/kit/quell_pcie_gen2_tx.ami model/kit/quell_pcie_gen2_tx.ibs
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/quell)
install(FILES packaging/LICENCES.txt DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(QUELL_COMMAND)
    install(TARGETS quell RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
