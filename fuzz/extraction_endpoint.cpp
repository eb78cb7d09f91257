// Any request gets a documented answer, the same key of a user gets the same bytes whatever the
// text, and only an answer with 200 adds an entry. The input is the method, a line feed, the
// target, a line feed, and the body. The book is in a private folder, and empty for each input.
#include "ledger/extraction_endpoint.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "extraction/sms_extraction_response.h"
#include "platform/foundation/errors.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"
#include "property.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"

namespace {

using namespace kivo;
using ledger::ExtractionEndpoint;
using ledger::HttpServer;

struct Ledger {
  testkit::PrivateFolders folders;
  ExtractionEndpoint endpoint{[] { return std::optional(money::CurrencyCode("EGP")); },
                              [this](const book::LedgerEntry&) { ++notices; }};
  // Creates the file that `rows` opens.
  book::Book book = book::Book::open();
  testkit::RawStore rows{folders.dataHome() / "app.kivo.ledger" / "ledger.sqlite3"};
  int notices = 0;

  std::string entries() { return rows.run("SELECT state FROM transactions"); }
};

std::string nextLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  std::string line(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

// The request with the user, key and day of `body` and another text.
std::string withAnotherText(const std::string& body) {
  const auto object = platform::JSONDecoder::object(body);
  platform::JSONEncoder other;
  other.encodeString("sms_text", "Your card ending 4821 was charged EGP 7.00 at Sunny Market");
  for (const char* const member : {"user_id", "expense_date", "idempotency_key"}) {
    other.encodeString(member, object.decodeString(member));
  }
  return other.text();
}

void requireADocumentedAnswer(const HttpServer::Request& request,
                              const HttpServer::Answer& answer) {
  const int status = answer.status;
  fuzz::require(status == 200 || status == 400 || status == 404 || status == 405,
                "the status is documented");
  fuzz::require((status == 405) == (answer.allow == "POST"), "405 alone names the method");
  if (status == 200) {
    fuzz::require(request.method == "POST", "only a POST is answered with 200");
    static_cast<void>(SMSExtractionResponse::decode(answer.body));
  } else {
    static_cast<void>(platform::JSONDecoder::object(answer.body).decodeString("error"));
  }
}

void requireTheSameAnswerAgain(Ledger& ledger, HttpServer::Request request,
                               const std::string& body) {
  const std::string before = ledger.entries();
  fuzz::require(ledger.endpoint.answers({request})[0].body == body,
                "a request is answered as before");
  request.body = withAnotherText(request.body);
  fuzz::require(ledger.endpoint.answers({request})[0].body == body, "a key has one answer");
  fuzz::require(ledger.entries() == before, "a known key adds no entry");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static Ledger ledger;
  ledger.notices = 0;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  HttpServer::Request request;
  request.method = nextLine(rest);
  request.target = nextLine(rest);
  request.body = rest;

  const HttpServer::Answer answer = ledger.endpoint.answers({request})[0];
  requireADocumentedAnswer(request, answer);
  const std::string entries = ledger.entries();
  const bool booked = entries == "booked\n";
  const bool reviewed = entries == "review\n";
  fuzz::require(entries.empty() || booked || reviewed, "a request adds one entry at most");
  fuzz::require(entries.empty() || answer.status == 200, "only an answer with 200 adds an entry");
  fuzz::require(ledger.notices == (reviewed ? 1 : 0), "an entry to look at is announced once");
  if (answer.status != 200) return 0;
  const auto response = SMSExtractionResponse::decode(answer.body);
  fuzz::require(response.saved == booked, "what is said to be saved is booked");
  fuzz::require((response.reason == "needs_review") == reviewed, "a review is an entry");
  requireTheSameAnswerAgain(ledger, request, answer.body);
  ledger.rows.run("DELETE FROM answers; DELETE FROM transactions");
  return 0;
}
