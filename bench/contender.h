// A program to measure, and how to run it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kivo::bench {

/// The cost of one run of a program.
struct Measured {
  double wallMilliseconds = 0;
  double processorMilliseconds = 0;
  double peakMebibytes = 0;
};

/// A program and what it needs for each run.
struct Contender {
  std::string name = {};
  /// The contender that it is compared with; empty for none.
  std::string reference = {};
  std::vector<std::string> command = {};
  std::map<std::string, std::optional<std::string>> environment = {};
  /// Returns the standard input of its n-th run, a different text each time.
  std::function<std::string(int)> input = {};
  /// The beginning of its standard output when it has succeeded.
  std::string expected = {};
  /// Prepares the next run; not measured. May be empty.
  std::function<void()> prepare = {};
};

/// Runs `contender` for the `number`-th time, with its files in `folder`. Throws std::runtime_error
/// when its output is not as expected.
Measured run(const Contender& contender, int number, const std::filesystem::path& folder);

}  // namespace kivo::bench
