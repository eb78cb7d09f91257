#include "testkit/task_runner.h"

#include <openssl/crypto.h>

namespace kivo::testkit {

linux_platform::TaskExecutor& executor() {
  // OpenSSL is initialised first and so ends last: it keeps memory for each worker, which it can
  // free only
  // when the worker ends before it does.
  [[maybe_unused]] static const int openSsl =
      OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr);
  static linux_platform::TaskExecutor shared(2);
  return shared;
}

}  // namespace kivo::testkit
