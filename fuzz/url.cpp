// Property: a text parses as a URL exactly when it is a URI reference by the grammar of RFC 3986,
// and into the same components.
#include "platform/foundation/url.h"

#include <string_view>

#include "property.h"
#include "testkit/uri_grammar.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto url = kivo::platform::URL::parse(text);
  if (size > kivo::testkit::longestUriText) return 0;
  kivo::fuzz::require(url == kivo::testkit::readByGrammar(text), "parsing follows the grammar");
  return 0;
}
