// The messages of kivo-phone when the ledger's socket does not answer.
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/linux/http/http_endpoint.h"
#include "platform/linux/process/child_process.h"
#include "platform/linux/process/descriptor.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {
namespace {

namespace fs = std::filesystem;
using linux_platform::Descriptor;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* advice =
    "systemctl --user start kivo-ledger.socket starts it, or kivo-ledger serve by hand.";

class ALocalPhone : public testing::Test {
 protected:
  ALocalPhone() {
    fs::create_directories(programs());
    std::ofstream(programs() / "systemctl") << "#!/bin/sh\necho \"$@\" >>\"$HOME/asked\"\n";
    fs::permissions(programs() / "systemctl", fs::perms::owner_all);
    fs::create_directories(socket().parent_path());
  }
  [[nodiscard]] fs::path programs() const { return folders_.home() / "programs"; }
  [[nodiscard]] fs::path socket() const { return folders_.home() / "run" / "kivo" / "ledger.sock"; }

  std::string run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-phone",
                                       .arguments = std::move(arguments),
                                       .environment = {{"PATH", programs().string() + ":/bin"}}})
        .output;
  }
  // Expects that neither command proposes to start the ledger, or tries to, and both say `reason`.
  void expectNoAdvice(const std::string& reason) {
    EXPECT_THAT(run({"sign-in", "--local"}), AllOf(HasSubstr(reason), Not(HasSubstr(advice))));
    EXPECT_THAT(run({"status"}), AllOf(HasSubstr(reason), Not(HasSubstr(advice))));
    EXPECT_FALSE(fs::exists(folders_.home() / "asked"));
  }
  // Makes a socket file at which no server listens.
  void bindSocket() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socket().string().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(bound_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
              0);
  }
  void listenSilently() const { ASSERT_EQ(listen(bound_.number(), 5), 0); }

  PrivateFolders folders_;
  const Descriptor bound_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

TEST_F(ALocalPhone, ProposesToStartALedgerWithoutASocket) {
  EXPECT_THAT(run({"sign-in", "--local"}), HasSubstr(advice));
  EXPECT_THAT(run({"status"}), HasSubstr(advice));
  EXPECT_TRUE(fs::exists(folders_.home() / "asked"));
}

TEST_F(ALocalPhone, ProposesToStartALedgerWhoseSocketRefuses) {
  bindSocket();
  EXPECT_THAT(run({"sign-in", "--local"}), HasSubstr(advice));
  EXPECT_THAT(run({"status"}), HasSubstr(advice));
}

TEST_F(ALocalPhone, ProposesNoStartForTheSocketOfAnotherUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file to another user";
  bindSocket();
  ASSERT_EQ(chown(socket().c_str(), 65534, 65534), 0);
  expectNoAdvice("the socket belongs to another user");
  listenSilently();
  expectNoAdvice("the socket belongs to another user");
}

TEST_F(ALocalPhone, ProposesNoStartForAFileThatIsNoSocket) {
  std::ofstream(socket()) << "text";
  expectNoAdvice("the file is no socket");
}

TEST_F(ALocalPhone, ProposesNoStartForALedgerThatIsSilent) {
  bindSocket();
  listenSilently();
  expectNoAdvice("The server did not answer in time");
}

TEST_F(ALocalPhone, ProposesNoStartForTheSocketOfAnotherBackend) {
  const std::string url = linux_platform::urlOfSocket((folders_.home() / "other.sock").string());
  EXPECT_THAT(run({"sign-in", "--user-id", "me", "--url", url}),
              AllOf(HasSubstr("there is no such socket"), Not(HasSubstr(advice))));
}

}  // namespace
}  // namespace kivo::testkit
