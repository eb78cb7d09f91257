#include "ledger/http_server.h"

#include <csignal>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/basic_stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/linux/foundation/failure.h"

namespace kivo::ledger {
namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::generic::stream_protocol;
using boost::system::error_code;

namespace {

constexpr std::uint64_t longestBody = 1U << 20U;
// For a request, and for its response.
constexpr std::chrono::seconds longestTransfer{10};
// The pause after a failed accept, such as when no file descriptor is left.
constexpr std::chrono::milliseconds acceptPause{50};
// The requests that are answered together. The first of them waits for the last.
constexpr std::size_t mostTogether = 64;
// Below the 1,024 file descriptors of a process.
constexpr std::size_t mostConnections = 512;

using Response = http::response<http::string_body>;

Response responseOf(HttpServer::Answer answer) {
  Response response(static_cast<http::status>(answer.status), 11);
  response.set(http::field::content_type, answer.contentType);
  if (!answer.allow.empty()) response.set(http::field::allow, answer.allow);
  for (const auto& [name, value] : answer.headers) response.set(name, value);
  response.keep_alive(false);
  response.body() = std::move(answer.body);
  response.prepare_payload();
  return response;
}

int familyOf(int socket) {
  int family = AF_UNIX;
  socklen_t size = sizeof family;
  getsockopt(socket, SOL_SOCKET, SO_DOMAIN, &family, &size);
  return family;
}

class Connections;

// One exchange on one connection. Its pending operations own it.
class Exchange : public std::enable_shared_from_this<Exchange> {
 public:
  Exchange(stream_protocol::socket socket, Connections& connections)
      : stream_(std::move(socket)), pause_(stream_.get_executor()), connections_(connections) {
    parser_.body_limit(longestBody);
  }

  void begin();
  void respond(HttpServer::Answer answer);
  // Closes the connection unless its request is complete; such a request waits no longer.
  void finish() {
    if (!isComplete_) stream_.close();
    pause_.cancel();
  }

 private:
  void received(const error_code& error);
  void handOn(HttpServer::Request request);

  beast::basic_stream<stream_protocol> stream_;
  asio::steady_timer pause_;
  Connections& connections_;
  beast::flat_buffer buffer_;
  http::request_parser<http::string_body> parser_;
  Response response_;
  bool isComplete_ = false;
};

// The state of one `run`. Its event loop ends when no operation is pending.
class Connections {
 public:
  Connections(const HttpServer::Handler& handler, const HttpServer::Pacer& pacer,
              const ListeningSocket& socket, std::optional<std::chrono::milliseconds> idleLimit)
      : handler_(handler),
        pacer_(pacer),
        acceptor_(context_, stream_protocol(familyOf(socket.descriptor()), 0),
                  dup(socket.descriptor())),
        signals_(context_, SIGTERM, SIGINT),
        pause_(context_),
        idle_(context_),
        idleLimit_(idleLimit) {}

  void run() {
    signals_.async_wait([this](const error_code& error, int) {
      if (!error) stop();
    });
    accept();
    restartIdleTime();
    context_.run();
  }

  // Returns for how long `request` waits.
  [[nodiscard]] std::chrono::milliseconds pauseFor(const HttpServer::Request& request) const {
    const bool waits = pacer_ && acceptor_.is_open();
    return waits ? pacer_(request) : std::chrono::milliseconds(0);
  }

  // Has `request` answered with those that come meanwhile.
  void answer(HttpServer::Request request, std::shared_ptr<Exchange> exchange) {
    requests_.push_back(std::move(request));
    waiting_.push_back(std::move(exchange));
    if (waiting_.size() == 1) answerWhenAllCame(0);
  }

  void ended(const std::shared_ptr<Exchange>& exchange) {
    exchanges_.erase(exchange);
    if (std::exchange(isFull_, false) && acceptor_.is_open()) accept();
    restartIdleTime();
  }

 private:
  void accept() {
    acceptor_.async_accept([this](const error_code& error, stream_protocol::socket socket) {
      if (!acceptor_.is_open()) return;
      if (error) return acceptLater();
      const auto exchange = std::make_shared<Exchange>(std::move(socket), *this);
      exchanges_.insert(exchange);
      ++arrivals_;
      idle_.cancel();
      exchange->begin();
      isFull_ = exchanges_.size() >= mostConnections;
      if (!isFull_) accept();
    });
  }

