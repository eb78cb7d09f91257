// Surroundings of a test that nobody else shares. Starts no program.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace kivo::testkit {

/// A temporary folder, removed with all that is in it.
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

/// Sets a variable of this process's environment, or removes it, until the end of its life.
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

/// A home folder of its own, with XDG_DATA_HOME and the like inside it, for this process and, by
/// `environment`, for programs that it starts. There is no session bus in it, the locale is
/// en_US.UTF-8 and the time zone UTC.
class PrivateFolders {
 public:
  PrivateFolders();
  ~PrivateFolders();
  PrivateFolders(const PrivateFolders&) = delete;
  PrivateFolders& operator=(const PrivateFolders&) = delete;

  [[nodiscard]] const std::filesystem::path& home() const { return home_.path(); }
  /// What XDG_DATA_HOME names.
  [[nodiscard]] std::filesystem::path dataHome() const { return home() / "data"; }
  /// The shared store's file.
  [[nodiscard]] std::filesystem::path storeFile() const;
  /// The variables that make these folders a program's own; none removes one.
  [[nodiscard]] std::map<std::string, std::optional<std::string>> environment() const;

 private:
  TemporaryFolder home_;
  std::map<std::string, ScopedVariable> variables_;
};

}  // namespace kivo::testkit
