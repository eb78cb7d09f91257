// Scripts of misbehaving servers, and the errors that runs report for them.
#pragma once

#include <chrono>
#include <cstdio>
#include <string>

#include "testkit/scripted_server.h"

namespace kivo::testkit {

using namespace std::chrono_literals;

inline const std::string lost = "URLError networkConnectionLost";
inline const std::string badAnswer = "URLError badServerResponse";
inline const std::string tooLarge = "URLError dataLengthExceedsMaximum";
inline const std::string timedOut = "URLError timedOut";
inline const std::string insecure = "URLError secureConnectionFailed";
inline const std::string undecodable = "DecodingError dataCorrupted";
inline const std::string refusedStatus = "Error Domain=SMSExtraction Code=500";
inline const std::string noHTTP = refusedStatus;

inline const std::string chunkedHead = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

inline std::string chunk(const std::string& bytes) {
  char size[20];
  std::snprintf(size, sizeof size, "%zx\r\n", bytes.size());
  return size + bytes + "\r\n";
}

inline std::string withLength(std::size_t length, const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n" + body;
}

inline std::string repeated(const std::string& text, int times) {
  std::string result;
  for (int time = 0; time < times; ++time) result += text;
  return result;
}

/// Reads the request, sends `head`, then `repeatedly` until the peer goes.
inline Script endless(const std::string& head, const std::string& repeatedly) {
  return [=](ServerConnection& connection) {
    connection.readRequest();
    connection.write(head);
    while (!connection.idle(0ms)) connection.write(repeatedly);
  };
}

/// Reads the request, sends `bytes` and does nothing more until the peer goes.
inline Script silentAfter(const std::string& bytes) {
  return [=](ServerConnection& connection) {
    connection.readRequest();
    connection.write(bytes);
    connection.idle();
  };
}

/// Reads the request, sends `bytes` and resets the connection once they have been read.
inline Script resetAfter(const std::string& bytes, std::chrono::milliseconds pause = 300ms) {
  return [=](ServerConnection& connection) {
    connection.readRequest();
    connection.write(bytes);
    connection.idle(pause);
    connection.reset();
  };
}

/// Reads the request, sends `begin` at once and then one byte of `rest` per second.
inline Script dripping(const std::string& begin, const std::string& rest) {
  return [=](ServerConnection& connection) {
    connection.readRequest();
    connection.write(begin);
    connection.drip(rest, 1s);
  };
}

}  // namespace kivo::testkit
