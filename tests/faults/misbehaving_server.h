// The ways in which a backend misbehaves on the wire, each with what a run has to make of it.
// Runs nothing.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "testkit/scripted_server.h"

namespace kivo::testkit {

/// What a run ends in.
enum class Ending {
  tracked,
  ignored,
  declined,
  savedOffline,
  /// The answer was whole and good when the connection broke: either it was read or it was not.
  trackedOrSavedOffline,
};

enum class Transport { plain, tls, plainWhereTlsWasAskedFor };

struct Misbehaviour {
  std::string name;
  Script script;
  Ending ending = Ending::savedOffline;
  /// What the line about a failure begins with after the intent's name.
  std::string error = {};
  /// By TLS with an identity that is trusted.
  Transport transport = Transport::plain;
};

/// Those that a run ends by itself.
std::vector<Misbehaviour> brokenAnswers();
std::vector<Misbehaviour> brokenConnections();
/// `elsewhere` is where the redirects among them lead to.
std::vector<Misbehaviour> answersOfEachStatus(const std::string& elsewhere);
/// Those that only the limit ends, and those that end shortly before it.
std::vector<Misbehaviour> slowServers();

/// The body that has a run answer that 150 were tracked at Carrefour.
std::string trackedBody();

}  // namespace kivo::testkit
