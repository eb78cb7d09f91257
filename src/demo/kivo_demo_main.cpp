// kivo-demo: the extension's main job with the ledger, as a story or on a text given.
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

constexpr int exitOtherwise = 1;
constexpr int exitUsage = 64;
constexpr int exitInterrupted = 128 + SIGINT;

constexpr std::string_view help = R"(Usage: kivo-demo [TEXT | -]

Shows what Kivo's intents extension makes of bank messages: the real programs run
with a ledger of their own, in private folders and on a private session bus.

  kivo-demo          tells a story of several messages, online and offline
  kivo-demo -        processes a text from standard input
  kivo-demo "TEXT"   processes a text (which other users of the machine can see)

  -h, --help         shows this
  --version          shows the version

LANG decides how amounts are written; NO_COLOR turns colours off.
Exit status: 0 when all went as told, 1 otherwise, 64 for bad usage.
)";

bool goesOn() { return !kivo::linux_platform::StopSignals::came(); }

int run(const std::optional<std::string>& message) {
  // A demonstration that is interrupted still stops its bus and removes its folders.
  const kivo::linux_platform::StopSignals signals;
  try {
    kivo::DemoScreen screen;
    const kivo::DemoEnd end = message ? kivo::DemoStory::show(screen, *message, goesOn)
                                      : kivo::DemoStory::tell(screen, goesOn);
    if (end == kivo::DemoEnd::interrupted) return exitInterrupted;
    return end == kivo::DemoEnd::asTold ? 0 : exitOtherwise;
  } catch (const std::exception& error) {
    if (!goesOn()) return exitInterrupted;
    std::cerr << "kivo-demo: " << error.what() << "\n";
    return exitOtherwise;
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
