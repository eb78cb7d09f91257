// The watcher's view of the senders file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/date.h"

namespace kivo {

class WatchSettings {
 public:
  /// Reads the settings. Returns true when they differ from those of the last call, after one line
  /// on standard error: how many senders are named, or why the file cannot be used.
  bool refresh();

  /// Empty while no sender is named or the file cannot be used.
  [[nodiscard]] const std::vector<std::string>& senders() const { return senders_; }
  /// Whether there is a file that cannot be used, so that the named senders are unknown.
  [[nodiscard]] bool broken() const { return error_.has_value(); }
  /// The file's modification time; the epoch when it is missing or cannot be used.
  [[nodiscard]] platform::Moment changed() const { return changed_; }

 private:
  void tell() const;

  bool read_ = false;
  std::vector<std::string> senders_;
  platform::Moment changed_;
  std::optional<std::string> error_;
};

}  // namespace kivo
