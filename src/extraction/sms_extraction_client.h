// The one link to the backend: a text goes in, what the backend made of it comes out. Keeps nothing
// and retries nothing.
#pragma once

#include <optional>
#include <string>

#include "extraction/sms_extraction_response.h"
#include "platform/concurrency/task.h"
#include "platform/foundation/url.h"

namespace kivo::SMSExtractionClient {

/// Where texts are posted to below the base URL `supabaseUrl`; none when that cannot be parsed.
std::optional<platform::URL> endpoint(const std::string& supabaseUrl);

/// Posts `smsText`, exactly as it is, to the extraction endpoint below the base URL `supabaseUrl`
/// and yields the decoded answer. `expenseDate` is "yyyy-MM-dd"; `idempotencyKey` is the same for
/// every attempt for one text, so that the backend stores it once. All texts are UTF-8.
///
/// Suspends for the exchange, 15 s at most; cancelling the task cancels the exchange. Throws
/// URLError when there was no answer, NSError of domain "SMSExtraction" for any status but 200, and
/// DecodingError for an answer that does not fit. A base URL that cannot be parsed stops the
/// process: a bank message must not go to a wrong place. May be called from any task at any time.
platform::Task<SMSExtractionResponse> extract(std::string smsText, std::string userId,
                                              std::string supabaseUrl, std::string expenseDate,
                                              std::string idempotencyKey);

/// Today's date on the device, "yyyy-MM-dd" in ASCII digits and the Gregorian calendar whatever the
/// device's language: the local date in the device's present time zone.
std::string currentExpenseDate();

}  // namespace kivo::SMSExtractionClient
