#include "phone/widget_watch.h"

#include <chrono>
#include <optional>
#include <utility>

#include "platform/linux/bus/bus_connection.h"
#include "platform/linux/bus/bus_loop.h"
#include "platform/linux/bus/bus_signal.h"
#include "platform/linux/bus/widget_center_interface.h"
#include "platform/linux/process/stop_signals.h"
#include "platform/linux/terminal/command_failure.h"

namespace kivo {
namespace {

namespace widget_center = linux_platform::widget_center_interface;
using linux_platform::BusLoop;
using linux_platform::CommandFailure;

// A run that queues a text sends no reload signal, nor does a sign-in or a new day.
constexpr std::chrono::milliseconds pollInterval = std::chrono::seconds(2);

}  // namespace

void WidgetWatch::run(const std::function<void(Cause)>& draw) {
  const linux_platform::BusConnection bus = linux_platform::connectToSessionBus();
  if (!bus) throw CommandFailure("there is no session bus");
  Cause cause = Cause::reload;
  // Any message ends a wait of the loop, and the widget is drawn again.
  linux_platform::subscribe(
      bus.get(),
      {.interface = widget_center::object.interface,
       .member = widget_center::reloadAllTimelines,
       .path = widget_center::object.path},
      [&cause](const linux_platform::HeardSignal&) { cause = Cause::reload; });
  BusLoop loop(bus.get());
  const linux_platform::StopSignals signals([&loop] { loop.stop(); });

  const BusLoop::End end = loop.run([&] {
    draw(std::exchange(cause, Cause::time));
    return std::optional(pollInterval);
  });
  if (end == BusLoop::End::busGone) throw CommandFailure("the session bus is gone");
}

}  // namespace kivo
