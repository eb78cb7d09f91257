// Writes and reads the values of bus messages, in order. Included by the .cpp files that speak on
// the bus, nowhere else.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <dbus/dbus.h>

#include "platform/linux/bus/bus_connection.h"
#include "platform/linux/bus/bus_object.h"

namespace kivo::linux_platform {

/// Returns a further reference to `message`, which may be null.
BusMessage sharedMessage(DBusMessage* message);
/// Takes over the only reference to `message`. Throws std::bad_alloc when that is null.
BusMessage ownedMessage(DBusMessage* message);

/// Appends values to a message, which must outlive this object. Types are D-Bus type codes. Throws
/// std::bad_alloc when there is no memory left.
class BusWriter {
 public:
  using Write = std::function<void(BusWriter&)>;

  explicit BusWriter(DBusMessage* message) { dbus_message_iter_init_append(message, &place_); }
  BusWriter(const BusWriter&) = delete;
  BusWriter& operator=(const BusWriter&) = delete;

  /// Appends `value`, in which U+FFFD replaces bytes and characters that are not valid for D-Bus.
  void text(std::string_view value);
  void texts(const std::vector<std::string>& values);
  void integer(std::int32_t value) { basic(DBUS_TYPE_INT32, &value); }
  void natural(std::uint32_t value) { basic(DBUS_TYPE_UINT32, &value); }
  void number(double value) { basic(DBUS_TYPE_DOUBLE, &value); }
  void flag(bool value);

  /// `write` appends the elements, each of the type `element`.
  void array(const char* element, const Write& write) { contain(DBUS_TYPE_ARRAY, element, write); }
  void structure(const Write& write) { contain(DBUS_TYPE_STRUCT, nullptr, write); }
  /// Appends an entry of an array of {ss}.
  void entry(std::string_view key, std::string_view value);
  /// Appends an entry of an array of {sv}. `write` appends its one value, of the type `type`.
  void variantEntry(std::string_view key, const char* type, const Write& write);
  void textEntry(std::string_view key, std::string_view value);
  void variant(const char* type, const Write& write) { contain(DBUS_TYPE_VARIANT, type, write); }

 private:
  BusWriter() = default;
  void basic(int type, const void* value);
  void contain(int type, const char* contained, const Write& write);

  DBusMessageIter place_{};
};

/// Returns a call of `method` of `object`, with the arguments that `write` appends.
BusMessage methodCall(const BusObject& object, const char* method,
                      const BusWriter::Write& write = nullptr);

/// Reads the values of a message, which must outlive this object and the texts that it returns.
/// Each function returns the next value and moves behind it. It returns nullopt and does not move
/// when the next value has another type, or at the end.
class BusReader {
 public:
  explicit BusReader(DBusMessage* message) { dbus_message_iter_init(message, &place_); }
  explicit BusReader(const BusMessage& message) : BusReader(message.get()) {}

  std::optional<std::string_view> text() { return textOf(DBUS_TYPE_STRING); }
  std::optional<std::string_view> objectPath() { return textOf(DBUS_TYPE_OBJECT_PATH); }
  std::optional<std::int32_t> integer() { return basic<std::int32_t>(DBUS_TYPE_INT32); }
  std::optional<std::uint32_t> natural() { return basic<std::uint32_t>(DBUS_TYPE_UINT32); }
  std::optional<double> number() { return basic<double>(DBUS_TYPE_DOUBLE); }
  std::optional<bool> flag();
  /// Returns the texts of an array; empty when the next value is not an array of texts.
  std::vector<std::string> texts();

  [[nodiscard]] bool atEnd();
  void skip() { dbus_message_iter_next(&place_); }
  /// Returns the type of the next value as D-Bus writes it: "s", "a{sv}".
  [[nodiscard]] std::string type();
  /// Returns a reader of the values in the next value, which must be a container. Does not move.
  [[nodiscard]] BusReader inside();

 private:
  BusReader() = default;

  template <typename Value>
  std::optional<Value> basic(int type) {
    if (dbus_message_iter_get_arg_type(&place_) != type) return std::nullopt;
    Value value{};
    dbus_message_iter_get_basic(&place_, &value);
    skip();
    return value;
  }
  std::optional<std::string_view> textOf(int type) { return basic<const char*>(type); }

  DBusMessageIter place_{};
};

}  // namespace kivo::linux_platform
