// The file of templates, which `teach` extends and the user may edit. Matches no message.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "recognition/templates/message_template.h"
#include "recording/message_reading.h"

namespace kivo::ledger::TemplateFile {

/// Returns the path of kivo/templates.toml in the user's configuration folder; nullopt without a
/// home folder.
std::optional<std::filesystem::path> place();

/// The content of the template file.
struct Content {
  /// In the file's order; empty when there is no file.
  std::vector<recognition::MessageTemplate> templates = {};
  /// The reason why the file cannot be used, with its path and, for a syntax error, the number of
  /// the line; quotes nothing from the file. `templates` is then empty.
  std::optional<std::string> error = {};
};

/// Reads the file.
Content read();

/// Appends a template to the file; the rest of the file stays byte for byte. Creates the file and
/// its folders for the user only. Returns nullopt on success, else the reason in one line that
/// quotes nothing from the file. A file with an error is not changed.
std::optional<std::string> add(const recognition::MessageTemplate& taught);

/// Returns a reader that uses the templates in the file at the time of each message. When the file
/// cannot be used, it prints the reason on standard error, once for each different one, and reads
/// by the rules alone.
recording::MessageReader reader();

}  // namespace kivo::ledger::TemplateFile
