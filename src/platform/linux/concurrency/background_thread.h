// Starts threads that receive no signals.
#pragma once

#include <functional>
#include <thread>

namespace kivo::linux_platform {

/// Starts a thread that runs `work` with all signals blocked: SIGTERM is handled on the program's
/// own threads, and a write to a closed pipe fails instead of raising SIGPIPE. Throws
/// std::system_error when no thread can be started.
std::thread startBackgroundThread(std::function<void()> work);

}  // namespace kivo::linux_platform
