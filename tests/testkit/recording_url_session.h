// An HTTP session that answers as a test tells it and remembers what it was asked. Sends nothing.
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

/// Answers with the script's entries, one for each request in the order in which they begin. A
/// request for which there is none fails the test. Cancelled, before or while it is held, a request
/// ends as the real session's do. Usable from any thread.
class RecordingURLSession : public platform::URLSession {
 public:
  /// Makes an answer, or throws; runs on the task's worker once the request has passed the gate.
  using Answerer = std::function<platform::URLAnswer(const platform::URLRequest&)>;

  explicit RecordingURLSession(EventLog& log) : log_(log) {}

  void willAnswer(std::string body, int status = 200);
  template <typename Error>
  void willFail(Error error) {
    willDo([error](const platform::URLRequest&) -> platform::URLAnswer { throw error; });
  }
  void willDo(Answerer answerer);

  platform::Task<platform::URLAnswer> data(platform::URLRequest request) override;

  /// Where requests that have begun are held when a test closes it.
  Gate& gate() { return gate_; }

  [[nodiscard]] std::vector<platform::URLRequest> requests() const;
  [[nodiscard]] platform::URLRequest onlyRequest() const;
  /// The text member `key` of each request's body.
  [[nodiscard]] std::vector<std::string> sent(const std::string& key) const;
  /// How many requests were under way at the same time, at most.
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
