// The senders of a file of old messages: which of them are imported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kivo::ledger {

/// The messages of one sender.
struct SenderCount {
  std::string sender;
  std::int64_t messages = 0;
  /// Those that read as payments.
  std::int64_t payments = 0;
};

/// The senders that the user chose. Not thread-safe.
class ChosenSenders {
 public:
  /// Chooses by patterns as `SenderPattern::means` reads them, and by whole names.
  explicit ChosenSenders(std::vector<std::string> patterns);
  /// Returns whether `sender` is one of them.
  [[nodiscard]] bool has(const std::string& sender);

 private:
  std::vector<std::string> patterns_;
  // What was found out for each sender, of whom a file has many messages.
  std::unordered_map<std::string, bool> known_;
};

/// Throws BadUsage when one of `patterns`, the values of --sender, is invalid.
void checkSenders(const std::vector<std::string>& patterns);

/// Whether a table begins each line with its number.
enum class Numbers { shown, leftOut };
/// Returns a table of `counts`, in their order, for a screen of `width` columns.
std::string senderTable(const std::vector<SenderCount>& counts, Numbers numbers, std::size_t width);

/// Asks which of `counts` to import; the watcher's senders among them are the preset answer.
/// Returns patterns. Throws CommandFailure when the input ends.
std::vector<std::string> askForSenders(const std::vector<SenderCount>& counts);

}  // namespace kivo::ledger
