#include "platform/foundation/json_decoder.h"

#include <cmath>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "platform/foundation/c_locale.h"
#include "platform/foundation/errors.h"

namespace kivo::platform {
namespace {

using nlohmann::json;
using Kind = DecodingError::Kind;

/// Sets the calling thread's locale to C for its lifetime, since the parser reads numbers in the
/// thread's locale.
class InCLocale {
 public:
  InCLocale() : before_(uselocale(cLocale())) {}
  ~InCLocale() { uselocale(before_); }
  InCLocale(const InCLocale&) = delete;
  InCLocale& operator=(const InCLocale&) = delete;

 private:
  locale_t before_;
};

// A parsed value is never copied or written: both recurse as deep as it is nested, and the sender
// of the document decides how deep that is.
std::shared_ptr<const json> parse(std::string_view document) {
  // The parser stops at a NUL and would not see what follows.
  if (document.find('\0') != std::string_view::npos) throw DecodingError(Kind::dataCorrupted, "");
  const InCLocale inCLocale;
  auto value = std::make_shared<const json>(json::parse(document, nullptr, false));
  if (value->is_discarded()) throw DecodingError(Kind::dataCorrupted, "");
  return value;
}

void requireType(const json& value, json::value_t type, const std::string& path) {
  if (value.type() == type) return;
  throw DecodingError(Kind::typeMismatch, path, json(type).type_name(), value.type_name());
}

void requireNumber(const json& value, const std::string& path) {
  if (value.is_number()) return;
  throw DecodingError(Kind::typeMismatch, path, "number", value.type_name());
}

// The parser makes a signed integer of a text with a minus only: a signed 0 was written "-0".
bool isNegativeZero(const json& value) {
  return value.type() == json::value_t::number_integer && value.get<std::int64_t>() == 0;
}

std::int64_t integer(const json& value, const std::string& path) {
  using Limits = std::numeric_limits<std::int64_t>;
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (std::in_range<std::int64_t>(number)) return static_cast<std::int64_t>(number);
  } else if (value.is_number_integer()) {
    return value.get<std::int64_t>();
  } else {
    // Both limits are excluded: the upper one does not fit, and the text of the lower one may have
    // been a number below it.
    constexpr auto limit = -static_cast<double>(Limits::min());
    const auto number = value.get<double>();
    if (std::trunc(number) == number && std::fabs(number) < limit) {
      return static_cast<std::int64_t>(number);
    }
  }
  throw DecodingError(Kind::dataCorrupted, path, "integral number");
}

}  // namespace

struct JSONObject::Node {
  /// Keeps `object` alive, which is the document or a part of it.
  std::shared_ptr<const json> document;
  const json& object;
  std::string path;

  Node(std::shared_ptr<const json> wholeDocument, const json& value, std::string itsPath)
      : document(std::move(wholeDocument)), object(value), path(std::move(itsPath)) {
    requireType(object, json::value_t::object, path);
  }

  [[nodiscard]] std::string pathOf(std::string_view key) const {
    return (path.empty() ? "" : path + ".") + std::string(key);
  }

  /// Null when the member is absent or null.
  [[nodiscard]] const json* findPresent(std::string_view key) const {
    const auto member = object.find(key);
    return member == object.end() || member->is_null() ? nullptr : &*member;
  }

  [[nodiscard]] const json& require(std::string_view key) const {
    if (const json* const member = findPresent(key)) return *member;
    throw DecodingError(object.contains(key) ? Kind::valueNotFound : Kind::keyNotFound,
                        pathOf(key));
  }
};

JSONObject::JSONObject(std::shared_ptr<const Node> node) : node_(std::move(node)) {}

bool JSONObject::decodeBool(std::string_view key) const {
  const json& value = node_->require(key);
  requireType(value, json::value_t::boolean, node_->pathOf(key));
  return value.get<bool>();
}

std::string JSONObject::decodeString(std::string_view key) const {
  const json& value = node_->require(key);
  requireType(value, json::value_t::string, node_->pathOf(key));
  return value.get_ref<const std::string&>();
}

double JSONObject::decodeDouble(std::string_view key) const {
  const json& value = node_->require(key);
  requireNumber(value, node_->pathOf(key));
  if (isNegativeZero(value)) return -0.0;
  return value.get<double>();
}

std::int64_t JSONObject::decodeInteger(std::string_view key) const {
  const json& value = node_->require(key);
  requireNumber(value, node_->pathOf(key));
  return integer(value, node_->pathOf(key));
}

std::optional<std::string> JSONObject::decodeStringIfPresent(std::string_view key) const {
  if (node_->findPresent(key) == nullptr) return std::nullopt;
  return decodeString(key);
}

std::optional<double> JSONObject::decodeDoubleIfPresent(std::string_view key) const {
  if (node_->findPresent(key) == nullptr) return std::nullopt;
  return decodeDouble(key);
}

std::optional<JSONObject> JSONObject::decodeObjectIfPresent(std::string_view key) const {
  const json* const value = node_->findPresent(key);
  if (value == nullptr) return std::nullopt;
  return JSONObject(std::make_shared<const Node>(node_->document, *value, node_->pathOf(key)));
}

std::size_t JSONObject::memberCount() const { return node_->object.size(); }

JSONObject JSONDecoder::object(std::string_view document) {
  const auto top = parse(document);
  return JSONObject(std::make_shared<const JSONObject::Node>(top, *top, ""));
}

std::vector<JSONObject> JSONDecoder::arrayOfObjects(std::string_view document) {
  const auto top = parse(document);
  requireType(*top, json::value_t::array, "");
  std::vector<JSONObject> objects;
  objects.reserve(top->size());
  for (const json& element : *top) {
    std::string path = "[" + std::to_string(objects.size()) + "]";
    objects.push_back(
        JSONObject(std::make_shared<const JSONObject::Node>(top, element, std::move(path))));
  }
  return objects;
}

}  // namespace kivo::platform
