// The three families of errors that the platform throws.
#pragma once

#include <exception>
#include <string>

namespace kivo::platform {

/// The common base. `what` is a one-line description that never contains the data involved.
class DescribedError : public std::exception {
 public:
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

 protected:
  explicit DescribedError(std::string description) : description_(std::move(description)) {}

 private:
  std::string description_;
};

/// A failure of the transport: there is no complete HTTP response.
class URLError : public DescribedError {
 public:
  enum class Code {
    cancelled,
    timedOut,
    unsupportedURL,
    cannotFindHost,
    cannotConnectToHost,
    secureConnectionFailed,
    networkConnectionLost,
    badServerResponse,
    dataLengthExceedsMaximum,
  };

  /// `reason`, if any, is more specific than the code, such as what is wrong with a certificate.
  explicit URLError(Code code, const std::string& reason = "");
  [[nodiscard]] Code code() const { return code_; }
  /// The description without the code's name, to show to the user.
  [[nodiscard]] const std::string& localizedDescription() const { return localizedDescription_; }

 private:
  Code code_;
  std::string localizedDescription_;
};

/// An error identified by a domain and a number.
class NSError : public DescribedError {
 public:
  NSError(std::string domain, int code, std::string localizedDescription);
  [[nodiscard]] const std::string& domain() const { return domain_; }
  [[nodiscard]] int code() const { return code_; }
  [[nodiscard]] const std::string& localizedDescription() const { return localizedDescription_; }

 private:
  std::string domain_;
  int code_;
  std::string localizedDescription_;
};

/// Data that is not JSON, or JSON that does not have the expected form.
class DecodingError : public DescribedError {
 public:
  enum class Kind { keyNotFound, valueNotFound, typeMismatch, dataCorrupted };

  /// `path` names the member, outer keys first: "expense.amount", "[2].source"; empty for the whole
  /// document. `expected` and `found` are names of JSON types, or empty where they do not apply.
  DecodingError(Kind kind, std::string path, std::string expected = "", std::string found = "");
  [[nodiscard]] Kind kind() const { return kind_; }
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const std::string& expected() const { return expected_; }
  [[nodiscard]] const std::string& found() const { return found_; }

 private:
  Kind kind_;
  std::string path_;
  std::string expected_;
  std::string found_;
};

}  // namespace kivo::platform