  // Each turn of the event loop takes what came: a connection, then its request. So those that were
  // sent at the same time are here after the first turn in which nothing came.
  void answerWhenAllCame(std::size_t arrivalsBefore) {
    const std::size_t arrivals = arrivals_ + waiting_.size();
    if (arrivals == arrivalsBefore || waiting_.size() >= mostTogether) return answerWaiting();
    asio::post(context_, [this, arrivals] { answerWhenAllCame(arrivals); });
  }

  void answerWaiting() {
    const auto requests = std::exchange(requests_, {});
    const auto waiting = std::exchange(waiting_, {});
    auto answers = handler_(requests);
    for (std::size_t at = 0; at < waiting.size(); ++at) {
      waiting[at]->respond(std::move(answers.at(at)));
    }
  }

  void acceptLater() {
    pause_.expires_after(acceptPause);
    pause_.async_wait([this](const error_code& error) {
      if (!error && acceptor_.is_open()) accept();
    });
  }

  void restartIdleTime() {
    if (!idleLimit_ || !exchanges_.empty() || !acceptor_.is_open()) return;
    idle_.expires_after(*idleLimit_);
    idle_.async_wait([this](const error_code& error) {
      if (!error && exchanges_.empty()) stop();
    });
  }

  void stop() {
    error_code ignored;
    acceptor_.close(ignored);
    signals_.cancel(ignored);
    pause_.cancel();
    idle_.cancel();
    for (const auto& exchange : exchanges_) exchange->finish();
  }

  const HttpServer::Handler& handler_;
  const HttpServer::Pacer& pacer_;
  asio::io_context context_{1};
  asio::basic_socket_acceptor<stream_protocol> acceptor_;
  asio::signal_set signals_;
  asio::steady_timer pause_;
  asio::steady_timer idle_;
  std::optional<std::chrono::milliseconds> idleLimit_;
  std::set<std::shared_ptr<Exchange>> exchanges_;
  // Whether no connection is accepted until another has ended.
  bool isFull_ = false;
  // The connections that were accepted so far.
  std::size_t arrivals_ = 0;
  // The requests to be answered together, and their exchanges.
  std::vector<HttpServer::Request> requests_;
  std::vector<std::shared_ptr<Exchange>> waiting_;
};

void Exchange::begin() {
  stream_.expires_after(longestTransfer);
  http::async_read(
      stream_, buffer_, parser_,
      [self = shared_from_this()](const error_code& error, std::size_t) { self->received(error); });
}

void Exchange::received(const error_code& error) {
  const auto& httpErrors = make_error_code(http::error::bad_value).category();
  if (error == http::error::body_limit) {
    respond({.status = 413, .body = R"({"error":"the body is too long"})"});
  } else if (error == http::error::end_of_stream || error == http::error::partial_message ||
             (error && error.category() != httpErrors)) {
    connections_.ended(shared_from_this());
  } else if (error) {
    respond({.status = 400, .body = R"({"error":"this is no HTTP request"})"});
  } else {
    auto& request = parser_.get();
    isComplete_ = true;
    handOn({.method = std::string(request.method_string()),
            .target = std::string(request.target()),
            .body = std::move(request.body())});
  }
}

void Exchange::handOn(HttpServer::Request request) {
  const std::chrono::milliseconds pause = connections_.pauseFor(request);
  if (pause.count() <= 0) return connections_.answer(std::move(request), shared_from_this());
  stream_.expires_never();
  pause_.expires_after(pause);
  pause_.async_wait(
      [self = shared_from_this(), request = std::move(request)](const error_code&) mutable {
        self->connections_.answer(std::move(request), self);
      });
}

void Exchange::respond(HttpServer::Answer answer) {
  isComplete_ = true;
  stream_.expires_after(longestTransfer);
  response_ = responseOf(std::move(answer));
  http::async_write(
      stream_, response_, [self = shared_from_this()](const error_code&, std::size_t) {
        error_code ignored;
        self->stream_.socket().shutdown(stream_protocol::socket::shutdown_send, ignored);
        self->connections_.ended(self);
      });
}

}  // namespace

void HttpServer::run(const ListeningSocket& socket,
                     std::optional<std::chrono::milliseconds> idleLimit) {
  try {
    Connections(handler_, pacer_, socket, idleLimit).run();
  } catch (const boost::system::system_error& error) {
    throw linux_platform::Failure(error.what());
  }
}

}  // namespace kivo::ledger
