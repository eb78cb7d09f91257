// Private folders and environment variables of a test.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace kivo::testkit {

/// A temporary folder, removed with its contents.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Sets or removes an environment variable of this process while it lives.
class ScopedVariable {
 public:
  ScopedVariable(std::string name, const std::optional<std::string>& value);
  ~ScopedVariable();
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  std::string name_;
  std::optional<std::string> before_;
};

/// A private home folder, with XDG_DATA_HOME and the like inside it, for this process and, by
/// `environment`, for programs that it starts. It has no session bus, the locale en_US.UTF-8 and
/// the time zone UTC.
class PrivateFolders {
 public:
  PrivateFolders();
  ~PrivateFolders();
  PrivateFolders(const PrivateFolders&) = delete;
  PrivateFolders& operator=(const PrivateFolders&) = delete;

  [[nodiscard]] const std::filesystem::path& home() const { return home_.path(); }
  /// The value of XDG_DATA_HOME.
  [[nodiscard]] std::filesystem::path dataHome() const { return home() / "data"; }
  /// The file of the shared store.
  [[nodiscard]] std::filesystem::path storeFile() const;
  /// The variables that give a program these folders; none removes one.
  [[nodiscard]] std::map<std::string, std::optional<std::string>> environment() const;

 private:
  TemporaryFolder home_;
  std::map<std::string, ScopedVariable> variables_;
};

}  // namespace kivo::testkit
