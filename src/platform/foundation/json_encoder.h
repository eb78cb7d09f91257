// Encodes JSON objects member by member. JSONDecoder decodes them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kivo::platform {

/// Builds one JSON object as UTF-8 without blanks. Members are written in the order of the calls.
class JSONEncoder {
 public:
  JSONEncoder();
  JSONEncoder(JSONEncoder&& other) noexcept;
  JSONEncoder& operator=(JSONEncoder&& other) noexcept;
  ~JSONEncoder();

  void encodeBool(std::string_view key, bool value);
  void encodeString(std::string_view key, std::string_view value);
  /// Throws NSError when `value` is infinite or NaN, which JSON cannot represent.
  void encodeDouble(std::string_view key, double value);
  void encodeInteger(std::string_view key, std::int64_t value);
  void encodeNull(std::string_view key);
  void encodeObject(std::string_view key, JSONEncoder value);
  void encodeObjects(std::string_view key, std::span<const JSONEncoder> values);
  void encodeStrings(std::string_view key, std::span<const std::string> values);
  /// An empty optional leaves the member out; it is not written as null.
  void encodeStringIfPresent(std::string_view key, const std::optional<std::string>& value);
  void encodeDoubleIfPresent(std::string_view key, std::optional<double> value);

  /// Returns the object's text.
  [[nodiscard]] std::string text() const;

  /// Returns the text of an array of `objects`.
  static std::string arrayText(std::span<const JSONEncoder> objects);

 private:
  struct Node;
  std::unique_ptr<Node> node_;
};

}  // namespace kivo::platform
