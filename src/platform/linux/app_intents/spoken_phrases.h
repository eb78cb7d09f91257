// Which intent a sentence means. Hears nothing: the sentence comes as text.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// `sentence` (UTF-8) without what makes no difference: in lower case, with single blanks between
/// its words, without punctuation at its end. Letters other than ASCII's stay.
std::string plainWords(std::string_view sentence);

/// The intent whose shortcut has `sentence` (UTF-8) for a phrase; null when none has. They are
/// compared as `plainWords`.
std::unique_ptr<platform::AppIntent> intentSpokenOf(const platform::AppIntentsExtension& extension,
                                                    std::string_view sentence);

/// All phrases as they are said, in the order in which they are offered.
std::vector<std::string> spokenPhrases(const platform::AppIntentsExtension& extension);

}  // namespace kivo::linux_platform
