#include "app/payment_page.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/app_window.h"
#include "app/entry_actions.h"
#include "app/entry_fields.h"
#include "app/sum_texts.h"
#include "app/teach_page.h"
#include "app/widgets.h"
#include "book/current_day.h"
#include "recording/refund_change.h"
#include "recording/rule_sentence.h"

namespace kivo::app {

using book::EntryChange;
using book::KeptRule;
using book::LedgerEntry;

namespace {

constexpr int gap = 18;

std::string ids(std::int64_t id) { return std::to_string(id); }

// The words of the command that makes `change`.
std::string editWords(std::int64_t id, const EntryChange& change, bool makesRule) {
  std::string words = "edit " + ids(id);
  const auto add = [&](const char* option, const std::string& value) {
    words += std::string(" ") + option + " " + book::commandWord(value);
  };
  if (change.date) add("--date", change.date->text());
  if (change.kind) add("--kind", kindText(*change.kind));
  if (change.refund) words += *change.refund ? " --refund" : " --no-refund";
  if (change.amount) {
    add("--amount", amountText(*change.amount));
    add("--currency", change.amount->currency.text());
  }
  if (change.description) add("--description", *change.description);
  if (change.category) add("--category", *change.category);
  if (!makesRule && (change.description || change.category)) words += " --once";
  return words;
}

class PaymentPage : public std::enable_shared_from_this<PaymentPage> {
 public:
  PaymentPage(AppWindow& window, LedgerEntry entry)
      : window_(window),
        entry_(std::move(entry)),
        box_(gtk_box_new(GTK_ORIENTATION_VERTICAL, gap)) {
    withMargins(box_, 12);
  }

  void open() {
    build();
    GtkWidget* save = textButton("Save", [this] { this->save(); });
    gtk_widget_add_css_class(save, "suggested-action");
    window_.push(shownName(entry_.description), scrolledColumn(box_), save,
                 [page = shared_from_this()] { page->follow(); });
  }

 private:
  void build() {
    std::vector<std::string> categories;
    window_.read([&](const book::Book& book) { categories = book.categories(); });
    const auto currency = entry_.amount ? entry_.amount->currency : window_.book().currency();
    fields_.emplace("Payment", currency, categories);
    fields_->set(entry_);
    fields_->addRefund(entry_.refund);
    gtk_box_append(GTK_BOX(box_), fields_->group());
    addRuleSwitch();
    addFacts();
    addLookAlike();
    addMessage();
    addActions();
  }

  void addRuleSwitch() {
    if (entry_.payee.empty()) return;
    rule_ = gtk_switch_new();
    gtk_switch_set_active(GTK_SWITCH(rule_), TRUE);
    gtk_widget_set_valign(rule_, GTK_ALIGN_CENTER);
    const std::string title = "Also for later payments of " + shownName(entry_.payee);
    nameFor(rule_, title);
    GtkWidget* row = plainRow(title, "Payee and category hold for them from now on", rule_);
    adw_action_row_set_activatable_widget(ADW_ACTION_ROW(row), rule_);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(fields_->group()), row);
  }

