#include "platform/linux/http/http_url_session.h"

#include <chrono>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>

#include "platform/foundation/errors.h"
#include "platform/linux/http/host_lookup.h"
#include "platform/linux/http/http_answer.h"
#include "platform/linux/http/http_endpoint.h"
#include "platform/linux/http/server_trust.h"
#include "platform/linux/http/unix_socket.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

using boost::system::error_code;
using platform::Task;
using platform::URLAnswer;
using platform::URLError;
using platform::URLRequest;
using Code = URLError::Code;

namespace {

/// One request and its response. The steps run as their own task on the strand of the caller's
/// task. The caller waits for `limit` only, so that timeout and cancellation are handled in one
/// place, whatever the steps wait for.
class Exchange {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `trust`, needed for https only, outlives every task.
  Exchange(const asio::any_io_executor& executor, Time end, URLRequest request,
           HTTPEndpoint endpoint, ServerTrust& trust)
      : limit(executor, end),
        request_(std::move(request)),
        endpoint_(std::move(endpoint)),
        trust_(trust),
        lookup_(executor),
        connection_(executor),
        local_(executor) {}

  /// Runs to the end of the exchange, whatever it is; never throws. `self` keeps the object.
  static Task<void> run(std::shared_ptr<Exchange> self) {
    try {
      co_await self->steps();
    } catch (const URLError& error) {
      self->failure = error;
    } catch (const std::exception&) {
      self->failure = self->stageFailure();
    }
    self->ended = true;
    self->limit.cancel();
  }

  /// Makes the steps come to an end by themselves, with nothing more sent.
  void abandon() {
    abandoned_ = true;
    error_code ignored;
    lookup_.close(ignored);
    connection_.close();
    local_.close();
  }

  /// When the exchange must be over; its wait is cancelled when the exchange has ended.
  asio::steady_timer limit;
  bool ended = false;
  /// Once ended: the answer, or else the failure.
  std::optional<URLAnswer> answer;
  URLError failure{Code::networkConnectionLost};

 private:
  Task<void> steps() {
    if (!endpoint_.socketPath.empty()) {
      co_await connectToSocket();
      co_return co_await transfer(local_);
    }
    startLookup();
    // Takes as long as a quick lookup, and other threads do that meanwhile.
    if (endpoint_.secure) secured_.emplace(connection_, trust_.context());
    co_await connect();
    if (secured_) {
      co_await handshake();
      co_await transfer(*secured_);
    } else {
      co_await transfer(connection_);
    }
  }

  void startLookup() {
    error_code isName;
    const auto numeric = asio::ip::make_address(request_.url.host, isName);
    if (isName) {
      lookup_.assign(startHostLookup(request_.url.host));
    } else {
      numeric_ = numeric;
    }
  }

