#include "platform/linux/process/link_opener.h"

#include <array>
#include <csignal>
#include <string_view>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

bool beginsWithScheme(std::string_view link) {
  constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view others = "0123456789+.-";
  const std::string_view scheme = link.substr(0, link.find(':'));
  if (scheme.empty() || scheme.size() == link.size()) return false;
  if (letters.find(scheme.front()) == std::string_view::npos) return false;
  return scheme.find_first_not_of(std::string(letters).append(others)) == std::string_view::npos;
}

}  // namespace

void LinkOpener::open(const std::string& link) {
  reapEnded();
  if (!beginsWithScheme(link)) return;

  // A session of its own, and signals as a shell would leave them: it may outlive us.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigaddset(&signals, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  std::string program = "xdg-open";
  std::string argument = link;
  const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
  pid_t id = -1;
  if (posix_spawnp(&id, program.c_str(), nullptr, &attributes, arguments.data(), environ) == 0) {
    openers_.push_back(id);
  }
  posix_spawnattr_destroy(&attributes);
}

void LinkOpener::reapEnded() {
  std::erase_if(openers_, [](pid_t id) { return waitpid(id, nullptr, WNOHANG) != 0; });
}

}  // namespace kivo::linux_platform
