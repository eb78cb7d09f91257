#include "platform/foundation/character_set.h"

#include <algorithm>
#include <array>

namespace kivo::platform {
namespace {

using namespace std::string_view_literals;

// The tab and category Zs, each as its UTF-8 bytes.
constexpr std::array blanks = {
    "\t"sv,     " "sv,      "\u00A0"sv, "\u1680"sv, "\u2000"sv, "\u2001"sv,
    "\u2002"sv, "\u2003"sv, "\u2004"sv, "\u2005"sv, "\u2006"sv, "\u2007"sv,
    "\u2008"sv, "\u2009"sv, "\u200A"sv, "\u202F"sv, "\u205F"sv, "\u3000"sv,
};

std::size_t leadingBlank(std::string_view text) {
  const auto blank = std::find_if(blanks.begin(), blanks.end(),
                                  [text](auto each) { return text.starts_with(each); });
  return blank == blanks.end() ? 0 : blank->size();
}

std::size_t trailingBlank(std::string_view text) {
  const auto blank = std::find_if(blanks.begin(), blanks.end(),
                                  [text](auto each) { return text.ends_with(each); });
  return blank == blanks.end() ? 0 : blank->size();
}

}  // namespace

std::string_view trimmingWhitespaces(std::string_view text) {
  while (const std::size_t size = leadingBlank(text)) text.remove_prefix(size);
  while (const std::size_t size = trailingBlank(text)) text.remove_suffix(size);
  return text;
}

}  // namespace kivo::platform
