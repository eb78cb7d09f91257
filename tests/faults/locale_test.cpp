// The locale of the device, and of a host process that sets it: requests and the store are the same
// byte for byte, except the day of the totals, which follows the locale.
#include <algorithm>
#include <map>
#include <regex>
#include <tuple>

#include "platform/linux/process/child_process.h"
#include "testkit/raw_store.h"
#include "testkit/scripted_server.h"
#include "timed_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// Everything that the runs on a device send, store and print, with each random key replaced by the
// same word.
struct Traces {
  std::vector<std::string> requests;
  std::string stored;
  std::vector<std::string> outputs;
  std::string day;
};

std::string withoutKeys(const std::string& text) {
  static const std::regex key("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
  return std::regex_replace(text, key, "KEY");
}

// Long, so that a length would be grouped where the locale has its way, and with the letters that
// change their case differently in Turkish.
std::string longText() {
  std::string text = "PAID in ISTANBUL, \u0130\u0131 \u0665\u0660 150,75 / 1.234,50 ";
  while (text.size() < 12345) text += "x";
  return text;
}

using HostAndLocale = std::tuple<const char*, const char*>;

class ALocale : public testing::TestWithParam<HostAndLocale> {
 protected:
  // Runs `program` on a device of its own with `locale`: two texts offline, two saved, so that the
  // queue is written, read and drained.
  static Traces traces(const std::string& program, const std::string& locale) {
    testkit::PrivateFolders folders;
    bool healthy = false;
    testkit::ScriptedServer server([&](testkit::ServerConnection& connection) {
      connection.readRequest();
      connection.write(testkit::httpAnswer(healthy ? 200 : 500, answerBody));
    });
    signIn(server.url());
    Traces left;
    const auto run = [&](std::vector<std::string> arguments, const std::string& input) {
      linux_platform::ProgramCall call{.program = linux_platform::programFolder() / program,
                                       .arguments = std::move(arguments),
                                       .input = input,
                                       .environment = {{"LC_ALL", locale},
                                                       {"LOCPATH", KIVO_LOCALES},
                                                       {"LD_PRELOAD", KIVO_FAKETIME},
                                                       {"FAKETIME", "1773500000"},
                                                       {"FAKETIME_FMT", "%s"},
                                                       {"FAKETIME_DONT_FAKE_MONOTONIC", "1"}}};
      const ProgramResult result = linux_platform::runProgram(std::move(call));
      EXPECT_EQ(result.status, 0) << result.errors;
      EXPECT_EQ(result.errors, "");
      left.outputs.push_back(result.output);
    };
    run({"perform", "ProcessSMSIntent", "--smsText", "-"}, longText());
    run({"perform", "AddExpenseIntent", "--amount", "1234567.25", "--merchant", "Caf\u00e9 I"}, "");
    healthy = true;
    run({"perform", "ProcessSMSIntent", "--smsText", "-"}, "Paid 1234.5");
    run({"say", "ADD EXPENSE IN KIVO", "--amount", "0.1", "--merchant", "ISTANBUL"}, "");
    for (const std::string& request : server.requests()) {
      left.requests.push_back(withoutKeys(withoutPort(request, server.port())));
    }
    testkit::RawStore stored(folders.storeFile());
    left.stored =
        withoutKeys(withoutPort(stored.run("SELECT key, typeof(value), quote(value) FROM defaults "
                                           "WHERE key <> 'todayDateKey' ORDER BY key"),
                                server.port()));
    left.day = stored.run("SELECT value FROM defaults WHERE key = 'todayDateKey'");
    return left;
  }

 private:
  static constexpr const char* answerBody =
      R"({"saved":true,"transaction_type":"expense","expense":{"id":"1","description":"Shop",)"
      R"("amount":1234567.625,"category":"Groceries","expense_date":"2026-03-14"}})";

  static void signIn(const std::string& url) {
    SharedStore store = SharedStore::open(appGroup).value();
    store.writeText(StoreKeys::userId, "user-1");
    store.writeText(StoreKeys::supabaseUrl, url);
    store.writeText(StoreKeys::currency, "TRY");
    store.synchronize();
  }

  static std::string withoutPort(const std::string& text, std::uint16_t port) {
    return std::regex_replace(text, std::regex(":" + std::to_string(port) + "\\b"), ":PORT");
  }
};

TEST_P(ALocale, ChangesOnlyTheDayOfTheTotalsInRequestsAndStore) {
  const auto& [program, locale] = GetParam();
  const Traces plain = traces("kivo-intents", "C");
  const Traces localized = traces(program, locale);

  ASSERT_EQ(plain.requests.size(), 6U);  // two that failed, two that were saved, two of the queue
  EXPECT_THAT(plain.requests[0], HasSubstr("\r\nContent-Length: 124"));
  EXPECT_EQ(localized.requests, plain.requests);
  EXPECT_THAT(plain.stored, HasSubstr("monthlyTotal|text|'2469135.25'"));
  EXPECT_EQ(localized.stored, plain.stored);

  EXPECT_EQ(plain.day, "2026-03-14\n");
  static const std::map<std::string, std::string> days = {
      {"ar_EG.UTF-8", "\u0662\u0660\u0662\u0666-\u0660\u0663-\u0661\u0664\n"},
      {"fa_IR.UTF-8", "\u06f1\u06f4\u06f0\u06f4-\u06f1\u06f2-\u06f2\u06f3\n"},
      {"th_TH.UTF-8", "2569-03-14\n"}};
  const auto day = days.find(locale);
  EXPECT_EQ(localized.day, day == days.end() ? plain.day : day->second);
}

TEST_P(ALocale, ChangesOnlyTheAmountInADialog) {
  const auto& [program, locale] = GetParam();
  static const std::map<std::string, std::string> amounts = {
      {"C", "TRY\u00a01234567.62"},
      {"de_DE.UTF-8", "1.234.567,62\u00a0TRY"},
      {"tr_TR.UTF-8", "\u20ba1.234.567,62"},
      {"th_TH.UTF-8", "TRY\u00a01,234,567.62"}};
  const Traces left = traces(program, locale);
  ASSERT_EQ(left.outputs.size(), 4U);
  EXPECT_EQ(
      left.outputs[0],
      "ProcessSMSIntent error: Error Domain=SMSExtraction Code=500 \"Failed to extract SMS\"\n"
      "Saved offline - will process when connected\n");
  const auto amount = amounts.find(locale);
  for (const std::size_t saved : {2U, 3U}) {
    EXPECT_THAT(left.outputs[saved], StartsWith("Tracked "));
    EXPECT_THAT(left.outputs[saved], EndsWith(" at Shop\n"));
    if (amount != amounts.end()) {
      EXPECT_EQ(left.outputs[saved], "Tracked " + amount->second + " at Shop\n");
    }
  }
}

std::string nameOf(const testing::TestParamInfo<HostAndLocale>& info) {
  const std::string locale = std::get<1>(info.param);
  const bool host = std::string(std::get<0>(info.param)) != "kivo-intents";
  std::string name = locale.substr(0, locale.find('.'));
  std::erase(name, '_');
  return name + (host ? "OfTheHost" : "OfTheDevice");
}

INSTANTIATE_TEST_SUITE_P(, ALocale,
                         testing::Combine(testing::Values("kivo-intents", "kivo-localized-host"),
                                          testing::Values("C", "de_DE.UTF-8", "tr_TR.UTF-8",
                                                          "ar_EG.UTF-8", "fa_IR.UTF-8",
                                                          "th_TH.UTF-8")),
                         nameOf);

}  // namespace
}  // namespace kivo
