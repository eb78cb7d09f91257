// Reads JSON objects by key, strictly by type. Writes none: that is JSONEncoder.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::platform {

/// One JSON object of a decoded document, which it keeps alive. Members are looked up by exact
/// name; of doubled members the last one counts; members that nobody asks for are ignored.
///
/// Each `decode...` throws a DecodingError that carries the path of the member: keyNotFound when
/// the member is absent, valueNotFound when it is null, typeMismatch when it is of another type.
/// The `...IfPresent` forms answer none for an absent or null member instead.
class JSONObject {
 public:
  [[nodiscard]] bool decodeBool(std::string_view key) const;
  [[nodiscard]] std::string decodeString(std::string_view key) const;
  /// Any JSON number, as the nearest double.
  [[nodiscard]] double decodeDouble(std::string_view key) const;
  /// An integral number in whatever form it is written (3, 3.0, 3e0) within the signed 64-bit
  /// range; any other number is dataCorrupted.
  [[nodiscard]] std::int64_t decodeInteger(std::string_view key) const;
  [[nodiscard]] std::optional<std::string> decodeStringIfPresent(std::string_view key) const;
  [[nodiscard]] std::optional<double> decodeDoubleIfPresent(std::string_view key) const;
  [[nodiscard]] std::optional<JSONObject> decodeObjectIfPresent(std::string_view key) const;

 private:
  friend class JSONDecoder;
  struct Node;
  explicit JSONObject(std::shared_ptr<const Node> node);
  std::shared_ptr<const Node> node_;
};

/// Reads a document (UTF-8, a byte order mark in front is skipped). What is not exactly one JSON
/// value, surrounded by blanks at most, is dataCorrupted, and so is a number past the range of a
/// double, wherever it stands. Values may be nested as deep as memory lasts.
class JSONDecoder {
 public:
  /// The object at the top of `document`; typeMismatch for any other top-level value.
  static JSONObject object(std::string_view document);

  /// The objects of the array at the top of `document`, in order; typeMismatch when it is no array
  /// or one element is no object.
  static std::vector<JSONObject> arrayOfObjects(std::string_view document);
};

}  // namespace kivo::platform
