// Property: a date-time that parses is formatted as the same moment, and as the same text when it
// is in UTC already.
#include <string_view>

#include "platform/foundation/iso8601_date_formatter.h"
#include "property.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using kivo::platform::ISO8601DateFormatter;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto moment = ISO8601DateFormatter::date(text);
  if (!moment) return 0;

  const std::string written = ISO8601DateFormatter::string(*moment);
  if (text.ends_with('Z')) {
    kivo::fuzz::require(written == text, "a time in UTC is written as it was read");
  } else {
    kivo::fuzz::require(text.size() == std::string_view("2026-01-31T09:05:07+02:00").size(),
                        "a time that parses has one form");
  }
  // An offset may lead to a year without four digits, which does not parse.
  const bool hasFourDigitYear = written.size() == 20 && written.front() != '-';
  kivo::fuzz::require(!hasFourDigitYear || ISO8601DateFormatter::date(written) == moment,
                      "a moment reads back from its text");
  return 0;
}
