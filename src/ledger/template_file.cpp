#include "ledger/template_file.h"

#include <array>
#include <sstream>
#include <string_view>
#include <utility>

#include "money/money.h"
#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/settings_file.h"
#include "platform/linux/store/settings_toml.h"

namespace kivo::ledger {

using money::isCurrency;
using recognition::MessagePattern;
using recognition::MessageTemplate;
using recognition::readWith;
using recognition::taughtKindFromText;
using recognition::taughtKindText;
using recording::MessageReader;

namespace {

using TemplateFile::Content;

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

// The members of a template, as they are in the file.
struct Members {
  std::optional<std::string> text = {};
  std::optional<std::string> kind = {};
  std::optional<std::string> currency = {};
  std::optional<std::string> description = {};
  std::optional<std::string> category = {};
};

// Returns the error of the first member that does not fit; empty when all do.
std::string readMembers(const toml::table& table, Members& members) {
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
      return atLine(value) +
             "unknown key; a template has text, kind, currency, description and category";
    }
    *place = value.value_exact<std::string>();
    if (!*place) return atLine(value) + "this must be a text in quotes";
  }
  return "";
}

// Adds the template of `table` to `content`, or sets its error.
void readTemplate(const toml::table& table, Content& content) {
  Members members;
  if (std::string error = readMembers(table, members); !error.empty()) {
    content.error = std::move(error);
    return;
  }
  const auto fail = [&](const char* key, const std::string& why) {
    const toml::node* const member = table.get(key);
    content.error = atLine(member == nullptr ? table : *member) + why;
  };
  if (!members.text) return fail("text", "a template needs a text");
  const auto kind = taughtKindFromText(members.kind.value_or(""));
  if (!kind) return fail("kind", "kind must be expense, income, transfer or none");
  MessagePattern::Parsed parsed = MessagePattern::parse(*members.text);
  if (!parsed.pattern) return fail("text", parsed.error);
  if (*kind && !parsed.pattern->hasAmount()) {
    return fail("text", "{amount} is missing; without it kind must be none");
  }
  if (members.currency && !isCurrency(*members.currency)) {
    return fail("currency", "currency must be a code such as EGP");
  }
  content.templates.push_back({.text = *members.text,
                               .pattern = *std::move(parsed.pattern),
                               .kind = *kind,
                               .currency = members.currency.value_or(""),
                               .description = members.description.value_or(""),
                               .category = members.category.value_or("")});
}

// Parses the file; the result has either the templates or the error.
Content parsed(const std::string& bytes) {
  linux_platform::SettingsTable settings = linux_platform::settingsTable(bytes);
  if (settings.error) return {.error = std::move(settings.error)};
  Content content;
  for (const auto& [key, value] : settings.table) {
    const toml::array* const templates = value.as_array();
    if (key.str() != templateKey || templates == nullptr) {
      return {.error = atLine(value) + "only [[template]] may be here"};
    }
    for (const toml::node& one : *templates) {
      const toml::table* const table = one.as_table();
      if (table == nullptr) return {.error = atLine(one) + "only [[template]] may be here"};
      readTemplate(*table, content);
      if (content.error) return {.error = std::move(content.error)};
    }
  }
  return content;
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
  for (const auto& [key, value] : {std::pair("currency", &taught.currency),
                                   {"description", &taught.description},
                                   {"category", &taught.category}}) {
    if (!value->empty()) block.append(key).append(" = ").append(inQuotes(*value)).append("\n");
  }
  return block;
}

// The path as it may be printed, in front of an error.
std::string before(const std::filesystem::path& path, const std::string& error) {
  return linux_platform::escapedControls(path.string()) + ": " + error;
}

}  // namespace

std::optional<std::filesystem::path> TemplateFile::place() {
  const auto home = linux_platform::configHome();
  if (!home) return std::nullopt;
  return *home / "kivo" / "templates.toml";
}

Content TemplateFile::read() {
  const auto path = place();
  if (!path) return {};
  linux_platform::SettingsFile file = linux_platform::readSettingsFile(*path);
  Content content = file.error ? Content{.error = std::move(file.error)} : parsed(file.text);
  if (content.error) content.error = before(*path, *content.error);
  return content;
}

std::optional<std::string> TemplateFile::add(const MessageTemplate& taught) {
  const auto path = place();
  if (!path) return "HOME is not set, so there is no place for templates";
  const linux_platform::SettingsLock lock(*path);
  linux_platform::SettingsFile file = linux_platform::readSettingsFile(*path);
  if (file.error) return before(*path, *file.error);
  std::string text = std::move(file.text);
  if (const auto error = parsed(text).error) return before(*path, *error);
  if (text.empty()) text = introduction;
  if (!text.ends_with('\n')) text += '\n';
  text += blockOf(taught);
  if (text.size() > linux_platform::longestSettings || parsed(text).error) {
    return before(*path, "nothing can be added at its end");
  }
  if (linux_platform::replaceSettingsFile(*path, text)) return std::nullopt;
  return before(*path, "it cannot be written");
}

MessageReader TemplateFile::reader() {
  return [reported = std::string()](std::string_view text, std::string_view bookCurrency) mutable {
    const Content content = read();
    if (content.error && *content.error != reported) {
      reported = *content.error;
      linux_platform::complain("kivo-ledger", reported + "; messages are read without templates");
    }
    return readWith(content.templates, text, bookCurrency);
  };
}

}  // namespace kivo::ledger
