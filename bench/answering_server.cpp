#include "bench/answering_server.h"

#include <csignal>
#include <cstdint>
#include <string_view>
#include <utility>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <sys/prctl.h>

#include "testkit/backend_answers.h"
#include "testkit/other_process.h"

namespace kivo::bench {
namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

constexpr int mostWaitingConnections = 4096;

std::string bodyOf(Answers answers, std::uint64_t number) {
  if (answers == Answers::notSaved) return testkit::notSavedBody;
  const double amount = 1 + static_cast<double>(number * 7919 % 999'983) / 100;
  return testkit::savedBody({.amount = amount, .description = "Cafe " + std::to_string(number)});
}

std::string answerOf(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nConnection: close\r\n"
         "Content-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::size_t contentLength(std::string_view head) {
  for (const std::string_view name : {"\r\nContent-Length: ", "\r\ncontent-length: "}) {
    const auto field = head.find(name);
    if (field != std::string_view::npos) return std::stoul(std::string(head.substr(field + 18)));
  }
  return 0;
}

class Backend {
 public:
  Backend(tcp::acceptor acceptor, Answers answers, std::chrono::milliseconds delay,
          asio::ssl::context* tls)
      : acceptor_(std::move(acceptor)), answers_(answers), delay_(delay), tls_(tls) {}

  asio::awaitable<void> accept() {
    while (true) {
      tcp::socket socket = co_await acceptor_.async_accept(asio::use_awaitable);
      socket.set_option(tcp::no_delay(true));
      asio::co_spawn(acceptor_.get_executor(), serve(std::move(socket)), asio::detached);
    }
  }

 private:
  asio::awaitable<void> serve(tcp::socket socket) {
    try {
      if (tls_ == nullptr) {
        co_await answer(socket);
      } else {
        asio::ssl::stream<tcp::socket&> secured(socket, *tls_);
        co_await secured.async_handshake(asio::ssl::stream_base::server, asio::use_awaitable);
        co_await answer(secured);
        co_await secured.async_shutdown(asio::use_awaitable);
      }
    } catch (const boost::system::system_error&) {
      // The client has closed the connection.
    }
  }

  template <typename Stream>
  asio::awaitable<void> answer(Stream& stream) {
    std::string request;
    auto into = asio::dynamic_buffer(request);
    const std::size_t head =
        co_await asio::async_read_until(stream, into, "\r\n\r\n", asio::use_awaitable);
    const std::size_t whole = head + contentLength(std::string_view(request).substr(0, head));
    if (request.size() < whole) {
      co_await asio::async_read(stream, into, asio::transfer_exactly(whole - request.size()),
                                asio::use_awaitable);
    }
    if (delay_ > delay_.zero()) {
      asio::steady_timer timer(acceptor_.get_executor(), delay_);
      co_await timer.async_wait(asio::use_awaitable);
    }
    const std::string bytes = answerOf(bodyOf(answers_, ++number_));
    co_await asio::async_write(stream, asio::buffer(bytes), asio::use_awaitable);
  }

  tcp::acceptor acceptor_;
  Answers answers_;
  std::chrono::milliseconds delay_;
  asio::ssl::context* tls_;
  std::uint64_t number_ = 0;
};

asio::ssl::context serverTls(const testkit::ServerIdentity& identity) {
  asio::ssl::context tls(asio::ssl::context::tls_server);
  tls.use_certificate_chain(asio::buffer(identity.certificate));
  tls.use_private_key(asio::buffer(identity.key), asio::ssl::context::pem);
  return tls;
}

}  // namespace

struct AnsweringServer::Process {
  asio::io_context context;
  tcp::acceptor acceptor{context};
  std::string url;
  std::optional<testkit::OtherProcess> other;
};

AnsweringServer::AnsweringServer(Answers answers, std::chrono::milliseconds delay,
                                 std::optional<testkit::ServerIdentity> identity)
    : process_(std::make_unique<Process>()) {
  const tcp::endpoint anyPort(asio::ip::address_v4::loopback(), 0);
  tcp::acceptor& acceptor = process_->acceptor;
  acceptor.open(anyPort.protocol());
  acceptor.bind(anyPort);
  acceptor.listen(mostWaitingConnections);
  process_->url = std::string(identity ? "https://localhost:" : "http://127.0.0.1:") +
                  std::to_string(acceptor.local_endpoint().port());

  process_->other.emplace([&](testkit::OtherProcess&) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    process_->context.notify_fork(asio::io_context::fork_child);
    std::optional<asio::ssl::context> tls;
    if (identity) tls.emplace(serverTls(*identity));
    Backend backend(std::move(acceptor), answers, delay, tls ? &*tls : nullptr);
    asio::co_spawn(process_->context, backend.accept(), asio::detached);
    process_->context.run();
    return true;
  });
  acceptor.close();
}

AnsweringServer::~AnsweringServer() = default;

std::string AnsweringServer::url() const { return process_->url; }

}  // namespace kivo::bench
