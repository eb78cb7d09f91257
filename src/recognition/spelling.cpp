#include "recognition/spelling.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kivo::recognition {
namespace {

using Replacement = std::pair<std::string_view, std::string_view>;

constexpr auto readableForms = std::to_array<Replacement>({
    {"٫", "."},           {"٬", ","},      {"،", ","},      {"؟", "?"},     {"’", "'"},
    {"‘", "'"},           {"–", "-"},      {"—", "-"},      {"−", "-"},     {"\u00A0", " "},
    {"\u2009", "\u202F"}, {"\u200A", " "}, {"\u3000", " "}, {"\u200B", ""}, {"\u200C", ""},
    {"\u200D", ""},       {"\u200E", ""},  {"\u200F", ""},  {"\u202A", ""}, {"\u202B", ""},
    {"\u202C", ""},       {"\u202D", ""},  {"\u202E", ""},  {"\u2066", ""}, {"\u2067", ""},
    {"\u2068", ""},       {"\u2069", ""},  {"\uFEFF", ""},  {"；", ";"},    {"：", ":"},
    {"，", ","},          {"。", "."},     {"．", "."},     {"।", "."},     {"۔", "."},
});

// Zeros of the scripts whose ten digits follow each other.
constexpr auto zeros = std::to_array<std::string_view>(
    {"٠", "۰", "०", "০", "๐", "０", "੦", "૦", "୦", "௦", "౦", "೦", "൦", "໐", "၀", "០"});

const Replacement* replacementAt(std::string_view text) {
  const auto* const found =
      std::find_if(readableForms.begin(), readableForms.end(),
                   [text](const Replacement& form) { return text.starts_with(form.first); });
  return found == readableForms.end() ? nullptr : found;
}

// The value of a digit of another script at the front of `text`, or -1.
int digitAt(std::string_view text) {
  for (const std::string_view zero : zeros) {
    if (text.size() < zero.size() ||
        text.substr(0, zero.size() - 1) != zero.substr(0, zero.size() - 1)) {
      continue;
    }
    const int value =
        static_cast<unsigned char>(text[zero.size() - 1]) - static_cast<unsigned char>(zero.back());
    if (value >= 0 && value <= 9) return value;
  }
  return -1;
}

bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

constexpr std::string_view stretch = "ـ";

}  // namespace

std::size_t characterLength(std::string_view text) {
  if (text.empty()) return 0;
  std::size_t length = 1;
  while (length < text.size() && length < 4 && !isAscii(text[0]) &&
         (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
    ++length;
  }
  return length;
}

std::string readableForm(std::string_view text) {
  std::string readable;
  readable.reserve(text.size());
  std::size_t letters = 0;  // non-ASCII letters since the last other character
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    const std::string_view character = text.substr(0, length);
    text.remove_prefix(length);
    if (length == 1) {
      readable += character == "\r" ? "" : character == "\t" ? " " : character;
      letters = 0;
      continue;
    }
    if (character == stretch) {  // behind a single letter it sets a preposition off: "لـ Ahmad"
      if (letters == 1) readable += ' ';
      continue;
    }
    ++letters;
    if (const int digit = digitAt(character); digit >= 0) {
      readable += static_cast<char>('0' + digit);
      letters = 0;
    } else if (const auto* const form = replacementAt(character)) {
      readable += form->second;
    } else {
      readable += character;
    }
  }
  return readable;
}

std::size_t wholeCharacters(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text.size();
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80) --limit;
  return limit;
}

}  // namespace kivo::recognition
