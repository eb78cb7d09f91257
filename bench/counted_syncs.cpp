#include "bench/counted_syncs.h"

#include <atomic>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<std::int64_t> syncs = 0;

}  // namespace

// The linker prefers these to the C library's functions, for our libraries too.
extern "C" int fsync(int descriptor) {
  ++syncs;
  return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" int fdatasync(int descriptor) {
  ++syncs;
  return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

namespace kivo::bench {

std::int64_t countedSyncs() { return syncs; }

}  // namespace kivo::bench
