#include "sms_watcher/waiting_messages.h"

#include <algorithm>
#include <utility>

namespace kivo {
namespace {

bool isBefore(const WaitingMessage& one, const WaitingMessage& other) {
  return one.sent && (!other.sent || *one.sent < *other.sent);
}

}  // namespace

bool WaitingMessages::contains(const std::string& mark) const {
  const auto hasMark = [&mark](const WaitingMessage& one) { return one.mark == mark; };
  return std::any_of(fresh_.begin(), fresh_.end(), hasMark) ||
         std::any_of(failed_.begin(), failed_.end(), hasMark);
}

void WaitingMessages::add(WaitingMessage message) {
  const auto place = std::upper_bound(fresh_.begin(), fresh_.end(), message, isBefore);
  fresh_.insert(place, std::move(message));
}

WaitingMessage WaitingMessages::takeFirst() {
  std::deque<WaitingMessage>& turn = fresh_.empty() ? failed_ : fresh_;
  WaitingMessage first = std::move(turn.front());
  turn.pop_front();
  return first;
}

void WaitingMessages::putBack(WaitingMessage message) { failed_.push_back(std::move(message)); }

void WaitingMessages::keep(const std::function<bool(const WaitingMessage&)>& isMeant) {
  for (auto* const messages : {&fresh_, &failed_}) {
    std::erase_if(*messages, [&isMeant](const WaitingMessage& one) { return !isMeant(one); });
  }
}

}  // namespace kivo
