#include "store/shared_store.h"

#include <utility>

namespace kivo {

std::optional<SharedStore> SharedStore::open(std::string_view identifier) {
  auto defaults = platform::UserDefaults::initWithSuiteName(identifier);
  if (!defaults) return std::nullopt;
  return SharedStore(std::move(*defaults));
}

SharedStore::SharedStore(platform::UserDefaults defaults) : defaults_(std::move(defaults)) {}

std::optional<std::string> SharedStore::readText(StoreKey key) const {
  return defaults_.stringForKey(key.name);
}

std::optional<std::string> SharedStore::readNonEmptyText(StoreKey key) const {
  auto text = readText(key);
  if (text && text->empty()) text.reset();
  return text;
}

double SharedStore::readFloat(StoreKey key) const { return defaults_.doubleForKey(key.name); }

void SharedStore::writeText(StoreKey key, std::string_view text) {
  defaults_.setObject(key.name, text);
}

void SharedStore::writeFloat(StoreKey key, double value) { defaults_.setDouble(key.name, value); }

bool SharedStore::synchronize() { return defaults_.synchronize(); }

bool SharedStore::publish() { return defaults_.publish(); }

}  // namespace kivo
