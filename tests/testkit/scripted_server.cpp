#include "testkit/scripted_server.h"

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "testkit/loopback_socket.h"

namespace kivo::testkit {
namespace {

using TlsContext = std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)>;
using Tls = std::unique_ptr<SSL, decltype(&SSL_free)>;

TlsContext serverContext(const ServerIdentity& identity, bool onlyOldTls) {
  TlsContext context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  const auto memory = [](const std::string& pem) {
    return std::unique_ptr<BIO, decltype(&BIO_free_all)>(BIO_new_mem_buf(pem.data(), -1),
                                                         BIO_free_all);
  };
  const auto certificatePem = memory(identity.certificate);
  const auto keyPem = memory(identity.key);
  X509* const certificate = PEM_read_bio_X509(certificatePem.get(), nullptr, nullptr, nullptr);
  EVP_PKEY* const key = PEM_read_bio_PrivateKey(keyPem.get(), nullptr, nullptr, nullptr);
  const bool taken = SSL_CTX_use_certificate(context.get(), certificate) == 1 &&
                     SSL_CTX_use_PrivateKey(context.get(), key) == 1;
  X509_free(certificate);
  EVP_PKEY_free(key);
  if (!taken) throw std::runtime_error("no usable identity for the test server");
  if (onlyOldTls) {
    SSL_CTX_set_min_proto_version(context.get(), TLS1_1_VERSION);
    SSL_CTX_set_max_proto_version(context.get(), TLS1_1_VERSION);
    SSL_CTX_set_cipher_list(context.get(), "ALL:@SECLEVEL=0");
  }
  return context;
}

/// How many bytes the whole request at the start of `bytes` has; 0 while it is not whole.
std::size_t wholeRequest(const std::string& bytes) {
  const auto blank = bytes.find("\r\n\r\n");
  if (blank == std::string::npos) return 0;
  std::string head = bytes.substr(0, blank);
  std::transform(head.begin(), head.end(), head.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  const std::string field = "\r\ncontent-length:";
  const auto length = head.find(field);
  const std::size_t body =
      length == std::string::npos ? 0 : std::stoul(head.substr(length + field.size()));
  const std::size_t whole = blank + 4 + body;
  return bytes.size() >= whole ? whole : 0;
}

}  // namespace

struct ScriptedServer::State {
  std::string address;
  std::uint16_t port = 0;
  int listening = -1;
  Script script;
  TlsContext tls{nullptr, SSL_CTX_free};

  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  bool ending = false;
  int accepted = 0;
  std::vector<std::string> requests;
  std::vector<int> open;
  std::vector<std::thread> threads;
  std::thread acceptor;

  void accept();
  void serve(int socket);
  bool waitFor(const std::function<bool()>& reached) const {
    std::unique_lock lock(mutex);
    return changed.wait_for(lock, std::chrono::seconds(10), reached);
  }
};

namespace {

class SocketConnection : public ServerConnection {
 public:
  SocketConnection(int socket, ScriptedServer::State& state) : socket_(socket), state_(state) {}

  ~SocketConnection() override {
    if (tls_ != nullptr && !closesAbruptly_) SSL_shutdown(tls_.get());
    // Closing with something unread would reset the connection, and take the answer along.
    if (!closesAbruptly_) {
      shutdown(socket_, SHUT_WR);
      for (std::string rest(4096, '\0'); recv(socket_, rest.data(), rest.size(), 0) > 0;) continue;
    }
    const std::lock_guard lock(state_.mutex);
    std::erase(state_.open, socket_);
    close(socket_);
  }

  bool shakeHands() {
    if (state_.tls == nullptr) return true;
    tls_.reset(SSL_new(state_.tls.get()));
    SSL_set_fd(tls_.get(), socket_);
    if (SSL_accept(tls_.get()) == 1) return true;
    closesAbruptly_ = true;
    return false;
  }

  std::string requestedHostName() const override {
    const char* const name =
        tls_ == nullptr ? nullptr : SSL_get_servername(tls_.get(), TLSEXT_NAMETYPE_host_name);
    return name == nullptr ? "" : name;
  }

  std::string readRequest() override {
    std::size_t whole = 0;
    while ((whole = wholeRequest(received_)) == 0 && receive()) continue;
    std::string request = received_.substr(0, whole == 0 ? std::string::npos : whole);
    received_.erase(0, request.size());
    const std::lock_guard lock(state_.mutex);
    state_.requests.push_back(request);
    state_.changed.notify_all();
    return request;
  }

