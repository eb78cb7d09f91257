// The ways in which a backend misbehaves on the wire, each with the expected outcome of a run.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "testkit/scripted_server.h"

namespace kivo::testkit {

/// The outcome of a run.
enum class Ending {
  tracked,
  ignored,
  declined,
  savedOffline,
  /// The answer was complete and valid when the connection broke; it may have been read or not.
  trackedOrSavedOffline,
};

enum class Transport { plain, tls, plainWhereTlsWasAskedFor };

struct Misbehaviour {
  std::string name;
  Script script;
  Ending ending = Ending::savedOffline;
  /// The beginning of the error line, after the name of the intent.
  std::string error = {};
  /// Over TLS with a trusted certificate.
  Transport transport = Transport::plain;
};

/// Those that a run detects without a timeout.
std::vector<Misbehaviour> brokenAnswers();
std::vector<Misbehaviour> brokenConnections();
/// `elsewhere` is the target of the redirects among them.
std::vector<Misbehaviour> answersOfEachStatus(const std::string& elsewhere);
/// Those that only the timeout ends, and those that end shortly before it.
std::vector<Misbehaviour> slowServers();

/// The body after which a run answers that 150 were tracked at Carrefour.
std::string trackedBody();

}  // namespace kivo::testkit
