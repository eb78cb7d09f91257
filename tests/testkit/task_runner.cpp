#include "testkit/task_runner.h"

#include <openssl/crypto.h>

namespace kivo::testkit {

linux_platform::TaskExecutor& executor() {
  // What is set up first ends last: OpenSSL keeps something for each worker, which it can free only
  // when the worker ends before it does.
  [[maybe_unused]] static const int openSsl =
      OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr);
  static linux_platform::TaskExecutor shared(2);
  return shared;
}

}  // namespace kivo::testkit
