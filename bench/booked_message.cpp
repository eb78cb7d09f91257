#include "booked_message.h"

#include <array>

#include <unistd.h>

#include "platform/foundation/json_encoder.h"

namespace kivo::bench {
namespace {

std::string requestOf(const PostedMessage& message) {
  platform::JSONEncoder object;
  object.encodeString("sms_text", "You paid EGP " + message.sum + " at Carrefour City.");
  object.encodeString("user_id", message.user);
  object.encodeString("expense_date", message.day);
  object.encodeString("idempotency_key", message.key);
  const std::string body = object.text();
  return "POST " + message.path +
         " HTTP/1.1\r\nHost: localhost\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\nConnection: close\r\n\r\n" + body;
}

}  // namespace

bool isBooked(const sockaddr* address, socklen_t length, const PostedMessage& message) {
  const int descriptor = socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const std::string sent = requestOf(message);
  std::string answer;
  if (connect(descriptor, address, length) == 0 &&
      write(descriptor, sent.data(), sent.size()) == static_cast<ssize_t>(sent.size())) {
    std::array<char, 4096> piece{};
    for (ssize_t size = 0; (size = read(descriptor, piece.data(), piece.size())) > 0;) {
      answer.append(piece.data(), static_cast<std::size_t>(size));
    }
  }
  close(descriptor);
  return answer.find(R"("saved":true)") != std::string::npos;
}

}  // namespace kivo::bench
