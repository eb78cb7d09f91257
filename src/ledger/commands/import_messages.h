// Passes the messages of files that are to be imported on. Books nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ledger/commands/import_senders.h"
#include "money/day.h"
#include "old_messages/message_file.h"
#include "recording/recording.h"

namespace kivo::ledger {

/// The beginning of the keys of imported messages.
inline constexpr const char* importKeys = "import-";

/// Selects messages by their days. An absent day selects all.
struct ImportDays {
  std::optional<money::Day> from = {};
  std::optional<money::Day> to = {};
};

/// The files of an import.
class ImportedFiles {
 public:
  ImportedFiles(std::vector<old_messages::MessageFile> files, ImportDays days)
      : files_(std::move(files)), days_(days) {}

  /// Returns the senders of all messages, those with the most payments first, then those with the
  /// most messages. `isPayment` reads a text. A broken file counts as far as it can be read. Throws
  /// OtherFile and Failure.
  [[nodiscard]] std::vector<SenderCount> senders(
      const std::function<bool(const std::string& text)>& isPayment) const;

  /// The outcome of `read`.
  struct Read {
    /// The messages whose time is missing, before 1990 or after tomorrow. They are not passed on.
    std::int64_t withoutDay = 0;
    /// Why a file could not be read to its end, and where. The files behind it were not read.
    std::optional<std::string> broken = {};
  };
  /// Calls `use` for the messages of `chosen`, as messages of `userId`, and shows a bar with
  /// `words` on a terminal. Throws OtherFile and Failure.
  Read read(ChosenSenders& chosen, const std::string& userId, const std::string& words,
            const std::function<void(recording::Message)>& use) const;

 private:
  // Calls `use` for each message of the days. Returns the sentence of a broken file.
  std::optional<std::string> readAll(
      const std::string& words,
      const std::function<void(old_messages::OldMessage, std::optional<money::Day>)>& use) const;

  std::vector<old_messages::MessageFile> files_;
  ImportDays days_;
};

}  // namespace kivo::ledger
