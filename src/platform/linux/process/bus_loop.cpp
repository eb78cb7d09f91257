#include "platform/linux/process/bus_loop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

int pollLimit(std::optional<std::chrono::milliseconds> limit, int busLimit) {
  if (!limit) return busLimit;
  constexpr std::chrono::milliseconds longest = std::chrono::hours(1);
  const int own =
      static_cast<int>(std::clamp(*limit, std::chrono::milliseconds(0), longest).count());
  return busLimit < 0 ? own : std::min(own, busLimit);
}

}  // namespace

BusLoop::BusLoop(std::unique_ptr<BusEvents> events)
    : events_(std::move(events)), wakeDescriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wakeDescriptor_ < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
}

BusLoop::~BusLoop() { close(wakeDescriptor_); }

BusLoop::End BusLoop::run(const BeforeWaiting& beforeWaiting) {
  while (!stopping_) {
    auto handled = BusEvents::Handled::something;
    while (handled == BusEvents::Handled::something) handled = events_->handleOne();
    if (handled == BusEvents::Handled::busGone) return End::busGone;
    waitForEvents(beforeWaiting());
  }
  return End::stopped;
}

void BusLoop::waitForEvents(std::optional<std::chrono::milliseconds> limit) {
  if (stopping_) return;
  const BusEvents::Wait bus = events_->wait();
  std::array<pollfd, 2> polled{{{bus.descriptor, bus.events, 0}, {wakeDescriptor_, POLLIN, 0}}};
  poll(polled.data(), polled.size(), pollLimit(limit, bus.limitInMilliseconds));
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t drained = read(wakeDescriptor_, &count, sizeof count);
}

void BusLoop::wake() noexcept {
  const int before = errno;  // a signal handler must leave it as it was
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = write(wakeDescriptor_, &one, sizeof one);
  errno = before;
}

void BusLoop::stop() noexcept {
  stopping_ = true;
  wake();
}

}  // namespace kivo::linux_platform
