#include "unreliable_backend.h"

#include <array>
#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

#include "platform/foundation/json_decoder.h"
#include "testkit/backend_answers.h"
#include "testkit/scripted_server.h"

namespace kivo::testkit {
namespace {

constexpr std::array faults{Fault::refused, Fault::resetAfterCommit, Fault::status500,
                            Fault::garbage, Fault::closedWithoutAnswer};

// As recv. A child that ends while another is started may interrupt it: a socket with a limit of
// time does not go on by itself then.
ssize_t receive(int socket, std::array<char, 16384>& into) {
  ssize_t count = -1;
  do {
    count = recv(socket, into.data(), into.size(), 0);
  } while (count < 0 && errno == EINTR);
  return count;
}

// The body of the one request that comes; what there is of it when the peer ends first.
std::string readBody(int socket) {
  const std::string field = "Content-Length: ";
  std::string bytes;
  std::array<char, 16384> more{};
  std::size_t body = std::string::npos;
  std::size_t length = 0;
  while (body == std::string::npos || bytes.size() < body + length) {
    const ssize_t count = receive(socket, more);
    if (count <= 0) break;
    bytes.append(more.data(), static_cast<std::size_t>(count));
    const auto blank = bytes.find("\r\n\r\n");
    if (body != std::string::npos || blank == std::string::npos) continue;
    body = blank + 4;
    length = std::stoul(bytes.substr(bytes.find(field) + field.size()));
  }
  return body == std::string::npos ? "" : bytes.substr(body);
}

void closeAfter(int socket, const std::string& answer) {
  send(socket, answer.data(), answer.size(), MSG_NOSIGNAL);
  // Closing with something unread would reset the connection, and take the answer along.
  shutdown(socket, SHUT_WR);
  std::array<char, 16384> rest{};
  while (receive(socket, rest) > 0) continue;
  close(socket);
}

void reset(int socket) {
  const linger atOnce{.l_onoff = 1, .l_linger = 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  close(socket);
}

}  // namespace

UnreliableBackend::UnreliableBackend(std::uint64_t seed, double probability)
    : random_(seed), probability_(probability) {
  listen();
  thread_ = std::thread([this] { serve(); });
}

UnreliableBackend::~UnreliableBackend() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    stopListening();
  }
  thread_.join();
}

std::string UnreliableBackend::url() const {
  return "http://127.0.0.1:" + std::to_string(port_.port());
}

void UnreliableBackend::beginRun() {
  const std::lock_guard lock(mutex_);
  decide();
}

void UnreliableBackend::heal() {
  const std::lock_guard lock(mutex_);
  probability_ = 0;
  decide();
}

std::map<std::string, std::string> UnreliableBackend::stored() const {
  const std::lock_guard lock(mutex_);
  return stored_;
}

int UnreliableBackend::contradictions() const {
  const std::lock_guard lock(mutex_);
  return contradictions_;
}

std::map<Fault, int> UnreliableBackend::met() const {
  const std::lock_guard lock(mutex_);
  return met_;
}

void UnreliableBackend::decide() {
  const bool fails = std::bernoulli_distribution(probability_)(random_);
  std::uniform_int_distribution<std::size_t> which(0, faults.size() - 1);
  next_ = fails ? faults.at(which(random_)) : Fault::none;
  if (next_ == Fault::refused) {
    stopListening();
  } else {
    listen();
  }
}

void UnreliableBackend::listen() {
  if (listening_ >= 0) return;
  listening_ = listeningSocket("127.0.0.1", port_.port(), SOMAXCONN);
  changed_.notify_all();
}

// The thread that may be in `accept` comes back from it and closes the socket.
void UnreliableBackend::stopListening() {
  if (listening_ >= 0) shutdown(listening_, SHUT_RDWR);
  listening_ = -1;
  changed_.notify_all();
}

void UnreliableBackend::serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || listening_ >= 0; });
    if (ending_) return;
    const int listening = listening_;
    while (listening == listening_) {
      lock.unlock();
      const int socket = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
      if (socket >= 0) exchange(socket);
      lock.lock();
    }
    close(listening);
  }
}

void UnreliableBackend::exchange(int socket) {
  const timeval timeout{.tv_sec = 10, .tv_usec = 0};
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  const std::string body = readBody(socket);
  if (body.empty()) return closeAfter(socket, "");  // the peer went before it asked for anything
  Fault fault = Fault::none;
  {
    const std::lock_guard lock(mutex_);
    fault = next_ == Fault::refused ? Fault::none : next_;
    ++met_[fault];
    const bool commits = fault != Fault::status500 && fault != Fault::closedWithoutAnswer;
    if (commits) commit(body);
    decide();
  }
  switch (fault) {
    case Fault::none:
    case Fault::refused:
      return closeAfter(socket, httpAnswer(200, savedBody({.amount = 1, .description = "Shop"})));
    case Fault::garbage:
      return closeAfter(socket, httpAnswer(200, "<html>garbage\xff</html>"));
    case Fault::status500:
      return closeAfter(socket, httpAnswer(500, R"({"error":"down"})"));
    case Fault::closedWithoutAnswer:
      return closeAfter(socket, "");
    case Fault::resetAfterCommit:
      return reset(socket);
  }
}

void UnreliableBackend::commit(const std::string& body) {
  const auto request = platform::JSONDecoder::object(body);
  const std::string text = request.decodeString("sms_text");
  const auto entry = stored_.emplace(request.decodeString("idempotency_key"), text).first;
  if (entry->second != text) ++contradictions_;
}

}  // namespace kivo::testkit
