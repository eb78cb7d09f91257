// The program kivo-demo: shows how bank messages are processed, in a story or for a given text.
#include <csignal>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "demo/demo_story.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/process/stop_signals.h"

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 64;
constexpr int exitInterrupted = 128 + SIGINT;

constexpr std::string_view help = R"(Usage: kivo-demo [TEXT | -]

Shows how Kivo's intents extension processes bank messages. The real programs run
in temporary folders and on a private session bus, with a ledger of their own.

  kivo-demo          processes several example messages, online and offline
  kivo-demo -        processes a text from standard input
  kivo-demo "TEXT"   processes a text (which other users of the machine can see)

  -h, --help         shows this
  --version          shows the version

LANG decides how amounts are written; NO_COLOR turns colours off.
Exit status: 0 when all went as expected, 1 otherwise, 64 for bad usage.
)";

bool goesOn() { return !kivo::linux_platform::StopSignals::came(); }

int run(const std::optional<std::string>& message) {
  // On an interrupt the demonstration still stops its programs and removes its folders.
  const kivo::linux_platform::StopSignals signals;
  try {
    kivo::DemoScreen screen;
    const kivo::DemoEnd end = message ? kivo::DemoStory::show(screen, *message, goesOn)
                                      : kivo::DemoStory::tell(screen, goesOn);
    if (end == kivo::DemoEnd::interrupted) return exitInterrupted;
    return end == kivo::DemoEnd::asExpected ? 0 : exitFailure;
  } catch (const std::exception& error) {
    if (!goesOn()) return exitInterrupted;
    std::cerr << "kivo-demo: " << error.what() << "\n";
    return exitFailure;
  }
}

}  // namespace

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  if (argc < 2) return run(std::nullopt);
  std::string_view argument = argv[1];
  const bool literal = argument == "--" && argc == 3;
  if (literal) argument = argv[2];
  if (argc > 2 && !literal) {
    std::cerr << "kivo-demo: more than one text (put it in quotes)\n";
    return exitUsage;
  }
  if (!literal && (argument == "-h" || argument == "--help")) {
    std::cout << help;
    return 0;
  }
  if (!literal && argument == "--version") {
    std::cout << "kivo-demo " KIVO_VERSION "\n";
    return 0;
  }
  if (!literal && argument == "-") {
    return run(std::string(std::istreambuf_iterator<char>(std::cin), {}));
  }
  if (!literal && argument.starts_with('-')) {
    std::cerr << "kivo-demo: unknown option (see kivo-demo --help)\n";
    return exitUsage;
  }
  return run(std::string(argument));
}
