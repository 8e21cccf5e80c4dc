# Included by project() where sources are compiled for Windows with the headers of this machine's Qt,
# whose libraries cannot be linked to what comes of it. Linking makes empty files instead.
set(CMAKE_CXX_CREATE_SHARED_LIBRARY "\"${CMAKE_COMMAND}\" -E touch <TARGET> <TARGET_IMPLIB>")
set(CMAKE_CXX_LINK_EXECUTABLE "\"${CMAKE_COMMAND}\" -E touch <TARGET>")

# CMake wants to know the import libraries all the same, and that they exist.
foreach(module IN ITEMS Core Network Gui)
    find_package(Qt5${module} REQUIRED)
    get_target_property(library Qt5::${module} LOCATION)
    set_target_properties(Qt5::${module} PROPERTIES IMPORTED_IMPLIB ${library})
endforeach()
