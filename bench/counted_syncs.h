// How often this process has made the disk write down what it holds. Changes nothing about it.
#pragma once

#include <cstdint>

namespace kivo::bench {

/// The calls of fsync and fdatasync so far, by all threads and libraries of this process.
std::int64_t countedSyncs();

}  // namespace kivo::bench
