// What a fuzz target says of its input. Looks for no inputs: that is the fuzzer's business.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace kivo::fuzz {

/// Ends the process as a crash, which the fuzzer reports with the input, when `holds` is false.
inline void require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}

}  // namespace kivo::fuzz
