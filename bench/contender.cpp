#include "bench/contender.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "platform/linux/process/child_process.h"

namespace kivo::bench {

using linux_platform::ProgramResult;

Measured run(const Contender& contender, int number, const std::filesystem::path& folder) {
  if (contender.prepare) contender.prepare();
  const std::filesystem::path input = folder / "input";
  const std::filesystem::path output = folder / "output";
  std::ofstream(input, std::ios::binary) << contender.input(number);

  std::vector<std::string> arguments{input.string(), output.string()};
  arguments.insert(arguments.end(), contender.command.begin(), contender.command.end());
  const ProgramResult result = linux_platform::runProgram(
      {.program = linux_platform::programFolder() / "kivo_bench_stopwatch",
       .arguments = std::move(arguments),
       .environment = contender.environment});

  std::int64_t wall = 0;
  std::int64_t processor = 0;
  std::int64_t peak = 0;
  int status = -1;
  std::istringstream(result.output) >> wall >> processor >> peak >> status;
  std::ifstream stream(output, std::ios::binary);
  const std::string answer{std::istreambuf_iterator<char>(stream), {}};
  if (status != 0 || !answer.starts_with(contender.expected)) {
    throw std::runtime_error(contender.name + " has not done its work: " + answer + result.errors);
  }
  return {.wallMilliseconds = static_cast<double>(wall) / 1e6,
          .processorMilliseconds = static_cast<double>(processor) / 1e6,
          .peakMebibytes = static_cast<double>(peak) / 1024};
}

}  // namespace kivo::bench
