#include "platform/linux/terminal/command_description.h"

#include <vector>

#include "platform/foundation/json_encoder.h"
#include "platform/foundation/standard_output.h"

namespace kivo::linux_platform {
namespace {

using platform::JSONEncoder;

std::string_view nameOf(CommandParameter::Kind kind) {
  switch (kind) {
    case CommandParameter::Kind::required:
      return "required";
    case CommandParameter::Kind::optional:
      return "optional";
    case CommandParameter::Kind::flag:
      return "flag";
    case CommandParameter::Kind::several:
      return "several";
    case CommandParameter::Kind::any:
      return "any";
  }
  return "required";
}

JSONEncoder encoded(const CommandParameter& parameter) {
  JSONEncoder object;
  object.encodeString("name", parameter.name);
  object.encodeString("meaning", parameter.meaning);
  object.encodeString("kind", nameOf(parameter.kind));
  object.encodeStrings("values",
                       parameter.values ? parameter.values() : std::vector<std::string>());
  return object;
}

JSONEncoder encoded(const Command& command) {
  std::vector<JSONEncoder> parameters;
  for (const CommandParameter& parameter : command.parameters) {
    parameters.push_back(encoded(parameter));
  }
  JSONEncoder object;
  object.encodeString("name", command.name);
  object.encodeString("purpose", command.purpose);
  object.encodeObjects("parameters", parameters);
  return object;
}

}  // namespace

std::string descriptionOf(const CommandProgram& program) {
  std::vector<JSONEncoder> commands;
  for (const Command& command : program.commands) commands.push_back(encoded(command));
  JSONEncoder object;
  object.encodeString("name", program.name);
  object.encodeString("purpose", program.purpose);
  object.encodeObjects("commands", commands);
  return object.text();
}

int printDescription(const CommandProgram& program) {
  platform::printLine(descriptionOf(program));
  return 0;
}

}  // namespace kivo::linux_platform
