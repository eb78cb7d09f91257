// Property: a text is a number exactly when C's strtod takes all of it without skipping blanks, and
// has the same value; and every double, also one made of the input's first bytes, reads back from
// its own text.
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/foundation/number_text.h"
#include "property.h"

namespace {

using namespace kivo::platform;

bool isSame(double left, double right) {
  return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right) ||
         (std::isnan(left) && std::isnan(right));
}

// The process keeps the C locale, so that strtod here is that of the C locale.
void requireWhatStrtodReads(const std::string& text) {
  char* end = nullptr;
  const double expected = std::strtod(text.c_str(), &end);
  const bool isNumber = !text.empty() && std::isspace(static_cast<unsigned char>(text[0])) == 0 &&
                        end == text.data() + text.size();
  const auto number = doubleFromText(text);
  kivo::fuzz::require(number.has_value() == isNumber, "a text is a number as strtod sees it");
  kivo::fuzz::require(!number || isSame(*number, expected), "a number is the one strtod reads");
}

void requireReadsBack(double number) {
  const std::string text = doubleText(number);
  const auto back = doubleFromText(text);
  kivo::fuzz::require(back && isSame(*back, number), "a double reads back from its text");
  kivo::fuzz::require(doubleText(*back) == text, "equal doubles have the same text");
  const bool showsPoint = text.find_first_of(".en") != std::string::npos;
  kivo::fuzz::require(showsPoint, "a whole number has a digit after the point");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  requireWhatStrtodReads(text);
  if (const auto number = doubleFromText(text)) requireReadsBack(*number);
  if (size >= sizeof(double)) {
    double number = 0;
    std::memcpy(&number, data, sizeof number);
    requireReadsBack(number);
  }
  return 0;
}
