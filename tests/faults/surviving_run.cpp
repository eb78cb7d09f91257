#include "surviving_run.h"

#include <algorithm>
#include <array>
#include <iostream>

#include <sys/stat.h>

#include "platform/foundation/date.h"

namespace kivo::testkit {

using linux_platform::ProgramResult;
using testing::IsEmpty;

namespace {

constexpr const char* noStorage = "Failed to access app storage";
constexpr const char* signInFirst = "Please open Kivo app and sign in first";
constexpr const char* savedOffline = "Saved offline - will process when connected";

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

ino_t fileNumber(const std::filesystem::path& file) {
  struct stat found {};
  return stat(file.c_str(), &found) == 0 ? found.st_ino : 0;
}

}  // namespace

bool isStatedDialog(const std::string& dialog) {
  constexpr std::array stated{noStorage, signInFirst, savedOffline,
                              "SMS ignored - not a transaction",
                              "Transaction was declined - not tracked"};
  if (dialog.starts_with("Tracked ") && dialog.ends_with(" at Carrefour")) return true;
  return std::find(stated.begin(), stated.end(), dialog) != stated.end();
}

std::string dialogOf(const ProgramResult& result) {
  if (!result.output.ends_with('\n')) return "";
  const std::string lines = result.output.substr(0, result.output.size() - 1);
  return lines.substr(lines.rfind('\n') + 1);  // npos + 1 is 0
}

std::vector<PendingSmsItem> queuedItems(int count) {
  std::vector<PendingSmsItem> items;
  for (int number = 1; number <= count; ++number) {
    items.push_back(queuedItem("E" + std::to_string(number)));
  }
  return items;
}

void SurvivingRuns::prepare(Backend backendDoes) {
  backend_ = backendDoes;
  keepStore(earlier, 0);
  if (backendDoes == Backend::saves) {
    backend.answers(200, savedAnswer("expense"));
  } else {
    backend.answers(503, "");
  }
}

ProgramResult SurvivingRuns::look(
    const std::function<ProgramResult(const std::string& text)>& perform) {
  restoreStore();
  const ino_t file = fileNumber(folders.storeFile());
  const std::size_t sentBefore = backend.requests().size();
  const double startedAt = platform::secondsSince1970(platform::Date::now());
  const std::string text = "Paid " + std::to_string(++runs);
  const ProgramResult result = perform(text);

  EXPECT_EQ(fileNumber(folders.storeFile()), file);
  const StoreContents found = contents();
  expectWhole(found);
  expectEarlierKept(found, sentBefore);
  if (found.lock != 0) {
    EXPECT_GE(found.lock, startedAt);
    EXPECT_LE(found.lock, platform::secondsSince1970(platform::Date::now()));
  }
  if (contains(result.errors, "error while loading shared libraries")) {
    EXPECT_THAT(keysAtBackend(text), IsEmpty());
    ++neverBegan;
  } else if (contains(result.errors, "--smsText could not be read to its end")) {
    EXPECT_EQ(result.status, 64);
    EXPECT_THAT(keysAtBackend(text), IsEmpty());
    EXPECT_EQ(found.queue, earlier);
    ++neverBegan;
  } else {
    EXPECT_EQ(result.status, 0) << result.errors;
    expectTextKept(result, text, found);
  }
  return result;
}

// Each is still queued, or the backend has saved it now.
void SurvivingRuns::expectEarlierKept(const StoreContents& found, std::size_t sentBefore) {
  const auto requests = backend.requests();
  for (const PendingSmsItem& item : earlier) {
    const bool isQueued = std::any_of(found.queue.begin(), found.queue.end(),
                                      [&](const auto& one) { return one.id == item.id; });
    const bool wasSent =
        std::any_of(requests.begin() + static_cast<std::ptrdiff_t>(sentBefore), requests.end(),
                    [&](const auto& one) { return contains(one.body, '"' + item.id + '"'); });
    EXPECT_TRUE(isQueued || (wasSent && backend_ == Backend::saves)) << item.id;
  }
}

void SurvivingRuns::expectTextKept(const ProgramResult& result, const std::string& text,
                                   const StoreContents& found) {
  const auto keys = keysAtBackend(text);
  const std::string dialog = dialogOf(result);
  const bool outputFailed = dialog.empty();
  EXPECT_TRUE(outputFailed || isStatedDialog(dialog)) << result.output;
  if (dialog == noStorage || dialog == signInFirst) {
    EXPECT_THAT(keys, IsEmpty());
    EXPECT_EQ(found.queue, earlier);
    ++refused;
    return;
  }
  const auto waiting = std::find_if(found.queue.begin(), found.queue.end(),
                                    [&](const auto& item) { return item.smsText == text; });
  if (waiting != found.queue.end()) {
    EXPECT_THAT(keys, testing::Each(waiting->id));
    EXPECT_TRUE(outputFailed || dialog == savedOffline) << dialog;
    ++queued;
  } else if (dialog != savedOffline && backend_ == Backend::saves && !keys.empty()) {
    ++saved;
  } else {
    EXPECT_THAT(result.errors, testing::HasSubstr("the shared store could not be "));
    ++storeFailures;
  }
}

void SurvivingRuns::printCounts(const char* what) const {
  std::cout << what << ": " << runs << " runs; at the backend " << saved << ", queued " << queued
            << ", refused before anything was sent " << refused << ", not stored and said so "
            << storeFailures << ", not begun " << neverBegan << "\n";
}

}  // namespace kivo::testkit
