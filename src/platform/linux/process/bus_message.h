// The values in the messages of the bus, written and read one after the other. Sends none; included
// by the .cpp files that speak on the bus, nowhere else.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <dbus/dbus.h>

namespace kivo::linux_platform {

struct UnrefMessage {
  void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, UnrefMessage>;

/// Appends to a message, which outlives it. Types are in the bus's letters. Throws std::bad_alloc
/// when there is no memory left.
class BusWriter {
 public:
  using Write = std::function<void(BusWriter&)>;

  explicit BusWriter(DBusMessage* message) { dbus_message_iter_init_append(message, &place_); }
  BusWriter(const BusWriter&) = delete;
  BusWriter& operator=(const BusWriter&) = delete;

  /// Any bytes: what the bus cannot carry is replaced, as by `busText`.
  void text(std::string_view value);
  void texts(const std::vector<std::string>& values);
  void integer(std::int32_t value) { basic(DBUS_TYPE_INT32, &value); }
  void number(double value) { basic(DBUS_TYPE_DOUBLE, &value); }
  void flag(bool value);

  /// What `write` appends are the elements, each of the type `element`.
  void array(const char* element, const Write& write) { contain(DBUS_TYPE_ARRAY, element, write); }
  void structure(const Write& write) { contain(DBUS_TYPE_STRUCT, nullptr, write); }
  /// An entry of an array of {ss}.
  void entry(std::string_view key, std::string_view value);
  /// An entry of an array of {sv}: what `write` appends is its one value, of the type `type`.
  void variantEntry(std::string_view key, const char* type, const Write& write);
  void textEntry(std::string_view key, std::string_view value);
  void variant(const char* type, const Write& write) { contain(DBUS_TYPE_VARIANT, type, write); }

 private:
  BusWriter() = default;
  void basic(int type, const void* value);
  void contain(int type, const char* contained, const Write& write);

  DBusMessageIter place_{};
};

/// Reads a message, which outlives it. What is read yields the next value and goes on behind it; it
/// yields nothing and stays where the next value is of another type, or there is none.
class BusReader {
 public:
  explicit BusReader(DBusMessage* message) { dbus_message_iter_init(message, &place_); }

  std::optional<std::string> text();
  std::optional<std::int32_t> integer() { return basic<std::int32_t>(DBUS_TYPE_INT32); }
  std::optional<double> number() { return basic<double>(DBUS_TYPE_DOUBLE); }
  /// Of an array of texts, which must be next.
  std::vector<std::string> texts();

  [[nodiscard]] bool atEnd();
  void skip() { dbus_message_iter_next(&place_); }
  /// Reads within the next value, which must be a container, and stays in front of it.
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

  DBusMessageIter place_{};
};

}  // namespace kivo::linux_platform
