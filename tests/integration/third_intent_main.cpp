// The process entry of an extension with one intent more than kivo-intents.
#include "platform/linux/app_intents/ns_extension_main.h"
#include "testkit/rate_merchant_intent.h"

int main(int argc, char** argv) {
  return kivo::linux_platform::NSExtensionMain(argc, argv, kivo::testkit::extensionWithRating());
}
