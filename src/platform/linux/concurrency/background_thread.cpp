#include "platform/linux/concurrency/background_thread.h"

#include <csignal>
#include <utility>

namespace kivo::linux_platform {

std::thread startBackgroundThread(std::function<void()> work) {
  return std::thread([work = std::move(work)] {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    work();
  });
}

}  // namespace kivo::linux_platform
