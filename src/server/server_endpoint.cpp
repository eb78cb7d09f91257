#include "server/server_endpoint.h"

#include <string_view>
#include <utility>

#include "book/current_day.h"
#include "overview/report_page.h"
#include "overview/year_page.h"
#include "platform/foundation/json_encoder.h"
#include "platform/linux/foundation/complaint.h"
#include "recording/book_currency.h"
#include "recording/template_file.h"

namespace kivo::server {

using book::Book;

namespace {

using Answer = ServerEndpoint::Answer;
using Request = ServerEndpoint::Request;

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int notFound = 404;
constexpr int methodNotAllowed = 405;
constexpr int serviceUnavailable = 503;

// Books that are open at a time: each takes a few file descriptors.
constexpr std::size_t mostOpenBooks = 64;

Answer refusal(int status, std::string_view error, std::string allow = "") {
  platform::JSONEncoder object;
  object.encodeString("error", error);
  return {.status = status, .body = object.text(), .allow = std::move(allow)};
}

Answer plainText(int status, std::string text) {
  return {.status = status, .body = std::move(text), .contentType = "text/plain; charset=utf-8"};
}

// The page holds a person's payments and its address a secret: neither may stay with a browser or
// reach another site.
Answer page(std::string html) {
  return {
      .status = ok,
      .body = std::move(html),
      .contentType = "text/html; charset=utf-8",
      .headers = {{"Cache-Control", "no-store"},
                  {"Content-Security-Policy",
                   "default-src 'none'; style-src 'unsafe-inline'; img-src data:; base-uri 'none'; "
                   "form-action 'none'; frame-ancestors 'none'"},
                  {"Referrer-Policy", "no-referrer"},
                  {"X-Content-Type-Options", "nosniff"},
                  {"X-Robots-Tag", "noindex"}}};
}

// The page that `query` asks for: "month=2026-11", "year=2026" or nothing for this month.
Answer report(std::string_view query) {
  const auto month = money::Month::fromText(query.starts_with("month=") ? query.substr(6) : "");
  const auto year = money::Year::fromText(query.starts_with("year=") ? query.substr(5) : "");
  if (!query.empty() && !month && !year) {
    return plainText(badRequest, "Ask for month=2026-11, year=2026, or nothing.\n");
  }
  const auto currency = recording::bookCurrency();
  if (!currency) return refusal(serviceUnavailable, "the book cannot be opened");
  try {
    const Book book = Book::open();
    Answer answer;
    book.atOneMoment([&] {
      answer = page(year ? overview::yearPage(overview::summarize(book, *year, *currency))
                         : overview::reportPage(overview::readReport(
                               book, month.value_or(book::currentMonth()), *currency)));
    });
    return answer;
  } catch (const book::BookFailure& failure) {
    linux_platform::complain("kivo-server", failure.what());
    return refusal(serviceUnavailable, "the book cannot be read");
  }
}

constexpr std::string_view extractionPath = "/functions/v1/sms-extraction";

}  // namespace

// A request and where it leads.
struct ServerEndpoint::Routed {
  Request request;
  // For the counters.
  std::string route = "other";
  // Absent where no book is meant.
  std::optional<Access> access = {};
  // Behind the question mark.
  std::string query = {};
};

ServerEndpoint::Routed ServerEndpoint::routed(const Request& request) const {
  Routed routed{.request = request};
  std::string_view target = request.target;
  if (const std::size_t mark = target.find('?'); mark != std::string_view::npos) {
    routed.query = target.substr(mark + 1);
    target = target.substr(0, mark);
  }
  if (target == "/healthz") routed.route = "healthz";
  if (target == "/metrics") routed.route = "metrics";
  constexpr std::string_view people = "/p/";
  if (!target.starts_with(people)) return routed;
  target.remove_prefix(people.size());
  const std::size_t slash = target.find('/');
  routed.access = directory_.access(target.substr(0, slash));
  if (!routed.access) return routed;
  target = slash == std::string_view::npos ? "" : target.substr(slash);
  // The phone's base URL may end with a slash.
  if (target.starts_with("//")) target.remove_prefix(1);
  if (target == extractionPath) routed.route = "extraction";
  if (target == "/report") routed.route = "report";
  routed.request.target = target;
  routed.request.user = routed.access->person;
  return routed;
}

std::vector<Answer> ServerEndpoint::answers(const std::vector<Request>& requests) {
  const auto begin = std::chrono::steady_clock::now();
  std::vector<Answer> answers(requests.size());
  std::vector<std::string> routes(requests.size(), "other");
  // The messages of each book, and the places of their answers.
  struct Messages {
    BookPlace book;
    std::vector<Request> requests;
    std::vector<std::size_t> places;
  };
  std::map<std::int64_t, Messages> messages;
  for (std::size_t at = 0; at < requests.size(); ++at) {
    try {
      Routed one = routed(requests[at]);
      routes[at] = one.route;
      if (one.route != "extraction") {
        answers[at] = answerHere(one);
        continue;
      }
      Messages& ofBook = messages[one.access->book.number];
      ofBook.book = one.access->book;
      ofBook.requests.push_back(std::move(one.request));
      ofBook.places.push_back(at);
    } catch (const linux_platform::Failure& failure) {
      linux_platform::complain("kivo-server", failure.what());
      answers[at] = refusal(serviceUnavailable, "the list of people and devices cannot be read");
    }
  }
  for (const auto& [number, ofBook] : messages) {
    auto found = answersOf(ofBook.book, ofBook.requests);
    for (std::size_t at = 0; at < found.size(); ++at) {
      answers[ofBook.places[at]] = std::move(found[at]);
    }
  }
  for (std::size_t at = 0; at < answers.size(); ++at) {
    metrics_.countAnswer(routes[at], answers[at].status);
  }
  metrics_.countStep(std::chrono::steady_clock::now() - begin);
  return answers;
}

Answer ServerEndpoint::answerHere(const Routed& routed) {
  const bool isKnown = routed.route != "other";
  if (!isKnown) return refusal(notFound, "not found");
  if (routed.request.method != "GET") return refusal(methodNotAllowed, "method not allowed", "GET");
  if (routed.route == "metrics") {
    Answer answer = plainText(ok, metrics_.text());
    answer.contentType = "text/plain; version=0.0.4";
    return answer;
  }
  if (routed.route == "healthz") {
    (void)directory_.publicUrl();  // throws when it cannot be read
    return plainText(ok, "ok\n");
  }
  Answer answer;
  shelf_.inBook(routed.access->book.number, Shelf::Settings::stay,
                [&] { answer = report(routed.query); });
  return answer;
}

std::vector<Answer> ServerEndpoint::answersOf(const BookPlace& book,
                                              const std::vector<Request>& requests) {
  std::vector<Answer> answers;
  try {
    shelf_.inBook(book.number, Shelf::Settings::stay,
                  [&] { answers = endpointOf(book.number).answers(requests); });
    return answers;
  } catch (const linux_platform::Failure& failure) {
    linux_platform::complain("kivo-server", failure.what());
    return std::vector<Answer>(requests.size(),
                               refusal(serviceUnavailable, "the book cannot be used"));
  }
}

ledger::ExtractionEndpoint& ServerEndpoint::endpointOf(std::int64_t book) {
  const auto known = endpoints_.find(book);
  if (known != endpoints_.end()) return known->second;
  if (endpoints_.size() >= mostOpenBooks) endpoints_.erase(endpoints_.begin());
  const auto nobody = [](const book::LedgerEntry&) {};
  return endpoints_
      .try_emplace(
          book, [this, book] { return shelf_.currency(book); }, nobody,
          recording::TemplateFile::reader())
      .first->second;
}

std::chrono::milliseconds ServerEndpoint::pauseFor(const Request& request) {
  std::string person;
  try {
    const Routed one = routed(request);
    if (one.route == "healthz" || one.route == "metrics") return std::chrono::milliseconds(0);
    if (one.access) person = one.access->person;
  } catch (const linux_platform::Failure&) {  // is told when it is answered
  }
  const auto pause = pace_.waitOf(person, std::chrono::steady_clock::now());
  if (pause.count() > 0) metrics_.countPause(pause);
  return pause;
}

}  // namespace kivo::server
