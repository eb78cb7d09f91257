#include "platform/linux/foundation/markup_text.h"

namespace kivo::linux_platform {

std::string escapedMarkup(std::string_view text) {
  std::string result;
  for (const char byte : text) {
    switch (byte) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += byte;
    }
  }
  return result;
}

}  // namespace kivo::linux_platform
