#include "ledger/commands/teach_command.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <istream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/entry_listing.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/taught_messages.h"
#include "ledger/commands/teaching_questions.h"
#include "platform/foundation/number_text.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "recognition/templates/message_text.h"
#include "recognition/templates/teaching.h"
#include "recording/proposed_parts.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using book::LedgerEntry;
using money::CurrencyCode;
using recognition::CannotTeach;
using recognition::MessageTemplate;
using recognition::Outcome;
using recognition::partThatCounts;
using recognition::Reading;
using recognition::readingBy;
using recognition::taughtKindFromText;
using recognition::TaughtParts;
using recognition::templateForm;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::print;
using linux_platform::Prompt;
using ParameterKind = linux_platform::CommandParameter::Kind;

// One call of the command.
class Teaching {
 public:
  Teaching(const GivenParameters& parameters, Book& book, const CurrencyCode& currency)
      : parameters_(parameters), book_(book), currency_(currency) {}

  void run() {
    recording::TemplateFile::read();  // throws before anything is asked when it cannot be used
    readOptions();
    openAnswers();
    chooseMessage();
    const MessageTemplate taught = confirmedTemplate();
    book::UserCommand command = userCommand("teach", parameters_);
    command.addedTemplate = save(taught);
    book_.asCommand(command, [] {});  // the template alone can be taken back too
    correctByTemplate(book_, command, currency_, taught, shown_, [this] { return booksOthers(); });
  }

 private:
  [[nodiscard]] bool isComplete() const { return given_.kind && (!*given_.kind || given_.amount); }
  [[nodiscard]] std::string source() const { return given(parameters_, "ID").value_or(""); }

  void readOptions() {
    given_.amount = given(parameters_, "--amount");
    given_.payee = given(parameters_, "--payee");
    if (const auto kind = given(parameters_, "--kind")) {
      given_.kind = taughtKindFromText(*kind);
      if (!given_.kind) throw invalid("--kind", *kind, "expense, income, transfer or none");
    }
    given_.currency = givenCurrency(parameters_, "--currency", "EGP");
  }

  // Standard input may be the message; the answers then come from the terminal itself.
  void openAnswers() {
    if (isComplete() && !source().empty()) return;  // asks nothing
    if (source() == "-") {
      terminal_.open("/dev/tty");
      if (terminal_) prompt_.emplace(terminal_);
    } else if (linux_platform::inputIsTerminal()) {
      prompt_.emplace(std::cin);
    }
    if (prompt_) return;
    throw BadUsage("there is no terminal to ask at; give ID or -, --kind and --amount");
  }

  void chooseMessage() {
    if (source() == "-") return takeInput();
    constexpr std::string_view ofIgnored = "ignored:";
    if (source().starts_with(ofIgnored)) return takeIgnored(source().substr(ofIgnored.size()));
    takeEntry(source().empty() ? chosenId() : source());
  }

  void takeInput() {
    const std::string input(std::istreambuf_iterator<char>(std::cin), {});
    message_ = partThatCounts(platform::repairedUtf8(input));
    if (templateForm(message_).empty()) throw BadUsage("standard input is empty");
    proposed_ = recording::proposedParts(message_, std::nullopt, currency_);
  }

  void takeIgnored(const std::string& number) {
    shown_.ignored = platform::integerFromText(number);
    if (!shown_.ignored) {
      throw invalid("ID", source(),
                    "ignored: and a number, as " + book::bookCommand("ignored") + " shows it");
    }
    message_ = requiredIgnored(book_, *shown_.ignored).text;
    proposed_ = recording::proposedParts(message_, std::nullopt, currency_);
  }

  // Shows the entries in review and asks which one has the message.
  std::string chosenId() {
    const auto entries = book_.entries({.state = LedgerEntry::State::review});
    if (entries.empty()) {
      throw CommandFailure("there is nothing to look at; `" + book::bookCommand("teach ID") +
                           "` takes any transaction, `" +
                           book::bookCommand("teach ignored:NUMBER") + "` a message that `" +
                           book::bookCommand("ignored") + "` shows, and `" +
                           book::bookCommand("teach -") + "` one from standard input");
    }
    print(EntryListing::table(entries, linux_platform::screenWidth()));
    std::string id = prompt_->ask("Teach which one? ID:").value_or("");
    if (id.empty()) throw CommandFailure("nothing was taught");
    return id;
  }

  void takeEntry(const std::string& id) {
    const auto number = platform::integerFromText(id);
    if (!number) throw invalid("ID", id, "a number, as list and review show it");
    const auto entry = book_.entry(*number);
    if (!entry) throw CommandFailure("no transaction has the ID " + std::to_string(*number));
    if (!entry->text) {
      throw CommandFailure(std::to_string(*number) +
                           " has no text: it was forgotten, or entered by hand"
                           "; `" +
                           book::bookCommand("teach -") + "` takes a message from standard input");
    }
    shown_.entry = entry->id;
    message_ = partThatCounts(*entry->text);
    proposed_ = recording::proposedParts(message_, entry, currency_);
  }

