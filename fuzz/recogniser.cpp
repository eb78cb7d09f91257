// A message is read without a crash, in time linear in its length; a booked sum is above zero, in
// the book's currency, and its digits are digits of the message. The first byte chooses the
// currency.
#include <ctime>
#include <string>

#include "property.h"
#include "recognition/reading.h"
#include "recognition/spelling.h"

namespace {

using namespace kivo::recognition;

constexpr kivo::money::CurrencyCode books[] = {"EGP", "INR", "KWD", "JPY",
                                               "EUR", "ZAR", "XXX", "USD"};

// The digits without separators and outer zeros, which a message may write in several ways.
std::string bareDigits(std::string_view text) {
  std::string digits;
  for (const char character : text) {
    if (character >= '0' && character <= '9') digits += character;
  }
  const std::size_t first = digits.find_first_not_of('0');
  if (first == std::string::npos) return {};
  return digits.substr(first, digits.find_last_not_of('0') - first + 1);
}

void requireASumOfTheText(const Reading& reading, const std::string& text,
                          const kivo::money::CurrencyCode& book) {
  kivo::fuzz::require(reading.amount.has_value(), "a transaction has a sum");
  kivo::fuzz::require(reading.amount->currency == book, "a foreign sum is not booked");
  kivo::fuzz::require(reading.amount->minorUnits > 0, "a booked sum is above zero");
  kivo::fuzz::require(!reading.description.empty(), "a transaction has a description");
  if (text.starts_with("Paid ")) return;  // that sentence may hold an exponent
  kivo::fuzz::require(
      bareDigits(readableForm(text)).find(bareDigits(amountText(*reading.amount))) !=
          std::string::npos,
      "the digits of a booked sum are in the text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  const kivo::money::CurrencyCode book = books[data[0] % std::size(books)];
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  // Of the processor, since a busy machine may stop the process for long.
  const std::clock_t begin = std::clock();
  const Reading reading = read(text, book);
  const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
  // Far above what a byte takes in a build with sanitizers, far below quadratic time.
  constexpr double start = 0.2;
  constexpr double perByte = 0.0002;
  kivo::fuzz::require(seconds < start + perByte * static_cast<double>(size), "time is linear");
  if (reading.outcome == Outcome::transaction) requireASumOfTheText(reading, text, book);
  return 0;
}
