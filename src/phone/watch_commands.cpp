#include "phone/watch_commands.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/foundation/character_set.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "sms_watcher/sender_pattern.h"
#include "sms_watcher/senders_file.h"

namespace kivo {
namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::Failure;
using linux_platform::GivenParameters;
using linux_platform::print;

std::string quoted(const std::string& sender) {
  return "\"" + linux_platform::forStandardOutput(sender) + "\"";
}

// Returns the SENDER argument as valid UTF-8 without surrounding blanks.
std::string senderOf(const GivenParameters& given) {
  const std::string sender = platform::repairedUtf8(given.at("SENDER"));
  return std::string(platform::trimmingWhitespaces(sender));
}

void addSender(const GivenParameters& given) {
  const std::string sender = senderOf(given);
  try {
    SenderPattern::check(sender);
  } catch (const Failure& failure) {
    throw BadUsage(std::string(failure.what()) + "; nothing was changed");
  }
  const auto lock = SendersFile::lock();
  std::vector<std::string> senders = SendersFile::read().senders;
  const std::string done = "Messages of " + quoted(sender) + " are handed to Kivo.\n";
  if (std::find(senders.begin(), senders.end(), sender) == senders.end()) {
    senders.push_back(sender);
    SendersFile::write(senders);
  }
  print(done);
}

void removeSender(const GivenParameters& given) {
  const std::string sender = senderOf(given);
  const auto lock = SendersFile::lock();
  std::vector<std::string> senders = SendersFile::read().senders;
  const auto isIt = [&sender](const std::string& one) {
    return platform::trimmingWhitespaces(one) == sender;
  };
  if (std::erase_if(senders, isIt) == 0) {
    throw CommandFailure("there is no sender \"" + sender + "\"; kivo-phone watch list shows all");
  }
  SendersFile::write(senders);
  print("Messages of " + quoted(sender) + " are no longer handed to Kivo.\n");
}

void listSenders(const GivenParameters&) {
  const std::vector<std::string> senders = SendersFile::read().senders;
  if (senders.empty()) return print("No sender is named, so no message is handed to Kivo.\n");
  std::string lines;
  for (const std::string& sender : senders) {
    lines += linux_platform::forStandardOutput(sender) + "\n";
  }
  print(lines);
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
