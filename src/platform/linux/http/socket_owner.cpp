#include "platform/linux/http/socket_owner.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {
namespace {

using platform::URLError;

void requireOwn(uid_t user) {
  if (user == geteuid() || user == 0) return;
  throw URLError(URLError::Code::cannotConnectToHost, "the socket belongs to another user");
}

}  // namespace

void requireOwnSocketFile(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0 || !S_ISSOCK(found.st_mode)) {
    throw URLError(URLError::Code::cannotConnectToHost, "there is no such socket");
  }
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
