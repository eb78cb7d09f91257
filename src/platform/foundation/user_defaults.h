// A durable key-value store ("suite") that several processes share. Knows no key of anybody.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kivo::platform {

/// One handle on a suite. Each read goes to the disk, so what other processes wrote is seen at
/// once. Writes are kept by the handle until `synchronize` makes them durable and visible to
/// others, all or none; a read through the same handle sees them before that. Dropping a handle
/// drops writes that were not synchronized. No call throws or suspends; one may wait up to 10 s for
/// another process that is writing, and before that up to 10 s for other handles of this one. A
/// handle is used by one task at a time.
class UserDefaults {
 public:
  /// A stored value as it lies on disk; what is neither number nor text comes as monostate.
  using Value = std::variant<std::monostate, std::int64_t, double, std::string>;

  /// Opens the suite, making folder (0700) and file (0600) when there is none yet. None, with one
  /// line on standard error that says why, when that cannot be done, when one of them is a symbolic
  /// link, or when the file is damaged, newer than this program or somebody else's; such a file is
  /// left as it is. The same reason is not said twice in a row.
  static std::optional<UserDefaults> initWithSuiteName(std::string_view suiteName);

  UserDefaults(UserDefaults&& other) noexcept;
  UserDefaults& operator=(UserDefaults&& other) noexcept;
  ~UserDefaults();

  /// The text under `key`, as valid UTF-8; none when it is absent, holds no text or cannot
  /// be read, which a line on standard error says.
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;

  /// The number under `key`: an integer as its value, 0 for a text, when absent, and when it
  /// cannot be read, as above.
  [[nodiscard]] double doubleForKey(std::string_view key) const;

  /// All keys with what is stored under them.
  [[nodiscard]] std::map<std::string, Value> dictionaryRepresentation() const;

  void setObject(std::string_view key, std::string_view text);
  void setDouble(std::string_view key, double value);

  /// Commits what was written through this handle, durably. False when that failed, and when a read
  /// since the last call of this has: a value that could not be read is not replaced. The writes
  /// are lost then, and one line on standard error has said so. When a text longer than a figure
  /// has made way for one that does not go on from it, its bytes are then gone from the files too,
  /// or will be when the suite is next opened without another process in the way.
  bool synchronize();

  /// As `synchronize`, but commits without an fsync: a power cut may undo it. The next
  /// `synchronize` of any handle makes it durable.
  bool publish();

 private:
  struct Suite;
  explicit UserDefaults(std::unique_ptr<Suite> suite);

  std::unique_ptr<Suite> suite_;
};

}  // namespace kivo::platform
