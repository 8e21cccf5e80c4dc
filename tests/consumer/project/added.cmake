find_package(Qt5 5.14 REQUIRED COMPONENTS Core Network)
add_subdirectory(VoNetwork)
add_executable(host main.cpp)
target_link_libraries(host PRIVATE VoNetwork::VoNetwork Qt5::Core Qt5::Network)
