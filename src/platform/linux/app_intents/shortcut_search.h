// Which shortcuts fit what a person types into a search. Shows and performs none.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// The types of the intents whose shortcut has a phrase in which each word of `terms` begins a
/// word, in whatever order; of those that search may offer, in the order of the shortcuts. Letter
/// case and punctuation at a term's end make no difference. None when there is no word in `terms`.
std::vector<std::string> intentsFound(const platform::AppIntentsExtension& extension,
                                      const std::vector<std::string>& terms);

/// What a search shows of an intent.
struct ShownShortcut {
  std::string title;
  /// A phrase for it.
  std::string description;
  /// Names of icons; the first that there is counts.
  std::vector<std::string> icons;
};

/// What a search shows of the intent of the type `typeName`; none when it may not offer it.
std::optional<ShownShortcut> shownShortcut(const platform::AppIntentsExtension& extension,
                                           std::string_view typeName);

}  // namespace kivo::linux_platform
