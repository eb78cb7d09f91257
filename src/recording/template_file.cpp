#include "recording/template_file.h"

#include <array>
#include <sstream>
#include <string_view>
#include <utility>

#include "book/book_command.h"
#include "money/money.h"
#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/settings_file.h"
#include "platform/linux/store/settings_toml.h"

namespace kivo::recording {

using recognition::InvalidPattern;
using recognition::MessagePattern;
using recognition::MessageTemplate;
using recognition::readWith;
using recognition::taughtKindFromText;
using recognition::taughtKindText;

namespace {

using linux_platform::Failure;

constexpr std::string_view templateKey = "template";
constexpr std::string_view introduction =
    "# Messages that Kivo was taught to read. You may edit this file.\n"
    "# `kivo-ledger teach` adds templates at its end; the last one that fits a message decides.\n"
    "# {amount} is the sum, {payee} the other party, {any} other text; {{ is a brace.\n"
    "# kind is expense, income, transfer, or none for messages that are no payment.\n"
    "# Besides these: currency = \"EGP\", description = \"...\", category = \"...\".\n";

std::string atLine(const toml::node& node) {
  return "line " + std::to_string(node.source().begin.line) + ": ";
}

// The members of a template in the file.
struct Members {
  std::optional<std::string> text = {};
  std::optional<std::string> kind = {};
  std::optional<std::string> currency = {};
  std::optional<std::string> description = {};
  std::optional<std::string> category = {};
};

Members membersOf(const toml::table& table) {
  Members members;
  const auto places = std::to_array<std::pair<std::string_view, std::optional<std::string>*>>(
      {{"text", &members.text},
       {"kind", &members.kind},
       {"currency", &members.currency},
       {"description", &members.description},
       {"category", &members.category}});
  for (const auto& [key, value] : table) {
    std::optional<std::string>* place = nullptr;
    for (const auto& [name, member] : places) {
      if (key.str() == name) place = member;
    }
    if (place == nullptr) {
      throw Failure(atLine(value) +
                    "unknown key; a template has text, kind, currency, description and category");
    }
    *place = value.value_exact<std::string>();
    if (!*place) throw Failure(atLine(value) + "this must be a text in quotes");
  }
  return members;
}

MessageTemplate templateOf(const toml::table& table) {
  const Members members = membersOf(table);
  const auto failure = [&](const char* key, const std::string& why) {
    const toml::node* const member = table.get(key);
    return Failure(atLine(member == nullptr ? table : *member) + why);
  };
  if (!members.text) throw failure("text", "a template needs a text");
  const auto kind = taughtKindFromText(members.kind.value_or(""));
  if (!kind) throw failure("kind", "kind must be expense, income, transfer or none");
  const auto pattern = [&] {
    try {
      return MessagePattern::parse(*members.text);
    } catch (const InvalidPattern& invalid) {
      throw failure("text", invalid.what());
    }
  }();
  if (*kind && !pattern.hasAmount()) {
    throw failure("text", "{amount} is missing; without it kind must be none");
  }
  const auto currency = money::currencyFromText(members.currency.value_or(""));
  if (members.currency && (!currency || currency->text() != *members.currency)) {
    throw failure("currency", "currency must be a code such as EGP");
  }
  return {.text = *members.text,
          .pattern = pattern,
          .kind = *kind,
          .currency = currency,
          .description = members.description.value_or(""),
          .category = members.category.value_or("")};
}

std::vector<MessageTemplate> templatesIn(const std::string& bytes) {
  std::vector<MessageTemplate> templates;
  const toml::table settings = linux_platform::settingsTable(bytes);
  for (const auto& [key, value] : settings) {
    const toml::array* const array = value.as_array();
    if (key.str() != templateKey || array == nullptr) {
      throw Failure(atLine(value) + "only [[template]] may be here");
    }
    for (const toml::node& one : *array) {
      const toml::table* const table = one.as_table();
      if (table == nullptr) throw Failure(atLine(one) + "only [[template]] may be here");
      templates.push_back(templateOf(*table));
    }
  }
  return templates;
}

std::string inQuotes(const std::string& text) {
  std::ostringstream out;
  const toml::value<std::string> value(text);
  constexpr auto flags =
      toml::toml_formatter::default_flags &
      ~(toml::format_flags::allow_literal_strings | toml::format_flags::allow_multi_line_strings);
  out << toml::toml_formatter(value, flags);
  return out.str();
}

std::string blockOf(const MessageTemplate& taught) {
  std::string block = "\n[[template]]\ntext = " + inQuotes(taught.text) +
                      "\nkind = " + inQuotes(taughtKindText(taught.kind)) + "\n";
  const std::string currency = taught.currency ? taught.currency->text() : "";
  for (const auto& [key, value] : {std::pair("currency", &currency),
                                   {"description", &taught.description},
                                   {"category", &taught.category}}) {
    if (!value->empty()) block.append(key).append(" = ").append(inQuotes(*value)).append("\n");
  }
  return block;
}

// The text of the file with `taught` at its end.
std::string extended(std::string text, const MessageTemplate& taught) {
  templatesIn(text);  // throws when the file is damaged
  if (text.empty()) text = introduction;
  if (!text.ends_with('\n')) text += '\n';
  text += blockOf(taught);
  const Failure failure("nothing can be added at its end");
  if (text.size() > linux_platform::longestSettings) throw failure;
  try {
    templatesIn(text);
  } catch (const Failure&) {
    throw failure;
  }
  return text;
}

// Returns the result of `use`. Puts the path in front of its failures.
template <typename Use>
auto withPath(const std::filesystem::path& path, const Use& use) {
  try {
    return use(path);
  } catch (const Failure& failure) {
    throw Failure(linux_platform::escapedControls(path.string()) + ": " + failure.what());
  }
}

std::filesystem::path requiredPlace() {
  const auto path = TemplateFile::place();
  if (!path) throw Failure("HOME is not set, so there is no place for templates");
  return *path;
}

}  // namespace

std::optional<std::filesystem::path> TemplateFile::place() {
  const auto home = linux_platform::configHome();
  if (!home) return std::nullopt;
  return *home / "kivo" / "templates.toml";
}

std::vector<MessageTemplate> TemplateFile::read() {
  const auto path = place();
  if (!path) return {};
  return withPath(*path, [](const auto& file) {
    return templatesIn(linux_platform::readSettingsFile(file).text);
  });
}

std::string TemplateFile::add(const MessageTemplate& taught) {
  const auto path = requiredPlace();
  const linux_platform::SettingsLock lock(path);
  withPath(path, [&](const auto& file) {
    const std::string text = linux_platform::readSettingsFile(file).text;
    linux_platform::replaceSettingsFile(file, extended(text, taught));
  });
  return blockOf(taught);
}

bool TemplateFile::remove(const std::string& block) {
  const auto path = requiredPlace();
  const linux_platform::SettingsLock lock(path);
  return withPath(path, [&](const auto& file) {
    std::string text = linux_platform::readSettingsFile(file).text;
    const std::size_t begin = text.rfind(block);
    if (begin == std::string::npos) return false;
    const std::string_view behind = std::string_view(text).substr(begin + block.size());
    if (!behind.empty() && behind.front() != '\n') return false;  // a line was added to it
    linux_platform::replaceSettingsFile(file, text.erase(begin, block.size()));
    return true;
  });
}

MessageReader TemplateFile::readerOfNow() {
  return [templates = read()](std::string_view text, const money::CurrencyCode& bookCurrency) {
    return readWith(templates, text, bookCurrency);
  };
}

MessageReader TemplateFile::reader() {
  return [reported = std::string()](std::string_view text,
                                    const money::CurrencyCode& bookCurrency) mutable {
    std::vector<MessageTemplate> templates;
    try {
      templates = read();
    } catch (const Failure& failure) {
      if (failure.what() != std::exchange(reported, failure.what())) {
        linux_platform::complain(book::bookProgram(),
                                 reported + "; messages are read without templates");
      }
    }
    return readWith(templates, text, bookCurrency);
  };
}

}  // namespace kivo::recording
