#include "ledger/kept_settings.h"

#include <filesystem>
#include <optional>
#include <string>

#include "feedback/amount_formatter.h"
#include "feedback/widget_stats.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/store/settings_file.h"
#include "platform/linux/terminal/command_failure.h"
#include "recording/template_file.h"
#include "sms_watcher/senders_file.h"
#include "store/shared_store.h"

namespace kivo::ledger {

using book::BackedUpSettings;

namespace {

using linux_platform::Failure;
using Place = std::optional<std::filesystem::path>;

SharedStore requiredStore() {
  auto store = SharedStore::open(appGroup);
  if (!store) throw linux_platform::ReportedFailure();
  return *std::move(store);
}

// Returns the result of `use` with the path. Puts the path in front of its failures.
template <typename Use>
auto withPath(const Place& path, const Use& use) {
  if (!path) throw Failure("HOME is not set, so there is no place for settings");
  try {
    return use(*path);
  } catch (const Failure& failure) {
    throw Failure(linux_platform::escapedControls(path->string()) + ": " + failure.what());
  }
}

std::string bytesAt(const Place& place) {
  return withPath(place,
                  [](const auto& path) { return linux_platform::readSettingsFile(path).text; });
}

void writeBytes(const Place& place, const std::string& bytes) {
  if (bytesAt(place) == bytes) return;
  withPath(place, [&](const auto& path) {
    const linux_platform::SettingsLock lock(path);
    linux_platform::replaceSettingsFile(path, bytes);
  });
}

void writeCurrency(const std::string& currency) {
  SharedStore store = requiredStore();
  if (store.readText(StoreKeys::currency) == currency) return;
  const bool isAnother = AmountFormatter::currencyCode(store) != currency;
  store.writeText(StoreKeys::currency, currency);
  if (isAnother && WidgetStats::anyIsCounted(store)) WidgetStats::restart(store);
  if (!store.synchronize()) throw linux_platform::ReportedFailure();
}

}  // namespace

BackedUpSettings KeptSettings::read() {
  return {.currency = AmountFormatter::currencyCode(requiredStore()),
          .templates = bytesAt(recording::TemplateFile::place()),
          .senders = bytesAt(SendersFile::place())};
}

void KeptSettings::write(const BackedUpSettings& settings) {
  writeCurrency(settings.currency);
  writeBytes(recording::TemplateFile::place(), settings.templates);
  writeBytes(SendersFile::place(), settings.senders);
}

}  // namespace kivo::ledger
