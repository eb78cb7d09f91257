// The real kivo-ledger in private folders, as the extension reaches it.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "platform/foundation/json_encoder.h"
#include "platform/linux/http/http_endpoint.h"
#include "platform/linux/http/http_url_session.h"
#include "platform/linux/process/child_process.h"
#include "testkit/http_exchange.h"
#include "testkit/private_folders.h"
#include "testkit/private_phone.h"

namespace kivo::testkit {

/// A purchase of 150.00 EGP at "Carrefour City".
inline constexpr const char* purchase =
    "Your card ending 4821 was charged EGP 150.00 at Carrefour City on 21-11-2026.";

class PrivateLedger {
 public:
  /// Starts `kivo-ledger serve`, by way of `call` if given, and waits until it answers or has
  /// ended, for at most 30 s.
  std::unique_ptr<linux_platform::ChildProcess> start() { return start(serve()); }
  std::unique_ptr<linux_platform::ChildProcess> start(linux_platform::ProgramCall call) {
    auto started = std::make_unique<linux_platform::ChildProcess>(std::move(call));
    const auto ended = [&] { return kill(started->id(), 0) != 0; };
    eventually([&] { return ended() || answers(); }, std::chrono::seconds(30));
    return started;
  }

  static linux_platform::ProgramCall serve() {
    return {.program = linux_platform::programFolder() / "kivo-ledger", .arguments = {"serve"}};
  }

  /// A request of the day `date` to the ledger on the socket at `path`.
  static platform::URLRequest request(const std::filesystem::path& path, const std::string& key,
                                      const std::string& text = purchase,
                                      const std::string& date = "2026-11-21") {
    platform::JSONEncoder body;
    body.encodeString("sms_text", text);
    body.encodeString("user_id", "local");
    body.encodeString("expense_date", date);
    body.encodeString("idempotency_key", key);
    return testkit::post(urlOn(path), body.text());
  }
  /// Sends it that request and waits for the answer.
  Outcome post(const std::string& key, const std::string& text = purchase,
               const std::string& date = "2026-11-21") {
    return exchange(session_, request(socket(), key, text, date));
  }

  [[nodiscard]] std::filesystem::path socket() const {
    return folders_.home() / "run" / "kivo" / "ledger.sock";
  }
  /// The book.
  [[nodiscard]] std::filesystem::path file() const {
    return folders_.dataHome() / "app.kivo.ledger" / "ledger.sqlite3";
  }
  [[nodiscard]] const PrivateFolders& folders() const { return folders_; }
  [[nodiscard]] linux_platform::HTTPURLSession& session() { return session_; }

 private:
  static std::string urlOn(const std::filesystem::path& path) {
    return linux_platform::urlOfSocket(path.string()) + "/functions/v1/sms-extraction";
  }
  bool answers() { return exchange(session_, testkit::post(urlOn(socket()), "")).status() == 400; }

  PrivateFolders folders_;
  linux_platform::HTTPURLSession session_;
};

}  // namespace kivo::testkit
