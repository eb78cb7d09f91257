#include "platform/linux/terminal/command_description.h"

#include <gtest/gtest.h>

namespace kivo::linux_platform {
namespace {

using Kind = CommandParameter::Kind;

TEST(ACommandDescription, HasEachCommandWithItsParametersAndKnownValues) {
  const CommandProgram program{
      .name = "tool",
      .purpose = "Tries things.",
      .version = "1.2.3",
      .commands = {{"box", "The box", {}, {}},
                   {"box paint",
                    "Paint it",
                    {{.name = "COLOUR",
                      .meaning = "The \"colour\"",
                      .values =
                          [] {
                            return std::vector<std::string>{"red", "sea green"};
                          }},
                     {"--coats", "How often", Kind::optional},
                     {"--dry", "Wait", Kind::flag}},
                    {}}}};
  EXPECT_EQ(descriptionOf(program),
            R"({"name":"tool","purpose":"Tries things.","commands":[)"
            R"({"name":"box","purpose":"The box","parameters":[]},)"
            R"({"name":"box paint","purpose":"Paint it","parameters":[)"
            R"({"name":"COLOUR","meaning":"The \"colour\"","kind":"required",)"
            R"("values":["red","sea green"]},)"
            R"({"name":"--coats","meaning":"How often","kind":"optional","values":[]},)"
            R"({"name":"--dry","meaning":"Wait","kind":"flag","values":[]}]}]})");
}

TEST(ACommandDescription, HasNoCommandsForAProgramWithoutAny) {
  EXPECT_EQ(descriptionOf({.name = "tool", .purpose = "Serves.", .version = "1", .commands = {}}),
            R"({"name":"tool","purpose":"Serves.","commands":[]})");
}

}  // namespace
}  // namespace kivo::linux_platform
