#include "platform/linux/bus/bus_message.h"

#include <new>

#include "platform/foundation/utf8.h"

namespace kivo::linux_platform {
namespace {

void mustHaveMemory(dbus_bool_t appended) {
  if (!appended) throw std::bad_alloc();
}

// The first character of `text`, which is valid UTF-8 and not empty.
std::string_view firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  return text.substr(0, lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4);
}

// D-Bus strings contain no NUL, and receivers refuse noncharacters (U+FDD0 to U+FDEF, and the last
// two of each plane).
bool isValidForBus(std::string_view character) {
  if (character == std::string_view("\0", 1)) return false;
  if (character >= "\uFDD0" && character <= "\uFDEF") return false;
  if (character.size() < 3) return true;
  const bool endOfPlane =
      (static_cast<unsigned char>(character[character.size() - 3]) & 0x0F) == 0x0F &&
      character[character.size() - 2] == '\xBF' && character.back() >= '\xBE';
  return !endOfPlane;
}

// `text` with U+FFFD for each byte and character that is not valid for D-Bus. libdbus aborts a
// process that passes it another string.
std::string validForBus(std::string_view text) {
  constexpr std::string_view replacement = "\uFFFD";
  const std::string valid = platform::repairedUtf8(text);
  std::string result;
  for (std::size_t at = 0; at < valid.size();) {
    const std::string_view character = firstCharacter(std::string_view(valid).substr(at));
    result += isValidForBus(character) ? character : replacement;
    at += character.size();
  }
  return result;
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

void BusWriter::text(std::string_view value) {
  const std::string valid = validForBus(value);
  const char* const bytes = valid.c_str();
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
