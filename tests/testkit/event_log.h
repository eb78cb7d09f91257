// The events on the phone in order, each with the contents of the store at that moment.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/user_defaults.h"
#include "store/store_keys.h"

namespace kivo::testkit {

/// The contents of the shared store, as another process sees them.
using StoreContents = std::map<std::string, platform::UserDefaults::Value>;

/// The value of `key`; absent when there is none or it has the other type.
std::optional<std::string> textIn(const StoreContents& contents, StoreKey key);
std::optional<double> floatIn(const StoreContents& contents, StoreKey key);

/// "exchange" (a request was sent), "reload" (of the widgets), "settings" (the permission was
/// read) or "notification" (one was handed over).
struct Event {
  std::string what;
  /// The contents of the store at that moment, as another process sees them.
  StoreContents store;
};

/// Thread-safe.
class EventLog {
 public:
  /// `look` returns the contents of the store.
  explicit EventLog(std::function<StoreContents()> look) : look_(std::move(look)) {}

  void add(std::string what);

  [[nodiscard]] std::vector<Event> events() const;
  /// The names of the events.
  [[nodiscard]] std::vector<std::string> names() const;
  /// The first event called `name`; throws when there is none.
  [[nodiscard]] Event first(const std::string& name) const;

 private:
  std::function<StoreContents()> look_;
  mutable std::mutex mutex_;
  std::vector<Event> events_;
};

}  // namespace kivo::testkit
