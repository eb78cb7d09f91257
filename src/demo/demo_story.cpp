#include "demo/demo_story.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "demo/demo_phone.h"
#include "platform/foundation/utf8.h"
#include "recognition/reading.h"
#include "store/store_keys.h"

namespace kivo {
namespace {

using Tone = DemoScreen::Tone;

constexpr money::CurrencyCode usualCurrency = "EGP";

struct BankSms {
  std::string_view text;
};

struct AddedExpense {
  std::string_view amount;
  std::string_view merchant;
};

using Event = std::variant<BankSms, AddedExpense>;

// Events that happen together, and their expected results.
struct Step {
  std::string_view heading;
  std::vector<Event> events;
  std::string_view dialogBeginning;
  /// Titles of the notifications, in any order.
  std::vector<std::string_view> notifications = {};
  /// The number of queued texts afterwards; absent when it is not checked.
  std::optional<std::string_view> queuedTexts = {};
  /// An explanation for the reader; empty for none.
  std::string_view note = {};
};

// Banks, merchants and people are invented.
const std::vector<Step>& stepsOnline() {
  static const std::vector<Step> steps{
      {"An expense",
       {BankSms{"Nilo Bank: Your debit card **4821 was used for EGP 415.75 at Sunny Basket Market "
                "on 12/05/2026 14:32. Avail. Bal. EGP 9,310.20"}},
       "Tracked ",
       {"💸 Expense Tracked"}},
      {"An income, in Arabic",
       {BankSms{"بنك نيلو: تم إيداع راتب بمبلغ ١٨٬٥٠٠٫٠٠ ج.م من شركة الأفق في حسابك. الرصيد "
                "المتاح ٢٧٬٨١٠٫٢٠ ج.م"}},
       "Received ",
       {"💰 Income Received"}},
      {"A declined payment",
       {BankSms{"Nilo Bank: Your purchase of EGP 900.00 at Tulip Store was declined due to "
                "insufficient funds."}},
       "Transaction was declined - not tracked"},
      {"A one-time code, though it names an amount",
       {BankSms{"Nilo Bank: 884213 is your OTP for the purchase of EGP 1,250.00 at Palm "
                "Electronics. Never share it."}},
       "SMS ignored - not a transaction"},
      {"A payment without a bank message",
       {AddedExpense{"42.5", "Lotus Bakery"}},
       "Tracked ",
       {"💸 Expense Tracked"}},
  };
  return steps;
}

const Step& stepOffline() {
  static const Step step{
      "A message and a payment while the ledger is stopped",
      {BankSms{"You paid EGP 64.00 at Corner Coffee."}, AddedExpense{"18.75", "Papyrus Books"}},
      "Saved offline - will process when connected",
      {"📡 Expense Saved Offline", "📡 Expense Saved Offline"},
      "2"};
  return step;
}

const Step& stepBackOnline() {
  static const Step step{"The ledger runs again: a further message, and the queue drains",
                         {BankSms{"Purchase of EGP 230.00 at Blue Tram Taxi, card **4821."}},
                         "Tracked ",
                         {"💸 Expense Tracked", "💸 Expense Tracked", "💸 Expense Tracked"},
                         "0",
                         "The widget's running total leaves out what the queue sent."};
  return step;
}

// The descriptions in the list at the end, in any order.
const std::vector<std::string>& listedAtTheEnd() {
  static const std::vector<std::string> descriptions{"Sunny Basket Market", "شركة الأفق",
                                                     "Lotus Bakery",        "Corner Coffee",
                                                     "Papyrus Books",       "Blue Tram Taxi"};
  return descriptions;
}

class Demonstration {
 public:
  Demonstration(DemoScreen& screen, const std::function<bool()>& goesOn, std::string_view currency)
      : screen_(screen), goesOn_(goesOn), phone_(std::string(currency)) {}

  DemoPhone& phone() { return phone_; }
  [[nodiscard]] bool goesOn() const { return goesOn_(); }

  void showSignIn() {
    screen_.heading("Sign in");
    screen_.piece("User", phone_.stored(StoreKeys::userId));
    screen_.piece("Backend", "kivo-ledger, started for this demonstration");
    screen_.piece("Currency", phone_.stored(StoreKeys::currency));
  }

  void perform(const Step& step) {
    if (!goesOn()) return;
    screen_.heading(step.heading);
    for (const Event& event : step.events) {
      expect(performed(event).starts_with(step.dialogBeginning),
             "the dialog begins \"" + std::string(step.dialogBeginning) + "\"");
    }
    const auto shown = notified(step.notifications.size());
    for (const std::string_view title : step.notifications) {
      expect(std::count_if(shown.begin(), shown.end(),
                           [title](const auto& each) { return each.summary == title; }) ==
                 std::count(step.notifications.begin(), step.notifications.end(), title),
             "a notification \"" + std::string(title) + "\" appears for each");
    }
    showState();
    if (!step.note.empty()) screen_.piece("", step.note, Tone::quiet);
    if (step.queuedTexts) {
      expect(phone_.stored(StoreKeys::pendingSmsQueueCount) == *step.queuedTexts,
             std::string(*step.queuedTexts) + " texts are queued");
    }
  }

