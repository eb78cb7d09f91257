// Sends texts to the backend and decodes its answers. Does not retry: the offline queue does.
#pragma once

#include <optional>
#include <string>

#include "extraction/sms_extraction_response.h"
#include "platform/concurrency/task.h"
#include "platform/foundation/url.h"

namespace kivo::SMSExtractionClient {

/// Returns the extraction endpoint below the base URL `supabaseUrl`; nullopt when that cannot be
/// parsed.
std::optional<platform::URL> endpoint(const std::string& supabaseUrl);

/// Posts `smsText` unchanged to the extraction endpoint below the base URL `supabaseUrl` and
/// returns the decoded answer. `expenseDate` is "yyyy-MM-dd". `idempotencyKey` is the same for
/// every attempt for one text, so that the backend stores it once. All texts are UTF-8.
///
/// Suspends during the exchange, for at most 15 s. Cancelling the task cancels the exchange. Throws
/// URLError when there is no complete answer, NSError of domain "SMSExtraction" for an answer that
/// is not HTTP or has any status but 200, and DecodingError for a body that does not fit. Stops the
/// process when the base URL cannot be parsed, since a bank message must not go to a wrong place.
/// Thread-safe.
platform::Task<SMSExtractionResponse> extract(std::string smsText, std::string userId,
                                              std::string supabaseUrl, std::string expenseDate,
                                              std::string idempotencyKey);

/// Returns today's date as "yyyy-MM-dd", in the device's current time zone, in ASCII digits and the
/// Gregorian calendar whatever the device's language.
std::string currentExpenseDate();

}  // namespace kivo::SMSExtractionClient
