// The shared store between processes that race, wait, fail and die.
#include <csignal>
#include <fstream>
#include <memory>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "store/shared_store.h"
#include "testkit/other_process.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Defaults = platform::UserDefaults;
using testkit::OtherProcess;

constexpr StoreKey keyA{"a"};
constexpr StoreKey keyB{"b"};

class AStoreOfSeveralProcesses : public testing::Test {
 protected:
  static SharedStore open() { return SharedStore::open(appGroup).value(); }

  static bool write(StoreKey key, std::string_view text) {
    SharedStore store = open();
    store.writeText(key, text);
    return store.synchronize();
  }

  testkit::PrivateFolders folders_;
};

TEST_F(AStoreOfSeveralProcesses, ShowsAWriteToOthersOnlyAfterItsFlush) {
  OtherProcess writer([](OtherProcess& self) {
    SharedStore store = open();
    store.writeText(keyA, "text");
    self.reached();
    self.waitForTest();
    const bool flushed = store.synchronize();
    self.reached();
    self.waitForTest();
    return flushed;
  });
  writer.waitForIt();
  {
    const SharedStore reader = open();
    EXPECT_EQ(reader.readText(keyA), std::nullopt);
    writer.goOn();
    writer.waitForIt();
    EXPECT_EQ(reader.readText(keyA), "text");
  }
  writer.goOn();
  EXPECT_EQ(writer.end(), 0);
}

TEST_F(AStoreOfSeveralProcesses, IsCreatedByEightProcessesAtOnce) {
  for (int round = 0; round < 20; ++round) {
    const testkit::TemporaryFolder data;
    const testkit::ScopedVariable variable("XDG_DATA_HOME", (data.path() / "new").string());
    std::vector<std::unique_ptr<OtherProcess>> makers;
    for (int number = 0; number < 8; ++number) {
      makers.push_back(std::make_unique<OtherProcess>([number](OtherProcess& self) {
        self.waitForTest();
        auto store = SharedStore::open(appGroup);
        if (!store) return false;
        const std::string key = "key" + std::to_string(number);
        store->writeText(StoreKey{key}, "made");
        return store->synchronize();
      }));
    }
    for (const auto& maker : makers) maker->goOn();
    for (const auto& maker : makers) EXPECT_EQ(maker->end(), 0) << "round " << round;
    EXPECT_EQ(Defaults::initWithSuiteName(appGroup)->dictionaryRepresentation().size(), 8U);
  }
}

TEST_F(AStoreOfSeveralProcesses, WaitsForTheWriteLockOfAnotherProcess) {
  open();
  OtherProcess holder([this](OtherProcess& self) {
    testkit::RawStore raw(folders_.storeFile());
    raw.run("BEGIN IMMEDIATE");
    self.reached();
    self.waitForTest(300ms);
    raw.run("COMMIT");
    return true;
  });
  holder.waitForIt();
  const auto before = Clock::now();
  EXPECT_TRUE(write(keyA, "later"));
  EXPECT_GE(Clock::now() - before, 250ms);
  EXPECT_EQ(holder.end(), 0);
}

TEST_F(AStoreOfSeveralProcesses, ReportsAWriteTimeoutAfterTenSecondsInOneLine) {
  open();
  OtherProcess holder([this](OtherProcess& self) {
    testkit::RawStore raw(folders_.storeFile());
    raw.run("BEGIN IMMEDIATE");
    self.reached();
    self.waitForTest();
    return true;
  });
  holder.waitForIt();
  testing::internal::CaptureStderr();
  const auto before = Clock::now();
  EXPECT_FALSE(write(keyA, "never"));
  const auto waited = Clock::now() - before;
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "the shared store could not be written: database is locked\n");
  EXPECT_GE(waited, 9500ms);
  EXPECT_LE(waited, 20s);
  holder.goOn();
  EXPECT_EQ(holder.end(), 0);
  EXPECT_EQ(open().readText(keyA), std::nullopt);
}

TEST_F(AStoreOfSeveralProcesses, OpensAndReadsWithoutWaitingForAWriter) {
  ASSERT_TRUE(write(keyA, "before"));
  OtherProcess holder([this](OtherProcess& self) {
    testkit::RawStore raw(folders_.storeFile());
    raw.run("BEGIN IMMEDIATE; UPDATE defaults SET value = 'after'");
    self.reached();
    self.waitForTest();
    raw.run("COMMIT");
    return true;
  });
  holder.waitForIt();
  const auto before = Clock::now();
  EXPECT_EQ(open().readText(keyA), "before");
  EXPECT_LT(Clock::now() - before, 2s);
  holder.goOn();
  EXPECT_EQ(holder.end(), 0);
  EXPECT_EQ(open().readText(keyA), "after");
}

