// Measures the answers of the ledger's service to one client and to several at once.
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "ledger/extraction_endpoint.h"
#include "ledger/http_server.h"
#include "ledger/listening_socket.h"
#include "platform/foundation/json_encoder.h"
#include "testkit/private_folders.h"

namespace kivo::bench {
namespace {

using benchmark::State;
using ledger::HttpServer;

std::string request(const std::string& key) {
  platform::JSONEncoder object;
  object.encodeString("sms_text",
                      "Your card ending 4821 was charged EGP 150.00 at Carrefour City.");
  object.encodeString("user_id", "user");
  object.encodeString("expense_date", "2026-11-21");
  object.encodeString("idempotency_key", key);
  const std::string body = object.text();
  return "POST /functions/v1/sms-extraction HTTP/1.1\r\nHost: localhost\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

// Whether the service at `path` books the message of `key`.
bool isBooked(const std::string& path, const std::string& key) {
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const std::string sent = request(key);
  std::string answer;
  if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      write(descriptor, sent.data(), sent.size()) == static_cast<ssize_t>(sent.size())) {
    std::array<char, 4096> piece{};
    for (ssize_t size = 0; (size = read(descriptor, piece.data(), piece.size())) > 0;) {
      answer.append(piece.data(), static_cast<std::size_t>(size));
    }
  }
  close(descriptor);
  return answer.find(R"("saved":true)") != std::string::npos;
}

// A service in this process, on a book of its own, until it had no request for 200 ms.
class Service {
 public:
  Service() : thread_([this] { run(); }) {}
  ~Service() { thread_.join(); }
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  [[nodiscard]] std::string path() const { return folders_.home() / "run" / "ledger.sock"; }

 private:
  void run() {
    ledger::ExtractionEndpoint endpoint([] { return money::CurrencyCode("EGP"); },
                                        [](const book::LedgerEntry&) {});
    HttpServer server([&endpoint](const std::vector<HttpServer::Request>& requests) {
      return endpoint.answers(requests);
    });
    server.run(socket_, std::chrono::milliseconds(200));
  }

  const testkit::PrivateFolders folders_;
  const ledger::ListeningSocket socket_ = ledger::ListeningSocket::create(path());
  std::thread thread_;
};

// The time of 400 answers to so many clients, each of which sends one request after the other.
void serviceAnswers(State& state) {
  constexpr int answers = 400;
  const auto clients = static_cast<int>(state.range(0));
  const Service service;
  int round = 0;
  for (auto _ : state) {
    ++round;
    std::atomic<int> next = 0;
    std::atomic<int> booked = 0;
    std::vector<std::thread> threads;
    for (int client = 0; client < clients; ++client) {
      threads.emplace_back([&] {
        for (int number = next++; number < answers; number = next++) {
          const std::string key = std::to_string(round) + "-" + std::to_string(number);
          if (isBooked(service.path(), key)) ++booked;
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    if (booked != answers) state.SkipWithError("not all were booked");
  }
  state.counters["answers/s"] =
      benchmark::Counter(answers, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(serviceAnswers)->Arg(1)->Arg(8)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kivo::bench
