// Property: any response either decodes to a record or throws DecodingError, and a decoded record
// reads back from its own encoding.
#include <string_view>

#include "extraction/sms_extraction_response.h"
#include "platform/foundation/errors.h"
#include "property.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace kivo;
  const std::string_view body(reinterpret_cast<const char*>(data), size);
  std::optional<SMSExtractionResponse> response;
  try {
    response = SMSExtractionResponse::decode(body);
  } catch (const platform::DecodingError&) {
    return 0;
  }
  fuzz::require(SMSExtractionResponse::decode(response->encode()) == *response,
                "an encoded response decodes to an equal one");
  return 0;
}
