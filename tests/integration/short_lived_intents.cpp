// The intents service with an idle timeout for tests, in milliseconds, as its only argument.
#include <chrono>
#include <string>

#include "intents/expense_intents_extension.h"
#include "platform/linux/app_intents/intents_service.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/process/process_start.h"

int main(int, char** argv) {
  kivo::linux_platform::startProcess();
  const std::chrono::milliseconds idleLimit(std::stoi(argv[1]));
  const auto extension = kivo::ExpenseIntentsExtension::make();
  try {
    kivo::linux_platform::serveIntents(extension, idleLimit);
    return 0;
  } catch (const kivo::linux_platform::Failure&) {
    return 1;
  }
}
