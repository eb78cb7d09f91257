#include "testkit/test_phone.h"

#include <stdexcept>
#include <utility>

namespace kivo::testkit {

TestPhone::TestPhone() {
  platform::ProcessWide<platform::URLSession>::install(session);
  platform::ProcessWide<platform::UNUserNotificationCenter>::install(notifications);
  platform::ProcessWide<platform::WidgetCenter>::install(widget);
  put(StoreKeys::userId, userId);
  put(StoreKeys::supabaseUrl, supabaseUrl);
}

SharedStore TestPhone::openStore() {
  auto store = SharedStore::open(appGroup);
  if (!store) throw std::runtime_error("the store cannot be opened");
  return std::move(*store);
}

StoreContents TestPhone::contents() {
  const auto defaults = platform::UserDefaults::initWithSuiteName(appGroup);
  return defaults ? defaults->dictionaryRepresentation() : StoreContents{};
}

std::optional<std::string> TestPhone::text(StoreKey key) { return textIn(contents(), key); }

std::optional<double> TestPhone::number(StoreKey key) { return floatIn(contents(), key); }

void TestPhone::put(StoreKey key, std::string_view text) {
  SharedStore store = openStore();
  store.writeText(key, text);
  store.synchronize();
}

void TestPhone::put(StoreKey key, double value) {
  SharedStore store = openStore();
  store.writeFloat(key, value);
  store.synchronize();
}

}  // namespace kivo::testkit
