// A text that can be translated.
#pragma once

#include <string_view>

namespace kivo::platform {

/// The English text, which is shown when there is no translation. Points to static storage.
struct LocalizedStringResource {
  std::string_view key;

  bool operator==(const LocalizedStringResource&) const = default;
};

}  // namespace kivo::platform
