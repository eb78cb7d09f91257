#include "platform/linux/process/child_process.h"

#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/concurrency/background_thread.h"

namespace kivo::linux_platform {
namespace {

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Both ends are close-on-exec, so that no other child process keeps a stream of this one open.
struct Pipe {
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) fail("pipe");
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  void closeEnd(std::size_t which) {
    if (ends[which] >= 0) close(std::exchange(ends[which], -1));
  }
  [[nodiscard]] int reading() const { return ends[0]; }
  [[nodiscard]] int writing() const { return ends[1]; }

  std::array<int, 2> ends{-1, -1};
};

std::vector<std::string> environmentWith(
    const std::map<std::string, std::optional<std::string>>& changes) {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (!changes.contains(text.substr(0, text.find('=')))) environment.push_back(text);
  }
  for (const auto& [name, value] : changes) {
    if (value) environment.push_back(name + "=" + *value);
  }
  return environment;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

pid_t spawn(const ProgramCall& call, const Pipe& input, const Pipe& output, const Pipe& errors) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.reading(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.writing(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.writing(), STDERR_FILENO);
  // Closes file descriptors that a library opened without close-on-exec.
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);

  // The program starts with default signals, whatever this process ignores.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  sigset_t unblocked;
  sigemptyset(&unblocked);
  posix_spawnattr_setsigmask(&attributes, &unblocked);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

  std::vector<std::string> arguments{call.program.string()};
  arguments.insert(arguments.end(), call.arguments.begin(), call.arguments.end());
  std::vector<std::string> environment = environmentWith(call.environment);

  pid_t id = -1;
  const int error = posix_spawnp(&id, call.program.c_str(), &actions, &attributes,
                                 pointers(arguments).data(), pointers(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(),
                            "cannot start " + call.program.string());
  }
  return id;
}

}  // namespace

struct ChildProcess::Streams {
  Pipe input;
  Pipe output;
  Pipe errors;
  std::string toWrite;
  mutable std::mutex mutex;
  std::condition_variable ended;
  bool reaped = false;  // guarded by mutex, like result
  ProgramResult result;
  std::thread server;

  // Serves the three streams until the program's outputs are closed, then reaps it.
  void serve(pid_t id) {
    fcntl(input.writing(), F_SETFL, O_NONBLOCK);
    std::size_t written = 0;
    if (toWrite.empty()) input.closeEnd(1);
    while (output.reading() >= 0 || errors.reading() >= 0) {
      std::array<pollfd, 3> polled{{{output.reading(), POLLIN, 0},
                                    {errors.reading(), POLLIN, 0},
                                    {input.writing(), POLLOUT, 0}}};
      if (poll(polled.data(), polled.size(), -1) < 0 && errno != EINTR) break;
      if (polled[0].revents != 0) drain(output, result.output);
      if (polled[1].revents != 0) drain(errors, result.errors);
      if (polled[2].revents != 0) feed(written);
    }
    int status = 0;
    siginfo_t information{};
    waitid(P_PID, static_cast<id_t>(id), &information, WEXITED | WNOWAIT);
    const std::lock_guard lock(mutex);
    waitpid(id, &status, 0);
    result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    reaped = true;
    ended.notify_all();
  }

  void drain(Pipe& pipe, std::string& into) {
    std::array<char, 65536> buffer{};
    const ssize_t count = read(pipe.reading(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) return;
    if (count <= 0) {
      pipe.closeEnd(0);
      return;
    }
    const std::lock_guard lock(mutex);
    into.append(buffer.data(), static_cast<std::size_t>(count));
  }

  void feed(std::size_t& written) {
    const ssize_t count =
        write(input.writing(), toWrite.data() + written, toWrite.size() - written);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count > 0) written += static_cast<std::size_t>(count);
    if (count < 0 || written == toWrite.size()) input.closeEnd(1);
  }
};

ChildProcess::ChildProcess(ProgramCall call) : streams_(std::make_unique<Streams>()) {
  streams_->toWrite = std::move(call.input);
  id_ = spawn(call, streams_->input, streams_->output, streams_->errors);
  streams_->input.closeEnd(0);
  streams_->output.closeEnd(1);
  streams_->errors.closeEnd(1);
  streams_->server =
      startBackgroundThread([streams = streams_.get(), id = id_] { streams->serve(id); });
}

ChildProcess::~ChildProcess() {
  signal(SIGKILL);
  streams_->server.join();
}

void ChildProcess::signal(int signal) {
  const std::lock_guard lock(streams_->mutex);
  if (!streams_->reaped) kill(id_, signal);
}

std::string ChildProcess::outputSoFar() const {
  const std::lock_guard lock(streams_->mutex);
  return streams_->result.output;
}

ProgramResult ChildProcess::wait(std::chrono::milliseconds limit) {
  std::unique_lock lock(streams_->mutex);
  if (!streams_->ended.wait_for(lock, limit, [this] { return streams_->reaped; })) {
    lock.unlock();
    signal(SIGKILL);
    lock.lock();
    streams_->ended.wait(lock, [this] { return streams_->reaped; });
  }
  return streams_->result;
}

ProgramResult runProgram(ProgramCall call, std::chrono::milliseconds limit) {
  return ChildProcess(std::move(call)).wait(limit);
}

std::filesystem::path programFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace kivo::linux_platform
