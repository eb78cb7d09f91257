#include "testkit/silent_socket.h"

#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kivo::testkit {

namespace {

sockaddr_un addressOf(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) throw std::runtime_error("the path is too long");
  std::memcpy(address.sun_path, name.data(), name.size());
  return address;
}

}  // namespace

SilentSocket::SilentSocket(const std::filesystem::path& path)
    : path_(path), descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const sockaddr_un address = addressOf(path);
  const auto* const general = reinterpret_cast<const sockaddr*>(&address);
  // The backlog is full: later connections block.
  if (bind(descriptor_, general, sizeof address) != 0 || listen(descriptor_, 16) != 0) {
    throw std::runtime_error("cannot listen at " + path.string());
  }
}

bool SilentSocket::waitForConnection() const {
  constexpr int tenSeconds = 10'000;
  pollfd waiting{.fd = descriptor_, .events = POLLIN, .revents = 0};
  return poll(&waiting, 1, tenSeconds) == 1;
}

void SilentSocket::acceptNoConnection() {
  const sockaddr_un address = addressOf(path_);
  const auto* const general = reinterpret_cast<const sockaddr*>(&address);
  do {
    queue_.emplace_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  } while (connect(queue_.back().number(), general, sizeof address) == 0);
}

SilentSocket::~SilentSocket() { close(descriptor_); }

}  // namespace kivo::testkit
