// The file of templates, which `teach` extends and the user may edit. Matches no message.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "recognition/templates/message_template.h"
#include "recording/message_reading.h"

namespace kivo::recording::TemplateFile {

/// Returns the path of kivo/templates.toml in the user's configuration folder; nullopt without a
/// home folder.
std::optional<std::filesystem::path> place();

/// Returns the templates in the file's order; none when there is no file. Throws Failure when the
/// file cannot be used, with its path and, for a syntax error, the number of the line; the sentence
/// quotes nothing from the file.
std::vector<recognition::MessageTemplate> read();

/// Appends a template to the file and returns the block of text that it is; the rest of the file
/// stays byte for byte. Creates the file and its folders for the user only. Throws Failure, as
/// `read` does, when the file has an error or cannot be written; the file is then not changed.
std::string add(const recognition::MessageTemplate& taught);

/// Removes the last block of the file that is `block`, as `add` returned it, when nobody has added
/// to it; returns false when there is none. Throws Failure as `add` does.
bool remove(const std::string& block);

/// Returns a reader that uses the templates in the file at the time of each message. When the file
/// cannot be used, it prints the reason on standard error, once for each different one, and reads
/// by the rules alone.
MessageReader reader();

/// Returns a reader that uses the templates that are in the file now, for many messages. It is
/// thread-safe. Throws Failure, as `read` does.
MessageReader readerOfNow();

}  // namespace kivo::recording::TemplateFile
