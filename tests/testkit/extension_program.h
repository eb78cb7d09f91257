// The real kivo-intents in private folders with a loopback backend and without a session bus.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/process/child_process.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"
#include "testkit/loopback_http_server.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {

/// A backend with scripted answers that records its requests.
class ToldBackend {
 public:
  using Answer = HttpAnswer;

  /// The answer to the next requests.
  void answers(int status, std::string body) {
    const std::lock_guard lock(mutex_);
    answer_ = {.status = status, .body = std::move(body)};
  }
  [[nodiscard]] std::vector<HttpRequest> requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
  }
  [[nodiscard]] std::string url() const { return server_.url(); }
  /// From now on connections are refused.
  void goAway() { server_.stopListening(); }
  void comeBack() { server_.listen(); }

 private:
  mutable std::mutex mutex_;
  std::vector<HttpRequest> requests_;  // guarded by mutex_, like answer_
  Answer answer_{.status = 200, .body = R"({"saved":false})"};
  LoopbackHttpServer server_{[this](const HttpRequest& request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
    return answer_;
  }};
};

/// The body for a saved transaction.
std::string savedAnswer(const std::string& type, const std::string& category = "Groceries");

class ExtensionProgram : public ::testing::Test {
 protected:
  [[nodiscard]] std::string programFile() const;
  /// The call of the program with `arguments`.
  [[nodiscard]] linux_platform::ProgramCall call(std::vector<std::string> arguments,
                                                 std::string input = "") const;
  [[nodiscard]] linux_platform::ProgramResult run(std::vector<std::string> arguments,
                                                  std::string input = "") const;
  /// Runs the program on a pseudo-terminal, typing `typed`. Its output contains the errors and the
  /// echo of the typed text.
  [[nodiscard]] linux_platform::ProgramResult onTerminal(const std::string& arguments,
                                                         const std::string& typed) const;
  /// Expects exit status 64, the help with `line` in it on standard error, and no output.
  void expectHelpInsteadOfCommand(const std::vector<std::string>& arguments,
                                  const std::string& line) const;
  /// Signs in, and expects that the program, called so, prints `error` in one line, prints no
  /// answer, and sends and stores nothing.
  void expectUsageError(const std::vector<std::string>& arguments, const std::string& error,
                        const std::string& input = "");
  /// The same for a program that has ended and may have prompted or echoed something before.
  void expectNothingSentOrStored();
  /// Expects that `result` is `output` and a line break, with nothing on standard error.
  static void expectAnswered(const linux_platform::ProgramResult& result,
                             const std::string& output);
  /// The text member `key` of each request's body.
  [[nodiscard]] std::vector<std::string> sent(const std::string& key) const;
  /// The stored value of `key`; "-" for none.
  [[nodiscard]] std::string text(StoreKey key) const;

  /// Performs ProcessSMSIntent on `text`, given on standard input.
  [[nodiscard]] linux_platform::ProgramResult processSMS(const std::string& text) const;

  void signIn(const std::string& url);
  void signIn() { signIn(backend.url()); }
  [[nodiscard]] SharedStore store() const;
  [[nodiscard]] std::vector<PendingSmsItem> queue() const;

  /// The program, in the folder of the tests.
  std::string calledProgram = "kivo-intents";
  PrivateFolders folders;
  ToldBackend backend;
};

}  // namespace kivo::testkit
