#include "notification_center/notification_center.h"

#include <algorithm>
#include <set>
#include <utility>

#include "notification_center/request_size.h"

namespace kivo {
using platform::Date;
using platform::Moment;
using platform::UNAuthorizationStatus;
using platform::UNMutableNotificationContent;

namespace {

NotificationName nameOf(const PendingNotification& notification) {
  return {notification.bundle, notification.request.identifier};
}

std::vector<NotificationName> namesOf(const std::vector<PendingNotification>& notifications) {
  std::vector<NotificationName> names;
  for (const PendingNotification& one : notifications) names.push_back(nameOf(one));
  return names;
}

// The notification that counts those of `rest`, which is not empty. It opens the same link as
// the newest of them.
UNMutableNotificationContent countOf(const std::vector<PendingNotification>& rest) {
  UNMutableNotificationContent content;
  content.title = std::to_string(rest.size()) +
                  (rest.size() == 1 ? " earlier notification" : " earlier notifications");
  content.body = "Too many to show at once. Open Kivo to see your payments.";
  content.userInfo = rest.back().request.content.userInfo;
  return content;
}

std::size_t keptSize(const PendingNotification& notification) {
  return sizeOf(notification.bundle, notification.request);
}

std::size_t keptSize(const NotificationName& name) {
  return sizeOf(name.first) + sizeOf(name.second);
}

Moment::duration intervalOf(const platform::UNNotificationRequest& request) {
  return std::chrono::ceil<Moment::duration>(request.trigger.timeInterval);
}

}  // namespace

NotificationCenter::NotificationCenter(NotificationRecord record, Show show)
    : record_(std::move(record)), show_(std::move(show)), shown_(record_.shown()) {
  for (PendingNotification& notification : record_.pending()) {
    const std::size_t size = keptSize(notification);
    const Moment due = notification.due;
    const Moment::duration interval = intervalOf(notification.request);
    waiting_.push_back({.notification = std::move(notification),
                        .size = size,
                        .showAt = due,
                        .longestWait = interval});
  }
}

UNAuthorizationStatus NotificationCenter::authorizationStatus(const std::string& bundle) const {
  return record_.status(bundle);
}

PermissionOutcome NotificationCenter::setAuthorizationStatus(const std::string& bundle,
                                                             UNAuthorizationStatus status) {
  if (bundle.size() > longestBundle) return PermissionOutcome::longName;
  const std::set<std::string> stored = record_.bundles();
  if (stored.size() >= mostBundles && !stored.contains(bundle)) return PermissionOutcome::noRoom;

  std::vector<Waiting> remaining = waiting_;
  if (status == UNAuthorizationStatus::denied) {
    std::erase_if(remaining, [&](const Waiting& entry) {
      return entry.notification.bundle == bundle && entry.stage != Stage::showing;
    });
  }
  record_.setStatus(bundle, status);
  if (remaining.size() != waiting_.size()) setPendingFrom(remaining);
  if (!record_.commit()) return PermissionOutcome::notKept;
  waiting_ = std::move(remaining);
  return PermissionOutcome::kept;
}

AddOutcome NotificationCenter::add(const std::string& bundle,
                                   platform::UNNotificationRequest request) {
  if (record_.status(bundle) == UNAuthorizationStatus::denied) return AddOutcome::denied;
  const NotificationName name{bundle, request.identifier};
  if (find(name) != waiting_.end()) return AddOutcome::kept;
  if (std::find(shown_.begin(), shown_.end(), name) != shown_.end()) return AddOutcome::kept;

  std::optional<Waiting> oldest;
  if (waiting_.size() >= mostWaiting) {
    oldest = std::move(waiting_.front());
    waiting_.erase(waiting_.begin());
  }
  const AddOutcome outcome = append({bundle, std::move(request), Date::now()});
  if (outcome != AddOutcome::kept && oldest) waiting_.insert(waiting_.begin(), *std::move(oldest));
  return outcome;
}

AddOutcome NotificationCenter::append(PendingNotification notification) {
  const std::size_t size = keptSize(notification);
  std::size_t all = size;
  for (const Waiting& entry : waiting_) all += entry.size;
  if (all > mostBytesWaiting) return AddOutcome::noRoom;

  const Moment::duration interval = intervalOf(notification.request);
  notification.due += interval;
  const Moment due = notification.due;
  waiting_.push_back({.notification = std::move(notification),
                      .size = size,
                      .showAt = due,
                      .longestWait = interval});
  setPendingFrom(waiting_);
  if (record_.commit()) return AddOutcome::kept;
  waiting_.pop_back();
  return AddOutcome::notKept;
}

std::vector<std::string> NotificationCenter::pending(const std::string& bundle) const {
  std::vector<std::string> identifiers;
  for (const Waiting& entry : waiting_) {
    if (entry.notification.bundle == bundle) {
      identifiers.push_back(entry.notification.request.identifier);
    }
  }
  return identifiers;
}

void NotificationCenter::serverAppeared() {
  serverMissing_ = false;
  for (Waiting& entry : waiting_) {
    if (entry.stage == Stage::retrying) entry.showAt = Date::now();
  }
}

std::optional<std::chrono::milliseconds> NotificationCenter::showDue() {
  if (serverMissing_) return std::nullopt;
  const Moment now = Date::now();
  std::vector<PendingNotification> due = beginDue(now);
  const auto newest = due.end() - static_cast<std::ptrdiff_t>(std::min(due.size(), mostAtOnce));
  const std::vector<PendingNotification> rest(due.begin(), newest);
  due.erase(due.begin(), newest);
  for (const PendingNotification& one : due) show(one.request.content, {nameOf(one)});
  // Last: a server that keeps only the latest ones of a program keeps the count.
  if (!rest.empty()) show(countOf(rest), namesOf(rest));
  return untilNextIsDue(now);
}

// Returns the notifications that are due, oldest first.
std::vector<PendingNotification> NotificationCenter::beginDue(Moment now) {
  std::vector<PendingNotification> due;
  for (Waiting& entry : waiting_) {
    if (entry.stage == Stage::showing) continue;
    entry.showAt = std::min(entry.showAt, now + entry.longestWait);
    if (entry.showAt > now) continue;
    entry.stage = Stage::showing;
    due.push_back(entry.notification);
  }
  return due;
}

std::optional<std::chrono::milliseconds> NotificationCenter::untilNextIsDue(Moment now) const {
  std::optional<std::chrono::milliseconds> shortest;
  for (const Waiting& entry : waiting_) {
    if (entry.stage == Stage::showing) continue;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(entry.showAt - now);
    shortest = std::min(shortest.value_or(left), left);
  }
  return shortest;
}

// Shows `content` in place of the notifications `names`.
void NotificationCenter::show(const UNMutableNotificationContent& content,
                              std::vector<NotificationName> names) {
  show_(content, [this, names = std::move(names)](ShowOutcome outcome) { ended(names, outcome); });
}

void NotificationCenter::ended(const std::vector<NotificationName>& names, ShowOutcome outcome) {
  const Moment::duration wait =
      outcome == ShowOutcome::failed ? Moment::duration(retryInterval) : Moment::duration(0);
  if (outcome == ShowOutcome::noServer) serverMissing_ = true;
  for (const NotificationName& name : names) {
    const auto entry = find(name);
    if (outcome == ShowOutcome::shown) {
      if (entry != waiting_.end()) waiting_.erase(entry);
      rememberShown(name);
    } else if (entry != waiting_.end()) {
      entry->stage = Stage::retrying;
      entry->showAt = Date::now() + wait;
      entry->longestWait = wait;
    }
  }
  if (outcome != ShowOutcome::shown) return;
  setPendingFrom(waiting_);
  record_.setShown(shown_);
  record_.commit();  // on failure a restart shows them again, which is better than never
}

std::vector<NotificationCenter::Waiting>::iterator NotificationCenter::find(
    const NotificationName& name) {
  return std::find_if(waiting_.begin(), waiting_.end(),
                      [&](const Waiting& entry) { return nameOf(entry.notification) == name; });
}

void NotificationCenter::rememberShown(const NotificationName& name) {
  shown_.push_back(name);
  std::size_t size = 0;
  for (const NotificationName& one : shown_) size += keptSize(one);
  while (shown_.size() > mostRemembered || (size > mostBytesRemembered && shown_.size() > 1)) {
    size -= keptSize(shown_.front());
    shown_.pop_front();
  }
}

void NotificationCenter::setPendingFrom(const std::vector<Waiting>& waiting) {
  std::vector<PendingNotification> pending;
  for (const Waiting& entry : waiting) pending.push_back(entry.notification);
  record_.setPending(pending);
}

}  // namespace kivo
