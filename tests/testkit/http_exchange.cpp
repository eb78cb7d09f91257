#include "testkit/http_exchange.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "testkit/task_runner.h"

namespace kivo::testkit {
namespace {

platform::Task<void> run(platform::URLSession* session, platform::URLRequest request,
                         std::shared_ptr<Outcome> outcome) {
  const auto begin = std::chrono::steady_clock::now();
  try {
    outcome->answer = co_await session->data(std::move(request));
  } catch (const platform::URLError& error) {
    outcome->failure = error.code();
  }
  outcome->took = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - begin);
}

}  // namespace

platform::URLRequest post(const std::string& url, std::string body,
                          std::chrono::milliseconds limit) {
  const auto parsed = platform::URL::parse(url);
  if (!parsed) throw std::invalid_argument("does not parse: " + url);
  platform::URLRequest request{.url = *parsed};
  request.httpMethod = "POST";
  request.httpBody = std::move(body);
  request.timeoutInterval = limit;
  return request;
}

RunningExchange::RunningExchange(platform::URLSession& session, platform::URLRequest request)
    : task_(executor().start(run(&session, std::move(request), outcome_))) {}

Outcome RunningExchange::wait() {
  if (!task_.waitFor(std::chrono::seconds(60))) throw std::runtime_error("an exchange hangs");
  task_.wait();
  return *outcome_;
}

Outcome exchange(platform::URLSession& session, platform::URLRequest request) {
  return RunningExchange(session, std::move(request)).wait();
}

}  // namespace kivo::testkit
