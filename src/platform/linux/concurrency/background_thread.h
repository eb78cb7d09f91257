// Threads that leave the signals of the process to others.
#pragma once

#include <functional>
#include <thread>

namespace kivo::linux_platform {

/// Starts a thread that performs `work` with all signals blocked: a SIGTERM is handled on the
/// program's own threads, and writing to a closed pipe fails instead of sending SIGPIPE. Throws
/// std::system_error when the system has no thread left.
std::thread startBackgroundThread(std::function<void()> work);

}  // namespace kivo::linux_platform
