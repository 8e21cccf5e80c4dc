# Debian packages, one of each component. Everything that only they need is here and in debian/.
# scripts/packages.sh builds them.
option(VONETWORK_DEBIAN_PACKAGES "Let cpack make Debian packages, to be installed in /usr" OFF)
if(NOT VONETWORK_DEBIAN_PACKAGES)
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development tools desktop localservice)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
set(CPACK_COMPONENT_DESKTOP_DEPENDS runtime)
set(CPACK_PACKAGE_CONTACT "VoNetwork maintainers <vonetwork@packages.example.org>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION}) # cpack would leave the fourth number out
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has one of its own
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
# Folders are made as in Debian's own packages, whatever the umask is.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE vonetwork)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/network)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvonetwork${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"client library of a speech web service
Applications turn speech to text and text to speech through this library, list
voices and music, and sign in to the web service that does it.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvonetwork-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qtbase5-dev (>= 5.14)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"client library of a speech web service - development files
Headers, CMake and pkg-config files for building applications that use the
library, and the HTTP toolkit below it as a static library.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME vospeak)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS vo-localservice)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
"command line client of a speech web service
Speaks texts, recognises recordings, lists voices and music, and fetches files,
by the service for which the library was built.")

set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME vodesk)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_SECTION sound)
# Without these plugins Qt finds no sound card.
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS libqt5multimedia5-plugins)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_SUGGESTS vo-localservice)
set(CPACK_COMPONENT_DESKTOP_DESCRIPTION
"desktop client of a speech web service
Speaks texts with background music, recognises recordings and what the
microphone hears, and shows voices and music, by the service for which the
library was built.")

set(CPACK_DEBIAN_LOCALSERVICE_PACKAGE_NAME vo-localservice)
set(CPACK_DEBIAN_LOCALSERVICE_PACKAGE_SECTION sound)
# The model is found at run time, not by the linker.
set(CPACK_DEBIAN_LOCALSERVICE_PACKAGE_DEPENDS pocketsphinx-en-us)
set(CPACK_DEBIAN_LOCALSERVICE_PACKAGE_SUGGESTS vospeak)
set(CPACK_COMPONENT_LOCALSERVICE_DESCRIPTION
"speech web service for this machine
Stands in for the web service, with speech engines of its own, so that
applications can be tried without an account. It listens on 127.0.0.1 only.")

# Debian asks each package for these two files.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # obeys SOURCE_DATE_EPOCH
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(generated ${PROJECT_BINARY_DIR}/package)
configure_file(${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in ${generated}/changelog.Debian @ONLY)
execute_process(COMMAND gzip -9nf ${generated}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    install(FILES ${generated}/changelog.Debian.gz ${CMAKE_CURRENT_LIST_DIR}/debian/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
        COMPONENT ${component})
endforeach()

# Debian's man pages are compressed.
install(CODE
    "execute_process(COMMAND gzip -9nf \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1/vospeak.1\"
        COMMAND_ERROR_IS_FATAL ANY)"
    COMPONENT tools)

include(CPack)
