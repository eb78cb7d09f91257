// Whose messages the person has named, as it stands in the settings file now. Changes nothing.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/date.h"

namespace kivo {

class WatchSettings {
 public:
  /// Reads the settings. True when they are others than at the last call; then one line on standard
  /// error has said what holds now: whether senders are named, or why the file cannot be used.
  bool refresh();

  /// None while no sender is named, or the file cannot be used.
  [[nodiscard]] const std::vector<std::string>& senders() const { return senders_; }
  /// Whether a file is there that cannot be used, so that it is not known who is named.
  [[nodiscard]] bool broken() const { return error_.has_value(); }
  /// When the file was last changed.
  [[nodiscard]] platform::Moment changed() const { return changed_; }

 private:
  void tell() const;

  bool read_ = false;
  std::vector<std::string> senders_;
  platform::Moment changed_;
  std::optional<std::string> error_;
};

}  // namespace kivo
