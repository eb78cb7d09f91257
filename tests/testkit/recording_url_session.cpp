#include "testkit/recording_url_session.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"

namespace kivo::testkit {

using platform::HTTPURLResponse;
using platform::URLAnswer;
using platform::URLError;
using platform::URLRequest;

struct RecordingURLSession::UnderWay {
  explicit UnderWay(RecordingURLSession& counted) : session(counted) {
    const std::lock_guard lock(session.mutex_);
    session.mostAtOnce_ = std::max(session.mostAtOnce_, ++session.underWay_);
  }
  ~UnderWay() {
    const std::lock_guard lock(session.mutex_);
    --session.underWay_;
  }
  UnderWay(const UnderWay&) = delete;
  UnderWay& operator=(const UnderWay&) = delete;

  RecordingURLSession& session;
};

void RecordingURLSession::willAnswer(std::string body, int status) {
  willDo([body = std::move(body), status](const URLRequest&) {
    return URLAnswer{.data = body, .response = HTTPURLResponse{.statusCode = status}};
  });
}

void RecordingURLSession::willDo(Answerer answerer) {
  const std::lock_guard lock(mutex_);
  script_.push_back(std::move(answerer));
}

RecordingURLSession::Answerer RecordingURLSession::begin(const URLRequest& request) {
  log_.add("exchange");
  const std::lock_guard lock(mutex_);
  requests_.push_back(request);
  threads_.insert(std::this_thread::get_id());
  if (script_.empty()) {
    ADD_FAILURE() << "a request for which the script has no answer";
    throw URLError(URLError::Code::cannotConnectToHost);
  }
  Answerer answerer = std::move(script_.front());
  script_.pop_front();
  return answerer;
}

platform::Task<URLAnswer> RecordingURLSession::data(URLRequest request) {
  const UnderWay underWay(*this);
  const Answerer answerer = begin(request);
  const bool wanted = co_await gate_.passUnlessCancelled();
  if (!wanted) throw URLError(URLError::Code::cancelled);
  URLAnswer answer = answerer(request);
  co_return answer;
}

std::vector<URLRequest> RecordingURLSession::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

URLRequest RecordingURLSession::onlyRequest() const {
  const auto all = requests();
  if (all.size() != 1) throw std::logic_error(std::to_string(all.size()) + " requests, not one");
  return all.front();
}

std::vector<std::string> RecordingURLSession::sent(const std::string& key) const {
  std::vector<std::string> values;
  for (const URLRequest& request : requests()) {
    values.push_back(platform::JSONDecoder::object(request.httpBody).decodeString(key));
  }
  return values;
}

std::size_t RecordingURLSession::mostAtOnce() const {
  const std::lock_guard lock(mutex_);
  return mostAtOnce_;
}

std::set<std::thread::id> RecordingURLSession::threads() const {
  const std::lock_guard lock(mutex_);
  return threads_;
}

}  // namespace kivo::testkit
