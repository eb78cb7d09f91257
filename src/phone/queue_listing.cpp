#include "phone/queue_listing.h"

#include <algorithm>

#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo {
namespace {

using linux_platform::columnsOf;
using linux_platform::paddedTo;
using namespace std::chrono_literals;

constexpr std::size_t shortestText = 20;
constexpr std::string_view gap = "  ";

std::string ageAt(platform::Moment now, const PendingSmsItem& item) {
  const auto queued = platform::ISO8601DateFormatter::date(item.queuedAt);
  if (!queued) return "unknown";
  return QueueListing::ageText(std::chrono::duration_cast<std::chrono::seconds>(now - *queued));
}

std::string triedText(std::int64_t retryCount) {
  if (retryCount == 0) return "not yet";
  if (retryCount == 1) return "once";
  return std::to_string(retryCount) + " times";
}

std::string heading(std::size_t count) {
  if (count == 1) return "1 text waits to be sent.\n\n";
  return std::to_string(count) + " texts wait to be sent, the next one first.\n\n";
}

std::size_t widest(const std::vector<std::string>& texts) {
  std::size_t width = 0;
  for (const std::string& text : texts) width = std::max(width, columnsOf(text));
  return width;
}

}  // namespace

std::string QueueListing::ageText(std::chrono::seconds age) {
  if (age < 1min) return "just now";
  if (age < 1h) return std::to_string(age / 1min) + " min";
  if (age < 48h) return std::to_string(age / 1h) + " h";
  return std::to_string(age / 24h) + " days";
}

std::string QueueListing::text(const std::vector<PendingSmsItem>& items, platform::Moment now,
                               std::size_t width) {
  if (items.empty()) return "Nothing waits to be sent.\n";
  std::vector<std::string> numbers{"#"};
  std::vector<std::string> ages{"WAITING"};
  std::vector<std::string> tries{"TRIED AGAIN"};
  std::vector<std::string> texts{"TEXT"};
  for (const PendingSmsItem& item : items) {
    numbers.push_back(std::to_string(numbers.size()));
    ages.push_back(ageAt(now, item));
    tries.push_back(triedText(item.retryCount));
    texts.push_back(linux_platform::escapedControls(item.smsText));
  }
  const std::size_t numberWidth = widest(numbers);
  const std::size_t ageWidth = widest(ages);
  const std::size_t triedWidth = widest(tries);
  const std::size_t before = numberWidth + ageWidth + triedWidth + 3 * gap.size();
  const std::size_t left = width > before ? std::max(width - before, shortestText) : shortestText;

  std::string listing = heading(items.size());
  for (std::size_t row = 0; row < ages.size(); ++row) {
    listing += paddedTo(numberWidth, numbers[row]).append(gap);
    listing += paddedTo(ageWidth, ages[row]).append(gap);
    listing += paddedTo(triedWidth, tries[row]).append(gap);
    listing += linux_platform::cutTo(left, texts[row]) + "\n";
  }
  return listing;
}

std::string QueueListing::details(const PendingSmsItem& item, platform::Moment now,
                                  Controls controls) {
  const auto shown = [controls](const std::string& text) {
    return controls == Controls::escaped ? linux_platform::escapedControls(text) : text;
  };
  std::string lines;
  const auto add = [&lines](std::string_view name, const std::string& value) {
    constexpr std::size_t nameWidth = 13;
    lines += paddedTo(nameWidth, name) + value + "\n";
  };
  add("Waiting", ageAt(now, item) + ", since " + shown(item.queuedAt));
  add("Tried again", triedText(item.retryCount));
  add("Day", shown(item.expenseDate));
  add("Source", shown(item.source));
  if (item.amount) add("Amount", platform::doubleText(*item.amount));
  if (item.merchant) add("Merchant", shown(*item.merchant));
  add("Identifier", shown(item.id));
  return lines + "\n" + shown(item.smsText) + "\n";
}

}  // namespace kivo
