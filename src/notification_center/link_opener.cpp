#include "notification_center/link_opener.h"

#include <string_view>

namespace kivo {
namespace {

bool beginsWithScheme(std::string_view link) {
  constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view others = "0123456789+.-";
  const std::string_view scheme = link.substr(0, link.find(':'));
  if (scheme.empty() || scheme.size() == link.size()) return false;
  if (letters.find(scheme.front()) == std::string_view::npos) return false;
  return scheme.find_first_not_of(std::string(letters).append(others)) == std::string_view::npos;
}

}  // namespace

void LinkOpener::open(const std::string& link) {
  if (beginsWithScheme(link)) openers_.start({"xdg-open", link});
}

}  // namespace kivo
