#include "testkit/silent_socket.h"

#include <cstring>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kivo::testkit {

SilentSocket::SilentSocket(const std::filesystem::path& path)
    : path_(path), descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string name = path.string();
  if (name.size() >= sizeof address.sun_path) throw std::runtime_error("the path is too long");
  std::memcpy(address.sun_path, name.data(), name.size());
  const auto* const general = reinterpret_cast<const sockaddr*>(&address);
  // Those who connect wait in the queue for ever: nobody accepts them.
  if (bind(descriptor_, general, sizeof address) != 0 || listen(descriptor_, 16) != 0) {
    throw std::runtime_error("cannot listen at " + name);
  }
}

SilentSocket::~SilentSocket() { close(descriptor_); }

}  // namespace kivo::testkit
