#include "platform/linux/process/terminal_text.h"

#include <array>
#include <cstdio>

#include <unistd.h>

namespace kivo::linux_platform {
namespace {

std::string escape(unsigned character) {
  if (character == '\n') return "\\n";
  if (character == '\r') return "\\r";
  if (character == '\t') return "\\t";
  std::array<char, 8> digits{};
  std::snprintf(digits.data(), digits.size(), "\\x%02x", character);
  return digits.data();
}

}  // namespace

std::string escapedControls(std::string_view text) {
  std::string escaped;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const auto next = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0U;
    if (byte < 0x20 || byte == 0x7f) {
      escaped += escape(byte);
    } else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {  // U+0080 to U+009F
      escaped += escape(next);
      ++at;
    } else {
      escaped += text[at];
    }
  }
  return escaped;
}

std::string forStandardOutput(std::string_view text) {
  return isatty(STDOUT_FILENO) == 1 ? escapedControls(text) : std::string(text);
}

}  // namespace kivo::linux_platform
