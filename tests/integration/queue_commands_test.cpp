// The queue commands of kivo-phone, by its command line and without a bus.
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "phone_program.h"
#include "platform/foundation/date.h"
#include "platform/foundation/json_decoder.h"
#include "platform/linux/process/child_process.h"
#include "queue/pending_sms_queue.h"
#include "testkit/private_folders.h"
#include "testkit/private_phone.h"
#include "testkit/queued_items.h"
#include "testkit/raw_store.h"
#include "testkit/stored_bytes.h"

namespace kivo {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using linux_platform::runProgram;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testkit::queuedItem;

class AQueueOfTexts : public testing::Test {
 protected:
  AQueueOfTexts() {
    PendingSmsItem told = queuedItem("B", 2);
    told.smsText = "Your card was charged\nEGP 7731.19 \x1b[2J at MARKMERCHANT";
    PendingSmsItem byHand = queuedItem("C");
    byHand.source = "apple_pay";
    byHand.amount = 12.5;
    byHand.merchant = "Café";
    queue({queuedItem("A"), told, byHand});
  }

  static ProgramResult run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "queue");
    return runProgram({.program = phoneProgram(), .arguments = std::move(arguments)});
  }

  // At a terminal, where a person types what is written into the file `typing`, a pipe, until its
  // end.
  [[nodiscard]] ProgramCall atTerminal(const std::string& arguments) const {
    mkfifo(typing().c_str(), 0600);
    return {.program = "sh",
            .arguments = {"-c", "cat \"$0\" | script --quiet --return --command \"$1\" /dev/null",
                          typing(), phoneProgram() + " queue " + arguments}};
  }
  [[nodiscard]] ProgramResult answering(const std::string& arguments,
                                        const std::string& typed) const {
    ChildProcess program(atTerminal(arguments));
    std::ofstream(typing()) << typed;
    return program.wait();
  }
  [[nodiscard]] std::string typing() const { return (folders.home() / "typing").string(); }

  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-phone: " + error + "\n");
  }

  static SharedStore open() { return SharedStore::open(appGroup).value(); }
  static void queue(const std::vector<PendingSmsItem>& items) {
    SharedStore store = open();
    PendingSmsQueue::save(items, store);
  }
  static std::vector<std::string> queued() {
    return testkit::idsAndCounts(PendingSmsQueue::load(open()));
  }

  testkit::PrivateFolders folders;
};

