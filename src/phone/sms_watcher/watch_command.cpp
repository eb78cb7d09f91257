#include "phone/sms_watcher/watch_command.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <vector>

#include "phone/sms_watcher/sender_pattern.h"
#include "platform/foundation/character_set.h"
#include "platform/linux/process/command_line.h"
#include "platform/linux/process/terminal_text.h"
#include "platform/linux/telephony/senders_file.h"

namespace kivo::WatchCommand {
namespace {

namespace SendersFile = linux_platform::SendersFile;

int fail(const std::string& what, int status = 1) {
  linux_platform::complain("kivo-phone", what);
  return status;
}

int print(const std::string& text) {
  std::cout << text << std::flush;
  return std::cout ? 0 : fail("standard output cannot be written");
}

// Whom the file names; none, after a complaint, when it cannot be read.
std::optional<std::vector<std::string>> namedSenders() {
  SendersFile::Content content = SendersFile::read();
  if (!content.error) return std::move(content.senders);
  fail(*content.error);
  return std::nullopt;
}

int write(const std::vector<std::string>& senders, const std::string& done) {
  if (!SendersFile::write(senders)) return fail("the settings cannot be written");
  return print(done);
}

std::string quoted(const std::string& sender) {
  return "\"" + linux_platform::forStandardOutput(sender) + "\"";
}

}  // namespace

int add(const std::string& given) {
  if (const auto objection = SenderPattern::objectionTo(given)) {
    return fail("a sender " + *objection + "; nothing was changed", linux_platform::exitBadUsage);
  }
  const std::string sender(platform::trimmingWhitespaces(given));
  auto senders = namedSenders();
  if (!senders) return 1;
  const std::string done = "Messages of " + quoted(sender) + " are handed to Kivo.\n";
  if (std::find(senders->begin(), senders->end(), sender) != senders->end()) return print(done);
  senders->push_back(sender);
  return write(*senders, done);
}

int remove(const std::string& given) {
  const std::string sender(platform::trimmingWhitespaces(given));
  auto senders = namedSenders();
  if (!senders) return 1;
  const auto isIt = [&sender](const std::string& one) {
    return platform::trimmingWhitespaces(one) == sender;
  };
  if (std::erase_if(*senders, isIt) == 0) return fail("no such sender is named");
  return write(*senders, "Messages of " + quoted(sender) + " are no longer handed to Kivo.\n");
}

int list() {
  const auto senders = namedSenders();
  if (!senders) return 1;
  if (senders->empty()) return print("No sender is named, so no message is handed to Kivo.\n");
  std::string lines;
  for (const std::string& sender : *senders) {
    lines += linux_platform::forStandardOutput(sender) + "\n";
  }
  return print(lines);
}

}  // namespace kivo::WatchCommand
