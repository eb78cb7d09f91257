#include "platform/linux/process/bus_message.h"

#include <new>

#include "platform/linux/process/bus_text.h"

namespace kivo::linux_platform {
namespace {

void mustHaveMemory(dbus_bool_t appended) {
  if (!appended) throw std::bad_alloc();
}

}  // namespace

void BusWriter::basic(int type, const void* value) {
  mustHaveMemory(dbus_message_iter_append_basic(&place_, type, value));
}

// The bus library stops a process that hands it anything else than a text.
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

std::optional<std::string> BusReader::text() { return basic<const char*>(DBUS_TYPE_STRING); }

std::vector<std::string> BusReader::texts() {
  std::vector<std::string> result;
  BusReader elements = inside();
  while (auto element = elements.text()) result.push_back(*std::move(element));
  skip();
  return result;
}

bool BusReader::atEnd() { return dbus_message_iter_get_arg_type(&place_) == DBUS_TYPE_INVALID; }

BusReader BusReader::inside() {
  BusReader reader;
  dbus_message_iter_recurse(&place_, &reader.place_);
  return reader;
}

}  // namespace kivo::linux_platform
