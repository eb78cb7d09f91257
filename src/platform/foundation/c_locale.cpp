#include "platform/foundation/c_locale.h"

namespace kivo::platform {

locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

}  // namespace kivo::platform
