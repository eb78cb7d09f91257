#include "platform/linux/app_intents/intents_service.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <dbus/dbus.h>
#include <sys/resource.h>

#include "platform/linux/app_intents/called_intent.h"
#include "platform/linux/app_intents/catalog.h"
#include "platform/linux/app_intents/installed_platform.h"
#include "platform/linux/app_intents/search_provider.h"
#include "platform/linux/bus/bus_connection.h"
#include "platform/linux/bus/bus_loop.h"
#include "platform/linux/bus/bus_object.h"
#include "platform/linux/bus/intents_interface.h"
#include "platform/linux/bus/served_object.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::linux_platform {
namespace {

using Clock = std::chrono::steady_clock;

// Runs mostly wait for the network. Their only other work is short commits to the store, which are
// serialized anyway.
constexpr unsigned workers = 4;

// The number of runs that the limit of open files allows at a time: each uses a socket, a store and
// a name lookup. A run that cannot open its store would lose its text, so further calls wait. 1000
// at most, to limit memory.
std::size_t mostRunsAtATime() {
  constexpr rlim_t otherFiles = 64;
  constexpr rlim_t filesOfARun = 8;
  constexpr rlim_t most = 1000;
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 1;
  // The soft limit is low for programs that still use select.
  limit.rlim_cur = limit.rlim_max;
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0) getrlimit(RLIMIT_NOFILE, &limit);
  const rlim_t spare = limit.rlim_cur > otherFiles ? limit.rlim_cur - otherFiles : 0;
  return std::clamp<rlim_t>(spare / filesOfARun, 1, most);
}

// The parameters of a call, {sv} each; nullopt for a value that is neither a text nor a number.
CalledValues readValues(BusReader entries) {
  CalledValues values;
  for (; !entries.atEnd(); entries.skip()) {
    BusReader entry = entries.inside();
    std::optional<platform::IntentValue>& value = values[std::string(*entry.text())];
    BusReader variant = entry.inside();
    if (const auto text = variant.text()) {
      value = std::string(*text);
    } else if (const auto number = variant.number()) {
      value = *number;
    }
  }
  return values;
}

BusConnection connection() {
  BusConnection bus = connectToSessionBus();
  if (!bus) throw Failure("there is no session bus");
  return bus;
}

// Everything but the runs happens on the thread that calls `serve`, except where said.
class IntentsService {
 public:
  IntentsService(const platform::AppIntentsExtension& extension,
                 std::chrono::milliseconds idleLimit)
      : extension_(extension), idleLimit_(idleLimit), installed_(extension.bundleIdentifier) {
    executor_.onTermination([this] { stop(); });
  }

  // Throws Failure when the name cannot be taken.
  void takeName();
  void serve();

 private:
  struct Run {
    std::unique_ptr<platform::AppIntent> intent;
    platform::IntentDialog dialog;
    BusAnswer answer;
    std::optional<RunningTask> task;  // empty until it is started
  };
  using Place = std::list<Run>::iterator;

  void stop();
  std::vector<BusMethod> methods();
  void begin(const std::string& typeName, CalledValues values, BusAnswer answer);
  void start(Place run);
  platform::Task<void> performTelling(Place run);
  std::optional<std::chrono::milliseconds> beforeWaiting();
  void answerEnded();
  void giveUpName();
  void cancelRuns();
  [[nodiscard]] Clock::duration idleTimeLeft() const;

  const platform::AppIntentsExtension& extension_;
  const std::chrono::milliseconds idleLimit_;
  const BusConnection bus_ = connection();
  BusLoop loop_{bus_.get()};
  std::optional<SearchProvider> search_;
  std::atomic<bool> stopAsked_ = false;
  bool cancelling_ = false;
  bool nameGivenUp_ = false;
  Clock::time_point lastCall_ = Clock::now();
  const std::size_t mostAtATime_ = mostRunsAtATime();
  std::size_t underWay_ = 0;
  std::list<Run> runs_;
  std::deque<Place> waiting_;

  std::mutex mutex_;
  std::vector<Place> ended_;  // guarded by mutex_

  InstalledPlatform installed_;
  TaskExecutor executor_{workers};
};

void IntentsService::takeName() {
  const BusObject& intents = intents_interface::object;
  serveObject(bus_.get(), intents, methods());
  search_.emplace(bus_.get(), extension_, [this] { lastCall_ = Clock::now(); });
  takeBusName(bus_.get(), intents.service);
}

