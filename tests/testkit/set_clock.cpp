#include "testkit/set_clock.h"

#include <atomic>

namespace kivo::testkit {
namespace {

std::atomic<platform::Moment::rep> microseconds = 0;

platform::Moment setMoment() {
  return platform::Moment(std::chrono::microseconds(microseconds.load()));
}

}  // namespace

SetClock::SetClock(platform::Moment moment) {
  set(moment);
  platform::Date::setClock(setMoment);
}

SetClock::~SetClock() { platform::Date::setClock(nullptr); }

void SetClock::set(platform::Moment moment) { microseconds = moment.time_since_epoch().count(); }

void SetClock::advance(std::chrono::microseconds by) { microseconds += by.count(); }

}  // namespace kivo::testkit
