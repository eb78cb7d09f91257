#include "phone/watch_commands.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "phone/phone_terminal.h"
#include "platform/foundation/character_set.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"
#include "sms_watcher/sender_pattern.h"
#include "sms_watcher/senders_file.h"

namespace kivo {
namespace {

namespace SendersFile = SendersFile;
using linux_platform::GivenParameters;

// Returns the senders in the file; nullopt, after printing the reason, when it cannot be read.
std::optional<std::vector<std::string>> namedSenders() {
  SendersFile::Content content = SendersFile::read();
  if (!content.error) return std::move(content.senders);
  fail(*content.error);
  return std::nullopt;
}

int write(const std::vector<std::string>& senders, const std::string& done) {
  if (!SendersFile::write(senders)) return fail("the settings file cannot be written");
  return print(done);
}

std::string quoted(const std::string& sender) {
  return "\"" + linux_platform::forStandardOutput(sender) + "\"";
}

// Returns the SENDER argument as valid UTF-8 without surrounding blanks.
std::string senderOf(const GivenParameters& given) {
  const std::string sender = platform::repairedUtf8(given.at("SENDER"));
  return std::string(platform::trimmingWhitespaces(sender));
}

int addSender(const GivenParameters& given) {
  const std::string sender = senderOf(given);
  if (const auto objection = SenderPattern::objectionTo(sender)) {
    return fail("a sender " + *objection + "; nothing was changed", linux_platform::exitBadUsage);
  }
  const auto lock = SendersFile::lock();
  auto senders = namedSenders();
  if (!senders) return exitFailure;
  const std::string done = "Messages of " + quoted(sender) + " are handed to Kivo.\n";
  if (std::find(senders->begin(), senders->end(), sender) != senders->end()) return print(done);
  senders->push_back(sender);
  return write(*senders, done);
}

int removeSender(const GivenParameters& given) {
  const std::string sender = senderOf(given);
  const auto lock = SendersFile::lock();
  auto senders = namedSenders();
  if (!senders) return exitFailure;
  const auto isIt = [&sender](const std::string& one) {
    return platform::trimmingWhitespaces(one) == sender;
  };
  if (std::erase_if(*senders, isIt) == 0) {
    return fail("there is no sender \"" + linux_platform::escapedControls(sender) +
                "\"; kivo-phone watch list shows all");
  }
  return write(*senders, "Messages of " + quoted(sender) + " are no longer handed to Kivo.\n");
}

int listSenders(const GivenParameters&) {
  const auto senders = namedSenders();
  if (!senders) return exitFailure;
  if (senders->empty()) return print("No sender is named, so no message is handed to Kivo.\n");
  std::string lines;
  for (const std::string& sender : *senders) {
    lines += linux_platform::forStandardOutput(sender) + "\n";
  }
  return print(lines);
}

}  // namespace

std::vector<linux_platform::Command> watchCommands() {
  return {
      {"watch", "Say whose messages kivo-sms-watcher hands to Kivo", {}, {}},
      {"watch add",
       "Have the messages of a sender handed on",
       {{"SENDER", "The sender as the phone shows it; * stands for any characters"}},
       addSender},
      {"watch remove",
       "Have the messages of a sender no longer handed on",
       {{"SENDER", "The sender, as it was added"}},
       removeSender},
      {"watch list", "Show whose messages are handed on", {}, listSenders},
  };
}

}  // namespace kivo
