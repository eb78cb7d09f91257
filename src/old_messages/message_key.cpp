#include "old_messages/message_key.h"

#include <array>

#include <openssl/sha.h>

#include "platform/foundation/number_text.h"

namespace kivo::old_messages {

std::string keyOf(const OldMessage& message) {
  const std::int64_t time = message.moment ? message.moment->time_since_epoch().count() : 0;
  // Its length ends the sender, which may hold any character.
  const std::string hashed = platform::integerText(time) + " " +
                             std::to_string(message.sender.size()) + " " + message.sender +
                             message.text;
  std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
  SHA256(reinterpret_cast<const unsigned char*>(hashed.data()), hashed.size(), hash.data());
  constexpr const char* digits = "0123456789abcdef";
  std::string key = "import-";
  for (const unsigned char byte : hash) {
    key += digits[byte >> 4U];
    key += digits[byte & 0xFU];
  }
  return key;
}

}  // namespace kivo::old_messages
