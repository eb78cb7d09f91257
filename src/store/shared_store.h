// The values that app, widget and extension share. Knows no value's meaning and locks nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/user_defaults.h"
#include "store/store_keys.h"

namespace kivo {

/// A handle, opened and owned by one run and lent to every operation of it. Nothing is cached: each
/// read sees what any process has flushed. Every read-modify-write can interleave with another
/// process's, and the last flush wins. A key that was written is never removed. Nothing here throws
/// or suspends; a call may wait up to 10 s for another process that is writing.
class SharedStore {
 public:
  /// Opens the store of the app group `identifier`; none when that cannot be done, which a line
  /// on standard error explains.
  static std::optional<SharedStore> open(std::string_view identifier);

  /// The text under `key`, valid UTF-8; none when it is absent or holds no text.
  [[nodiscard]] std::optional<std::string> readText(StoreKey key) const;
  /// As `readText`, but none for an empty text too.
  [[nodiscard]] std::optional<std::string> readNonEmptyText(StoreKey key) const;
  /// The number under `key`; 0 when it is absent or holds none.
  [[nodiscard]] double readFloat(StoreKey key) const;

  /// Writes show in reads through this handle at once, elsewhere after `synchronize`.
  void writeText(StoreKey key, std::string_view text);
  void writeFloat(StoreKey key, double value);

  /// Makes the writes before it durable and visible to other processes, all or none. False when
  /// that failed: a notice for tests, which the system does not act on.
  bool synchronize();

  /// As `synchronize`, but does not wait for the disk: a power cut may undo the writes. Only for
  /// values whose loss does no harm.
  bool publish();

 private:
  explicit SharedStore(platform::UserDefaults defaults);
  platform::UserDefaults defaults_;
};

}  // namespace kivo
