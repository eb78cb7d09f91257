// Runs with bad standard streams or without a usable home folder.
#include <filesystem>
#include <fstream>

#include "store_agreement.h"
#include "testkit/extension_program.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;

constexpr const char* savedOffline =
    "ProcessSMSIntent error: URLError cannotConnectToHost: The host did not take the connection\n"
    "Saved offline - will process when connected\n";

class ARunInABadEnvironment : public ExtensionProgram {
 protected:
  ARunInABadEnvironment() {
    signIn();
    backend.goAway();
  }

  /// A shell's command, in which "$RUN" is an offline run on "Paid <number>".
  [[nodiscard]] ProgramResult shell(
      const std::string& command,
      std::map<std::string, std::optional<std::string>> environment = {}) {
    const std::string program = (linux_platform::programFolder() / "kivo-intents").string();
    environment["RUN"] =
        program + " perform ProcessSMSIntent --smsText Paid_" + std::to_string(++number_);
    return linux_platform::runProgram(
        {.program = "sh", .arguments = {"-c", command}, .environment = std::move(environment)});
  }

  /// Expects that the last run has queued its text.
  void expectQueued() const {
    const auto items = queue();
    ASSERT_FALSE(items.empty());
    EXPECT_EQ(items.back().smsText, "Paid_" + std::to_string(number_));
    EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
    for (const auto& file :
         std::filesystem::directory_iterator(folders.storeFile().parent_path())) {
      std::ifstream stream(file.path(), std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
      EXPECT_EQ(bytes.find("Saved offline"), std::string::npos) << file.path();
    }
  }

 private:
  int number_ = 0;
};

TEST_F(ARunInABadEnvironment, QueuesItsTextWithRedirectedOrFullStreams) {
  for (const char* const command :
       {"$RUN > /dev/full", "$RUN 2> /dev/full", "$RUN > /dev/full 2>&1", "$RUN < /dev/null",
        "$RUN < /", "$RUN > /dev/null 2>&1 < /dev/null"}) {
    SCOPED_TRACE(command);
    const ProgramResult result = shell(command);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    const bool isRedirected = std::string(command).find(" > ") != std::string::npos;
    EXPECT_EQ(result.output, isRedirected ? "" : savedOffline);
    expectQueued();
  }
}

TEST_F(ARunInABadEnvironment, QueuesItsTextWhenThePipeHasNoReader) {
  EXPECT_EQ(shell("$RUN | true").output, "");
  expectQueued();
  // A pipe that is full, and whose reader goes after a while.
  EXPECT_EQ(shell("{ head -c 65536 /dev/zero; $RUN; } | sleep 0.3").output, "");
  expectQueued();
}

TEST_F(ARunInABadEnvironment, QueuesItsTextWithStandardStreamsClosed) {
  for (unsigned closed = 1; closed < 8; ++closed) {
    std::string command = "$RUN";
    if ((closed & 1U) != 0) command += " <&-";
    if ((closed & 2U) != 0) command += " >&-";
    if ((closed & 4U) != 0) command += " 2>&-";
    SCOPED_TRACE(command);
    const ProgramResult result = shell(command);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, (closed & 2U) != 0 ? "" : savedOffline);
    EXPECT_EQ(result.errors, "");
    expectQueued();
  }
}

TEST_F(ARunInABadEnvironment, ReportsNoStorageAndWritesNothingWithoutAHome) {
  const TemporaryFolder here;
  const std::string inHere = "cd " + here.path().string() + " && $RUN";
  for (const std::optional<std::string>& home :
       {std::optional<std::string>(), std::optional<std::string>(""),
        std::optional<std::string>("relative"), std::optional<std::string>("./x")}) {
    for (const std::optional<std::string>& data :
         {std::optional<std::string>(), std::optional<std::string>(""),
          std::optional<std::string>("relative/data")}) {
      const ProgramResult result = shell(inHere, {{"HOME", home}, {"XDG_DATA_HOME", data}});
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(result.output, "Failed to access app storage\n");
      EXPECT_EQ(
          result.errors,
          "kivo-intents: cannot open the store: neither XDG_DATA_HOME nor HOME is an absolute "
          "path; set HOME\n");
    }
  }
  EXPECT_TRUE(std::filesystem::is_empty(here.path()));
}

TEST_F(ARunInABadEnvironment, UsesXdgDataHomeWithoutAHome) {
  EXPECT_EQ(shell("$RUN", {{"HOME", std::nullopt}}).output, savedOffline);
  expectQueued();
  EXPECT_EQ(shell("$RUN", {{"HOME", "relative"}}).output, savedOffline);
  expectQueued();
}

TEST_F(ARunInABadEnvironment, IgnoresRelativeXdgFolders) {
  const std::string relative = "relative/folder";
  const std::string own = (folders.home() / ".local" / "share").string();
  {
    const ScopedVariable data("XDG_DATA_HOME", own);
    signIn();
  }
  const TemporaryFolder here;
  const ProgramResult result =
      shell("cd " + here.path().string() + " && $RUN", {{"XDG_DATA_HOME", relative},
                                                        {"XDG_RUNTIME_DIR", relative},
                                                        {"XDG_CONFIG_HOME", relative},
                                                        {"XDG_CACHE_HOME", relative},
                                                        {"XDG_STATE_HOME", relative}});
  EXPECT_EQ(result.output, savedOffline);
  EXPECT_TRUE(std::filesystem::is_empty(here.path()));
  EXPECT_TRUE(queue().empty());
  const ScopedVariable data("XDG_DATA_HOME", own);
  EXPECT_EQ(queue().size(), 1U);
}

}  // namespace
}  // namespace kivo::testkit
