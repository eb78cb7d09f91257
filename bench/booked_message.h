// Sends a message to a service and reads its answer, with as little of its own as possible.
#pragma once

#include <string>

#include <sys/socket.h>

namespace kivo::bench {

/// A purchase of a sum in EGP on a day, its user, the path to which it is posted, and its key.
struct PostedMessage {
  std::string user;
  std::string path;
  std::string key;
  std::string sum = "150.00";
  std::string day = "2026-11-21";
};

/// Connects a new socket of `address` and posts `message`. Returns whether it was booked.
bool isBooked(const sockaddr* address, socklen_t length, const PostedMessage& message);

}  // namespace kivo::bench
