// What a program offers on its command line, as JSON for programs that make completions of it.
#pragma once

#include <string>
#include <string_view>

#include "platform/linux/terminal/command_line.h"

namespace kivo::linux_platform {

/// The option that makes a program print its description. No help lists it: it is for the build.
inline constexpr std::string_view describeOption = "--describe";

/// `program` as one JSON object: "name", "purpose" and "commands", each with "name", "purpose" and
/// "parameters"; each of those with "name", "meaning", "kind" ("required", "optional" or "flag")
/// and "values", which is empty when any value will do.
std::string descriptionOf(const CommandProgram& program);

/// Prints the description of `program` on standard output; yields the exit status.
int printDescription(const CommandProgram& program);

}  // namespace kivo::linux_platform