std::vector<BusMethod> IntentsService::methods() {
  return {{.name = intents_interface::perform,
           .takes = {{"intent", "s"}, {"parameters", "a{sv}"}},
           .gives = {{"dialog", "s"}},
           .perform =
               [this](BusReader arguments, BusAnswer answer) {
                 const std::string typeName(*arguments.text());
                 begin(typeName, readValues(arguments.inside()), std::move(answer));
               }},
          {.name = intents_interface::catalog,
           .takes = {},
           .gives = {{"json", "s"}},
           .perform = [this](BusReader, BusAnswer answer) {
             lastCall_ = Clock::now();
             answer.give([this](BusWriter& reply) { reply.text(catalogJSON(extension_)); });
           }}};
}

void IntentsService::serve() {
  if (loop_.run([this] { return beforeWaiting(); }) == BusLoop::End::busGone) cancelRuns();
  for (auto run = runs_.begin(); run != runs_.end(); ++run) {
    if (!run->task) start(run);
    run->task->wait();
  }
  runs_.clear();  // before the executor that their tasks belong to
}

// Called on a worker.
void IntentsService::stop() {
  stopAsked_ = true;
  loop_.wake();
}

void IntentsService::begin(const std::string& typeName, CalledValues values, BusAnswer answer) {
  lastCall_ = Clock::now();
  const Place run =
      runs_.insert(runs_.end(), {.intent = calledIntent(extension_, typeName, std::move(values)),
                                 .dialog = {},
                                 .answer = std::move(answer),
                                 .task = std::nullopt});
  if (underWay_ < mostAtATime_) {
    start(run);
  } else {
    waiting_.push_back(run);
  }
}

void IntentsService::start(Place run) {
  ++underWay_;
  run->task = executor_.start(performTelling(run));
  if (cancelling_) run->task->cancel();
}

platform::Task<void> IntentsService::performTelling(Place run) {
  // Reports the end of the run even if it throws; otherwise its caller would wait for ever.
  struct Telling {
    IntentsService& service;
    Place run;

    ~Telling() {
      const std::lock_guard lock(service.mutex_);
      service.ended_.push_back(run);
      service.loop_.wake();
    }
  };
  const Telling telling{*this, run};
  co_await installed_.perform(*run->intent, run->dialog);
}

std::optional<std::chrono::milliseconds> IntentsService::beforeWaiting() {
  answerEnded();
  const bool windowsOpen = search_->reapEnded();
  if (stopAsked_ && !cancelling_) cancelRuns();
  if (nameGivenUp_) {
    if (runs_.empty()) loop_.stop();
    return std::nullopt;
  }
  if (cancelling_ || (runs_.empty() && idleTimeLeft() <= Clock::duration::zero())) {
    giveUpName();
    return std::chrono::milliseconds(0);
  }
  constexpr std::chrono::milliseconds nextReaping = std::chrono::seconds(1);
  const std::optional limit = windowsOpen ? std::optional(nextReaping) : std::nullopt;
  if (!runs_.empty()) return limit;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(idleTimeLeft());
  return std::min(left, limit.value_or(left));
}

Clock::duration IntentsService::idleTimeLeft() const {
  return lastCall_ + idleLimit_ - Clock::now();
}

void IntentsService::answerEnded() {
  std::vector<Place> ended;
  {
    const std::lock_guard lock(mutex_);
    ended.swap(ended_);
  }
  for (const Place run : ended) {
    run->task->wait();  // its last step may still run; rethrows its exception
    run->answer.give([run](BusWriter& reply) { reply.text(run->dialog.text); });
    runs_.erase(run);
    lastCall_ = Clock::now();
    --underWay_;
    if (waiting_.empty()) continue;
    start(waiting_.front());
    waiting_.pop_front();
  }
}

// The bus sends us no calls after its reply to this. Earlier ones are in the connection's queue by
// then, and the loop handles them before it calls `beforeWaiting` again.
void IntentsService::giveUpName() {
  dbus_bus_release_name(bus_.get(), intents_interface::object.service, nullptr);
  nameGivenUp_ = true;
}

void IntentsService::cancelRuns() {
  cancelling_ = true;
  for (Run& run : runs_) {
    if (run.task) run.task->cancel();
  }
}

}  // namespace

void serveIntents(const platform::AppIntentsExtension& extension,
                  std::chrono::milliseconds idleLimit) {
  IntentsService service(extension, idleLimit);
  service.takeName();
  service.serve();
}

}  // namespace kivo::linux_platform