  // Shows the message, and returns the dialog.
  std::string processed(std::string_view message) {
    screen_.piece("Bank SMS", platform::repairedUtf8(message));
    return answered(phone_.processSms(std::string(message)));
  }

  std::string added(const AddedExpense& expense) {
    const std::string amount(expense.amount);
    const std::string merchant(expense.merchant);
    screen_.piece("Add Expense", "Amount " + amount + ", merchant " + merchant);
    return answered(phone_.addExpense(amount, merchant));
  }

  std::string performed(const Event& event) {
    if (const auto* const sms = std::get_if<BankSms>(&event)) return processed(sms->text);
    return added(std::get<AddedExpense>(event));
  }

  std::string answered(const IntentAnswer& answer) {
    if (!answer.log.empty()) screen_.piece("Log", answer.log, Tone::quiet);
    screen_.piece("Dialog", answer.dialog, Tone::good);
    return answer.dialog;
  }

  // Notifications appear one second after the run.
  std::vector<ShownNotification> notified(std::size_t count) {
    auto shown = phone_.nextNotifications(count, goesOn_);
    for (const ShownNotification& notification : shown) {
      screen_.piece("Notification", notification.summary + "\n" + notification.body);
    }
    if (goesOn()) expect(shown.size() == count, std::to_string(count) + " notifications appear");
    return shown;
  }

  void showState() {
    screen_.piece("Queue", phone_.queue());
    const std::string widget = phone_.widget();
    if (std::exchange(shownWidget_, widget) == widget) {
      screen_.piece("Widget", "unchanged", Tone::quiet);
    } else {
      screen_.piece("Widget", widget);
    }
  }

  // Shows the results of a message after its dialog.
  void showOutcome() {
    notified(phone_.descriptions("list").size() + phone_.descriptions("review").size());
    showState();
    showLedger();
  }

  // Shows the ledger's list and its review list, each unless it is empty.
  void showLedger() {
    for (const std::string command : {"list", "review"}) {
      if (phone_.descriptions(command).empty()) continue;
      screen_.heading("kivo-ledger " + command);
      screen_.table(phone_.ledger(command));
    }
  }

  // Shows the list and checks that each transaction is in it once, also those sent from the queue.
  void showEnd() {
    if (!goesOn()) return;
    notified(0);  // late ones
    showLedger();
    const auto listed = phone_.descriptions("list");
    const auto& expected = listedAtTheEnd();
    expect(std::is_permutation(listed.begin(), listed.end(), expected.begin(), expected.end()),
           "the ledger lists 6 transactions, each once");
    if (end() != DemoEnd::asExpected) return;
    screen_.line("The two texts that were sent again are listed once.", Tone::quiet);
    screen_.heading("All went as expected: 6 transactions booked, each once, and none lost.");
  }

  void expect(bool kept, const std::string& expectation) {
    if (kept || !goesOn()) return;
    screen_.piece("UNEXPECTED", "expected: " + expectation, Tone::bad);
    asExpected_ = false;
  }

  [[nodiscard]] DemoEnd end() const {
    if (!goesOn()) return DemoEnd::interrupted;
    return asExpected_ ? DemoEnd::asExpected : DemoEnd::notAsExpected;
  }

 private:
  DemoScreen& screen_;
  const std::function<bool()>& goesOn_;
  DemoPhone phone_;
  std::string shownWidget_;
  bool asExpected_ = true;
};

}  // namespace

DemoEnd DemoStory::tell(DemoScreen& screen, const std::function<bool()>& goesOn) {
  screen.line("Kivo's intents extension, with a phone and a ledger of its own", Tone::strong);
  screen.line("Real programs in temporary folders; your own messages and records are not used.",
              Tone::quiet);
  Demonstration story(screen, goesOn, usualCurrency.text());

  story.showSignIn();
  for (const Step& step : stepsOnline()) story.perform(step);
  story.phone().stopLedger();
  story.perform(stepOffline());
  story.phone().startLedger();
  story.perform(stepBackOnline());
  story.showEnd();
  return story.end();
}

DemoEnd DemoStory::show(DemoScreen& screen, const std::string& message,
                        const std::function<bool()>& goesOn) {
  // The phone takes the message's currency, so that the ledger needs no exchange rate.
  const std::string text = platform::repairedUtf8(message);
  const auto amount = recognition::read(text, usualCurrency).amount;
  const std::string currency = (amount ? amount->currency : usualCurrency).text();
  Demonstration demonstration(screen, goesOn, currency);
  demonstration.processed(message);
  demonstration.showOutcome();
  return demonstration.end();
}

}  // namespace kivo
