include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

option(VONETWORK_INSTALL "Install the libraries, their headers and the programs"
    ${VONETWORK_IS_TOP_LEVEL})

# What is installed comes in components: runtime (the shared library), development (the rest of what a
# host is built with), tools (vospeak), desktop (vodesk) and localservice. The files find each other by
# relative paths, so the folder that they are installed to may be moved.
set(VONETWORK_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/vonetwork)

# Installs a library with its public headers, which keep the name of the calling folder. It is called
# there because the paths of the headers are relative to it.
function(vonetwork_install_library target)
    if(NOT VONETWORK_INSTALL)
        return()
    endif()
    get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    install(TARGETS ${target} EXPORT VoNetworkTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        PUBLIC_HEADER DESTINATION ${VONETWORK_INCLUDEDIR}/${folder} COMPONENT development
        INCLUDES DESTINATION ${VONETWORK_INCLUDEDIR})
endfunction()

# Installs a program, which finds the library beside its own folder.
function(vonetwork_install_program target component)
    if(NOT VONETWORK_INSTALL)
        return()
    endif()
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    if(APPLE)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH @loader_path/${libraries})
    else()
        set_target_properties(${target} PROPERTIES INSTALL_RPATH $ORIGIN/${libraries})
    endif()
    install(TARGETS ${target}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
endfunction()

# Installs a document, or another file beside a program.
function(vonetwork_install_document path folder component)
    if(VONETWORK_INSTALL)
        install(FILES ${path} DESTINATION ${folder} COMPONENT ${component})
    endif()
endfunction()

# Installs the files by which CMake and pkg-config find the libraries.
function(vonetwork_install_package)
    set(templates ${PROJECT_SOURCE_DIR}/cmake/package)
    set(generated ${PROJECT_BINARY_DIR}/package)
    set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/VoNetwork)
    install(EXPORT VoNetworkTargets
        NAMESPACE VoNetwork:: DESTINATION ${folder} COMPONENT development)
    configure_package_config_file(${templates}/VoNetworkConfig.cmake.in
        ${generated}/VoNetworkConfig.cmake
        INSTALL_DESTINATION ${folder} NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file(${generated}/VoNetworkConfigVersion.cmake
        COMPATIBILITY SameMajorVersion)
    install(FILES
            ${generated}/VoNetworkConfig.cmake
            ${generated}/VoNetworkConfigVersion.cmake
        DESTINATION ${folder} COMPONENT development)

    # The folders that this file names are relative to its own.
    set(pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
    file(RELATIVE_PATH prefix ${pkgconfig} ${CMAKE_INSTALL_PREFIX})
    file(RELATIVE_PATH includes ${pkgconfig} ${CMAKE_INSTALL_FULL_INCLUDEDIR}/vonetwork)
    configure_file(${templates}/vonetwork.pc.in ${generated}/vonetwork.pc @ONLY)
    install(FILES ${generated}/vonetwork.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

if(VONETWORK_INSTALL)
    vonetwork_install_package()
endif()
