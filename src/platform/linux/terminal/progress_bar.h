// Shows on a terminal how far a long command is.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// A line on standard error with a bar; nothing when standard error is no terminal. Standard output
/// gets nothing.
class ProgressBar {
 public:
  /// `words` are shown in front of the bar, such as "Importing".
  explicit ProgressBar(std::string words);
  /// Removes the line.
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// Shows that `part` of the work is done, from 0 to 1. Draws when the percentage changes.
  void show(double part);

 private:
  std::string words_;
  bool isOnTerminal_;
  int percent_ = -1;
};

}  // namespace kivo::linux_platform
