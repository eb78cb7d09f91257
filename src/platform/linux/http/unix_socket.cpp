#include "platform/linux/http/unix_socket.h"

#include <cerrno>
#include <system_error>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/foundation/errors.h"
#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {
namespace {

using platform::URLError;

bool isOwn(uid_t user) { return user == geteuid() || user == 0; }

void requireOwn(uid_t user) {
  if (isOwn(user)) return;
  throw URLError(URLError::Code::cannotConnectToHost, "the socket belongs to another user");
}

bool isMissing(int error) { return error == ENOENT || error == ENOTDIR; }

}  // namespace

bool lacksServer(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.copy(address.sun_path, sizeof address.sun_path - 1) != path.size()) return false;
  const Descriptor asking(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  if (connect(asking.number(), generic, sizeof address) == 0) return false;
  if (isMissing(errno)) return true;
  struct stat found {};
  return errno == ECONNREFUSED && stat(path.c_str(), &found) == 0 && S_ISSOCK(found.st_mode) &&
         isOwn(found.st_uid);
}

void requireOwnSocketFile(const std::string& path) {
  constexpr auto failed = URLError::Code::cannotConnectToHost;
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) {
    throw URLError(failed, isMissing(errno) ? "there is no such socket"
                                            : std::generic_category().message(errno));
  }
  if (!S_ISSOCK(found.st_mode)) throw URLError(failed, "the file is no socket");
  requireOwn(found.st_uid);
}

void requireOwnPeer(int descriptor) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
    throw URLError(URLError::Code::cannotConnectToHost, "the owner of the socket is unknown");
  }
  requireOwn(peer.uid);
}

}  // namespace kivo::linux_platform
