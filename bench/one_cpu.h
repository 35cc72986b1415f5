/// Client and server on one CPU: across CPUs the scheduler decides how long a round trip takes, and ratios mean
/// nothing.
#pragma once

#include <string>

namespace bench {

/// Binds this process, and whatever it starts from now on, to the last CPU that it may use.
/// Fails: std::runtime_error when the system refuses.
void bind_to_one_cpu();

/// Makes sure that every thread of the server behind a socket runs on this process's CPU and no other, moving it there
/// if it must. Its process number stands in the file `pid` beside the socket.
/// Fails: std::runtime_error when it cannot be.
void bring_server_here(const std::string& socket);

}  // namespace bench
