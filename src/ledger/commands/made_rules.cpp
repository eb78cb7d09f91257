#include "ledger/commands/made_rules.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

#include "book/book_command.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/text_columns.h"
#include "recording/rule_sentence.h"
#include "recording/taught_entries.h"

namespace kivo::ledger {

using book::Book;
using book::EarlierEntries;
using book::KeptRule;
using linux_platform::escapedControls;
using linux_platform::print;
using linux_platform::Prompt;
using money::Kind;

namespace {

std::string wrapped(const std::string& line) {
  return linux_platform::wrappedTo(linux_platform::screenWidth(), line);
}

void append(std::vector<std::int64_t>& ids, const std::vector<std::int64_t>& others) {
  ids.insert(ids.end(), others.begin(), others.end());
  std::sort(ids.begin(), ids.end());
}

std::string countOf(std::size_t count, const std::string& one) {
  return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

}  // namespace

void MadeRules::add(const std::optional<KeptRule>& kept, Kind kind) {
  if (!kept) return;
  std::erase_if(made_, [&](const Made& one) { return one.kept.rule.number == kept->rule.number; });
  made_.push_back({*kept, kind});
}

std::string MadeRules::sentences() const {
  const std::string list = "`" + book::bookCommand("rules") + "` shows ";
  if (made_.empty()) return "";
  if (made_.size() == 1) {
    return wrapped(
        escapedControls(recording::ruleSentence(made_.front().kept.rule, made_.front().kind)) +
        " " + list + "it.");
  }
  std::string lines;
  for (const auto& [kept, kind] : made_)
    lines += wrapped(escapedControls(recording::ruleSentence(kept.rule, kind)));
  return lines + wrapped(std::string(list) + "them.");
}

void MadeRules::tell(Book& book, book::UserCommand& command,
                     const linux_platform::GivenParameters& parameters) const {
  if (made_.empty()) return;
  print(sentences());
  EarlierEntries earlier;
  for (const Made& made : made_) {
    const EarlierEntries found = book.earlierFor(made.kept);
    append(earlier.changing, found.changing);
    append(earlier.edited, found.edited);
  }
  if (!earlier.edited.empty()) {
    print(wrapped("Left as you edited them: " + recording::listed(earlier.edited) + "."));
  }
  if (!changesEarlier(earlier.changing.size(), parameters)) return;
  std::size_t changed = 0;
  book.asCommand(command, [&] {
    for (const Made& made : made_) changed += book.changeEarlier(made.kept).changing.size();
  });
  tellChangedEarlier(changed);
}

bool changesEarlier(std::size_t count, const linux_platform::GivenParameters& parameters) {
  if (count == 0) return false;
  if (parameters.contains("--also-earlier")) return true;
  if (linux_platform::inputIsTerminal()) {
    return Prompt(std::cin).confirms(countOf(count, "earlier one") + " too?", Prompt::Preset::no);
  }
  print(wrapped(countOf(count, "earlier one") +
                (count == 1 ? " stays as it is" : " stay as they are") + "; with --also-earlier, " +
                (count == 1 ? "it changes" : "they change") + " too."));
  return false;
}

void tellChangedEarlier(std::size_t count) {
  print(wrapped("Changed " + countOf(count, "earlier payment") + "."));
}

linux_platform::CommandParameter alsoEarlierOption() {
  return {"--also-earlier", "Change earlier payments of the payee too, without asking",
          linux_platform::CommandParameter::Kind::flag};
}

}  // namespace kivo::ledger
