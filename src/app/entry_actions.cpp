#include "app/entry_actions.h"

#include <string>

#include "app/app_window.h"
#include "app/sum_texts.h"
#include "platform/linux/foundation/failure.h"
#include "recording/rereading.h"

namespace kivo::app {

using linux_platform::Failure;

namespace {

// Whether the payment `id` has a sum that `recording::accept` books.
bool hasBookableSum(AppWindow& window, std::int64_t id) {
  bool has = false;
  window.read([&](const book::Book& book) {
    const auto entry = book.entry(id);
    has = entry && entry->amount && isBookable(*entry->amount);
  });
  return has;
}

}  // namespace

void saysRight(AppWindow& window, std::int64_t id) {
  if (!hasBookableSum(window, id)) {
    window.openPayment(id);
    return window.tell("Give it a sum first");
  }
  window.change("accept " + std::to_string(id), "Booked", [&](book::Book& book) {
    if (!recording::accept(book, id, window.book().currency())) {
      throw Failure("its sum cannot be converted at its rate, or it is gone");
    }
  });
}

bool deletePayment(AppWindow& window, std::int64_t id) {
  const auto number =
      window.change("delete " + std::to_string(id), "Deleted", [&](book::Book& book) {
        if (!book.remove(id)) throw Failure("it was deleted meanwhile");
      });
  return number.has_value();
}

}  // namespace kivo::app