TEST_F(AStoreOfSeveralProcesses, LosesNothingWhenEightProcessesWriteAtOnce) {
  open();
  std::vector<std::unique_ptr<OtherProcess>> writers;
  for (int number = 0; number < 8; ++number) {
    writers.push_back(std::make_unique<OtherProcess>([number](OtherProcess& self) {
      self.waitForTest();
      for (int time = 0; time < 10; ++time) {
        const std::string key = "key" + std::to_string(number) + "." + std::to_string(time);
        if (!write(StoreKey{key}, "x")) return false;
      }
      return true;
    }));
  }
  for (const auto& writer : writers) writer->goOn();
  for (const auto& writer : writers) EXPECT_EQ(writer->end(), 0);
  EXPECT_EQ(Defaults::initWithSuiteName(appGroup)->dictionaryRepresentation().size(), 80U);
}

TEST_F(AStoreOfSeveralProcesses, KeepsItsStateWhenAWriterDiesBeforeItsFlush) {
  ASSERT_TRUE(write(keyA, "earlier"));
  OtherProcess dying([](OtherProcess& self) {
    SharedStore store = open();
    store.writeText(keyA, "later");
    self.reached();
    self.waitForTest();
    return true;
  });
  dying.waitForIt();
  EXPECT_EQ(WTERMSIG(dying.kill()), SIGKILL);
  EXPECT_EQ(open().readText(keyA), "earlier");
}

TEST_F(AStoreOfSeveralProcesses, NeverShowsHalfAWriteGroupOfADeadWriter) {
  open();
  for (int round = 0; round < 20; ++round) {
    OtherProcess dying([](OtherProcess& self) {
      SharedStore store = open();
      self.reached();
      for (int number = 0;; ++number) {
        const std::string text(static_cast<std::size_t>(number % 9000), 'x');
        store.writeText(keyA, text);
        store.writeText(keyB, text);
        if (!store.synchronize()) return false;
      }
    });
    dying.waitForIt();
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * round));
    EXPECT_EQ(WTERMSIG(dying.kill()), SIGKILL);

    const auto suite = Defaults::initWithSuiteName(appGroup);
    ASSERT_TRUE(suite.has_value());
    EXPECT_TRUE(suite->stringForKey("a") == suite->stringForKey("b")) << "round " << round;
  }
  EXPECT_TRUE(write(keyA, "still writable"));
}

TEST_F(AStoreOfSeveralProcesses, ShowsWriteGroupsWholeToAConcurrentReader) {
  open();
  OtherProcess writer([](OtherProcess& self) {
    SharedStore store = open();
    self.reached();
    for (int number = 0;; ++number) {
      store.writeText(keyA, std::to_string(number));
      store.writeText(keyB, std::to_string(number));
      if (!store.synchronize()) return false;
    }
  });
  writer.waitForIt();
  {
    const auto suite = Defaults::initWithSuiteName(appGroup);
    for (int time = 0; time < 500; ++time) {
      const auto values = suite->dictionaryRepresentation();
      if (values.empty()) continue;
      ASSERT_EQ(values.at("a"), values.at("b"));
    }
  }
  writer.kill();
}

TEST_F(AStoreOfSeveralProcesses, KeepsItsStateWhenTheDiskIsFull) {
  ASSERT_TRUE(write(keyA, "earlier"));
  const std::string errors = folders_.home() / "errors";
  OtherProcess full([&errors](OtherProcess&) {
    if (dup2(::open(errors.c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO) < 0) return false;
    signal(SIGXFSZ, SIG_IGN);
    SharedStore store = SharedStore::open(appGroup).value();
    const rlimit little{65536, 65536};
    setrlimit(RLIMIT_FSIZE, &little);
    store.writeText(keyA, "later");
    store.writeText(keyB, std::string(1 << 20, 'x'));
    return !store.synchronize() && store.readText(keyA) == "earlier";
  });
  EXPECT_EQ(full.end(), 0);
  std::string line;
  std::ifstream stream(errors);
  std::getline(stream, line);
  EXPECT_TRUE(line.starts_with("the shared store could not be written: ")) << line;
  EXPECT_EQ(stream.peek(), EOF);
  EXPECT_EQ(open().readText(keyA), "earlier");
  EXPECT_EQ(open().readText(keyB), std::nullopt);
}

}  // namespace
}  // namespace kivo
