#include "platform/linux/process/detached_programs.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

bool isExecutable(const std::filesystem::path& file) {
  std::error_code none;
  return std::filesystem::is_regular_file(file, none) && access(file.c_str(), X_OK) == 0;
}

// A new session, and default signals where startProcess changed them.
class DetachedAttributes {
 public:
  DetachedAttributes() {
    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~DetachedAttributes() { posix_spawnattr_destroy(&attributes_); }
  DetachedAttributes(const DetachedAttributes&) = delete;
  DetachedAttributes& operator=(const DetachedAttributes&) = delete;

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

}  // namespace

bool DetachedPrograms::start(std::vector<std::string> call) {
  reapEnded();
  std::vector<char*> arguments;
  for (std::string& argument : call) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const DetachedAttributes attributes;
  pid_t id = -1;
  if (posix_spawnp(&id, arguments.front(), nullptr, attributes.get(), arguments.data(), environ) !=
      0) {
    return false;
  }
  programs_.push_back(id);
  return true;
}

bool DetachedPrograms::reapEnded() {
  std::erase_if(programs_, [](pid_t id) { return waitpid(id, nullptr, WNOHANG) != 0; });
  return !programs_.empty();
}

bool isProgram(const std::string& name) {
  if (name.empty()) return false;
  if (name.find('/') != std::string::npos) return isExecutable(name);
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (isExecutable(std::filesystem::path(folder) / name)) return true;
  }
  return false;
}

}  // namespace kivo::linux_platform
