#include "timed_program.h"

#include <stdexcept>

#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/foundation/json_decoder.h"

namespace kivo::testkit {

std::int64_t secondsOf(const std::string& time) {
  const auto moment = platform::ISO8601DateFormatter::date(time);
  if (!moment) throw std::invalid_argument("no time: " + time);
  return static_cast<std::int64_t>(platform::secondsSince1970(*moment));
}

std::string timeOf(std::int64_t seconds) {
  return platform::ISO8601DateFormatter::string(platform::Moment(std::chrono::seconds(seconds)));
}

std::string memberOf(const HttpRequest& request, std::string_view member) {
  return platform::JSONDecoder::object(request.body).decodeString(member);
}

linux_platform::ProgramResult TimedProgram::runAt(std::int64_t seconds, const std::string& text,
                                                  const std::string& zone) const {
  auto timed = call({"perform", "ProcessSMSIntent", "--smsText", "-"}, text);
  timed.environment = {{"LD_PRELOAD", KIVO_FAKETIME},
                       {"FAKETIME", std::to_string(seconds)},
                       {"FAKETIME_FMT", "%s"},
                       {"FAKETIME_DONT_FAKE_MONOTONIC", "1"},
                       {"TZ", zone}};
  return linux_platform::runProgram(std::move(timed));
}

void TimedProgram::queueAt(std::int64_t seconds, const std::string& text, const std::string& zone) {
  backend.goAway();
  const auto result = runAt(seconds, text, zone);
  EXPECT_THAT(result.output, testing::EndsWith("Saved offline - will process when connected\n"));
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.status, 0);
}

void TimedProgram::saveAt(std::int64_t seconds, const std::string& text, const std::string& zone) {
  backend.comeBack();
  backend.answers(200, savedAnswer("expense"));
  const auto result = runAt(seconds, text, zone);
  EXPECT_THAT(result.output, testing::StartsWith("Tracked "));
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.status, 0);
}

std::vector<std::string> TimedProgram::queuedTexts() const {
  std::vector<std::string> texts;
  for (const PendingSmsItem& item : queue()) texts.push_back(item.smsText);
  return texts;
}

std::string TimedProgram::text(StoreKey key) const { return store().readText(key).value_or("-"); }

}  // namespace kivo::testkit
