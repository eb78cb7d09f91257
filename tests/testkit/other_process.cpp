#include "testkit/other_process.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo::testkit {
namespace {

void send(int pipe) {
  if (write(pipe, "x", 1) != 1) std::abort();
}

void receive(int pipe, std::chrono::milliseconds limit) {
  pollfd polled{pipe, POLLIN, 0};
  char byte = 0;
  if (poll(&polled, 1, static_cast<int>(limit.count())) == 1 && read(pipe, &byte, 1) != 1) {
    std::abort();
  }
}

}  // namespace

OtherProcess::OtherProcess(const std::function<bool(OtherProcess&)>& work) {
  if (pipe(here_.data()) != 0 || pipe(there_.data()) != 0) throw std::runtime_error("no pipe");
  id_ = fork();
  if (id_ < 0) throw std::runtime_error("no process");
  if (id_ == 0) _exit(work(*this) ? 0 : 1);
}

OtherProcess::~OtherProcess() {
  if (id_ > 0) kill();
  for (const int end : {here_[0], here_[1], there_[0], there_[1]}) close(end);
}

void OtherProcess::reached() { send(there_[1]); }

void OtherProcess::waitForTest(std::chrono::milliseconds limit) { receive(here_[0], limit); }

void OtherProcess::waitForIt() { receive(there_[0], std::chrono::seconds(60)); }

void OtherProcess::goOn() { send(here_[1]); }

int OtherProcess::end() {
  int status = -1;
  waitpid(std::exchange(id_, -1), &status, 0);
  return status;
}

int OtherProcess::kill() {
  ::kill(id_, SIGKILL);
  return end();
}

}  // namespace kivo::testkit
