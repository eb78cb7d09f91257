// Property: a text is an integer exactly when it is an optional sign and digits, within 64 bits,
// with the value of strtoll; and every integer, also one made of the input's first bytes, reads
// back from its own text.
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/foundation/number_text.h"
#include "property.h"

namespace {

using namespace kivo::platform;

bool isSignAndDigits(std::string text) {
  if (text.starts_with('+') || text.starts_with('-')) text.erase(0, 1);
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

void requireWhatStrtollReads(const std::string& text) {
  errno = 0;
  const long long expected = std::strtoll(text.c_str(), nullptr, 10);
  const bool isInteger = isSignAndDigits(text) && errno == 0;
  const auto number = integerFromText(text);
  kivo::fuzz::require(number.has_value() == isInteger, "a text is an integer by its form");
  kivo::fuzz::require(!number || *number == expected, "an integer is the one strtoll reads");
}

void requireReadsBack(std::int64_t number) {
  kivo::fuzz::require(integerFromText(integerText(number)) == number,
                      "an integer reads back from its text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  requireWhatStrtollReads(text);
  if (size >= sizeof(std::int64_t)) {
    std::int64_t number = 0;
    std::memcpy(&number, data, sizeof number);
    requireReadsBack(number);
  }
  return 0;
}
