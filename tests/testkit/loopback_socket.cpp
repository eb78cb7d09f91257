#include "testkit/loopback_socket.h"

#include <cerrno>
#include <cstring>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kivo::testkit {
namespace {

struct Address {
  sockaddr_storage bytes{};
  socklen_t size = sizeof(sockaddr_in);

  Address(const std::string& text, std::uint16_t port) {
    sockaddr_in four{
        .sin_family = AF_INET, .sin_port = htons(port), .sin_addr = {}, .sin_zero = {}};
    sockaddr_in6 six{};
    six.sin6_family = AF_INET6;
    six.sin6_port = htons(port);
    if (inet_pton(AF_INET, text.c_str(), &four.sin_addr) == 1) {
      std::memcpy(&bytes, &four, sizeof four);
    } else if (inet_pton(AF_INET6, text.c_str(), &six.sin6_addr) == 1) {
      std::memcpy(&bytes, &six, size = sizeof six);
    } else {
      throw std::system_error(EINVAL, std::generic_category());
    }
  }
  sockaddr* pointer() { return reinterpret_cast<sockaddr*>(&bytes); }
};

int need(int result) {
  if (result < 0) throw std::system_error(errno, std::generic_category());
  return result;
}

int boundSocket(Address address) {
  const int made = need(socket(address.bytes.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int yes = 1;
  setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (bind(made, address.pointer(), address.size) != 0) {
    close(made);
    throw std::system_error(errno, std::generic_category());
  }
  return made;
}

}  // namespace

int listeningSocket(const std::string& address, std::uint16_t port, int backlog) {
  const int made = boundSocket(Address(address, port));
  need(listen(made, backlog));
  return made;
}

std::uint16_t portOf(int socket) {
  sockaddr_in6 bound{};  // the port of an IPv4 address lies at the same place
  socklen_t size = sizeof bound;
  need(getsockname(socket, reinterpret_cast<sockaddr*>(&bound), &size));
  return ntohs(bound.sin6_port);
}

// The kernel leaves further connections unanswered once the queue of a listener is full.
SilentPort::SilentPort(const std::string& address, std::uint16_t port)
    : sockets_{listeningSocket(address, port, 0)}, port_(portOf(sockets_.front())) {
  for (int filling = 0; filling < 2; ++filling) {
    Address peer(address, port_);
    sockets_.push_back(
        need(socket(peer.bytes.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)));
    connect(sockets_.back(), peer.pointer(), peer.size);
  }
}

SilentPort::~SilentPort() {
  for (const int each : sockets_) close(each);
}

// Bound, so that no other program gets the port, but not listening.
RefusedPort::RefusedPort(const std::string& address, std::uint16_t port)
    : socket_(boundSocket(Address(address, port))), port_(portOf(socket_)) {}

RefusedPort::~RefusedPort() { close(socket_); }

}  // namespace kivo::testkit
