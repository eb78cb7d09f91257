// An HTTP session with scripted answers that records its requests and sends nothing.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/foundation/url_session.h"
#include "testkit/event_log.h"
#include "testkit/gate.h"

namespace kivo::testkit {

/// Answers each request with the next entry of the script, in the order in which they begin. A
/// request without an entry fails the test. A cancelled request, held or not, ends as with the real
/// session. Thread-safe.
class RecordingURLSession : public platform::URLSession {
 public:
  /// Returns an answer, or throws; runs on the task's worker once the request has passed the gate.
  using Answerer = std::function<platform::URLAnswer(const platform::URLRequest&)>;

  explicit RecordingURLSession(EventLog& log) : log_(log) {}

  void willAnswer(std::string body, int status = 200);
  template <typename Error>
  void willFail(Error error) {
    willDo([error](const platform::URLRequest&) -> platform::URLAnswer { throw error; });
  }
  void willDo(Answerer answerer);

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

  /// The gate that holds requests that have begun, when a test closes it.
  Gate& gate() { return gate_; }

  [[nodiscard]] std::vector<platform::URLRequest> requests() const;
  [[nodiscard]] platform::URLRequest onlyRequest() const;
  /// The text member `key` of each request's body.
  [[nodiscard]] std::vector<std::string> sent(const std::string& key) const;
  /// The largest number of concurrent requests.
  [[nodiscard]] std::size_t mostAtOnce() const;
  /// The threads on which requests began.
  [[nodiscard]] std::set<std::thread::id> threads() const;

 private:
  struct UnderWay;
  Answerer begin(const platform::URLRequest& request);

  EventLog& log_;
  Gate gate_;
  mutable std::mutex mutex_;
  std::deque<Answerer> script_;
  std::vector<platform::URLRequest> requests_;
  std::set<std::thread::id> threads_;
  std::size_t underWay_ = 0;
  std::size_t mostAtOnce_ = 0;
};

}  // namespace kivo::testkit