TEST_F(AQueueOfTexts, ShowsAWholeTextUnescapedInAPipe) {
  const ProgramResult result = run({"show", "2"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, StartsWith("Waiting "));
  EXPECT_THAT(result.output, HasSubstr("\nTried again  2 times\n"));
  EXPECT_THAT(result.output,
              EndsWith("\n\nYour card was charged\nEGP 7731.19 \x1b[2J at MARKMERCHANT\n"));
  EXPECT_THAT(run({"show", "3"}).output, HasSubstr("\nMerchant     Café\n"));
}

TEST_F(AQueueOfTexts, ShowsControlCharactersEscapedOnATerminal) {
  EXPECT_THAT(answering("show 2", "").output,
              HasSubstr("Your card was charged\\nEGP 7731.19 \\x1b[2J at MARKMERCHANT\r\n"));
}

TEST_F(AQueueOfTexts, NumbersItsTextsAsItsListingDoes) {
  EXPECT_THAT(run({}).output, HasSubstr("\n2  "));
  EXPECT_THAT(run({}).output, HasSubstr("Your card"));
  for (const char* const command : {"show", "drop"}) {
    for (const char* const number :
         {"0", "-1", "+1", "1.0", " 1", "", "one", "99999999999999999999"}) {
      const ProgramResult result = run({command, "--", number});
      EXPECT_EQ(result.status, 64) << number;
      EXPECT_EQ(result.errors,
                "kivo-phone: N must be the number of a text, as shown by kivo-phone queue\n");
    }
  }
  expectFailure({"show", "4"}, 1, "there is no text 4; the last one is 3");
  expectFailure({"drop", "4", "--yes"}, 1, "there is no text 4; the last one is 3");
  expectFailure({"show"}, 64, "N is missing (see kivo-phone queue show --help)");
  queue({});
  expectFailure({"show", "1"}, 1, "nothing waits to be sent");
}

TEST_F(AQueueOfTexts, IsExportedAsJSONThatCanBeReadBack) {
  const ProgramResult result = run({"export"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, EndsWith("]\n"));
  std::vector<PendingSmsItem> items;
  for (const auto& object : platform::JSONDecoder::arrayOfObjects(result.output)) {
    items.push_back(PendingSmsItem::decode(object));
  }
  EXPECT_EQ(items, PendingSmsQueue::load(open()));
  EXPECT_THAT(testkit::idsAndCounts(items), ElementsAre("A:0", "B:2", "C:0"));
  queue({});
  EXPECT_EQ(run({"export"}).output, "[]\n");
}

TEST_F(AQueueOfTexts, DropsATextWithoutAskingWithYes) {
  const ProgramResult result = run({"drop", "2", "--yes"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "Dropped.\n");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(queued(), ElementsAre("A:0", "C:0"));
  EXPECT_EQ(open().readText(StoreKeys::pendingSmsQueueCount), "2");
  EXPECT_THAT(testkit::bytesIn(folders.storeFile().parent_path()), Not(HasSubstr("MARKMERCHANT")));
}

TEST_F(AQueueOfTexts, DropsNothingWithoutATerminalToAskOn) {
  expectFailure({"drop", "1"}, 64,
                "there is no terminal to confirm on; --yes drops without asking");
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
}

TEST_F(AQueueOfTexts, DropsTheShownTextOnConfirmation) {
  for (const char* const answer : {"y\n", "Y\n", "yes\n"}) {
    queue({queuedItem("A"), queuedItem("B")});
    const ProgramResult result = answering("drop 1", answer);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_THAT(result.output, HasSubstr("\r\n\r\ntext A\r\n"));
    EXPECT_THAT(result.output, HasSubstr("Drop this text, so that it is never sent? [y/N] "));
    EXPECT_THAT(result.output, HasSubstr("Dropped.\r\n"));
    EXPECT_THAT(queued(), ElementsAre("B:0"));
  }
}

TEST_F(AQueueOfTexts, DropsNothingWithoutConfirmation) {
  for (const char* const answer : {"n\n", "\n", "yep\n", ""}) {
    const ProgramResult result = answering("drop 2", answer);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, EndsWith("kivo-phone: nothing was dropped\r\n"));
    EXPECT_THAT(result.output, HasSubstr("charged\\nEGP 7731.19 \\x1b[2J at"));
  }
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
}

TEST_F(AQueueOfTexts, DropsTheShownTextWhenTheQueueMovesMeanwhile) {
  ChildProcess program(atTerminal("drop 1"));
  std::ofstream typed(typing());
  ASSERT_TRUE(testkit::eventually(
      [&] { return program.outputSoFar().find("[y/N]") != std::string::npos; }));
  queue({queuedItem("E"), queuedItem("A", 1), queuedItem("F")});
  typed << "y\n" << std::flush;
  typed.close();
  EXPECT_EQ(program.wait().status, 0);
  EXPECT_THAT(queued(), ElementsAre("E:0", "F:0"));
}

TEST_F(AQueueOfTexts, DropsNothingWhenTheShownTextWasSentMeanwhile) {
  ChildProcess program(atTerminal("drop 1"));
  std::ofstream typed(typing());
  ASSERT_TRUE(testkit::eventually(
      [&] { return program.outputSoFar().find("[y/N]") != std::string::npos; }));
  queue({queuedItem("B", 2), queuedItem("C")});
  typed << "y\n" << std::flush;
  typed.close();
  const ProgramResult result = program.wait();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.output,
              HasSubstr("the text has left the queue meanwhile; nothing was dropped\r\n"));
  EXPECT_THAT(queued(), ElementsAre("B:2", "C:0"));
}

TEST_F(AQueueOfTexts, DropsNothingWhileADrainHoldsTheLock) {
  {
    SharedStore store = open();
    store.writeFloat(StoreKeys::smsQueueDrainLock,
                     platform::secondsSince1970(platform::Date::now()));
    store.synchronize();
  }
  expectFailure({"drop", "1", "--yes"}, 1,
                "texts are being sent just now; nothing was dropped, try again in half a minute");
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
}

TEST_F(AQueueOfTexts, DropsNothingWhenTheStoreCannotBeWritten) {
  const SharedStore holder = open();  // keeps the files that a first handle would have to make
  const ProgramResult result =
      runProgram({.program = "sh",
                  .arguments = {"-c", "trap '' XFSZ; ulimit -f 0; exec \"$0\" queue drop 1 --yes",
                                phoneProgram()}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, StartsWith("the shared store could not be written: "));
  // Built to count coverage, the program says after it that it cannot write the counts.
  EXPECT_THAT(result.errors, HasSubstr("\nkivo-phone: nothing was dropped\n"));
  EXPECT_THAT(queued(), ElementsAre("A:0", "B:2", "C:0"));
}

TEST_F(AQueueOfTexts, ReportsAStoredValueOfTheWrongType) {
  for (const char* const value : {"7", "1.5", "x'5B5D'"}) {
    testkit::RawStore(folders.storeFile())
        .run(std::string("UPDATE defaults SET value = ") + value +
             " WHERE key = 'pendingSmsQueue'");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{}, {"export"}, {"show", "1"}}) {
      expectFailure(arguments, 1,
                    "the stored queue cannot be read; the next text that is queued replaces it");
    }
  }
}

TEST_F(AQueueOfTexts, IsLeftUnchangedWhenItCannotBeRead) {
  for (const char* const broken : {"[{}]", "no JSON", R"([{"id":"A"}])"}) {
    {
      SharedStore store = open();
      store.writeText(StoreKeys::pendingSmsQueue, broken);
      store.synchronize();
    }
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"show", "1"}, {"export"}, {"drop", "1", "--yes"}}) {
      expectFailure(arguments, 1,
                    "the stored queue cannot be read; the next text that is queued replaces it");
    }
    EXPECT_EQ(open().readText(StoreKeys::pendingSmsQueue), broken);
    EXPECT_EQ(open().readText(StoreKeys::pendingSmsQueueCount), "3");
  }
}

TEST_F(AQueueOfTexts, ReportsThatTheStoreCannotBeOpened) {
  std::filesystem::remove_all(folders.storeFile().parent_path());
  std::ofstream(folders.storeFile().parent_path()) << "a file where the folder should be";
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"show", "1"}, {"export"}, {"drop", "1", "--yes"}}) {
    expectFailure(arguments, 1,
                  "cannot open the store: " + folders.storeFile().parent_path().string() +
                      " is not a folder; move it away to start with an empty store");
  }
}

}  // namespace
}  // namespace kivo
