#include "faulted_program.h"

#include <cstdlib>
#include <utility>

#include "platform/foundation/json_decoder.h"
#include "testkit/raw_store.h"

namespace kivo::testkit {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

namespace {

std::string injection(const Fault& fault) {
  std::string when = std::to_string(fault.number);
  if (fault.repeat == Fault::Repeat::fromThenOn) when += "+";
  return "inject=" + fault.call + ":" + fault.effect + ":when=" + when;
}

}  // namespace

std::string wordsFor(const Fault& fault) {
  return injection(fault) + (fault.where == Fault::Where::onTheStore ? " on the store" : "");
}

bool isLongForm() {
  const char* const value = std::getenv("KIVO_LONG");
  return value != nullptr && std::string(value) == "1";
}

ProgramCall withFault(const Fault& fault, const ProgramCall& call,
                      const std::filesystem::path& storeFile, const std::filesystem::path& trace) {
  ProgramCall traced = call;
  traced.program = "strace";
  traced.arguments = {"-f", "-qq",           "-o", trace.string(), "-e", "trace=" + fault.call,
                      "-e", injection(fault)};
  if (fault.where == Fault::Where::onTheStore) {
    for (const char* const suffix : {"", "-wal", "-shm"}) {
      traced.arguments.insert(traced.arguments.end(), {"-P", storeFile.string() + suffix});
    }
  }
  traced.arguments.push_back(call.program.string());
  traced.arguments.insert(traced.arguments.end(), call.arguments.begin(), call.arguments.end());
  // Leaks cannot be looked for under a tracer.
  const char* const options = std::getenv("ASAN_OPTIONS");
  traced.environment["ASAN_OPTIONS"] =
      std::string(options == nullptr ? "" : options) + ":detect_leaks=0";
  return traced;
}

std::string whyNoFaults() {
  const ProgramCall probe{.program = "true"};
  try {
    const Fault fault{.call = "exit_group", .effect = "signal=SIGKILL"};
    const ProgramResult result = linux_platform::runProgram(withFault(fault, probe, "/"));
    if (result.status == 128 + SIGKILL) return "";
    return "strace cannot inject faults here, since tracing is not permitted: " + result.errors;
  } catch (const std::system_error&) {
    return "strace is not installed (scripts/setup test installs it)";
  }
}

CallNumbers::CallNumbers() : step_(isLongForm() ? 1 : 8) {}

int CallNumbers::first() { return 1 + offset_++ % step_; }

void FaultedProgram::SetUp() {
  if (const std::string reason = whyNoFaults(); !reason.empty()) GTEST_SKIP() << reason;
}

void FaultedProgram::keepStore(const std::vector<PendingSmsItem>& queued, double lock) {
  signIn();
  {
    SharedStore opened = store();
    opened.writeText(StoreKeys::todayDateKey, "2026-01-01");
    opened.writeText(StoreKeys::todayTotal, "100.0");
    opened.writeText(StoreKeys::todayCount, "2");
    opened.writeText(StoreKeys::monthlyTotal, "300.0");
    opened.writeFloat(StoreKeys::smsQueueDrainLock, lock);
    PendingSmsQueue::save(queued, opened);
  }
  kept_ = folders.home() / "kept.sqlite3";
  // Another program, the last to close the database, checkpoints the WAL.
  RawStore(folders.storeFile()).run("SELECT count(*) FROM defaults");
  std::filesystem::copy_file(folders.storeFile(), kept_);
}

void FaultedProgram::restoreStore() const {
  const std::filesystem::path file = folders.storeFile();
  if (kept_.empty()) {
    std::filesystem::remove_all(file.parent_path());
    return;
  }
  std::filesystem::create_directories(file.parent_path());  // which may be a disk of its own
  for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
    std::filesystem::remove_all(entry);
  }
  std::filesystem::copy_file(kept_, file);
}

ProgramResult FaultedProgram::processSMSWith(const Fault& fault, const std::string& text) const {
  return linux_platform::runProgram(
      withFault(fault, call({"perform", "ProcessSMSIntent", "--smsText", "-"}, text),
                folders.storeFile(), traceFile()));
}

StoreContents FaultedProgram::contents() const {
  StoreContents found;
  found.integrity = RawStore(folders.storeFile()).run("PRAGMA integrity_check");
  const SharedStore opened = store();
  found.queue = PendingSmsQueue::load(opened);
  found.queueCount = opened.readText(StoreKeys::pendingSmsQueueCount).value_or("-");
  found.lock = opened.readFloat(StoreKeys::smsQueueDrainLock);
  for (const StoreKey key : {StoreKeys::todayDateKey, StoreKeys::todayTotal, StoreKeys::todayCount,
                             StoreKeys::monthlyTotal}) {
    if (!found.totals.empty()) found.totals += " ";
    found.totals += opened.readText(key).value_or("-");
  }
  return found;
}

void FaultedProgram::expectWhole(const StoreContents& found) const {
  EXPECT_EQ(found.integrity, "ok\n");
  EXPECT_EQ(found.queueCount, std::to_string(found.queue.size()));
  // A run must write all four or none.
  if (found.totals != earlierTotals) {
    EXPECT_THAT(found.totals, testing::MatchesRegex("20..-..-.. 150.0 1 450.0"));
    EXPECT_THAT(found.totals, testing::Not(testing::StartsWith("2026-01-01")));
  }
}

std::vector<std::string> FaultedProgram::keysAtBackend(const std::string& text) const {
  std::vector<std::string> keys;
  for (const auto& request : backend.requests()) {
    if (request.body.find(text) == std::string::npos) continue;
    const auto body = platform::JSONDecoder::object(request.body);
    if (body.decodeString("sms_text") == text) keys.push_back(body.decodeString("idempotency_key"));
  }
  return keys;
}

}  // namespace kivo::testkit
