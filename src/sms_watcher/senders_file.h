// The person's settings file of the senders whose messages are handed on. Matches no sender.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/date.h"

namespace kivo::SendersFile {

/// kivo/sms-watcher.toml in the folder of the person's settings; none without a home.
std::optional<std::filesystem::path> place();

/// What the file says.
struct Content {
  /// In the file's order; none when there is no file.
  std::vector<std::string> senders = {};
  /// When the file was last changed; the epoch when there is none.
  platform::Moment changed = {};
  /// Why nothing can be read from the file, in one line without any of its texts; `senders` is
  /// empty then.
  std::optional<std::string> error = {};
};

/// Reads the file at its place. A missing file, and one that names no key, has no senders.
Content read();

/// Writes the file anew with `senders`, durably, or leaves it as it was; makes it, and its folders,
/// for their owner only. A link is followed, and stays. False when that cannot be done.
bool write(const std::vector<std::string>& senders);

}  // namespace kivo::SendersFile
