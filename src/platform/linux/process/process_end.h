// The end of a process that has nothing left to do.
#pragma once

namespace kivo::linux_platform {

/// Ends the process with `status` at once, whatever still stands: the system takes it down faster
/// than the process does piece by piece. What is buffered is lost. Builds that look for leaks or
/// count coverage end as `std::exit` does.
[[noreturn]] void endProcess(int status);

}  // namespace kivo::linux_platform
