// HTTP over a UNIX socket: the session against the server, and whose sockets it speaks to.
#include "ledger/http_server.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ledger/listening_socket.h"
#include "platform/linux/http/http_url_session.h"
#include "testkit/http_exchange.h"
#include "testkit/other_process.h"
#include "testkit/private_folders.h"
#include "testkit/private_phone.h"

namespace kivo::testkit {

using ledger::HttpServer;
using ledger::ListeningSocket;

namespace {

using ledger::HttpServer;
using ledger::ListeningSocket;
using namespace std::chrono_literals;
using testing::Each;
using testing::HasSubstr;

class AUnixSocket : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path path() const { return folder_.path() / "kivo" / "s.sock"; }

  [[nodiscard]] std::string url() const {
    std::string host = path().string();
    for (std::size_t at = 0; (at = host.find('/', at)) != std::string::npos;) {
      host.replace(at, 1, "%2F");
    }
    return "http+unix://" + host;
  }

  // Serves until there was no request for `idle`.
  std::future<void> serving(std::chrono::milliseconds idle) {
    auto socket = std::make_shared<ListeningSocket>(ListeningSocket::create(path()));
    return std::async(std::launch::async, [this, socket, idle] {
      HttpServer server([this](const std::vector<HttpServer::Request>& requests) {
        std::vector<HttpServer::Answer> answers;
        for (const auto& request : requests) {
          ++requests_;
          const std::string body = request.method + " " + request.target + " " + request.body;
          answers.push_back({.status = 200, .body = body});
        }
        mostTogether_ = std::max(mostTogether_.load(), requests.size());
        if (released_.valid()) released_.wait();
        return answers;
      });
      server.run(*socket, idle);
    });
  }

  // Sends requests to the targets `/0`, `/1` and so on while a first one is handled, and returns
  // their answers.
  std::vector<std::string> answersToRequestsThatWait(int count) {
    std::promise<void> release;
    released_ = release.get_future().share();
    const auto server = serving(1s);
    const int first = sent("POST /first HTTP/1.1\r\nHost: localhost\r\n\r\n");
    eventually([&] { return requests_ == 1; });
    std::vector<int> others;
    for (int number = 0; number < count; ++number) {
      others.push_back(sent("POST /" + std::to_string(number) +
                            " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n"));
    }
    release.set_value();
    answerOn(first);
    std::vector<std::string> answers;
    for (const int descriptor : others) answers.push_back(answerOn(descriptor));
    return answers;
  }

  // Returns the server's answer to `bytes`.
  [[nodiscard]] std::string answerTo(const std::string& bytes) const {
    return answerOn(sent(bytes));
  }

