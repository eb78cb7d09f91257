#include "phone/value_listing.h"

#include <algorithm>
#include <array>

#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo {
namespace {

using Value = platform::UserDefaults::Value;
using linux_platform::columnsOf;
using linux_platform::paddedTo;

// In the order of the alternatives of Value.
constexpr std::array<const char*, 4> typeNames{"other", "integer", "float", "text"};
constexpr std::size_t typeWidth = 7;
constexpr std::string_view columnGap = "  ";

}  // namespace

std::optional<std::string> ValueListing::valueText(const Value& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const number = std::get_if<double>(&value)) return platform::doubleText(*number);
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    return platform::integerText(*number);
  }
  return std::nullopt;
}

std::string ValueListing::text(const std::map<std::string, Value>& values, Controls controls) {
  if (values.empty()) return "Nothing is stored.\n";
  const auto shown = [controls](const std::string& text) {
    return controls == Controls::escaped ? linux_platform::escapedControls(text) : text;
  };
  std::size_t keyWidth = 0;
  for (const auto& [key, value] : values) keyWidth = std::max(keyWidth, columnsOf(shown(key)));

  std::string listing;
  for (const auto& [key, value] : values) {
    listing += paddedTo(keyWidth, shown(key)).append(columnGap);
    listing += paddedTo(typeWidth, typeNames.at(value.index())).append(columnGap);
    listing += shown(valueText(value).value_or("(neither text nor number)")) + "\n";
  }
  return listing;
}

}  // namespace kivo
