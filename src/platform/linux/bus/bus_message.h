// The messages of the bus, and their values, written and read one after the other. Included by the
// .cpp files that speak on the bus, nowhere else.
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

/// Shares `message`, which may be null, with its other owners.
BusMessage sharedMessage(DBusMessage* message);
/// Takes over the only reference to `message`. Throws std::bad_alloc when that is null.
BusMessage ownedMessage(DBusMessage* message);

/// Appends to a message, which outlives it. Types are D-Bus type codes. Throws std::bad_alloc when
/// there is no memory left.
class BusWriter {
 public:
  using Write = std::function<void(BusWriter&)>;

  explicit BusWriter(DBusMessage* message) { dbus_message_iter_init_append(message, &place_); }
  BusWriter(const BusWriter&) = delete;
  BusWriter& operator=(const BusWriter&) = delete;

  /// Any bytes: those that D-Bus cannot carry are replaced, as by `busText`.
  void text(std::string_view value);
  void texts(const std::vector<std::string>& values);
  void integer(std::int32_t value) { basic(DBUS_TYPE_INT32, &value); }
  void natural(std::uint32_t value) { basic(DBUS_TYPE_UINT32, &value); }
  void number(double value) { basic(DBUS_TYPE_DOUBLE, &value); }
  void flag(bool value);

  /// `write` appends the elements, each of the type `element`.
  void array(const char* element, const Write& write) { contain(DBUS_TYPE_ARRAY, element, write); }
  void structure(const Write& write) { contain(DBUS_TYPE_STRUCT, nullptr, write); }
  /// An entry of an array of {ss}.
  void entry(std::string_view key, std::string_view value);
  /// An entry of an array of {sv}: `write` appends its one value, of the type `type`.
  void variantEntry(std::string_view key, const char* type, const Write& write);
  void textEntry(std::string_view key, std::string_view value);
  void variant(const char* type, const Write& write) { contain(DBUS_TYPE_VARIANT, type, write); }

 private:
  BusWriter() = default;
  void basic(int type, const void* value);
  void contain(int type, const char* contained, const Write& write);

  DBusMessageIter place_{};
};

/// A call of `method`, with the arguments that `write` appends. `service` is the callee's bus name.
BusMessage methodCall(const BusObject& object, const char* method,
                      const BusWriter::Write& write = nullptr);

/// Reads a message, which outlives it and the texts that it yields. Each function yields the next
/// value and moves behind it; it yields nothing and does not move where the next value has another
/// type, or there is no next one.
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
  /// Of an array of texts; empty for a value of another type.
  std::vector<std::string> texts();

  [[nodiscard]] bool atEnd();
  void skip() { dbus_message_iter_next(&place_); }
  /// The type of the next value, or of the rest of the container, as D-Bus writes it: "s", "a{sv}".
  [[nodiscard]] std::string type();
  /// Reads within the next value, which must be a container, and does not move.
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
