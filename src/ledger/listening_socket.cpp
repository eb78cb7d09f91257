#include "ledger/listening_socket.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "ledger/private_folder.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::ledger {

using linux_platform::Descriptor;

namespace {

// The first file descriptor of socket activation.
constexpr int firstHandedOver = 3;

constexpr std::string_view advice = "name a socket in a folder of your own by --socket";

[[noreturn]] void failToListen(const std::filesystem::path& path, const std::string& what) {
  throw linux_platform::Failure(path.string() + " " + what);
}

[[noreturn]] void failForSystem(const std::filesystem::path& path, int error) {
  failToListen(path, "cannot be created: " + std::generic_category().message(error));
}

bool isListening(int descriptor) {
  int family = 0;
  int type = 0;
  int accepts = 0;
  const auto get = [descriptor](int option, int& value) {
    socklen_t size = sizeof value;
    return getsockopt(descriptor, SOL_SOCKET, option, &value, &size) == 0;
  };
  return get(SO_DOMAIN, family) && family == AF_UNIX && get(SO_TYPE, type) && type == SOCK_STREAM &&
         get(SO_ACCEPTCONN, accepts) && accepts == 1;
}

sockaddr_un addressOf(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.native().size() >= sizeof address.sun_path) {
    failToListen(path, "is too long for the path of a socket; --socket names another");
  }
  std::memcpy(address.sun_path, path.c_str(), path.native().size());
  return address;
}

int openSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); }

int bindTo(int descriptor, const sockaddr_un& address) {
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  return bind(descriptor, generic, sizeof address) == 0 ? 0 : errno;
}

// Removes a socket file at which no server listens. Throws when it is another kind of file, or when
// a server listens.
void removeStale(const std::filesystem::path& path, const sockaddr_un& address) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) return;
  if (!S_ISSOCK(found.st_mode)) failToListen(path, "is no socket; move it away");
  const Descriptor asking(openSocket());
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  if (connect(asking.number(), generic, sizeof address) == 0 || errno != ECONNREFUSED) {
    failToListen(path, "is in use by another server; stop it, or name another socket by --socket");
  }
  unlink(path.c_str());
}

// Locks the folder, so that only one server at a time checks the socket file and creates its own.
// Does not wait for the lock, since another user can hold it in a shared folder.
void lockFolder(int folder, const std::filesystem::path& path) {
  if (flock(folder, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
  failToListen(path, "is locked by another program; try again, or " + std::string(advice));
}

// "127.0.0.1:8787" or "[::1]:8787". Asks no name server.
std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addressFrom(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  std::string host = text.substr(0, colon);
  const std::string port = colon == std::string::npos ? "" : text.substr(colon + 1);
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  addrinfo wanted{};
  wanted.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (host.empty() || port.empty() ||
      getaddrinfo(host.c_str(), port.c_str(), &wanted, &found) != 0) {
    throw linux_platform::Failure("\"" + text + "\" is no address such as 127.0.0.1:8787");
  }
  return {found, freeaddrinfo};
}

}  // namespace

std::optional<ListeningSocket> ListeningSocket::handedOver() {
  const char* const process = std::getenv("LISTEN_PID");
  const char* const count = std::getenv("LISTEN_FDS");
  const bool handed = process != nullptr && count != nullptr &&
                      process == std::to_string(getpid()) && std::string_view(count) != "0";
  for (const char* const name : {"LISTEN_PID", "LISTEN_FDS", "LISTEN_FDNAMES"}) unsetenv(name);
  if (!handed) return std::nullopt;
  if (!isListening(firstHandedOver)) {
    throw linux_platform::Failure(
        "the file descriptor from the service manager is not a listening UNIX socket");
  }
  fcntl(firstHandedOver, F_SETFD, FD_CLOEXEC);
  return ListeningSocket(firstHandedOver, {});
}

ListeningSocket ListeningSocket::create(const std::filesystem::path& path) {
  const sockaddr_un address = addressOf(path);
  const std::filesystem::path parent = std::filesystem::absolute(path).parent_path();
  const Descriptor folder = openPrivateFolder(parent, advice);
  lockFolder(folder.number(), parent);
  removeStale(path, address);
  ListeningSocket made(openSocket(), {});
  int error = made.descriptor_ < 0 ? errno : bindTo(made.descriptor_, address);
  if (error != 0) failForSystem(path, error);
  made.created_ = path;
  if (chmod(path.c_str(), 0600) != 0 || listen(made.descriptor_, SOMAXCONN) != 0) {
    failForSystem(path, errno);
  }
  return made;
}

ListeningSocket ListeningSocket::onAddress(const std::string& address) {
  const auto found = addressFrom(address);
  ListeningSocket made(
      socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP), {});
  // So that a server that was just ended can be started again.
  const int reuse = 1;
  setsockopt(made.descriptor_, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof reuse);
  if (made.descriptor_ < 0 || bind(made.descriptor_, found->ai_addr, found->ai_addrlen) != 0 ||
      listen(made.descriptor_, SOMAXCONN) != 0) {
    failToListen(address, "cannot be listened on: " + std::generic_category().message(errno));
  }
  return made;
}

int ListeningSocket::port() const {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size);
  if (address.ss_family == AF_INET) {
    return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
  }
  if (address.ss_family != AF_INET6) return 0;
  return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
}

ListeningSocket::ListeningSocket(ListeningSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      created_(std::exchange(other.created_, {})) {}

ListeningSocket::~ListeningSocket() {
  // Removed before it is closed: after that, another server would consider the file stale and could
  // create its own, which this would remove.
  if (!created_.empty()) unlink(created_.c_str());
  if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace kivo::ledger
