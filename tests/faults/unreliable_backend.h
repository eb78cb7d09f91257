// An extraction endpoint that stores each key once and fails as often as configured. It returns an
// expense of 1 at Shop for every text.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>

#include "testkit/loopback_socket.h"

namespace kivo::testkit {

/// The ways in which it fails a request.
enum class Fault { none, refused, resetAfterCommit, status500, garbage, closedWithoutAnswer };

/// Accepts one connection after the other on a thread of its own. Thread-safe.
class UnreliableBackend {
 public:
  /// Fails with `probability` from 0 to 1, each fault equally often; `seed` fixes the sequence.
  UnreliableBackend(std::uint64_t seed, double probability);
  ~UnreliableBackend();
  UnreliableBackend(const UnreliableBackend&) = delete;
  UnreliableBackend& operator=(const UnreliableBackend&) = delete;

  [[nodiscard]] std::string url() const;

  /// Chooses the fault of the next connection. It does not see a refused one: all are
  /// refused from then on until the next call.
  void beginRun();
  /// Stops failing, from the next connection on.
  void heal();

  /// The text stored under each key.
  [[nodiscard]] std::map<std::string, std::string> stored() const;
  /// The number of requests with a key that was stored with another text.
  [[nodiscard]] int contradictions() const;
  /// The number of requests for each fault, and for none. Refused ones are not counted.
  [[nodiscard]] std::map<Fault, int> met() const;

 private:
  void serve();
  void exchange(int socket);
  void commit(const std::string& body);
  // With the mutex held:
  void decide();
  void listen();
  void stopListening();

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::mt19937_64 random_;  // guarded by the mutex, like all that follows
  double probability_;
  Fault next_ = Fault::none;
  std::map<std::string, std::string> stored_;
  std::map<Fault, int> met_;
  int contradictions_ = 0;
  bool ending_ = false;
  RefusedPort port_;  // keeps the port while nothing listens
  int listening_ = -1;
  std::thread thread_;
};

}  // namespace kivo::testkit
