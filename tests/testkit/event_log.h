// What happened on the phone, in order, with what the store held then. Makes nothing happen.
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

/// All that the shared store holds, as another process sees it.
using StoreContents = std::map<std::string, platform::UserDefaults::Value>;

/// What lies under `key`; none when that is absent or of the other kind.
std::optional<std::string> textIn(const StoreContents& contents, StoreKey key);
std::optional<double> floatIn(const StoreContents& contents, StoreKey key);

/// "exchange" (a request was sent), "reload" (of the widgets), "settings" (the permission was
/// read) or "notification" (one was handed over).
struct Event {
  std::string what;
  /// What was durable at that moment.
  StoreContents store;
};

/// Usable from any thread.
class EventLog {
 public:
  /// `look` tells what the store holds.
  explicit EventLog(std::function<StoreContents()> look) : look_(std::move(look)) {}

  void add(std::string what);

  [[nodiscard]] std::vector<Event> events() const;
  /// The events' names alone.
  [[nodiscard]] std::vector<std::string> names() const;
  /// The first event called `name`; throws when there is none.
  [[nodiscard]] Event first(const std::string& name) const;

 private:
  std::function<StoreContents()> look_;
  mutable std::mutex mutex_;
  std::vector<Event> events_;
};

}  // namespace kivo::testkit
