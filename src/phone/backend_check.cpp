#include "phone/backend_check.h"

#include <chrono>
#include <utility>

#include "extraction/sms_extraction_client.h"
#include "phone/local_ledger.h"
#include "platform/linux/concurrency/task_executor.h"
#include "platform/linux/http/http_url_session.h"

namespace kivo {
namespace {

using linux_platform::ExchangeOutcome;
using linux_platform::HTTPURLSession;
using platform::Task;
using platform::URL;
using platform::URLError;

constexpr std::chrono::seconds checkTimeout(5);

Task<void> ask(HTTPURLSession* session, URL endpoint, ExchangeOutcome* outcome) {
  platform::URLRequest request{.url = std::move(endpoint)};
  request.timeoutInterval = checkTimeout;
  try {
    const platform::URLAnswer answer = co_await session->data(std::move(request));
    *outcome = linux_platform::outcomeOf(answer);
  } catch (const URLError& error) {
    *outcome = error;
  }
}

bool isHTTP(const URL& url) {
  return url.scheme == "http" || url.scheme == "https" || url.scheme == "http+unix";
}

bool isOnThisMachine(const URL& url) {
  const bool isAddress = url.host.find_first_not_of("0123456789.") == std::string::npos;
  return url.host == "localhost" || url.host == "::1" ||
         (isAddress && url.host.starts_with("127."));
}

std::string sentenceOf(int status) {
  constexpr int methodNotAllowed = 405;  // the right answer to the GET by which it is asked
  if (status == methodNotAllowed) return "The backend answers.";
  const std::string answers = "The backend answers, with HTTP status " + std::to_string(status);
  if (status == 404) {
    return answers + ": it may have no /functions/v1/sms-extraction; check the base URL.";
  }
  if (status / 100 == 3) {
    return answers + ": redirects are not followed; sign in to the address that it leads to.";
  }
  constexpr int notImplemented = 501;  // some servers reply so to any GET
  if (status / 100 == 5 && status != notImplemented)
    return answers + ": it is out of order just now.";
  return answers + ".";
}

}  // namespace

BackendFindings BackendCheck::find(const std::string& base) {
  ExchangeOutcome outcome = URLError(URLError::Code::unsupportedURL);
  HTTPURLSession session;
  linux_platform::TaskExecutor executor(1);
  executor.perform(ask(&session, SMSExtractionClient::endpoint(base).value(), &outcome));
  const bool failed = std::holds_alternative<URLError>(outcome);
  return {.base = base,
          .outcome = std::move(outcome),
          .ledgerIsToStart = failed && LocalLedger::url() == base && LocalLedger::isToStart()};
}

std::vector<std::string> BackendCheck::sentences(const BackendFindings& findings) {
  const URL url = SMSExtractionClient::endpoint(findings.base).value();
  if (!isHTTP(url)) {
    return {"The URL needs https:// or http:// in front; until then every message waits."};
  }
  std::vector<std::string> sentences;
  if (const int* const status = std::get_if<int>(&findings.outcome)) {
    sentences.push_back(sentenceOf(*status));
    if (url.scheme == "https") sentences.emplace_back("Its certificate is trusted.");
  } else {
    sentences.push_back("The backend cannot be reached now: " +
                        std::get<URLError>(findings.outcome).localizedDescription() +
                        ". Messages wait until it can.");
    if (findings.ledgerIsToStart) {
      sentences.emplace_back(
          "systemctl --user start kivo-ledger.socket starts it, or kivo-ledger serve by hand.");
    }
  }
  if (url.scheme == "http" && !isOnThisMachine(url)) {
    sentences.emplace_back(
        "http:// sends each message in clear text to another machine; https:// does not.");
  }
  return sentences;
}

}  // namespace kivo
