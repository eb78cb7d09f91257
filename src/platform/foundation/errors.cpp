#include "platform/foundation/errors.h"

#include <string_view>
#include <utility>

namespace kivo::platform {
namespace {

// The code's name and its description for the user.
struct Words {
  std::string_view name;
  std::string_view meaning;
};

Words words(URLError::Code code) {
  switch (code) {
    case URLError::Code::cancelled:
      return {"cancelled", "The exchange was cancelled"};
    case URLError::Code::timedOut:
      return {"timedOut", "The server did not answer in time"};
    case URLError::Code::unsupportedURL:
      return {"unsupportedURL", "The URL names no http or https endpoint"};
    case URLError::Code::cannotFindHost:
      return {"cannotFindHost", "The host name was not found"};
    case URLError::Code::cannotConnectToHost:
      return {"cannotConnectToHost", "The host did not take the connection"};
    case URLError::Code::secureConnectionFailed:
      return {"secureConnectionFailed", "No trusted connection could be made"};
    case URLError::Code::networkConnectionLost:
      return {"networkConnectionLost", "The connection ended before the answer was whole"};
    case URLError::Code::badServerResponse:
      return {"badServerResponse", "The answer is not well-formed HTTP"};
    case URLError::Code::dataLengthExceedsMaximum:
      return {"dataLengthExceedsMaximum", "The answer is too large"};
  }
  return {"unknown", "The exchange failed"};
}

std::string meaning(URLError::Code code, const std::string& reason) {
  return std::string(words(code).meaning) + (reason.empty() ? "" : " (" + reason + ")");
}

std::string_view name(DecodingError::Kind kind) {
  switch (kind) {
    case DecodingError::Kind::keyNotFound:
      return "keyNotFound";
    case DecodingError::Kind::valueNotFound:
      return "valueNotFound";
    case DecodingError::Kind::typeMismatch:
      return "typeMismatch";
    case DecodingError::Kind::dataCorrupted:
      return "dataCorrupted";
  }
  return "unknown";
}

std::string describe(DecodingError::Kind kind, const std::string& path, const std::string& expected,
                     const std::string& found) {
  std::string line = "DecodingError " + std::string(name(kind));
  if (!path.empty()) line += " at " + path;
  if (!expected.empty()) line += ": expected " + expected;
  if (!found.empty()) line += ", found " + found;
  return line;
}

}  // namespace

URLError::URLError(Code code, const std::string& reason)
    : DescribedError("URLError " + std::string(words(code).name) + ": " + meaning(code, reason)),
      code_(code),
      localizedDescription_(meaning(code, reason)) {}

NSError::NSError(std::string domain, int code, std::string localizedDescription)
    : DescribedError("Error Domain=" + domain + " Code=" + std::to_string(code) + " \"" +
                     localizedDescription + "\""),
      domain_(std::move(domain)),
      code_(code),
      localizedDescription_(std::move(localizedDescription)) {}

DecodingError::DecodingError(Kind kind, std::string path, std::string expected, std::string found)
    : DescribedError(describe(kind, path, expected, found)),
      kind_(kind),
      path_(std::move(path)),
      expected_(std::move(expected)),
      found_(std::move(found)) {}

}  // namespace kivo::platform
