#include "testkit/loopback_http_server.h"

#include <chrono>
#include <exception>
#include <future>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>

#include "platform/linux/concurrency/background_thread.h"

namespace kivo::testkit {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;

namespace {

constexpr std::uint64_t longestBody = 8U << 20U;
constexpr std::chrono::seconds longestExchange{10};

using Response = http::response<http::string_body>;

Response responseOf(HttpAnswer answer) {
  Response response(static_cast<http::status>(answer.status), 11);
  response.set(http::field::content_type, "application/json");
  response.keep_alive(false);
  response.body() = std::move(answer.body);
  response.prepare_payload();
  return response;
}

// One exchange on one connection; lives as long as it waits for something.
class Exchange : public std::enable_shared_from_this<Exchange> {
 public:
  Exchange(tcp::socket socket, const LoopbackHttpServer::Handler& handler)
      : stream_(std::move(socket)), handler_(handler) {
    parser_.body_limit(longestBody);
  }

  void begin() {
    stream_.expires_after(longestExchange);
    http::async_read(stream_, buffer_, parser_,
                     [self = shared_from_this()](beast::error_code error, std::size_t) {
                       if (error == http::error::body_limit) {
                         self->respond({.status = 413, .body = {}});
                       } else if (!error) {
                         self->answer();
                       }
                     });
  }

  void drop() {
    beast::error_code ignored;
    stream_.socket().close(ignored);
  }

 private:
  void answer() {
    auto& request = parser_.get();
    try {
      respond(handler_({.method = std::string(request.method_string()),
                        .target = std::string(request.target()),
                        .contentType = std::string(request[http::field::content_type]),
                        .body = std::move(request.body())}));
    } catch (const std::exception&) {
      respond({.status = 500, .body = {}});
    }
  }

  void respond(HttpAnswer answer) {
    response_ = responseOf(std::move(answer));
    http::async_write(stream_, response_,
                      [self = shared_from_this()](beast::error_code, std::size_t) {
                        beast::error_code ignored;
                        self->stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
                      });
  }

  beast::tcp_stream stream_;
  beast::flat_buffer buffer_;
  http::request_parser<http::string_body> parser_;
  Response response_;
  const LoopbackHttpServer::Handler& handler_;
};

}  // namespace

struct LoopbackHttpServer::Server {
  explicit Server(Handler answering) : handler(std::move(answering)), reserved(context) {
    reserved.open(tcp::v4());
    reserved.bind({asio::ip::address_v4::loopback(), 0});
    address = reserved.local_endpoint();
    // Only now: a port chosen with this option set may be one that another process reserves.
    reserved.set_option(tcp::acceptor::reuse_address(true));
    listen();
    thread = linux_platform::startBackgroundThread([this] { context.run(); });
  }

  ~Server() {
    context.stop();
    thread.join();
  }

  void listen() {
    if (acceptor) return;
    acceptor.emplace(context, address);
    accept();
  }

  void accept() {
    acceptor->async_accept([this](beast::error_code error, tcp::socket socket) {
      if (error == asio::error::operation_aborted || !acceptor) return;
      if (!error) {
        auto exchange = std::make_shared<Exchange>(std::move(socket), handler);
        exchanges.insert(exchange);
        exchange->begin();
      }
      std::erase_if(exchanges, [](const auto& known) { return known.expired(); });
      accept();
    });
  }

  void stopListening() {
    acceptor.reset();
    for (const auto& known : exchanges) {
      if (const auto exchange = known.lock()) exchange->drop();
    }
    exchanges.clear();
  }

  // Does `step` on the server's thread, to which all of the rest belongs, and waits for it.
  void onThread(std::function<void()> step) {
    std::packaged_task<void()> task(std::move(step));
    auto done = task.get_future();
    asio::dispatch(context, [&task] { task(); });
    done.get();
  }

  const Handler handler;
  asio::io_context context{1};
  asio::executor_work_guard<asio::io_context::executor_type> work = asio::make_work_guard(context);
  // Bound but never listening: it keeps other programs from taking the port.
  tcp::acceptor reserved;
  tcp::endpoint address;
  std::optional<tcp::acceptor> acceptor;
  std::set<std::weak_ptr<Exchange>, std::owner_less<>> exchanges;
  std::thread thread;
};

LoopbackHttpServer::LoopbackHttpServer(Handler handler)
    : server_(std::make_unique<Server>(std::move(handler))) {}

LoopbackHttpServer::~LoopbackHttpServer() = default;

std::string LoopbackHttpServer::url() const {
  return "http://127.0.0.1:" + std::to_string(server_->address.port());
}

void LoopbackHttpServer::stopListening() {
  server_->onThread([server = server_.get()] { server->stopListening(); });
}

void LoopbackHttpServer::listen() {
  server_->onThread([server = server_.get()] { server->listen(); });
}

}  // namespace kivo::testkit
