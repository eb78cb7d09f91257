// A durable key-value store ("suite") that several processes share.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kivo::platform {

/// One handle on a suite. Each read goes to the database, so writes of other processes are visible
/// at once. The handle keeps its own writes until `synchronize` commits them, all or none; its own
/// reads see them before that. Destroying a handle discards writes that were not synchronized.
/// Nothing throws or suspends. A call may block up to 10 s while another process writes, and before
/// that up to 10 s while other handles of this process do. A handle is not thread-safe; different
/// handles are independent.
class UserDefaults {
 public:
  /// A stored value. monostate is a value that is neither a number nor a text.
  using Value = std::variant<std::monostate, std::int64_t, double, std::string>;

  /// Opens the suite, creating its folder (0700) and file (0600) when absent. On failure prints the
  /// reason as one line on standard error, unless it is the same as last time, and returns nullopt.
  /// Fails also when folder or file is a symbolic link, and when the file is damaged, was written
  /// by a newer version or belongs to another application; it then leaves the file unchanged.
  static std::optional<UserDefaults> initWithSuiteName(std::string_view suiteName);

  UserDefaults(UserDefaults&& other) noexcept;
  UserDefaults& operator=(UserDefaults&& other) noexcept;
  ~UserDefaults();

  /// Returns the text under `key`, as valid UTF-8; nullopt when it is absent, not a text, or cannot
  /// be read. The first failed read since the last `synchronize` or `publish` prints one line on
  /// standard error.
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;

  /// Returns the number under `key`, an integer converted to double; 0 when it is absent, a text,
  /// or cannot be read, which is reported as above.
  [[nodiscard]] double doubleForKey(std::string_view key) const;

  /// Returns all keys and values. Rows that cannot be read are missing from it, without a report.
  [[nodiscard]] std::map<std::string, Value> dictionaryRepresentation() const;

  void setObject(std::string_view key, std::string_view text);
  void setDouble(std::string_view key, double value);

  /// Commits the pending writes durably; true when there are none. Returns false, after one line on
  /// standard error, when the commit fails, or when a read has failed since the last `synchronize`
  /// or `publish`: a value that could not be read is not replaced. The pending writes are discarded
  /// then. When a text of more than 24 bytes is replaced by one that does not continue it, its
  /// bytes are also erased from the files, at the latest when the suite is next opened while no
  /// other process has it open.
  bool synchronize();

  /// As `synchronize`, but without an fsync: a power cut may undo the commit. The next
  /// `synchronize` of any handle makes it durable.
  bool publish();

 private:
  struct Suite;
  explicit UserDefaults(std::unique_ptr<Suite> suite);

  std::unique_ptr<Suite> suite_;
};

}  // namespace kivo::platform
