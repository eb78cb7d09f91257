// The fixture of tests that call kivo-ledger as a person does.
#pragma once

#include <csignal>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/linux/process/child_process.h"
#include "testkit/private_ledger.h"

namespace kivo::testkit {

// No rule knows this wording. The bank, the shops and their names do not exist.
inline constexpr const char* unreadable = "Zap! Tulip Bank flew EGP 640.00 over to Nile Cinema";
inline constexpr const char* unreadableToo = "Zap! Tulip Bank flew EGP 75.50 over to Moon Pharmacy";

class LedgerCommandTest : public testing::Test {
 protected:
  static std::string program() { return linux_platform::programFolder() / "kivo-ledger"; }
  static linux_platform::ProgramResult run(std::vector<std::string> arguments,
                                           const std::string& input = "") {
    return linux_platform::runProgram(
        {.program = program(), .arguments = std::move(arguments), .input = input});
  }
  /// The output of a command that has to succeed.
  static std::string shown(std::vector<std::string> arguments, const std::string& input = "") {
    const linux_platform::ProgramResult result = run(std::move(arguments), input);
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
  }
  static nlohmann::json json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return nlohmann::json::parse(shown(std::move(arguments)));
  }
  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const linux_platform::ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-ledger: " + error + "\n");
  }
  /// Sends the messages to a service that ends again, under the keys KEY-1, KEY-2 and so on.
  void receive(const std::vector<std::string>& messages, const std::string& date = "2026-11-21") {
    const auto server = ledger_.start();
    for (const std::string& message : messages) {
      const std::string key = "KEY-" + std::to_string(++received_);
      EXPECT_EQ(ledger_.post(key, message, date).status(), 200);
    }
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait().status, 0);
  }

  PrivateLedger ledger_;

 private:
  int received_ = 0;
};

}  // namespace kivo::testkit
