// Measures a whole run for one message, from the start of the process to its end, against two
// alternatives: curl making only the same request, and a script doing the whole job. All take turns
// against one server that answers at once, on a real session bus with the notification center and
// with the stores on disk.
//   kivo_whole_run [RUNS]     runs each of them RUNS times (default 200)
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/contender.h"
#include "bench/field.h"

namespace kivo::bench {
namespace {

constexpr int warmUps = 3;
constexpr int runsUnlessTold = 200;

using Figure = double Measured::*;
// The runs of each contender, in the order of the contenders.
using Measurements = std::vector<std::vector<Measured>>;

// Runs each contender once, in a different order each round, since the previous program affects the
// processor's caches.
void round(Field& field, int number, Measurements& measured) {
  const auto& contenders = field.contenders();
  std::vector<std::size_t> places(contenders.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  std::shuffle(places.begin(), places.end(), std::mt19937(static_cast<unsigned>(number)));
  for (const std::size_t place : places) {
    const Measured taken = run(contenders[place], number, field.folder());
    if (number >= warmUps) measured[place].push_back(taken);
  }
  field.forgetNotifications();
}

// Returns the quantile `part` of `values`.
double quantile(std::vector<double> values, double part) {
  std::sort(values.begin(), values.end());
  const double place = part * static_cast<double>(values.size() - 1);
  return values[static_cast<std::size_t>(std::lround(place))];
}

std::vector<double> figures(const std::vector<Measured>& runs, Figure figure) {
  std::vector<double> values;
  for (const Measured& one : runs) values.push_back(one.*figure);
  return values;
}

// Compares run by run, so that a slow moment of the machine affects both.
std::vector<double> ratios(const std::vector<Measured>& runs, const std::vector<Measured>& to,
                           Figure figure) {
  std::vector<double> values;
  for (std::size_t place = 0; place < runs.size(); ++place) {
    values.push_back(runs[place].*figure / to[place].*figure);
  }
  return values;
}

void printFigures(const Field& field, const Measurements& measured) {
  std::printf("%-40s %17s %15s %10s\n", "medians", "wall ms (90 %)", "CPU ms (90 %)", "peak MiB");
  for (std::size_t place = 0; place < measured.size(); ++place) {
    const auto wall = figures(measured[place], &Measured::wallMilliseconds);
    const auto processor = figures(measured[place], &Measured::processorMilliseconds);
    const auto peak = figures(measured[place], &Measured::peakMebibytes);
    std::printf("%-40s %8.2f (%6.2f) %6.2f (%6.2f) %10.1f\n",
                field.contenders()[place].name.c_str(), quantile(wall, 0.5), quantile(wall, 0.9),
                quantile(processor, 0.5), quantile(processor, 0.9), quantile(peak, 0.5));
  }
}

void printRatios(const Field& field, const Measurements& measured) {
  const auto& contenders = field.contenders();
  std::printf("\n%-40s %-24s %-20s %-20s %s\n", "run by run, medians (quartiles)", "beside", "wall",
              "CPU", "peak");
  for (std::size_t place = 0; place < measured.size(); ++place) {
    const auto reference =
        std::find_if(contenders.begin(), contenders.end(),
                     [&](const Contender& one) { return one.name == contenders[place].reference; });
    if (reference == contenders.end()) continue;
    const auto& to = measured[static_cast<std::size_t>(reference - contenders.begin())];
    std::printf("%-40s %-24s", contenders[place].name.c_str(), reference->name.c_str());
    for (const Figure figure : {&Measured::wallMilliseconds, &Measured::processorMilliseconds,
                                &Measured::peakMebibytes}) {
      const auto all = ratios(measured[place], to, figure);
      std::printf(" %.2f (%.2f to %.2f)", quantile(all, 0.5), quantile(all, 0.25),
                  quantile(all, 0.75));
    }
    std::printf("\n");
  }
}

void measure(int runs) {
  Field field;
  Measurements measured(field.contenders().size());
  for (int number = 0; number < warmUps + runs; ++number) round(field, number, measured);
  std::printf("%d runs of each, in turn\n\n", runs);
  printFigures(field, measured);
  printRatios(field, measured);
}

}  // namespace
}  // namespace kivo::bench

int main(int argc, char** argv) {
  const int runs = argc == 2 ? std::atoi(argv[1]) : kivo::bench::runsUnlessTold;
  if (argc > 2 || runs < 1) {
    std::fprintf(stderr, "usage: %s [RUNS]\n", argv[0]);
    return 64;
  }
  try {
    kivo::bench::measure(runs);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
