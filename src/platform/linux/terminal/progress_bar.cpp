#include "platform/linux/terminal/progress_bar.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include <unistd.h>

namespace kivo::linux_platform {

// Blanks and carriage returns alone: every terminal obeys them.
ProgressBar::ProgressBar(std::string words)
    : words_(std::move(words)), isOnTerminal_(isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
  if (percent_ < 0) return;
  const std::string blanks(words_.size() + 30, ' ');
  std::cerr << '\r' << blanks << '\r' << std::flush;
}

void ProgressBar::show(double part) {
  const int percent = static_cast<int>(std::clamp(part, 0.0, 1.0) * 100);
  if (!isOnTerminal_ || percent == percent_) return;
  percent_ = percent;
  constexpr std::size_t width = 20;
  const auto full = static_cast<std::size_t>(percent) * width / 100;
  const std::string number = std::to_string(percent);
  std::cerr << '\r' << words_ << ' ' << std::string(3 - number.size(), ' ') << number << " % ["
            << std::string(full, '#') << std::string(width - full, '.') << ']' << std::flush;
}

}  // namespace kivo::linux_platform
