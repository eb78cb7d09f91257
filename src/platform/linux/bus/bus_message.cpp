#include "platform/linux/bus/bus_message.h"

#include <new>

#include "platform/linux/bus/bus_text.h"

namespace kivo::linux_platform {
namespace {

void mustHaveMemory(dbus_bool_t appended) {
  if (!appended) throw std::bad_alloc();
}

}  // namespace

BusMessage sharedMessage(DBusMessage* message) {
  if (message == nullptr) return nullptr;
  return BusMessage(dbus_message_ref(message), dbus_message_unref);
}

BusMessage ownedMessage(DBusMessage* message) {
  if (message == nullptr) throw std::bad_alloc();
  return BusMessage(message, dbus_message_unref);
}

BusMessage methodCall(const BusObject& object, const char* method, const BusWriter::Write& write) {
  BusMessage call = ownedMessage(
      dbus_message_new_method_call(object.service, object.path, object.interface, method));
  if (write) {
    BusWriter arguments(call.get());
    write(arguments);
  }
  return call;
}

void BusWriter::basic(int type, const void* value) {
  mustHaveMemory(dbus_message_iter_append_basic(&place_, type, value));
}

// libdbus aborts a process that hands it a string that is not valid for D-Bus.
void BusWriter::text(std::string_view value) {
  const std::string carried = busText(value);
  const char* const bytes = carried.c_str();
  basic(DBUS_TYPE_STRING, &bytes);
}

void BusWriter::texts(const std::vector<std::string>& values) {
  array("s", [&values](BusWriter& elements) {
    for (const std::string& value : values) elements.text(value);
  });
}

void BusWriter::flag(bool value) {
  const dbus_bool_t carried = value ? 1 : 0;
  basic(DBUS_TYPE_BOOLEAN, &carried);
}

void BusWriter::contain(int type, const char* contained, const Write& write) {
  BusWriter inside;
  mustHaveMemory(dbus_message_iter_open_container(&place_, type, contained, &inside.place_));
  write(inside);
  mustHaveMemory(dbus_message_iter_close_container(&place_, &inside.place_));
}

void BusWriter::entry(std::string_view key, std::string_view value) {
  contain(DBUS_TYPE_DICT_ENTRY, nullptr, [&](BusWriter& entry) {
    entry.text(key);
    entry.text(value);
  });
}

void BusWriter::variantEntry(std::string_view key, const char* type, const Write& write) {
  contain(DBUS_TYPE_DICT_ENTRY, nullptr, [&](BusWriter& entry) {
    entry.text(key);
    entry.variant(type, write);
  });
}

void BusWriter::textEntry(std::string_view key, std::string_view value) {
  variantEntry(key, "s", [value](BusWriter& variant) { variant.text(value); });
}

std::optional<bool> BusReader::flag() {
  const auto value = basic<dbus_bool_t>(DBUS_TYPE_BOOLEAN);
  return value ? std::optional(*value != 0) : std::nullopt;
}

std::vector<std::string> BusReader::texts() {
  std::vector<std::string> result;
  if (type() != "as") return result;
  BusReader elements = inside();
  while (const auto element = elements.text()) result.emplace_back(*element);
  skip();
  return result;
}

std::string BusReader::type() {
  const std::unique_ptr<char, decltype(&dbus_free)> signature(
      dbus_message_iter_get_signature(&place_), dbus_free);
  if (!signature) throw std::bad_alloc();
  return signature.get();
}

bool BusReader::atEnd() { return dbus_message_iter_get_arg_type(&place_) == DBUS_TYPE_INVALID; }

BusReader BusReader::inside() {
  BusReader reader;
  dbus_message_iter_recurse(&place_, &reader.place_);
  return reader;
}

}  // namespace kivo::linux_platform
