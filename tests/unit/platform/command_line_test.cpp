#include "platform/linux/terminal/command_line.h"

#include <functional>

#include <gmock/gmock.h>

namespace kivo::linux_platform {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Kind = CommandParameter::Kind;

class ACommandLineParser : public testing::Test {
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
                {"bag", "Show the bag", {}, note("bag")},
                {"bag put", "Put something in", {{"WHAT", "The thing"}}, note("bag put")},
                {"pack",
                 "Pack things",
                 {{"THING", "A thing", Kind::any}, {"--label", "A label", Kind::any}},
                 note("pack")},
                {"fail", "Fail", {}, [this](const GivenParameters&) { failure(); }},
            },
    };
  }

  void expectBadUsage(const std::vector<std::string>& words, const std::string& what) {
    EXPECT_EQ(run(words), exitBadUsage);
    EXPECT_EQ(errors, "tool: " + what + "\n");
    EXPECT_EQ(output, "");
    EXPECT_EQ(ran, "");
  }

  // Thrown by the command `fail`.
  std::function<void()> failure;
  std::string ran;
  GivenParameters given;
  std::string output;
  std::string errors;
};

TEST_F(ACommandLineParser, RunsTheNamedCommandAndReturnsZero) {
  EXPECT_EQ(run({"enter", "--name", "Ada"}), 0);
  EXPECT_EQ(ran, "enter");
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", "Ada")));
  EXPECT_EQ(output + errors, "");
}

TEST_F(ACommandLineParser, PrintsTheSentenceOfAFailureAndReturnsItsStatus) {
  failure = [] { throw CommandFailure("the box is shut", 7); };
  EXPECT_EQ(run({"fail"}), 7);
  EXPECT_EQ(errors, "tool: the box is shut\n");
  failure = [] { throw BadUsage("there is no such box"); };
  EXPECT_EQ(run({"fail"}), exitBadUsage);
  EXPECT_EQ(errors, "tool: there is no such box\n");
  failure = [] { throw Failure("the box is wet"); };
  EXPECT_EQ(run({"fail"}), 1);
  EXPECT_EQ(errors, "tool: the box is wet\n");
}

TEST_F(ACommandLineParser, PrintsNothingAboutAFailureThatIsReportedAlready) {
  failure = [] { throw ReportedFailure(); };
  EXPECT_EQ(run({"fail"}), 1);
  failure = [] { throw ReportedFailure{64}; };
  EXPECT_EQ(run({"fail"}), 64);
  EXPECT_EQ(errors + output, "");
}

TEST_F(ACommandLineParser, EscapesControlCharactersInTheSentenceOfAFailure) {
  failure = [] { throw CommandFailure("no \x1b[2J\nbox"); };
  EXPECT_EQ(run({"fail"}), 1);
  EXPECT_EQ(errors, "tool: no \\x1b[2J\\nbox\n");
}

TEST_F(ACommandLineParser, TakesAnyNumberOfArgumentsAndOfAnOption) {
  EXPECT_EQ(run({"pack", "--label", "a b", "cup", "old hat", "--label=c", "", "--label", "--x"}),
            0);
  EXPECT_THAT(textsOf(given, "THING"), ElementsAre("cup", "old hat", ""));
  EXPECT_THAT(textsOf(given, "--label"), ElementsAre("a b", "c", "--x"));
  EXPECT_EQ(run({"pack"}), 0);
  EXPECT_THAT(textsOf(given, "THING"), IsEmpty());
  EXPECT_EQ(run({"pack", "--label"}), exitBadUsage);
  EXPECT_THAT(errors, HasSubstr("--label has no value"));
}

TEST_F(ACommandLineParser, RunsACommandOfAGroup) {
  EXPECT_EQ(run({"box", "list"}), 0);
  EXPECT_EQ(ran, "box list");
  EXPECT_THAT(given, IsEmpty());
}

