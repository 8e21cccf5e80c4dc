#pragma once

#include <string>

namespace localservice {

/// The name of the program at the other end of @p socket, a connection within this machine: the
/// file that it was started from, without its folder. Empty if that cannot be found out, such as
/// for a program of another user or one that has closed the connection. A program that forwards
/// requests counts as the one that makes them.
std::string peerProgram(int socket);

} // namespace localservice
