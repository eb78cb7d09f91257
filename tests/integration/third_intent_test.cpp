// A third intent, declared by one class and registered by one line, is available everywhere.
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::HasSubstr;

class AThirdIntent : public testkit::ExtensionProgram {
 protected:
  AThirdIntent() { calledProgram = "kivo_third_intent"; }
};

TEST_F(AThirdIntent, IsInTheCatalog) {
  EXPECT_THAT(run({"catalog"}).output, HasSubstr("RateMerchantIntent - Rate Merchant\n"));
  EXPECT_THAT(run({"catalog", "--json"}).output, HasSubstr(R"("type":"RateMerchantIntent")"));
}

TEST_F(AThirdIntent, IsPerformedFromTheCommandLine) {
  expectAnswered(run({"perform", "RateMerchantIntent", "--merchant", "-", "--stars", "4",
                      "--remarkToKeep", "quiet"},
                     "Cafe"),
                 "Cafe: 4.0, quiet");
  expectAnswered(run({"perform", "RateMerchantIntent", "--merchant", "Cafe", "--stars", "5"}),
                 "Cafe: 5.0, no remark");
}

TEST_F(AThirdIntent, IsPerformedOnAWorkerThread) {
  expectAnswered(run({"perform", "TellThreadIntent"}), "worker");
}

TEST_F(AThirdIntent, HasHelp) {
  EXPECT_THAT(run({"perform", "--help"}).output, HasSubstr("Rate Merchant"));
  EXPECT_THAT(run({"perform", "RateMerchantIntent", "--help"}).output,
              HasSubstr("How good it was"));
}

TEST_F(AThirdIntent, HasItsRangeEnforced) {
  expectUsageError({"perform", "RateMerchantIntent", "--merchant", "Cafe", "--stars", "12.5"},
                   "--stars needs a number from 1.0 to 5.0");
}

TEST_F(AThirdIntent, PromptsWithItsOwnDescriptions) {
  const ProgramResult result = onTerminal("perform RateMerchantIntent", "Cafe\n9\n3\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("Merchant (Who is rated): "));
  EXPECT_THAT(result.output, HasSubstr("How many stars? "));
  EXPECT_THAT(result.output, HasSubstr("That does not fit; it needs a number from 1.0 to 5.0."));
  EXPECT_THAT(result.output, HasSubstr("Cafe: 3.0, no remark"));
}

TEST_F(AThirdIntent, IsPerformedByAPhraseDespiteASharedParameterName) {
  expectAnswered(run({"say", "rate a shop in kivo", "--merchant", "Cafe", "--stars", "2"}),
                 "Cafe: 2.0, no remark");
  signIn();
  expectAnswered(run({"say", "Log expense to Kivo", "--merchant", "Cafe", "--amount", "2"}),
                 "Failed to track expense");
}

TEST_F(AThirdIntent, DoesNotChangeTheOtherIntents) {
  signIn();
  expectAnswered(processSMS("Paid 150"), "SMS ignored - not a transaction");
}

}  // namespace
}  // namespace kivo
