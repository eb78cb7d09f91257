#include "platform/linux/process/detached_programs.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {
namespace {

bool isExecutable(const std::filesystem::path& file) {
  std::error_code none;
  return std::filesystem::is_regular_file(file, none) && access(file.c_str(), X_OK) == 0;
}

bool isServiceOfSystemd() {
  const char* const id = std::getenv("SYSTEMD_EXEC_PID");
  return id != nullptr && id == std::to_string(getpid()) && programFile("systemd-run");
}

// The service manager expands variables in the words of a unit, and makes one dollar sign of two.
std::string withDoubledDollars(const std::string& word) {
  std::string doubled;
  for (const char letter : word) doubled.append(letter == '$' ? 2 : 1, letter);
  return doubled;
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

// The id of the program; -1 when it cannot be started.
pid_t DetachedPrograms::spawn(std::vector<std::string> call, Output output) {
  reapEnded();
  std::vector<char*> arguments;
  for (std::string& argument : call) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const DetachedAttributes attributes;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (output == Output::discarded) {
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  pid_t id = -1;
  const int failed =
      posix_spawnp(&id, arguments.front(), &actions, attributes.get(), arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return failed == 0 ? id : -1;
}

bool DetachedPrograms::start(std::vector<std::string> call) {
  const pid_t id = spawn(std::move(call), Output::inherited);
  if (id >= 0) programs_.push_back(id);
  return id >= 0;
}

bool DetachedPrograms::startOutsideService(std::vector<std::string> call) {
  if (isServiceOfSystemd()) {
    for (std::string& word : call) word = withDoubledDollars(word);
    // The unit goes on when its first program ends, which may have started a browser.
    const std::vector<std::string> unit{"systemd-run", "--user",  "--property=ExitType=cgroup",
                                        "--collect",   "--quiet", "--"};
    call.insert(call.begin(), unit.begin(), unit.end());
  }
  return start(std::move(call));
}

std::optional<int> DetachedPrograms::startAndWait(std::vector<std::string> call,
                                                  std::chrono::milliseconds limit) {
  const pid_t id = spawn(std::move(call), Output::discarded);
  if (id < 0) return std::nullopt;
  // glibc 2.36 declares its function in a header that C++ cannot use.
  const Descriptor program(static_cast<int>(syscall(SYS_pidfd_open, id, 0)));
  pollfd ended{.fd = program.number(), .events = POLLIN, .revents = 0};
  while (poll(&ended, 1, static_cast<int>(limit.count())) < 0 && errno == EINTR) {
  }
  int status = 0;
  if (waitpid(id, &status, WNOHANG) != id) {
    programs_.push_back(id);
    return 0;
  }
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

bool DetachedPrograms::reapEnded() {
  std::erase_if(programs_, [](pid_t id) { return waitpid(id, nullptr, WNOHANG) != 0; });
  return !programs_.empty();
}

std::optional<std::filesystem::path> programFile(const std::string& name) {
  if (name.empty()) return std::nullopt;
  if (name.find('/') != std::string::npos) {
    return isExecutable(name) ? std::optional<std::filesystem::path>(name) : std::nullopt;
  }
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    const std::filesystem::path file = std::filesystem::path(folder) / name;
    if (isExecutable(file)) return file;
  }
  return std::nullopt;
}

}  // namespace kivo::linux_platform
