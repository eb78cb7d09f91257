// A text that could be shown in another language. Translates nothing.
#pragma once

#include <string_view>

namespace kivo::platform {

/// Names a text by its words in English, which are shown where there is no translation. The words
/// live as long as the program.
struct LocalizedStringResource {
  std::string_view key;

  bool operator==(const LocalizedStringResource&) const = default;
};

}  // namespace kivo::platform
