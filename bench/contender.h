// One program that is measured, and how it is called. Compares nothing.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kivo::bench {

/// What one run of a program took.
struct Measured {
  double wallMilliseconds = 0;
  double processorMilliseconds = 0;
  double peakMebibytes = 0;
};

/// A program with all that it needs to do its work once more.
struct Contender {
  std::string name = {};
  /// The name of the contender that it is compared with; empty for none.
  std::string reference = {};
  std::vector<std::string> command = {};
  std::map<std::string, std::optional<std::string>> environment = {};
  /// What it reads from standard input in its n-th run; another text each time.
  std::function<std::string(int)> input = {};
  /// What its standard output begins with when it has done its work.
  std::string expected = {};
  /// Brings things to where the next run can begin; not measured. May be empty.
  std::function<void()> prepare = {};
};

/// Runs `contender` for the `number`-th time, with its files in `folder`. Throws
/// std::runtime_error when it does not answer as expected.
Measured run(const Contender& contender, int number, const std::filesystem::path& folder);

}  // namespace kivo::bench