  void addFacts() {
    GtkWidget* group = rowGroup("From the message");
    bool isAny = false;
    const auto add = [&](const char* name, const std::string& value) {
      if (value.empty()) return;
      isAny = true;
      GtkWidget* text = lineLabel(shownName(value));
      adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), plainRow(name, "", text));
    };
    add("Named", entry_.payee);
    add("Account", entry_.account);
    add("Reference", entry_.reference);
    if (entry_.original) add("Converted from", sums_.text(*entry_.original));
    if (entry_.balance) add("Balance after it", sums_.text(*entry_.balance));
    if (entry_.counterpart) addCounterpart(group, isAny);
    if (!isAny) return g_object_ref_sink(group), g_object_unref(group);
    gtk_box_append(GTK_BOX(box_), group);
  }

  void addCounterpart(GtkWidget* group, bool& isAny) {
    isAny = true;
    const std::int64_t other = *entry_.counterpart;
    GtkWidget* row = plainRow("The other half of this transfer", "",
                              gtk_image_new_from_icon_name("go-next-symbolic"),
                              [this, other] { window_.openPayment(other); });
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), row);
  }

  // Both payments side by side, so that a person sees what differs.
  void addLookAlike() {
    if (!entry_.possibleDuplicateOf) return;
    std::optional<LedgerEntry> other;
    window_.read([&](const book::Book& book) { other = book.entry(*entry_.possibleDuplicateOf); });
    if (!other) return;
    GtkWidget* group = rowGroup("Looks like another payment");
    GtkWidget* grid = gtk_grid_new();
    gtk_grid_set_column_homogeneous(GTK_GRID(grid), TRUE);
    gtk_grid_set_column_spacing(GTK_GRID(grid), 12);
    gtk_grid_set_row_spacing(GTK_GRID(grid), 4);
    addColumn(grid, 0, "This one", entry_);
    addColumn(grid, 1, "The other", *other);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), grid);
    const std::int64_t id = other->id;
    gtk_box_append(GTK_BOX(box_), group);
    gtk_box_append(GTK_BOX(box_),
                   textButton("Show the Other", [this, id] { window_.openPayment(id); }));
  }

  void addColumn(GtkWidget* grid, int column, const char* heading, const LedgerEntry& entry) {
    int row = 0;
    const auto add = [&](const std::string& text, const char* style) {
      gtk_grid_attach(GTK_GRID(grid), textLabel(text, style), column, row++, 1, 1);
    };
    add(heading, "heading");
    add(shownName(entry.description), nullptr);
    add(sums_.text(entry), nullptr);
    add(dayName(entry.date, book::currentDay()), nullptr);
    add(shownName(entry.account), nullptr);
    add(entry.text ? linesOf(*entry.text) : "", "caption");
  }

  static std::string linesOf(const std::string& text) { return shownName(text); }

  void addMessage() {
    if (!entry_.text) return;
    GtkWidget* group = rowGroup("Message");
    GtkWidget* label = textLabel(*entry_.text);
    gtk_label_set_selectable(GTK_LABEL(label), TRUE);
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(group), label);
    gtk_box_append(GTK_BOX(box_), group);
  }

  void addActions() {
    if (entry_.state == LedgerEntry::State::review) {
      right_ = textButton("Right, Book It", [this] { saysRight(window_, entry_.id); });
      gtk_box_append(GTK_BOX(box_), right_);
    }
    if (entry_.text) {
      gtk_box_append(GTK_BOX(box_),
                     textButton("Teach", [this] { openTeachPage(window_, entry_.id); }));
    }
    GtkWidget* remove = textButton("Delete", [this] { this->remove(); });
    gtk_widget_add_css_class(remove, "destructive-action");
    gtk_box_append(GTK_BOX(box_), remove);
  }

  // What the fields say otherwise than the entry; nullopt when one of them cannot be.
  std::optional<EntryChange> stated() const {
    const auto name = fields_->name();
    const auto day = name ? fields_->day() : std::nullopt;
    // A sum that is unknown may stay so.
    const auto sum = day ? fields_->sum() : std::nullopt;
    if (!name || !day || !sum) return std::nullopt;
    EntryChange change;
    if (*name != entry_.description) change.description = name;
    if (*day != entry_.date || entry_.impossibleDate) change.date = day;
    if (sum != entry_.amount) change.amount = sum;
    if (fields_->kind() != entry_.kind) change.kind = fields_->kind();
    if (fields_->refund() != entry_.refund) change.refund = fields_->refund();
    const std::string category = fields_->category();
    if (!category.empty() && category != entry_.category) change.category = category;
    return change;
  }

  void save() {
    auto change = stated();
    if (!change) return;
    const bool isNothing = !change->description && !change->date && !change->amount &&
                           !change->kind && !change->category && !change->refund;
    if (isNothing) return window_.pop();
    const bool makesRule = rule_ != nullptr && gtk_switch_get_active(GTK_SWITCH(rule_)) != FALSE &&
                           (change->description || change->category);
    const std::int64_t id = entry_.id;
    const std::string words = editWords(id, *change, makesRule);
    recording::completeRefund(*change, entry_);
    const auto kind = change->kind.value_or(entry_.kind);
    std::string done = "Saved";
    std::optional<KeptRule> rule;
    std::size_t earlier = 0;
    auto* window = &window_;
    isChanging_ = true;
    const auto number = window_.change(words, done, [&](book::Book& book) {
      if (!book.edit(id, *change)) throw linux_platform::Failure("it was deleted meanwhile");
      if (makesRule) rule = book.keepRuleOf(id, *change);
      if (!rule) return;
      earlier = book.earlierFor(*rule).changing.size();
      done += ". " + shownName(recording::ruleSentence(rule->rule, kind));
    });
    isChanging_ = false;
    if (!number) return;
    if (earlier > 0) offerEarlier(*window, words, *number, {*rule, kind, earlier});
    window->pop();
  }

  struct Offered {
    KeptRule rule;
    money::Kind kind;
    std::size_t earlier;
  };

  static void offerEarlier(AppWindow& window, const std::string& words, std::int64_t number,
                           const Offered& offered) {
    const std::string sentence =
        shownName(recording::ruleSentence(offered.rule.rule, offered.kind));
    const std::string ones =
        std::to_string(offered.earlier) + (offered.earlier == 1 ? " earlier one" : " earlier ones");
    window.ask(ones + " too?", sentence, "Change Them",
               [&window, words, number, rule = offered.rule, ones] {
                 window.changeMore(words, number, "Changed " + ones,
                                   [&](book::Book& book) { book.changeEarlier(rule); });
               });
  }

  void remove() {
    isChanging_ = true;
    const bool isDeleted = deletePayment(window_, entry_.id);
    isChanging_ = false;
    if (isDeleted) window_.pop();
  }

  // After a change elsewhere: leaves when the payment is gone; what was typed stays.
  void follow() {
    if (isChanging_) return;
    std::optional<LedgerEntry> now;
    if (!window_.read([&](const book::Book& book) { now = book.entry(entry_.id); })) return;
    if (now) return showState(*now);
    window_.pop();
    window_.tell("This payment was deleted");
  }

  // What was in review may be booked now, and may wait again after that was taken back.
  void showState(const LedgerEntry& now) {
    if (right_ == nullptr) return;
    gtk_widget_set_visible(right_, now.state == LedgerEntry::State::review ? TRUE : FALSE);
  }

  AppWindow& window_;
  LedgerEntry entry_;
  GtkWidget* box_;
  std::optional<EntryFields> fields_;
  GtkWidget* rule_ = nullptr;
  GtkWidget* right_ = nullptr;
  bool isChanging_ = false;
  SumTexts sums_;
};

}  // namespace

void openPaymentPage(AppWindow& window, std::int64_t id) {
  std::optional<LedgerEntry> entry;
  if (!window.read([&](const book::Book& book) { entry = book.entry(id); })) return;
  if (!entry) return window.tell("This payment does not exist any more");
  std::make_shared<PaymentPage>(window, *std::move(entry))->open();
}

}  // namespace kivo::app
