#include "platform/foundation/json_encoder.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "platform/foundation/errors.h"
#include "platform/foundation/number_text.h"

namespace kivo::platform {
namespace {

// Whether JSON needs no escape for `text`. Most texts need none, and the library's own check would
// be a third of the time of an offline run with a full queue.
bool isPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    return character >= ' ' && character <= '~' && character != '"' && character != '\\';
  });
}

// Callers pass valid UTF-8. Invalid bytes are repaired rather than refused, so that a message is
// not lost.
std::string quoted(std::string_view text) {
  if (isPlain(text)) return '"' + std::string(text) + '"';
  using nlohmann::json;
  return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace

struct JSONEncoder::Node {
  /// The text between the braces.
  std::string members;

  void add(std::string_view key, std::string_view valueText) {
    if (!members.empty()) members += ',';
    members += quoted(key);
    members += ':';
    members += valueText;
  }
};

JSONEncoder::JSONEncoder() : node_(std::make_unique<Node>()) {}
JSONEncoder::JSONEncoder(JSONEncoder&& other) noexcept = default;
JSONEncoder& JSONEncoder::operator=(JSONEncoder&& other) noexcept = default;
JSONEncoder::~JSONEncoder() = default;

void JSONEncoder::encodeBool(std::string_view key, bool value) {
  node_->add(key, value ? "true" : "false");
}

void JSONEncoder::encodeString(std::string_view key, std::string_view value) {
  node_->add(key, quoted(value));
}

void JSONEncoder::encodeDouble(std::string_view key, double value) {
  if (!std::isfinite(value)) {
    throw NSError("JSONEncoder", 1, "A number that is not finite cannot be written as JSON");
  }
  node_->add(key, doubleText(value));
}

void JSONEncoder::encodeInteger(std::string_view key, std::int64_t value) {
  node_->add(key, integerText(value));
}

void JSONEncoder::encodeNull(std::string_view key) { node_->add(key, "null"); }

void JSONEncoder::encodeObjects(std::string_view key, std::span<const JSONEncoder> values) {
  node_->add(key, arrayText(values));
}

void JSONEncoder::encodeStrings(std::string_view key, std::span<const std::string> values) {
  std::string text;
  for (const std::string& value : values) {
    if (!text.empty()) text += ',';
    text += quoted(std::string_view(value));
  }
  node_->add(key, "[" + text + "]");
}

void JSONEncoder::encodeObject(std::string_view key, JSONEncoder value) {
  node_->add(key, value.text());
}

void JSONEncoder::encodeStringIfPresent(std::string_view key,
                                        const std::optional<std::string>& value) {
  if (value) encodeString(key, *value);
}

void JSONEncoder::encodeDoubleIfPresent(std::string_view key, std::optional<double> value) {
  if (value) encodeDouble(key, *value);
}

std::string JSONEncoder::text() const { return '{' + node_->members + '}'; }

std::string JSONEncoder::arrayText(std::span<const JSONEncoder> objects) {
  std::string text = "[";
  for (const JSONEncoder& object : objects) {
    if (text.size() > 1) text += ',';
    text += object.text();
  }
  return text + ']';
}

}  // namespace kivo::platform
