// Finds out the format of a file of old messages, and reads it.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "old_messages/old_message.h"

namespace kivo::old_messages {

enum class Format { smsBackup, chatty, csv };

/// Returns the format named "sms-backup", "chatty" or "csv"; nullopt for another name.
std::optional<Format> formatFromText(std::string_view name);
/// Returns these names.
std::vector<std::string> formatNames();

/// A file of old messages whose format is known.
class MessageFile {
 public:
  /// Finds out the format by the first bytes unless `format` gives it. Throws Failure, with the
  /// path, when `path` is no regular file that can be read.
  explicit MessageFile(std::filesystem::path path, std::optional<Format> format = std::nullopt);

  /// Calls `use` for each received message, and `progress` now and then with the part of the file
  /// that was read, from 0 to 1. Throws what the format's reader throws, with the path.
  void read(const MessageUse& use, const std::function<void(double)>& progress) const;

 private:
  std::filesystem::path path_;
  Format format_;
};

}  // namespace kivo::old_messages
