// Describes a program's command line as JSON, from which the build generates completions.
#pragma once

#include <string>
#include <string_view>

#include "platform/linux/terminal/command_line.h"

namespace kivo::linux_platform {

/// The option that prints the description. For the build; not listed in the help.
inline constexpr std::string_view describeOption = "--describe";

/// Returns `program` as one JSON object: "name", "purpose" and "commands", each with "name",
/// "purpose" and "parameters"; each parameter with "name", "meaning", "kind" ("required",
/// "optional", "flag", "several" or "any") and "values", which is empty when any value is allowed.
std::string descriptionOf(const CommandProgram& program);

/// Prints the description of `program` on standard output; returns the exit status.
int printDescription(const CommandProgram& program);

}  // namespace kivo::linux_platform
