#include "testkit/event_log.h"

#include <stdexcept>

namespace kivo::testkit {
namespace {

template <typename Kind>
std::optional<Kind> valueIn(const StoreContents& contents, StoreKey key) {
  const auto found = contents.find(std::string(key.name));
  if (found == contents.end()) return std::nullopt;
  const Kind* const value = std::get_if<Kind>(&found->second);
  return value == nullptr ? std::nullopt : std::optional(*value);
}

}  // namespace

std::optional<std::string> textIn(const StoreContents& contents, StoreKey key) {
  return valueIn<std::string>(contents, key);
}

std::optional<double> floatIn(const StoreContents& contents, StoreKey key) {
  return valueIn<double>(contents, key);
}

void EventLog::add(std::string what) {
  StoreContents store = look_();
  const std::lock_guard lock(mutex_);
  events_.push_back({std::move(what), std::move(store)});
}

std::vector<Event> EventLog::events() const {
  const std::lock_guard lock(mutex_);
  return events_;
}

std::vector<std::string> EventLog::names() const {
  std::vector<std::string> names;
  for (Event& event : events()) names.push_back(std::move(event.what));
  return names;
}

Event EventLog::first(const std::string& name) const {
  for (Event& event : events()) {
    if (event.what == name) return std::move(event);
  }
  throw std::logic_error("no event " + name);
}

}  // namespace kivo::testkit
