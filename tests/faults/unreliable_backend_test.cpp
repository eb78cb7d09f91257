// Sequential runs with a backend that often fails: they lose nothing.
#include "unreliable_backend.h"

#include <algorithm>
#include <iostream>
#include <set>

#include "asked_form.h"
#include "store_agreement.h"
#include "testkit/extension_program.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;

// With these, texts are still queued when the backend has recovered.
const auto seed = static_cast<std::uint64_t>(inAskedForm(3, 5));
constexpr double failing = 0.3;

class SequentialRuns : public ExtensionProgram {
 protected:
  SequentialRuns() { signIn(unreliable.url()); }

  /// One run on `text`, after which the text is at the backend or in the queue, under one key.
  void handOver(const std::string& text) {
    unreliable.beginRun();
    const ProgramResult result = processSMS(text);
    ASSERT_EQ(result.status, 0);
    ASSERT_EQ(result.errors, "");
    const bool offline = result.output.ends_with("\nSaved offline - will process when connected\n");
    ASSERT_TRUE(offline || result.output == "Tracked EGP\u00a01.00 at Shop\n") << result.output;
    if (offline) ++offlineRuns_;

    const auto stored = unreliable.stored();
    const auto queued = queue();
    const auto queuedAs = std::find_if(queued.begin(), queued.end(),
                                       [&](const auto& item) { return item.smsText == text; });
    const auto storedAs = std::find_if(stored.begin(), stored.end(),
                                       [&](const auto& entry) { return entry.second == text; });
    ASSERT_EQ(queuedAs != queued.end(), offline);
    ASSERT_TRUE(offline || storedAs != stored.end());
    if (offline && storedAs != stored.end()) {
      ASSERT_EQ(storedAs->first, queuedAs->id);
    }
    ASSERT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), 0);
    longestQueue_ = std::max(longestQueue_, queued.size());
  }

  UnreliableBackend unreliable{seed, failing};
  int offlineRuns_ = 0;
  std::size_t longestQueue_ = 0;
};

TEST_F(SequentialRuns, DeliverEachTextOnceUnderOneKey) {
  std::set<std::string> handedOver;
  for (int number = 0; number < inAskedForm(200, 1000); ++number) {
    const std::string text = "Paid 1.00 at Shop, number " + std::to_string(number);
    handedOver.insert(text);
    handOver(text);
    if (HasFatalFailure()) return;
  }
  const std::size_t queuedAtLast = queue().size();
  EXPECT_GT(queuedAtLast, 0U);
  unreliable.heal();
  int healthyRuns = 0;
  while (!queue().empty() && healthyRuns < 1000) {
    const std::string text = "Paid 1.00 at Shop, healthy " + std::to_string(++healthyRuns);
    handedOver.insert(text);
    handOver(text);
    if (HasFatalFailure()) return;
  }

  EXPECT_TRUE(queue().empty());
  EXPECT_EQ(unreliable.contradictions(), 0);
  EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
  std::multiset<std::string> arrived;
  for (const auto& [key, text] : unreliable.stored()) arrived.insert(text);
  EXPECT_EQ(arrived, std::multiset<std::string>(handedOver.begin(), handedOver.end()));

  auto met = unreliable.met();
  std::cout << "measured: " << handedOver.size() << " messages, " << offlineRuns_
            << " of them saved offline; requests well " << met[Fault::none]
            << ", reset after commit " << met[Fault::resetAfterCommit] << ", status 500 "
            << met[Fault::status500] << ", garbage " << met[Fault::garbage]
            << ", closed without an answer " << met[Fault::closedWithoutAnswer]
            << "; longest queue " << longestQueue_ << ", queued before the healthy runs "
            << queuedAtLast << ", healthy runs " << healthyRuns << ", keys at the backend "
            << arrived.size() << "\n";
  EXPECT_GT(met[Fault::resetAfterCommit], 0);
  EXPECT_GT(met[Fault::status500], 0);
  EXPECT_GT(met[Fault::garbage], 0);
  EXPECT_GT(met[Fault::closedWithoutAnswer], 0);
}

}  // namespace
}  // namespace kivo::testkit
