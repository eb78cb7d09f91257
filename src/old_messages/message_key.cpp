#include "old_messages/message_key.h"

#include <array>
#include <cstdint>
#include <span>

#include <openssl/sha.h>

#include "platform/foundation/number_text.h"

namespace kivo::old_messages {
namespace {

std::string inHexadecimal(std::span<const unsigned char> bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

// The most significant byte first.
std::array<unsigned char, 8> bytesOf(std::int64_t number) {
  std::array<unsigned char, 8> bytes{};
  for (std::size_t place = 0; place < bytes.size(); ++place) {
    bytes[place] = static_cast<unsigned char>(number >> (8 * (bytes.size() - 1 - place)));
  }
  return bytes;
}

}  // namespace

std::string keyOf(const OldMessage& message) {
  const std::int64_t time = message.moment ? message.moment->time_since_epoch().count() : 0;
  // Its length ends the sender, which may hold any character.
  const std::string hashed = platform::integerText(time) + " " +
                             std::to_string(message.sender.size()) + " " + message.sender +
                             message.text;
  std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
  SHA256(reinterpret_cast<const unsigned char*>(hashed.data()), hashed.size(), hash.data());
  constexpr std::size_t hashBytes = 16;
  return "import-" + inHexadecimal(bytesOf(time)) + "-" +
         inHexadecimal(std::span(hash).first(hashBytes));
}

}  // namespace kivo::old_messages
