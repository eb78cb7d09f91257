#include "sms_watcher/sms_watcher.h"

#include <algorithm>
#include <utility>

#include "sms_watcher/message_time.h"
#include "sms_watcher/sender_pattern.h"

namespace kivo {
using platform::Date;
using platform::Moment;

SmsWatcher::SmsWatcher(WatcherRecord record, Pauses pauses)
    : record_(std::move(record)), pauses_(pauses), pause_(pauses.first) {}

void SmsWatcher::setSenders(const std::vector<std::string>& senders, Moment changed) {
  senders_ = senders;
  changed_ = changed;
  readNamingTimes();
  waiting_.keep([this](const WaitingMessage& one) { return isNamed(one.number); });
}

void SmsWatcher::readNamingTimes() {
  const Moment now = Date::now();
  namedSince_ = record_.namedSince(senders_, std::min(changed_, now), now);
}

bool SmsWatcher::isNamed(const std::string& number) const { return isNews(number, Moment::max()); }

bool SmsWatcher::isNews(const std::string& number, Moment sent) const {
  return std::any_of(namedSince_.begin(), namedSince_.end(), [&](const auto& named) {
    const auto& [sender, since] = named;
    return sent > since - reachBack && SenderPattern::means(sender, number);
  });
}

bool SmsWatcher::isKnown(const std::string& mark) const {
  return (underWay_ && underWay_->mark == mark) || waiting_.contains(mark) ||
         unrecorded_.contains(mark) || record_.isHandled(mark);
}

std::size_t SmsWatcher::take(const std::vector<ModemMessage>& messages, Extent extent,
                             Clock::time_point now) {
  const bool clockWasAhead = std::any_of(namedSince_.begin(), namedSince_.end(),
                                         [](const auto& one) { return one.second > Date::now(); });
  if (clockWasAhead) readNamingTimes();
  std::set<std::string> marks;
  std::size_t tooOld = 0;
  for (const ModemMessage& message : messages) {
    const auto sent = momentSent(message.timestamp);
    // Normalized, since another version of ModemManager may format the same time differently.
    const std::string time =
        sent ? std::to_string(sent->time_since_epoch().count()) : message.timestamp;
    const std::string mark = record_.markOf(message.number, time, message.text);
    marks.insert(mark);
    if (!isNamed(message.number) || isKnown(mark)) continue;
    if (!isNews(message.number, sent.value_or(Moment::max()))) {
      ++tooOld;
      continue;
    }
    waiting_.add({.mark = mark, .number = message.number, .text = message.text, .sent = sent});
    notBefore_ = now + pauses_.settle;  // also cancels the wait after a failure
  }
  if (extent == Extent::everything) record_.heldByModems(marks, Date::now());
  return tooOld;
}

std::optional<std::chrono::milliseconds> SmsWatcher::untilNext(Clock::time_point now) const {
  if (underWay_ || waiting_.empty()) return std::nullopt;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(notBefore_ - now);
  return std::max(left, std::chrono::milliseconds(0));
}

std::string SmsWatcher::beginNext() {
  underWay_ = waiting_.takeFirst();
  return underWay_->text;
}

bool SmsWatcher::record(const std::string& mark) {
  if (!record_.setHandled(mark, Date::now())) return false;
  unrecorded_.erase(mark);
  return true;
}

bool SmsWatcher::answered() {
  unrecorded_.insert(std::exchange(underWay_, std::nullopt)->mark);
  pause_ = pauses_.first;
  notBefore_ = {};
  const std::set<std::string> marks = unrecorded_;
  return std::all_of(marks.begin(), marks.end(),
                     [this](const std::string& mark) { return record(mark); });
}

void SmsWatcher::failed(Clock::time_point now) {
  waiting_.putBack(*std::exchange(underWay_, std::nullopt));
  notBefore_ = now + pause_;
  pause_ = std::min(pause_ * 2, pauses_.longest);
}

}  // namespace kivo
