#include "platform/foundation/uuid.h"

#include <array>
#include <cerrno>
#include <string_view>

#include <sys/random.h>

#include "platform/foundation/fatal_stop.h"

namespace kivo::platform {
namespace {

std::array<unsigned char, 16> randomBytes() {
  std::array<unsigned char, 16> bytes;
  // So few bytes come whole or not at all. A signal may interrupt the call before them.
  while (getrandom(bytes.data(), bytes.size(), 0) < 0) {
    if (errno != EINTR) fatalStop("the kernel gives no random bytes");
  }
  return bytes;
}

}  // namespace

std::string UUID::uuidString() {
  constexpr std::string_view hexadecimal = "0123456789ABCDEF";
  auto bytes = randomBytes();
  bytes[6] = static_cast<unsigned char>(0x40 | (bytes[6] & 0x0F));  // version 4
  bytes[8] = static_cast<unsigned char>(0x80 | (bytes[8] & 0x3F));  // its variant

  std::string text;
  text.reserve(36);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += hexadecimal[bytes[i] >> 4];
    text += hexadecimal[bytes[i] & 0x0F];
  }
  return text;
}

}  // namespace kivo::platform