  void write(std::string_view bytes) override {
    while (!bytes.empty()) {
      std::size_t count = 0;
      if (tls_ != nullptr) {
        if (SSL_write_ex(tls_.get(), bytes.data(), bytes.size(), &count) != 1) return;
      } else {
        const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0) return;
        count = static_cast<std::size_t>(sent);
      }
      bytes.remove_prefix(count);
    }
  }

  bool idle(std::chrono::milliseconds time) override {
    pollfd watched{.fd = socket_, .events = POLLRDHUP, .revents = 0};
    return poll(&watched, 1, static_cast<int>(time.count())) > 0;
  }

  void reset() override {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    closesAbruptly_ = true;
  }

  void closeWithoutNotify() override { closesAbruptly_ = true; }

  // OpenSSL has no call for it, but sends it when it reads an unencrypted record.
  void sendFatalAlert() override {
    if (tls_ == nullptr) return;
    const std::string record = std::string("\x17\x03\x03\x00\x20", 5) + std::string(32, 'x');
    BIO* const garbage = BIO_new(BIO_s_mem());
    BIO_write(garbage, record.data(), static_cast<int>(record.size()));
    SSL_set0_rbio(tls_.get(), garbage);
    char byte = 0;
    std::size_t count = 0;
    SSL_read_ex(tls_.get(), &byte, 1, &count);
  }

 private:
  bool receive() {
    std::string more(16384, '\0');
    std::size_t count = 0;
    if (tls_ != nullptr) {
      if (SSL_read_ex(tls_.get(), more.data(), more.size(), &count) != 1) return false;
    } else {
      const ssize_t got = recv(socket_, more.data(), more.size(), 0);
      if (got <= 0) return false;
      count = static_cast<std::size_t>(got);
    }
    received_.append(more, 0, count);
    return true;
  }

  int socket_;
  ScriptedServer::State& state_;
  Tls tls_{nullptr, SSL_free};
  std::string received_;
  bool closesAbruptly_ = false;
};

}  // namespace

void ServerConnection::drip(std::string_view bytes, std::chrono::milliseconds pause) {
  for (const char byte : bytes) {
    if (idle(pause)) return;
    write({&byte, 1});
  }
}

void ScriptedServer::State::serve(int socket) {
  SocketConnection connection(socket, *this);
  if (connection.shakeHands() && script) script(connection);
}

void ScriptedServer::State::accept() {
  while (true) {
    const int socket = ::accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
    const std::lock_guard lock(mutex);
    if (ending || socket < 0) {
      if (socket >= 0) close(socket);
      if (ending) return;
      continue;
    }
    ++accepted;
    open.push_back(socket);
    threads.emplace_back([this, socket] { serve(socket); });
    changed.notify_all();
  }
}

ScriptedServer::ScriptedServer(Script script, ServerOptions options)
    : state_(std::make_shared<State>()) {
  state_->script = std::move(script);
  state_->address = options.address;
  std::signal(SIGPIPE, SIG_IGN);  // what TLS writes to a peer that has gone must not end the tests
  if (options.identity) state_->tls = serverContext(*options.identity, options.onlyOldTls);
  state_->listening = listeningSocket(options.address, options.port, SOMAXCONN);
  state_->port = portOf(state_->listening);
  state_->acceptor = std::thread([state = state_.get()] { state->accept(); });
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->ending = true;
    shutdown(state_->listening, SHUT_RDWR);
    for (const int socket : state_->open) shutdown(socket, SHUT_RDWR);
  }
  state_->acceptor.join();
  for (auto& thread : state_->threads) thread.join();
  close(state_->listening);
}

std::uint16_t ScriptedServer::port() const { return state_->port; }

std::string ScriptedServer::url() const {
  const bool bracketed = state_->address.find(':') != std::string::npos;
  return (state_->tls != nullptr ? "https://" : "http://") +
         (bracketed ? "[" + state_->address + "]" : state_->address) + ":" +
         std::to_string(state_->port);
}

std::vector<std::string> ScriptedServer::requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

int ScriptedServer::connections() const {
  const std::lock_guard lock(state_->mutex);
  return state_->accepted;
}

bool ScriptedServer::waitForConnections(int count) const {
  return state_->waitFor([&] { return state_->accepted >= count; });
}

bool ScriptedServer::waitForRequests(int count) const {
  return state_->waitFor([&] { return std::ssize(state_->requests) >= count; });
}

std::string httpAnswer(int status, std::string_view body) {
  std::string answer = "HTTP/1.1 " + std::to_string(status) + " Scripted\r\n";
  answer += "Content-Type: application/json\r\n";
  answer += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
  return answer.append(body);
}

Script answering(std::string bytes) {
  return [bytes = std::move(bytes)](ServerConnection& connection) {
    connection.readRequest();
    connection.write(bytes);
  };
}

}  // namespace kivo::testkit
