#include "server/device_secret.h"

#include <array>
#include <span>

#include <openssl/sha.h>
#include <sys/random.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::server {
namespace {

std::string hexadecimal(std::span<const unsigned char> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 0x0FU];
  }
  return text;
}

}  // namespace

std::string DeviceSecret::make() {
  std::array<unsigned char, 16> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw linux_platform::Failure("the kernel gives no random bytes");
  }
  return hexadecimal(bytes);
}

std::string DeviceSecret::hash(std::string_view secret) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
  SHA256(reinterpret_cast<const unsigned char*>(secret.data()), secret.size(), digest.data());
  return hexadecimal(digest);
}

}  // namespace kivo::server
