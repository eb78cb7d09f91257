#include "server/pace.h"

#include <algorithm>

namespace kivo::server {
namespace {

using std::chrono::milliseconds;

// Requests a second, after a number that need not wait: a phone that was offline for long sends a
// full queue of 200 messages, one after the other.
struct Limit {
  milliseconds each;
  int atOnce;
};
constexpr Limit ofPerson{milliseconds(100), 200};
constexpr Limit ofAll{milliseconds(2), 1'000};

// The people whose requests have all gone through are forgotten when there are so many.
constexpr std::size_t mostRemembered = 1'000;

milliseconds waitFor(Pace::Time& last, const Limit& limit, Pace::Time now) {
  const Pace::Time earliest = now - limit.each * limit.atOnce;
  last = std::min(std::max(last, earliest) + limit.each, now + Pace::longestWait);
  const auto wait = std::chrono::duration_cast<milliseconds>(last - now);
  return std::max(wait, milliseconds(0));
}

}  // namespace

milliseconds Pace::waitOf(const std::string& person, Time now) {
  const milliseconds among = waitFor(all_, ofAll, now);
  if (person.empty()) return among;
  if (people_.size() > mostRemembered) {
    std::erase_if(people_, [&](const auto& one) {
      return one.second < now - ofPerson.each * ofPerson.atOnce;
    });
  }
  return std::max(among, waitFor(people_[person], ofPerson, now));
}

}  // namespace kivo::server
