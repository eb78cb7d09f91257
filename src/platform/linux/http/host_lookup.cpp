#include "platform/linux/http/host_lookup.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

/// Returns the addresses of `host`, one on each line. Blocks without a timeout.
std::string addressLines(const std::string& host) {
  addrinfo wanted{};
  wanted.ai_family = AF_UNSPEC;
  wanted.ai_socktype = SOCK_STREAM;  // otherwise each address is listed for every socket type
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0) return {};

  std::string lines;
  for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
    std::array<char, NI_MAXHOST> numbers{};
    if (getnameinfo(each->ai_addr, each->ai_addrlen, numbers.data(), numbers.size(), nullptr, 0,
                    NI_NUMERICHOST) == 0) {
      lines.append(numbers.data()).append("\n");
    }
  }
  freeaddrinfo(found);
  return lines;
}

void lookUp(const std::string& host, int writing) {
  const std::string lines = addressLines(host);
  std::size_t sent = 0;
  while (sent < lines.size()) {
    const ssize_t count = send(writing, lines.data() + sent, lines.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) break;  // the reader has closed its end
    if (count > 0) sent += static_cast<std::size_t>(count);
  }
  close(writing);
}

}  // namespace

int startHostLookup(std::string host) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
  try {
    std::thread(lookUp, std::move(host), ends[1]).detach();
  } catch (const std::system_error&) {
    close(ends[0]);
    close(ends[1]);
    throw;
  }
  return ends[0];
}

}  // namespace kivo::linux_platform
