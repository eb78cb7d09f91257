// Property: any stored text either decodes to a queue or throws DecodingError, and a queue is the
// same after it is written and read again.
#include <string_view>
#include <vector>

#include "platform/foundation/errors.h"
#include "property.h"
#include "queue/pending_sms_item.h"

namespace {

std::vector<kivo::PendingSmsItem> decode(std::string_view text) {
  std::vector<kivo::PendingSmsItem> items;
  for (const auto& object : kivo::platform::JSONDecoder::arrayOfObjects(text)) {
    items.push_back(kivo::PendingSmsItem::decode(object));
  }
  return items;
}

std::string encode(const std::vector<kivo::PendingSmsItem>& items) {
  std::vector<kivo::platform::JSONEncoder> objects;
  for (const auto& item : items) objects.push_back(item.encode());
  return kivo::platform::JSONEncoder::arrayText(objects);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::vector<kivo::PendingSmsItem> items;
  try {
    items = decode({reinterpret_cast<const char*>(data), size});
  } catch (const kivo::platform::DecodingError&) {
    return 0;
  }
  kivo::fuzz::require(decode(encode(items)) == items, "a queue is the same after a save");
  return 0;
}