TEST_F(ACommandLineParser, PassesFlagsAndOptionsInAnyOrder) {
  run({"box", "put", "--soft", "here", "it"});
  EXPECT_THAT(given,
              UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", "it"), Pair("--soft", "")));
  run({"enter", "--title=Dr", "--name=Ada"});
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", "Ada"), Pair("--title", "Dr")));
}

TEST_F(ACommandLineParser, PassesValuesUnchanged) {
  for (const char* const value : {"", " ", "[]", "[a,b]", "{}", "\"quoted\"", "'x'", "a=b", "%% $x",
                                  "a\nb", "\xff", "-5", "list", "box", "enter"}) {
    run({"box", "put", "here", value});
    EXPECT_THAT(given, UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", value)));
    run({"enter", "--name", value});
    EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", value)));
    given.clear();
  }
}

TEST_F(ACommandLineParser, TreatsArgumentsAfterTwoHyphensAsValues) {
  run({"box", "put", "--", "here", "--soft"});
  EXPECT_THAT(given, UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", "--soft")));
}

TEST_F(ACommandLineParser, PrintsHelpAndVersionWithoutRunningACommand) {
  EXPECT_EQ(run({"--version"}), 0);
  EXPECT_EQ(output, "tool 1.2.3\n");
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_THAT(output, HasSubstr("Tries things."));
  EXPECT_EQ(run({"box", "put", "--help"}), 0);
  EXPECT_THAT(output, HasSubstr("The place"));
  EXPECT_EQ(ran + errors, "");
}

TEST_F(ACommandLineParser, ListsCommandsUnderTheirHeadings) {
  CommandProgram grouped = program();
  grouped.commands.front().heading = "Doors";
  grouped.commands.back().heading = "Windows";
  std::vector<std::string> words{"tool", "--help"};
  std::vector<char*> arguments{words[0].data(), words[1].data()};
  testing::internal::CaptureStdout();
  EXPECT_EQ(runCommand(grouped, 2, arguments.data()), 0);
  const std::string help = testing::internal::GetCapturedStdout();
  const auto place = [&help](const char* line) { return help.find(line); };
  EXPECT_LT(place("\nDoors:\n  enter "), place("\nSubcommands:\n  box "));
  EXPECT_LT(place("\nSubcommands:\n  box "), place("\nWindows:\n  fail "));
  EXPECT_NE(place("\nWindows:\n  fail "), std::string::npos);
}

TEST_F(ACommandLineParser, AcceptsAnEmptyValueAfterAnEqualsSign) {
  EXPECT_EQ(run({"enter", "--name=", "--title", "Dr"}), 0);
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", ""), Pair("--title", "Dr")));
  EXPECT_EQ(run({"enter", "--title=", "--name="}), 0);
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", ""), Pair("--title", "")));
  ran.clear();
  expectBadUsage({"enter", "--name=", "--title"},
                 "--title has no value or is given twice (see tool --help)");
  expectBadUsage({"enter", "--name=", "--name", "Ada"},
                 "--name has no value or is given twice (see tool --help)");
}

TEST_F(ACommandLineParser, KeepsAnEqualsSignAtTheEndOfAValue) {
  run({"enter", "--name", "--title="});
  EXPECT_THAT(given, UnorderedElementsAre(Pair("--name", "--title=")));
  run({"box", "put", "--", "here", "--name="});
  EXPECT_THAT(given, UnorderedElementsAre(Pair("WHERE", "here"), Pair("WHAT", "--name=")));
}

TEST_F(ACommandLineParser, PrintsTheHelpOnStandardErrorWithoutACommand) {
  EXPECT_EQ(run({}), exitBadUsage);
  EXPECT_THAT(errors, HasSubstr("Tries things."));
  EXPECT_THAT(errors, HasSubstr("enter"));
  EXPECT_EQ(output + ran, "");
  EXPECT_EQ(run({"box"}), exitBadUsage);
  EXPECT_THAT(errors, testing::AllOf(HasSubstr("tool box"), HasSubstr("Put something in")));
  EXPECT_EQ(output + ran, "");
}

TEST_F(ACommandLineParser, RepeatsAnUnknownCommandAndSuggestsTheNearest) {
  expectBadUsage({"dance"}, "unknown command \"dance\" (see tool --help)");
  expectBadUsage({"etner", "--name", "Ada"},
                 "unknown command \"etner\"; did you mean \"enter\"? (see tool --help)");
  expectBadUsage({"box", "dance"}, "unknown command \"box dance\" (see tool box --help)");
  expectBadUsage({"box", "lsit"},
                 "unknown command \"box lsit\"; did you mean \"box list\"? (see tool box --help)");
  expectBadUsage({"bag", "ptu"},
                 "unknown command \"bag ptu\"; did you mean \"bag put\"? (see tool bag --help)");
  expectBadUsage({"bxo", "list"},
                 "unknown command \"bxo\"; did you mean \"box\"? (see tool --help)");
}

TEST_F(ACommandLineParser, DoesNotRepeatATextGivenAsACommand) {
  expectBadUsage({"Paid EGP 150"}, "unknown command (see tool --help)");
  expectBadUsage({"box", "Paid EGP 150"}, "unknown command (see tool box --help)");
  expectBadUsage({"4111111111111111111111111111111111"}, "unknown command (see tool --help)");
}

TEST_F(ACommandLineParser, ReportsMissingArguments) {
  expectBadUsage({"enter"}, "--name is missing (see tool enter --help)");
  expectBadUsage({"box", "put", "here"}, "WHAT is missing (see tool box put --help)");
}

TEST_F(ACommandLineParser, RefusesAnUnknownOption) {
  expectBadUsage({"enter", "--name", "Ada", "--colour", "x"},
                 "unknown option --colour (see tool enter --help)");
  expectBadUsage({"enter", "--name", "Ada", "--titel=Dr"},
                 "unknown option --titel; did you mean --title? (see tool enter --help)");
  expectBadUsage({"--colour"}, "unknown option --colour (see tool --help)");
}

TEST_F(ACommandLineParser, RefusesADuplicateOptionOrOneWithoutAValue) {
  expectBadUsage({"enter", "--name", "Ada", "--name", "Bob"},
                 "--name has no value or is given twice (see tool --help)");
  expectBadUsage({"enter", "--name"}, "--name has no value or is given twice (see tool --help)");
  expectBadUsage({"box", "put", "a", "b", "--soft=3"}, "--soft takes no value (see tool --help)");
}

TEST_F(ACommandLineParser, DoesNotRepeatSuperfluousArguments) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"enter", "--name", "Ada", "secret"},
                                             {"box", "put", "a", "b", "--", "secret"},
                                             {"box", "list", "secret"}}) {
    EXPECT_EQ(run(words), exitBadUsage);
    EXPECT_THAT(errors, HasSubstr("tool: unexpected argument; put quotes"));
    EXPECT_THAT(errors, testing::Not(HasSubstr("secret")));
  }
  EXPECT_EQ(ran, "");
}

}  // namespace
}  // namespace kivo::linux_platform
