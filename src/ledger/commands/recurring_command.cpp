#include "ledger/commands/recurring_command.h"

#include <vector>

#include "book/current_day.h"
#include "ledger/commands/opened_book.h"
#include "overview/recurring_view.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"

namespace kivo::ledger {

namespace {

namespace RecurringView = overview::RecurringView;
using linux_platform::print;

void recurring(const linux_platform::GivenParameters& parameters) {
  withBook([&](const book::Book& book) {
    std::vector<overview::RecurringPayment> payments;
    book.atOneMoment([&] {
      tellSetAside(book);
      payments = overview::recurringPayments(book, book::currentDay());
    });
    if (parameters.contains("--json")) {
      std::vector<platform::JSONEncoder> objects;
      for (const auto& payment : payments) objects.push_back(RecurringView::json(payment));
      return print(
          linux_platform::jsonForStandardOutput(platform::JSONEncoder::arrayText(objects)) + "\n");
    }
    if (payments.empty()) return print("No payment came three months in a row.\n");
    print(RecurringView::table(payments, linux_platform::screenWidth()));
  });
}

}  // namespace

linux_platform::Command recurringCommand() {
  return {"recurring",
          "Show the payments that come each month",
          {{"--json", "Print JSON", linux_platform::CommandParameter::Kind::flag}},
          recurring};
}

}  // namespace kivo::ledger
