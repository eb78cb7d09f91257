#include "extraction/sms_extraction_client.h"

#include <chrono>
#include <utility>

#include "platform/foundation/date_formatter.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/fatal_stop.h"
#include "platform/foundation/url_session.h"

namespace kivo {

using namespace std::chrono_literals;
using platform::NSError;
using platform::URL;
using platform::URLRequest;
using platform::URLSession;

namespace {

constexpr int statusOK = 200;

std::string requestBody(const std::string& smsText, const std::string& userId,
                        const std::string& expenseDate, const std::string& idempotencyKey) {
  platform::JSONEncoder body;
  body.encodeString("sms_text", smsText);
  body.encodeString("user_id", userId);
  body.encodeString("expense_date", expenseDate);
  body.encodeString("idempotency_key", idempotencyKey);
  return body.text();
}

}  // namespace

std::optional<URL> SMSExtractionClient::endpoint(const std::string& supabaseUrl) {
  return URL::parse(supabaseUrl + "/functions/v1/sms-extraction");
}

platform::Task<SMSExtractionResponse> SMSExtractionClient::extract(std::string smsText,
                                                                   std::string userId,
                                                                   std::string supabaseUrl,
                                                                   std::string expenseDate,
                                                                   std::string idempotencyKey) {
  std::optional<URL> url = endpoint(supabaseUrl);
  if (!url) platform::fatalStop("the stored base URL of the backend cannot be parsed");
  URLRequest request{.url = *std::move(url),
                     .cachePolicy = URLRequest::CachePolicy::useProtocolCachePolicy};
  request.httpMethod = "POST";
  request.headerFields["Content-Type"] = "application/json";
  request.timeoutInterval = 15s;
  request.httpBody = requestBody(smsText, userId, expenseDate, idempotencyKey);

  const platform::URLAnswer answer = co_await URLSession::shared().data(std::move(request));
  if (!answer.response || answer.response->statusCode != statusOK) {
    throw NSError("SMSExtraction", 500, "Failed to extract SMS");
  }
  co_return SMSExtractionResponse::decode(answer.data);
}

std::string SMSExtractionClient::currentExpenseDate() {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd", .locale = "en_US_POSIX"};
  return formatter.string(platform::Date::now());
}

}  // namespace kivo
