// Measures many parallel runs in one process, like those of a service: how long they take together
// while the backend takes 200 ms for each, and what the waiting ones cost.
//   kivo_overlap                   1, 10, 100 and 1000 runs, each number in its own process
//   kivo_overlap RUNS              only that many
//   kivo_overlap RUNS saved|not    in this process, with that answer
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <list>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>

#include "bench/answering_server.h"
#include "intents/process_sms_intent.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/process/child_process.h"
#include "store/shared_store.h"
#include "testkit/private_folders.h"

namespace kivo::bench {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr unsigned workers = 4;  // as many as a service has
constexpr auto serverDelay = 200ms;
constexpr auto whenAllWait = 150ms;

// Returns a figure of this process from /proc; memory in KiB.
long ownFigure(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name + ":")) return std::stol(line.substr(name.size() + 1));
  }
  throw std::runtime_error("the kernel does not tell " + name);
}

void allowManyFiles() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

struct Run {
  ProcessSMSIntent intent;
  platform::IntentDialog dialog;
  std::optional<linux_platform::RunningTask> task;
};

void measureHere(std::size_t count, Answers answers) {
  allowManyFiles();
  const testkit::PrivateFolders folders;
  const AnsweringServer server(answers, serverDelay);
  {
    SharedStore store = SharedStore::open(appGroup).value();
    store.writeText(StoreKeys::userId, "user-1");
    store.writeText(StoreKeys::supabaseUrl, server.url());
    store.synchronize();
  }
  linux_platform::InstalledPlatform installed(extensionBundle);
  linux_platform::TaskExecutor executor(workers);
  std::list<Run> runs(count);
  const long before = ownFigure("VmRSS");
  const auto start = Clock::now();
  int number = 0;
  for (Run& run : runs) {
    run.intent.smsText.setFromText("Paid " + std::to_string(++number) + " at Cafe");
    run.task = executor.start(installed.perform(run.intent, run.dialog));
  }
  std::this_thread::sleep_until(start + whenAllWait);
  const long waiting = ownFigure("VmRSS");
  const long threads = ownFigure("Threads");
  for (Run& run : runs) run.task->wait();
  const std::chrono::duration<double, std::milli> taken = Clock::now() - start;

  const std::string expected = answers == Answers::saved ? "Tracked " : "SMS ignored";
  for (const Run& run : runs) {
    if (!run.dialog.text.starts_with(expected)) throw std::runtime_error(run.dialog.text);
  }
  std::printf("%6zu %-8s %9.0f %10.0f %9.1f %9.1f %8ld\n", count,
              answers == Answers::saved ? "saved" : "not", taken.count(),
              number / taken.count() * 1000, static_cast<double>(waiting - before) / number,
              static_cast<double>(ownFigure("VmHWM")) / 1024, threads);
}

void measureApart(const std::vector<std::string>& counts) {
  std::printf("%6s %-8s %9s %10s %9s %9s %8s\n", "runs", "answer", "ms", "runs/s", "KiB/run",
              "peak MiB", "threads");
  for (const std::string& count : counts) {
    for (const char* const answers : {"not", "saved"}) {
      const auto result =
          linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo_overlap",
                                      .arguments = {count, answers}});
      if (result.status != 0) throw std::runtime_error(result.errors);
      std::fputs(result.output.c_str(), stdout);
    }
  }
}

}  // namespace
}  // namespace kivo::bench

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  try {
    if (arguments.size() == 2) {
      const auto answers =
          arguments[1] == "saved" ? kivo::bench::Answers::saved : kivo::bench::Answers::notSaved;
      kivo::bench::measureHere(std::stoul(arguments[0]), answers);
    } else {
      kivo::bench::measureApart(
          arguments.empty() ? std::vector<std::string>{"1", "10", "100", "1000"} : arguments);
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