  Task<std::vector<asio::ip::address>> addresses() {
    std::vector<asio::ip::address> found;
    if (numeric_) {
      found.push_back(*numeric_);
      co_return found;
    }
    error_code error;
    std::string lines;
    auto into = asio::dynamic_buffer(lines);
    co_await asio::async_read(lookup_, into, asio::redirect_error(asio::use_awaitable, error));
    for (std::size_t begin = 0, end = 0; (end = lines.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
      const auto address = asio::ip::make_address(lines.substr(begin, end - begin), error);
      if (!error) found.push_back(address);
    }
    co_return found;
  }

  /// Tries all addresses in order. One that stays silent gets its share of the time that is left,
  /// so that those after it are tried as well.
  Task<void> connect() {
    stage_ = Code::cannotFindHost;
    const auto found = co_await addresses();
    if (!found.empty()) stage_ = Code::cannotConnectToHost;
    for (std::size_t tried = 0; tried < found.size() && !abandoned_; ++tried) {
      if (const auto left = found.size() - tried; left > 1) {
        connection_.expires_after((limit.expiry() - std::chrono::steady_clock::now()) / left);
      }
      const asio::ip::tcp::endpoint peer(found[tried], endpoint_.port);
      error_code error;
      co_await connection_.async_connect(peer, asio::redirect_error(asio::use_awaitable, error));
      connection_.expires_never();
      if (!error) {
        connection_.socket().set_option(asio::ip::tcp::no_delay(true), error);
        co_return;
      }
      connection_.close();
    }
    throw URLError(stage_);
  }

  /// Nothing is sent to another user's socket.
  Task<void> connectToSocket() {
    stage_ = Code::cannotConnectToHost;
    requireOwnSocketFile(endpoint_.socketPath);
    const asio::local::stream_protocol::endpoint peer(endpoint_.socketPath);
    co_await local_.async_connect(peer, asio::use_awaitable);
    requireOwnPeer(local_.socket().native_handle());
  }

  [[nodiscard]] URLError stageFailure() {
    const long verified = stage_ == Code::secureConnectionFailed
                              ? SSL_get_verify_result(secured_->native_handle())
                              : X509_V_OK;
    if (verified == X509_V_OK) return URLError(stage_);
    return URLError(stage_, X509_verify_cert_error_string(verified));
  }

  /// Makes the connection a trusted one. Nothing of the request is sent before.
  Task<void> handshake() {
    stage_ = Code::secureConnectionFailed;
    if (!expectServer(secured_->native_handle(), request_.url.host)) throw URLError(stage_);
    co_await secured_->async_handshake(asio::ssl::stream_base::client, asio::use_awaitable);
  }

  [[nodiscard]] http::request<http::string_body> message() const {
    http::request<http::string_body> message;
    message.method_string(request_.httpMethod);
    message.target(request_.url.target);
    for (const auto& [name, value] : request_.headerFields) message.set(name, value);
    message.set(http::field::host, endpoint_.authority);
    message.set(http::field::accept, "*/*");
    message.set(http::field::connection, "close");
    message.body() = request_.httpBody;
    message.prepare_payload();
    return message;
  }

  template <typename Stream>
  Task<void> transfer(Stream& stream) {
    stage_ = Code::networkConnectionLost;
    const auto sent = message();
    co_await http::async_write(stream, sent, asio::use_awaitable);
    answer = co_await readAnswer(stream);
  }

  URLRequest request_;
  HTTPEndpoint endpoint_;
  ServerTrust& trust_;
  std::optional<asio::ip::address> numeric_;
  asio::posix::stream_descriptor lookup_;
  beast::tcp_stream connection_;
  beast::basic_stream<asio::local::stream_protocol> local_;
  std::optional<asio::ssl::stream<beast::tcp_stream&>> secured_;
  /// The error code for a failure of the current step.
  Code stage_ = Code::cannotFindHost;
  bool abandoned_ = false;
};

}  // namespace

HTTPURLSession::HTTPURLSession() : trust_(std::make_unique<ServerTrust>()) {}

HTTPURLSession::~HTTPURLSession() = default;

Task<URLAnswer> HTTPURLSession::data(URLRequest request) {
  const auto cancellation = co_await asio::this_coro::cancellation_state;
  if (cancellation.cancelled() != asio::cancellation_type::none) throw URLError(Code::cancelled);

  const auto end = std::chrono::steady_clock::now() + request.timeoutInterval;
  HTTPEndpoint endpoint = HTTPEndpoint::of(request.url);
  const auto executor = co_await asio::this_coro::executor;
  std::shared_ptr<Exchange> exchange;
  try {
    exchange =
        std::make_shared<Exchange>(executor, end, std::move(request), std::move(endpoint), *trust_);
  } catch (const boost::system::system_error&) {  // no descriptor is left for its timers
    throw URLError(Code::cannotConnectToHost);
  }
  asio::co_spawn(executor, Exchange::run(exchange), asio::detached);

  error_code cancelledOrOver;
  if (!exchange->ended) {
    co_await exchange->limit.async_wait(asio::redirect_error(asio::use_awaitable, cancelledOrOver));
  }
  if (!exchange->ended) {
    exchange->abandon();
    throw URLError(cancelledOrOver ? Code::cancelled : Code::timedOut);
  }
  if (!exchange->answer) throw exchange->failure;
  co_return std::move(*exchange->answer);
}

}  // namespace kivo::linux_platform
