// The process entry of kivo-intents.
#include "intents/expense_intents_extension.h"
#include "platform/linux/app_intents/ns_extension_main.h"

int main(int argc, char** argv) {
  return kivo::linux_platform::NSExtensionMain(argc, argv, kivo::ExpenseIntentsExtension::make());
}
