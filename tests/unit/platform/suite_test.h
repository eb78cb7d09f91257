// The fixture of the tests of a suite.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "platform/foundation/user_defaults.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"

namespace kivo::platform {

class SuiteTest : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path file() const { return folders_.storeFile(); }
  [[nodiscard]] std::filesystem::path folder() const { return file().parent_path(); }

  static std::optional<UserDefaults> tryToOpen() {
    return UserDefaults::initWithSuiteName("group.app.kivo.expenses");
  }
  static UserDefaults open() {
    auto suite = tryToOpen();
    if (!suite) throw std::runtime_error("the suite does not open");
    return std::move(*suite);
  }

  // Creates a suite with `values`, as a list of rows in SQL, written by another program.
  void leaveBehind(const std::string& values) const {
    open();
    testkit::RawStore(file()).run("INSERT INTO defaults VALUES " + values);
  }

  testkit::PrivateFolders folders_;
};

}  // namespace kivo::platform
