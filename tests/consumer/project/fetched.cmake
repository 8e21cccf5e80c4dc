find_package(Qt5 5.14 REQUIRED COMPONENTS Core Network)
include(FetchContent)
FetchContent_Declare(VoNetwork
    SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR}/VoNetwork
    BINARY_DIR ${CMAKE_CURRENT_BINARY_DIR}/VoNetwork)
FetchContent_MakeAvailable(VoNetwork)
add_executable(host main.cpp)
target_link_libraries(host PRIVATE VoNetwork::VoNetwork Qt5::Core Qt5::Network)