  // Sends `bytes`, which are a whole request, and returns the connection.
  [[nodiscard]] int sent(const std::string& bytes) const {
    const int descriptor = connected();
    EXPECT_EQ(write(descriptor, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    shutdown(descriptor, SHUT_WR);
    return descriptor;
  }

  // Returns all that comes on a connection, and closes it.
  static std::string answerOn(int descriptor) {
    std::string answer;
    std::array<char, 4096> piece{};
    for (ssize_t size = 0; (size = read(descriptor, piece.data(), piece.size())) > 0;) {
      answer.append(piece.data(), static_cast<std::size_t>(size));
    }
    close(descriptor);
    return answer;
  }

  [[nodiscard]] int connected() const {
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path().string().copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return descriptor;
  }

  TemporaryFolder folder_;
  linux_platform::HTTPURLSession session_;
  std::atomic<int> requests_ = 0;
  std::atomic<std::size_t> mostTogether_ = 0;
  // Until it is ready, the handler does not end; not valid when the handler is not held.
  std::shared_future<void> released_;
};

TEST_F(AUnixSocket, CarriesARequestAndItsAnswer) {
  const auto server = serving(200ms);
  const Outcome outcome = exchange(session_, post(url() + "/x?y=z", "text"));
  EXPECT_EQ(outcome.status(), 200);
  EXPECT_EQ(outcome.body(), "POST /x?y=z text");
}

TEST_F(AUnixSocket, CarriesSixtyRequestsAtOnce) {
  const auto server = serving(1s);
  std::vector<std::unique_ptr<RunningExchange>> exchanges;
  for (int number = 0; number < 60; ++number) {
    exchanges.push_back(std::make_unique<RunningExchange>(session_, post(url() + "/x")));
  }
  for (const auto& running : exchanges) EXPECT_EQ(running->wait().status(), 200);
}

TEST_F(AUnixSocket, AnswersRequestsThatCameMeanwhileTogetherEachForItself) {
  const std::vector<std::string> answers = answersToRequestsThatWait(8);
  for (std::size_t number = 0; number < answers.size(); ++number) {
    EXPECT_THAT(answers[number], HasSubstr("POST /" + std::to_string(number) + " "));
  }
  EXPECT_EQ(mostTogether_, 8U);
}

TEST_F(AUnixSocket, AnswersSixtyFourRequestsTogetherAtMost) {
  EXPECT_THAT(answersToRequestsThatWait(80), Each(HasSubstr(" 200 ")));
  EXPECT_EQ(mostTogether_, 64U);
}

TEST_F(AUnixSocket, ReceivesTheHostHeaderLocalhost) {
  auto socket = ListeningSocket::create(path());
  auto request = std::async(std::launch::async, [&socket] {
    timeval limit{.tv_sec = 5, .tv_usec = 0};
    setsockopt(socket.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    int accepted = -1;
    for (int tries = 0; accepted < 0 && tries < 500; ++tries) {
      accepted = accept(socket.descriptor(), nullptr, nullptr);  // which does not block
      if (accepted < 0) std::this_thread::sleep_for(10ms);
    }
    std::array<char, 4096> bytes{};
    const ssize_t size = read(accepted, bytes.data(), bytes.size());
    close(accepted);
    return std::string(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  });
  EXPECT_EQ(exchange(session_, post(url() + "/x")).failure, Failure::networkConnectionLost);
  EXPECT_THAT(request.get(), HasSubstr("\r\nHost: localhost\r\n"));
}

TEST_F(AUnixSocket, FailsWithoutAServer) {
  EXPECT_EQ(exchange(session_, post(url() + "/x")).failure, Failure::cannotConnectToHost);
  std::filesystem::create_directories(path().parent_path());
  std::ofstream(path()) << "no socket";
  EXPECT_EQ(exchange(session_, post(url() + "/x")).failure, Failure::cannotConnectToHost);
}

TEST_F(AUnixSocket, ReceivesNothingWhenItsFileBelongsToAnotherUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file to another user";
  const auto server = serving(300ms);
  ASSERT_EQ(chown(path().c_str(), 65534, 65534), 0);
  EXPECT_EQ(exchange(session_, post(url() + "/x")).failure, Failure::cannotConnectToHost);
  EXPECT_EQ(requests_, 0);
}

TEST_F(AUnixSocket, ReceivesNothingWhenAnotherUserListens) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can let another user listen";
  std::filesystem::create_directories(path().parent_path());
  std::filesystem::permissions(folder_.path(), std::filesystem::perms::all);
  std::filesystem::permissions(path().parent_path(), std::filesystem::perms::all);
  OtherProcess listener([this](OtherProcess& self) {
    if (setgid(65534) != 0 || setuid(65534) != 0) return false;
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path().string().copy(address.sun_path, sizeof address.sun_path - 1);
    if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(descriptor, 1) != 0) {
      return false;
    }
    self.reached();
    const int accepted = accept(descriptor, nullptr, nullptr);
    char byte = 0;
    return accepted >= 0 && read(accepted, &byte, 1) == 0;  // the end, and nothing before it
  });
  listener.waitForIt();
  ASSERT_EQ(chown(path().c_str(), 0, 0), 0);
  EXPECT_EQ(exchange(session_, post(url() + "/x")).failure, Failure::cannotConnectToHost);
  EXPECT_EQ(listener.end(), 0);
}

TEST_F(AUnixSocket, IsPrivateAndRemovedAtTheEnd) {
  {
    const auto socket = ListeningSocket::create(path());
    struct stat found {};
    ASSERT_EQ(stat(path().c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777U, 0600U);
  }
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(AUnixSocket, ReplacesAStaleSocketFile) {
  OtherProcess dead([this](OtherProcess&) {
    new ListeningSocket(ListeningSocket::create(path()));  // its file stays
    return true;
  });
  ASSERT_EQ(dead.end(), 0);
  ASSERT_TRUE(std::filesystem::exists(path()));
  const auto server = serving(200ms);
  EXPECT_EQ(exchange(session_, post(url() + "/x")).status(), 200);
}

TEST_F(AUnixSocket, DoesNotReplaceTheSocketOfARunningServer) {
  const auto socket = ListeningSocket::create(path());
  try {
    ListeningSocket::create(path());
    ADD_FAILURE() << "was taken";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), path().string() +
                                " is in use by another server; stop it, or name another socket by "
                                "--socket");
  }
  EXPECT_TRUE(std::filesystem::exists(path()));
}

TEST_F(AUnixSocket, DoesNotReplaceAFileThatIsNoSocket) {
  std::filesystem::create_directories(path().parent_path());
  std::ofstream(path()) << "text";
  EXPECT_THROW(ListeningSocket::create(path()), std::runtime_error);
  EXPECT_EQ(std::filesystem::file_size(path()), 4U);
}

TEST_F(AUnixSocket, IsNotCreatedInAFolderThatOthersCanWrite) {
  std::filesystem::create_directories(path().parent_path());
  std::filesystem::permissions(path().parent_path(), std::filesystem::perms::all);
  EXPECT_THROW(ListeningSocket::create(path()), std::runtime_error);
}

TEST_F(AUnixSocket, IsNotCreatedAtAPathThatIsTooLong) {
  EXPECT_THROW(ListeningSocket::create(folder_.path() / std::string(108, 'a')), std::runtime_error);
}

TEST_F(AUnixSocket, RefusesABodyThatIsTooLong) {
  const auto server = serving(200ms);
  EXPECT_THAT(answerTo("POST / HTTP/1.1\r\nHost: x\r\nContent-Length: 1048577\r\n\r\n"),
              testing::StartsWith("HTTP/1.1 413 "));
}

TEST_F(AUnixSocket, RefusesInvalidHttp) {
  const auto server = serving(200ms);
  EXPECT_THAT(answerTo("gibberish\r\n\r\n"), testing::StartsWith("HTTP/1.1 400 "));
  EXPECT_EQ(requests_, 0);
}

TEST_F(AUnixSocket, SendsNoAnswerToAnIncompleteRequest) {
  const auto server = serving(200ms);
  EXPECT_EQ(answerTo("POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\nab"), "");
  EXPECT_EQ(requests_, 0);
}

TEST_F(AUnixSocket, IsServedUntilNoRequestComesForTheIdleLimit) {
  const auto begin = std::chrono::steady_clock::now();
  auto server = serving(300ms);
  std::this_thread::sleep_for(150ms);
  EXPECT_EQ(exchange(session_, post(url() + "/x")).status(), 200);
  server.get();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 440ms);
}

}  // namespace
}  // namespace kivo::testkit
