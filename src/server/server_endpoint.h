// Answers the requests of people's devices from their books. Opens no socket.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ledger/extraction_endpoint.h"
#include "ledger/http_server.h"
#include "server/directory.h"
#include "server/metrics.h"
#include "server/pace.h"

namespace kivo::server {

/// The routes of the server. `/p/SECRET/` leads to the book of the device with this secret:
/// `functions/v1/sms-extraction` as `ledger::ExtractionEndpoint` for messages of the device's
/// person alone, `report` the page of a month or a year. `/healthz` says whether the directory can
/// be read, `/metrics` has the counters. All else is 404, a secret that no device has too. Not
/// thread-safe.
class ServerEndpoint {
 public:
  using Request = ledger::HttpServer::Request;
  using Answer = ledger::HttpServer::Answer;

  /// `shelf` must outlive it.
  explicit ServerEndpoint(Shelf& shelf) : shelf_(shelf), directory_(shelf) {}

  /// Returns the answers to `requests`, in their order. Messages for one book are one step of it.
  std::vector<Answer> answers(const std::vector<Request>& requests);
  /// Returns for how long a request that came now waits.
  std::chrono::milliseconds pauseFor(const Request& request);

 private:
  struct Routed;
  Routed routed(const Request& request) const;
  Answer answerHere(const Routed& routed);
  std::vector<Answer> answersOf(const BookPlace& book, const std::vector<Request>& requests);
  ledger::ExtractionEndpoint& endpointOf(std::int64_t book);

  Shelf& shelf_;
  Directory directory_;
  Metrics metrics_;
  Pace pace_;
  // By the numbers of their books. Each keeps its book open.
  std::map<std::int64_t, ledger::ExtractionEndpoint> endpoints_;
};

}  // namespace kivo::server
