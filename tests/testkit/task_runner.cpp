#include "testkit/task_runner.h"

namespace kivo::testkit {

linux_platform::TaskExecutor& executor() {
  static linux_platform::TaskExecutor shared(2);
  return shared;
}

}  // namespace kivo::testkit
