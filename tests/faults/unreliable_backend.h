// An extraction endpoint that stores each key once and fails as often as it is told to. Recognises
// nothing: every text is an expense of 1 at Shop.
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

/// How it fails a request.
enum class Fault { none, refused, resetAfterCommit, status500, garbage, closedWithoutAnswer };

/// Takes one connection after the other, on a thread of its own. Its operations may be called from
/// any thread.
class UnreliableBackend {
 public:
  /// Fails with `probability` from 0 to 1, each fault alike; what comes is fixed by `seed`.
  UnreliableBackend(std::uint64_t seed, double probability);
  ~UnreliableBackend();
  UnreliableBackend(const UnreliableBackend&) = delete;
  UnreliableBackend& operator=(const UnreliableBackend&) = delete;

  [[nodiscard]] std::string url() const;

  /// Decides on the fate of the connection to come. A refused one is seen by nobody: all are
  /// refused from then on until the next call.
  void beginRun();
  /// Fails no more, from the connection to come on.
  void heal();

  /// The text stored under each key.
  [[nodiscard]] std::map<std::string, std::string> stored() const;
  /// How many requests came with a key that was stored under another text.
  [[nodiscard]] int contradictions() const;
  /// How many requests met with each fault, or with none. The refused ones are not among them.
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
  RefusedPort port_;  // stays ours while nobody listens
  int listening_ = -1;
  std::thread thread_;
};

}  // namespace kivo::testkit
