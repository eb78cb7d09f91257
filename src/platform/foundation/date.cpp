#include "platform/foundation/date.h"

#include <atomic>

namespace kivo::platform {
namespace {

std::atomic<Moment (*)()> clockInUse = nullptr;

}  // namespace

Moment Date::now() {
  if (const auto clock = clockInUse.load()) return clock();
  return std::chrono::floor<Moment::duration>(std::chrono::system_clock::now());
}

void Date::setClock(Moment (*clock)()) { clockInUse = clock; }

double secondsSince1970(Moment moment) {
  return std::chrono::duration<double>(moment.time_since_epoch()).count();
}

std::int64_t wholeSecondsSince1970(Moment moment) {
  return std::chrono::floor<std::chrono::seconds>(moment).time_since_epoch().count();
}

}  // namespace kivo::platform