  // Shows the template and asks for confirmation.
  MessageTemplate confirmedTemplate() {
    const auto taught = namedTemplate();
    if (taught) show(*taught);
    if (taught && (isComplete() || confirms("Save it?"))) return *taught;
    throw CommandFailure("nothing was taught");
  }

  bool confirms(const std::string& question) {
    return prompt_->confirms(question, Prompt::Preset::yes);
  }

  // Absent when the input ends.
  std::optional<MessageTemplate> namedTemplate() {
    try {
      return isComplete() ? taughtByOptions() : taughtByAnswers();
    } catch (const CannotTeach& wrong) {
      throw CommandFailure(sentenceOf(wrong));
    }
  }

  [[nodiscard]] MessageTemplate taughtByOptions() const {
    return recognition::teach(message_,
                              {.kind = *given_.kind,
                               .amount = given_.amount.value_or(""),
                               .payee = given_.payee.value_or(""),
                               .currency = given_.currency},
                              currency_);
  }

  std::optional<MessageTemplate> taughtByAnswers() {
    print("The message:\n  " + escapedControls(templateForm(message_)) + "\n\n");
    return TeachingQuestions(*prompt_).ask(message_, given_, proposed_, currency_);
  }

  static std::string sentenceOf(const CannotTeach& wrong) {
    const std::string why = wrong.what();
    if (wrong.part() == CannotTeach::Part::amount) return "--amount " + why;
    if (wrong.part() == CannotTeach::Part::payee) return "--payee " + why;
    return "no template can be made of this message: " + why;
  }

  void show(const MessageTemplate& taught) const {
    const auto fit = taught.pattern.fit(templateForm(message_));
    const Reading reading =
        readingBy(taught, *fit, recognition::read(message_, currency_), currency_);
    std::string text = "no payment";
    if (reading.outcome != Outcome::notATransaction) {
      const std::string sum = reading.amount ? sumText(*reading.amount)
                                             : "for review, since the sum can be read in two ways";
      text = std::string(kindText(reading.kind)) + ", " + sum + ", " + reading.description + ", " +
             reading.category;
    }
    std::string lines = "\nThe template:\n  " + escapedControls(taught.text) +
                        "\nIt reads this message as:\n  " + escapedControls(text) + "\n";
    if (reading.amount && reading.amount->currency != currency_) {
      lines += "  (" + reading.amount->currency.text() +
               " is booked at its rate, and is for review without one)\n";
    }
    print(lines + "\n");
  }

  // Returns the block that was added; empty when it was there already.
  static std::string save(const MessageTemplate& taught) {
    const std::string path =
        escapedControls(recording::TemplateFile::place().value_or("").string());
    const auto known = recording::TemplateFile::read();
    const bool isKnown = !known.empty() && known.back().readsAs(taught);
    std::string block = isKnown ? "" : recording::TemplateFile::add(taught);
    print(isKnown ? "It is in " + path + " already.\n" : "Saved in " + path + "\n");
    return block;
  }

  // Whether the others that were listed are booked as they are read now.
  bool booksOthers() {
    return parameters_.contains("--book") || (prompt_ && confirms("Book them so?"));
  }

  const GivenParameters& parameters_;
  Book& book_;
  const CurrencyCode currency_;
  TeachingQuestions::Given given_;
  std::ifstream terminal_;
  std::optional<Prompt> prompt_;
  TaughtMessage shown_;
  std::string message_;
  TaughtParts proposed_;
};

void runTeach(const GivenParameters& parameters) {
  withBook([&](Book& book) { Teaching(parameters, book, requiredBookCurrency()).run(); });
}

}  // namespace

linux_platform::Command teachCommand() {
  constexpr auto optional = ParameterKind::optional;
  return {
      "teach",
      "Learn from a message how to read others like it",
      {{"ID", "The transaction with the message, ignored:NUMBER, or - for standard input",
        optional},
       {"--amount", "The sum, as it is in the message", optional},
       {"--payee", "The other party, as it is in the message", optional},
       {"--kind", "expense, income, transfer, or none for no payment", optional,
        [] {
          return std::vector<std::string>{"expense", "income", "transfer", "none"};
        }},
       {"--currency", "The code of the sum's currency, as EGP, if the message has none", optional},
       {"--book", "Book all others that fit as they are read now, without asking",
        ParameterKind::flag}},
      runTeach};
}

}  // namespace kivo::ledger
