// Reads and writes the values that app, widget and extension share. Takes no lock.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/user_defaults.h"
#include "store/store_keys.h"

namespace kivo {

/// A handle that one run opens and passes to its operations. Nothing is cached: each read sees what
/// any process has synchronized. A read-modify-write can interleave with another process's, and the
/// last write wins. Keys are never removed. Nothing here throws or suspends; a call may block up to
/// 10 s while another process writes, and before that up to 10 s while another handle of this
/// process does. Not thread-safe.
class SharedStore {
 public:
  /// Opens the store of the app group `identifier`. On failure prints one line on standard error
  /// and returns nullopt.
  static std::optional<SharedStore> open(std::string_view identifier);

  /// Returns the text under `key`, as valid UTF-8; nullopt when it is absent or not a text.
  [[nodiscard]] std::optional<std::string> readText(StoreKey key) const;
  /// As `readText`, but also nullopt for an empty text.
  [[nodiscard]] std::optional<std::string> readNonEmptyText(StoreKey key) const;
  /// Returns the number under `key`; 0 when it is absent or not a number.
  [[nodiscard]] double readFloat(StoreKey key) const;

  /// Writes are visible to reads through this handle at once, and elsewhere after `synchronize`.
  void writeText(StoreKey key, std::string_view text);
  void writeFloat(StoreKey key, double value);

  /// Commits the pending writes durably and makes them visible to other processes, all or none.
  /// Returns false when that failed. The extension ignores the result; kivo-phone reports it.
  bool synchronize();

  /// As `synchronize`, but without an fsync: a power cut may undo the writes. Only for values whose
  /// loss does no harm.
  bool publish();

 private:
  explicit SharedStore(platform::UserDefaults defaults);
  platform::UserDefaults defaults_;
};

}  // namespace kivo
