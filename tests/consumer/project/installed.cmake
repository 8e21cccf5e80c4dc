find_package(VoNetwork 1 REQUIRED)
add_executable(host main.cpp)
target_link_libraries(host PRIVATE VoNetwork::VoNetwork Qt5::Core Qt5::Network)
