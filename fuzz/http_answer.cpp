// Property: whatever bytes a server sends before it closes the connection, the exchange ends: with
// the response that they contain, of status 200 to 999 and a body of at most 1 MiB, with an answer
// that is not HTTP, or with a URLError of a kind that a response can cause. The session is the real
// one. Its socket is one end of a socket pair, since millions of connections would use up the
// ports.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/foundation/errors.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/http/http_url_session.h"
#include "property.h"

namespace {

using namespace kivo;
using namespace std::chrono_literals;
using Code = platform::URLError::Code;

constexpr std::size_t mebibyte = 1U << 20U;
// Each piece is a separate read, which takes time.
constexpr std::size_t mostPieces = 100;

// The socket of the next connection; -1 when there is none.
std::atomic<int> clientEnd = -1;
// The largest number of bytes that a read of the session may return.
std::atomic<std::size_t> pieceSize = SIZE_MAX;

struct Outcome {
  std::optional<platform::URLAnswer> answer;
  std::optional<Code> failure;
};

platform::Task<void> exchange(platform::URLSession* session, platform::URLRequest request,
                              std::shared_ptr<Outcome> outcome) {
  try {
    outcome->answer = co_await session->data(std::move(request));
  } catch (const platform::URLError& error) {
    outcome->failure = error.code();
  }
}

platform::URLRequest request() {
  platform::URLRequest made{.url = *platform::URL::parse("http://127.0.0.1/functions")};
  made.httpMethod = "POST";
  made.httpBody = "{}";
  made.timeoutInterval = 20s;
  return made;
}

struct Answer {
  std::size_t pieceSize = SIZE_MAX;
  std::string bytes;
};

// The first byte of the input selects the pieces in which the rest is read. A response that is read
// whole and whose bytes add up to a multiple of 251 is extended by its last byte, past every limit.
// Only few are, whatever they descend from, since each costs some milliseconds.
Answer answerOf(std::string_view input) {
  if (input.size() < 2) return {};
  const auto pieces = static_cast<unsigned char>(input[0]);
  Answer answer{.bytes = std::string(input.substr(1))};
  unsigned sum = 0;
  for (const char byte : answer.bytes) sum += static_cast<unsigned char>(byte);
  if (pieces < 32) {
    answer.pieceSize = std::max<std::size_t>(1U + pieces, answer.bytes.size() / mostPieces);
  } else if (sum % 251 == 0) {
    answer.bytes.append(mebibyte + mebibyte / 8, answer.bytes.back());
  }
  return answer;
}

void writeAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (written <= 0) return;  // the session has closed its end
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

Outcome exchangeWith(const Answer& answer) {
  static linux_platform::HTTPURLSession session;
  static linux_platform::TaskExecutor executor(1);
  int ends[2];
  fuzz::require(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0, "there is a pair of sockets");
  clientEnd = ends[0];
  pieceSize = answer.pieceSize;

  const auto outcome = std::make_shared<Outcome>();
  auto task = executor.start(exchange(&session, request(), outcome));
  writeAll(ends[1], answer.bytes);
  ::shutdown(ends[1], SHUT_WR);
  fuzz::require(task.waitFor(10s), "an exchange ends with the connection");
  task.wait();
  ::close(ends[1]);
  if (const int unused = clientEnd.exchange(-1); unused >= 0) ::close(unused);
  return std::move(*outcome);
}

bool canBeCausedByAnAnswer(Code code) {
  return code == Code::networkConnectionLost || code == Code::badServerResponse ||
         code == Code::dataLengthExceedsMaximum;
}

// Whether `bytes` have a status line with `status`.
bool tellOf(int status, std::string_view bytes) {
  for (const std::string_view version : {"HTTP/1.0 ", "HTTP/1.1 "}) {
    const std::string line = std::string(version) + std::to_string(status);
    if (bytes.find(line) != std::string_view::npos) return true;
  }
  return false;
}

}  // namespace

extern "C" int socket(int domain, int type, int protocol) {
  if (domain == AF_INET) return clientEnd.exchange(-1);
  return static_cast<int>(::syscall(SYS_socket, domain, type, protocol));
}

extern "C" int connect(int socket, const sockaddr* address, socklen_t size) {
  if (address->sa_family == AF_INET) return 0;
  return static_cast<int>(::syscall(SYS_connect, socket, address, size));
}

extern "C" ssize_t recv(int socket, void* into, std::size_t size, int flags) {
  const std::size_t most = std::min<std::size_t>(size, pieceSize);
  return ::syscall(SYS_recvfrom, socket, into, most, flags, nullptr, nullptr);
}

extern "C" ssize_t recvmsg(int socket, msghdr* message, int flags) {
  iovec first = message->msg_iovlen > 0 ? message->msg_iov[0] : iovec{};
  first.iov_len = std::min<std::size_t>(first.iov_len, pieceSize);
  msghdr shorter = *message;
  if (pieceSize != SIZE_MAX && message->msg_iovlen > 0) {
    shorter.msg_iov = &first;
    shorter.msg_iovlen = 1;
  }
  return ::syscall(SYS_recvmsg, socket, &shorter, flags);
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const Answer answer = answerOf({reinterpret_cast<const char*>(data), size});
  const Outcome outcome = exchangeWith(answer);
  fuzz::require(outcome.answer.has_value() != outcome.failure.has_value(),
                "an exchange ends in an answer or in a failure");
  if (outcome.failure) {
    fuzz::require(canBeCausedByAnAnswer(*outcome.failure), "a failure has a cause in the answer");
    return 0;
  }
  if (!outcome.answer->response) {
    fuzz::require(outcome.answer->data.empty(), "an answer that is not HTTP has no body");
    return 0;
  }
  const int status = outcome.answer->response->statusCode;
  fuzz::require(status >= 200 && status <= 999, "a status is a final one");
  fuzz::require(tellOf(status, answer.bytes), "a status is one that the server sent");
  fuzz::require(outcome.answer->data.size() <= mebibyte, "a body is 1 MiB at most");
  return 0;
}
