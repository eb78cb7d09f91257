// Measures the answers of the ledger's service to one client and to several at once.
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <sys/un.h>

#include "booked_message.h"
#include "ledger/extraction_endpoint.h"
#include "ledger/http_server.h"
#include "ledger/listening_socket.h"
#include "testkit/private_folders.h"

namespace kivo::bench {
namespace {

using benchmark::State;
using ledger::HttpServer;

// Whether the service at `path` books the message of `key`.
bool isBookedAt(const std::string& path, const std::string& key) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return isBooked(reinterpret_cast<const sockaddr*>(&address), sizeof address,
                  {.user = "user", .path = "/functions/v1/sms-extraction", .key = key});
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
          if (isBookedAt(service.path(), key)) ++booked;
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
