// Checks a property in a fuzz target.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace kivo::fuzz {

/// Aborts the process when `holds` is false; the fuzzer reports that with the input.
inline void require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}

}  // namespace kivo::fuzz
