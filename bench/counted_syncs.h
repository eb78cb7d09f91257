// Counts this process's fsync calls.
#pragma once

#include <cstdint>

namespace kivo::bench {

/// Returns the number of calls of fsync and fdatasync so far, by all threads and libraries.
std::int64_t countedSyncs();

}  // namespace kivo::bench
