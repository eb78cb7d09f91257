// The file with the templates that people taught, which they may edit as well.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ledger/book.h"
#include "ledger/templates/message_template.h"

namespace kivo::ledger::TemplateFile {

/// Returns the path of kivo/templates.toml in the user's configuration folder; nullopt without a
/// home folder.
std::optional<std::filesystem::path> place();

/// The content of the file.
struct Content {
  /// In the file's order; empty when there is no file.
  std::vector<MessageTemplate> templates = {};
  /// Why the file cannot be used: one line with its path and, where one is wrong, the number of the
  /// line. Quotes nothing from it. `templates` is empty then.
  std::optional<std::string> error = {};
};

/// Reads the file.
Content read();

/// Adds a template at the end of the file, and leaves what is in it as it is. Creates the file and
/// its folders for the user only. Returns why it could not, in one line that quotes nothing from
/// the file; nullopt on success. A file with an error stays as it is.
std::optional<std::string> add(const MessageTemplate& taught);

/// Reads each message with the templates that are in the file at that moment. When the file cannot
/// be used, prints that line on standard error, once for each different one, and reads by rules
/// alone.
MessageReader reader();

}  // namespace kivo::ledger::TemplateFile
