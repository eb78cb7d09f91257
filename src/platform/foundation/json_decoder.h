// Decodes JSON objects by key and strictly by type. JSONEncoder encodes them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo::platform {

/// One JSON object of a decoded document, which it keeps alive. Members are looked up by exact
/// name. The last of several members with one name counts; unknown members are ignored.
///
/// Each `decode...` throws a DecodingError with the member's path: keyNotFound when the member is
/// absent, valueNotFound when it is null, typeMismatch when it has another type. The `...IfPresent`
/// forms return nullopt for an absent or null member.
class JSONObject {
 public:
  [[nodiscard]] bool decodeBool(std::string_view key) const;
  [[nodiscard]] std::string decodeString(std::string_view key) const;
  /// Returns any JSON number as the nearest double.
  [[nodiscard]] double decodeDouble(std::string_view key) const;
  /// Returns an integral number in any notation (3, 3.0, 3e0) within the signed 64-bit range.
  /// Throws dataCorrupted for any other number.
  [[nodiscard]] std::int64_t decodeInteger(std::string_view key) const;
  [[nodiscard]] std::optional<std::string> decodeStringIfPresent(std::string_view key) const;
  [[nodiscard]] std::optional<double> decodeDoubleIfPresent(std::string_view key) const;
  [[nodiscard]] std::optional<JSONObject> decodeObjectIfPresent(std::string_view key) const;

  /// Returns the number of distinct members.
  [[nodiscard]] std::size_t memberCount() const;

 private:
  friend class JSONDecoder;
  struct Node;
  explicit JSONObject(std::shared_ptr<const Node> node);
  std::shared_ptr<const Node> node_;
};

/// Decodes a document (UTF-8, with or without a byte order mark). Throws dataCorrupted when it is
/// not exactly one JSON value with optional blanks around it, or when a number anywhere in it is
/// beyond the range of a double. The depth of nesting is limited by memory only.
class JSONDecoder {
 public:
  /// Returns the object at the top of `document`. Throws typeMismatch for any other value.
  static JSONObject object(std::string_view document);

  /// Returns the objects of the array at the top of `document`, in order. Throws typeMismatch when
  /// it is not an array or an element is not an object.
  static std::vector<JSONObject> arrayOfObjects(std::string_view document);
};

}  // namespace kivo::platform
