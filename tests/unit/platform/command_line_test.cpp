#include "platform/linux/process/command_line.h"

#include <gmock/gmock.h>

namespace kivo::linux_platform {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Kind = CommandParameter::Kind;

class ACommandLineOfCommands : public testing::Test {
 protected:
  // Runs the words after the program's name and yields the exit status.
  int run(std::vector<std::string> words) {
    words.insert(words.begin(), "tool");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommand(program(), static_cast<int>(words.size()), arguments.data());
    output = testing::internal::GetCapturedStdout();
    errors = testing::internal::GetCapturedStderr();
    return status;
  }

  CommandProgram program() {
    const auto note = [this](std::string name) {
      return [this, name](const GivenParameters& parameters) {
        ran = name;
        given = parameters;
        return 7;
      };
    };
    return {
        .name = "tool",
        .purpose = "Tries things.",
        .version = "1.2.3",
        .commands =
            {
                {"enter",
                 "Enter",
                 {{"--name", "The name"}, {"--title", "The title", Kind::optional}},
                 note("enter")},
                {"box", "The box", {}, {}},
                {"box list", "List it", {}, note("box list")},
                {"box put",
                 "Put something in",
                 {{"WHERE", "The place"}, {"WHAT", "The thing"}, {"--soft", "Soft", Kind::flag}},
                 note("box put")},
            },
    };
  }

  void expectBadUsage(const std::vector<std::string>& words, const std::string& what) {
    EXPECT_EQ(run(words), exitBadUsage);
    EXPECT_EQ(errors, "tool: " + what + "\n");
    EXPECT_EQ(output, "");
    EXPECT_EQ(ran, "");
  }

  std::string ran;
  GivenParameters given;
  std::string output;
  std::string errors;
};

TEST_F(ACommandLineOfCommands, RunsTheNamedCommandAndYieldsItsStatus) {
  EXPECT_EQ(run({"enter", "--name", "Ada"}), 7);
  EXPECT_EQ(ran, "enter");
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", "Ada")));
  EXPECT_EQ(output + errors, "");
}

TEST_F(ACommandLineOfCommands, RunsACommandOfAGroup) {
  EXPECT_EQ(run({"box", "list"}), 7);
  EXPECT_EQ(ran, "box list");
  EXPECT_THAT(given, IsEmpty());
}

TEST_F(ACommandLineOfCommands, PassesFlagsAndOptionsInAnyOrder) {
  run({"box", "put", "--soft", "here", "it"});
  EXPECT_THAT(given,
              UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", "it"), Pair("--soft", "")));
  run({"enter", "--title=Dr", "--name=Ada"});
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", "Ada"), Pair("--title", "Dr")));
}

TEST_F(ACommandLineOfCommands, PassesValuesAsTheyAre) {
  for (const char* const value : {"", " ", "[]", "[a,b]", "{}", "\"quoted\"", "'x'", "a=b", "%% $x",
                                  "a\nb", "\xff", "-5", "list", "box", "enter"}) {
    run({"box", "put", "here", value});
    EXPECT_THAT(given, UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", value)));
    run({"enter", "--name", value});
    EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", value)));
    given.clear();
  }
}

TEST_F(ACommandLineOfCommands, TakesWhatFollowsTwoHyphensAsValues) {
  run({"box", "put", "--", "here", "--soft"});
  EXPECT_THAT(given, UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", "--soft")));
}

TEST_F(ACommandLineOfCommands, AnswersHelpAndVersionWithoutRunningAnything) {
  EXPECT_EQ(run({"--version"}), 0);
  EXPECT_EQ(output, "tool 1.2.3\n");
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_THAT(output, HasSubstr("Tries things."));
  EXPECT_EQ(run({"box", "put", "--help"}), 0);
  EXPECT_THAT(output, HasSubstr("The place"));
  EXPECT_EQ(ran + errors, "");
}

TEST_F(ACommandLineOfCommands, RefusesAnUnknownOrMissingCommand) {
  expectBadUsage({}, "unknown command, or none named (see tool --help)");
  expectBadUsage({"dance"}, "unknown command, or none named (see tool --help)");
  expectBadUsage({"box"}, "unknown command, or none named (see tool box --help)");
  expectBadUsage({"box", "dance"}, "unknown command, or none named (see tool box --help)");
}

TEST_F(ACommandLineOfCommands, RefusesACallWithoutWhatItNeeds) {
  expectBadUsage({"enter"}, "--name is missing (see tool enter --help)");
  expectBadUsage({"box", "put", "here"}, "WHAT is missing (see tool box put --help)");
}

TEST_F(ACommandLineOfCommands, RefusesAnUnknownOption) {
  expectBadUsage({"enter", "--name", "Ada", "--nose", "x"},
                 "unknown option --nose (see tool enter --help)");
}

TEST_F(ACommandLineOfCommands, RefusesAnOptionThatIsDoubledOrHasNoValue) {
  const std::string words = "an option has no value or is given twice (see tool --help)";
  expectBadUsage({"enter", "--name", "Ada", "--name", "Bob"}, words);
  expectBadUsage({"enter", "--name"}, words);
  expectBadUsage({"box", "put", "a", "b", "--soft=3"}, words);
}

TEST_F(ACommandLineOfCommands, NeverRepeatsWhatWasGivenTooMuch) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"enter", "--name", "Ada", "secret"},
                                             {"enter", "--name", "Ada", "--secret=secret"},
                                             {"box", "put", "a", "b", "--", "secret"},
                                             {"box", "list", "secret"}}) {
    EXPECT_EQ(run(words), exitBadUsage);
    EXPECT_THAT(errors, HasSubstr("tool: there is an argument too many"));
    EXPECT_THAT(errors, testing::Not(HasSubstr("secret")));
  }
  EXPECT_EQ(ran, "");
}

}  // namespace
}  // namespace kivo::linux_platform
