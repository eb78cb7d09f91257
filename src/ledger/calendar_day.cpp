#include "ledger/calendar_day.h"

#include <chrono>
#include <string>

namespace kivo::ledger {
namespace {

// The value of `text` when it consists of digits only, else -1.
int numberOf(std::string_view text) {
  int number = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return -1;
    number = number * 10 + (digit - '0');
  }
  return number;
}

}  // namespace

bool isDay(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  const int year = numberOf(text.substr(0, 4));
  const int month = numberOf(text.substr(5, 2));
  const int day = numberOf(text.substr(8));
  if (year < 0 || month < 0 || day < 0) return false;
  return std::chrono::year_month_day(std::chrono::year(year),
                                     std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day)))
      .ok();
}

bool isMonth(std::string_view text) { return text.size() == 7 && isDay(std::string(text) + "-01"); }

}  // namespace kivo::ledger
