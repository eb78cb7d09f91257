#include "money/calendar_day.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace kivo::money {
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

std::chrono::year_month monthOf(std::string_view text) {
  return {std::chrono::year(numberOf(text.substr(0, 4))),
          std::chrono::month(static_cast<unsigned>(numberOf(text.substr(5, 2))))};
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

std::string monthBefore(std::string_view month, int count) {
  const std::chrono::year_month found = monthOf(month) - std::chrono::months(count);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u", static_cast<int>(found.year()),
                static_cast<unsigned>(found.month()));
  return text.data();
}

std::string firstDayOf(const std::string& month) { return month + "-01"; }

std::string lastDayOf(const std::string& month) { return month + "-31"; }

int daysOf(std::string_view month) {
  const auto last = (monthOf(month) / std::chrono::last).day();
  return static_cast<int>(static_cast<unsigned>(last));
}

std::string monthName(std::string_view month) {
  constexpr std::array names{"January", "February", "March",     "April",   "May",      "June",
                             "July",    "August",   "September", "October", "November", "December"};
  const auto number = static_cast<unsigned>(monthOf(month).month());
  return std::string(names.at(number - 1)) + " " + std::string(month.substr(0, 4));
}

}  // namespace kivo::money
