#include "app/app_window.h"

#include <exception>
#include <utility>

#include "app/add_page.h"
#include "app/month_page.h"
#include "app/more_page.h"
#include "app/payment_page.h"
#include "app/payments_page.h"
#include "app/review_page.h"
#include "app/widgets.h"
#include "feedback/deep_link.h"
#include "platform/linux/foundation/failure.h"
#include "recording/template_file.h"

namespace kivo::app {

using book::Book;
using linux_platform::Failure;

namespace {

// A phone's screen is 360 wide.
constexpr int narrowest = 360;
constexpr int lowest = 294;
constexpr int usualWidth = 900;
constexpr int usualHeight = 720;

// Time enough to read a sentence and to reach Undo by the keyboard.
constexpr guint toastSeconds = 12;
// In one line: what a phone has room for beside the buttons.
constexpr int toastCharacters = 22;

constexpr const char* monthName = "month";
constexpr const char* paymentsName = "payments";
constexpr const char* reviewName = "review";

using Refresh = std::function<void()>;

// "the file is damaged" as a sentence of its own.
std::string sentence(std::string why) {
  if (!why.empty()) why.front() = g_ascii_toupper(why.front());
  return why + ".";
}

}  // namespace

AppWindow::AppWindow(GtkApplication* application)
    : window_(adw_application_window_new(application)) {
  gtk_window_set_title(GTK_WINDOW(window_), "Kivo");
  gtk_window_set_icon_name(GTK_WINDOW(window_), "app.kivo.expenses");
  gtk_window_set_default_size(GTK_WINDOW(window_), usualWidth, usualHeight);
  gtk_widget_set_size_request(window_, narrowest, lowest);
  onSignal(window_, "destroy", [this] { dropPages(); });
  bindKeys(application);
  openBook();
}

AppWindow::~AppWindow() { g_clear_weak_pointer(&toast_); }

void AppWindow::present() { gtk_window_present(GTK_WINDOW(window_)); }

void AppWindow::bindKeys(GtkApplication* application) {
  const auto bind = [&](const char* name, const char* key, std::function<void()> does) {
    GSimpleAction* action = g_simple_action_new(name, nullptr);
    onSignal(action, "activate", std::move(does));
    g_action_map_add_action(G_ACTION_MAP(window_), G_ACTION(action));
    g_object_unref(action);
    const char* const keys[] = {key, nullptr};
    gtk_application_set_accels_for_action(application, (std::string("win.") + name).c_str(), keys);
  };
  bind("back", "Escape", [this] { pop(); });
  bind("close", "<Control>w", [this] { gtk_window_close(GTK_WINDOW(window_)); });
  bind("add", "<Control>n", [this] {
    if (month_) openAddPage(*this);
  });
  bind("find", "<Control>f", [this] {
    if (payments_) showPayments({});
  });
}

void AppWindow::openBook() {
  try {
    book_ = std::make_unique<AppBook>([this] { refresh(); });
    buildPages();
  } catch (const Failure& failure) {
    showFailure(failure.what());
  }
}

void AppWindow::buildPages() {
  month_ = std::make_unique<MonthPage>(*this);
  payments_ = std::make_unique<PaymentsPage>(*this);
  review_ = std::make_unique<ReviewPage>(*this);
  leaflet_ = adw_leaflet_new();
  adw_leaflet_set_can_unfold(ADW_LEAFLET(leaflet_), FALSE);
  adw_leaflet_set_can_navigate_back(ADW_LEAFLET(leaflet_), TRUE);
  main_ = mainPage();
  adw_leaflet_append(ADW_LEAFLET(leaflet_), main_);
  const auto left = [this] { leaving_.call([this] { dropLeftPages(); }); };
  onSignal(leaflet_, "notify::visible-child", left);
  onSignal(leaflet_, "notify::child-transition-running", left);
  toasts_ = adw_toast_overlay_new();
  adw_toast_overlay_set_child(ADW_TOAST_OVERLAY(toasts_), leaflet_);
  adw_application_window_set_content(ADW_APPLICATION_WINDOW(window_), toasts_);
  refresh();
}

GtkWidget* AppWindow::mainPage() {
  stack_ = adw_view_stack_new();
  gtk_widget_set_vexpand(stack_, TRUE);
  addPage(month_->widget(), monthName, "This Month", "x-office-calendar-symbolic");
  addPage(payments_->widget(), paymentsName, "Payments", "view-list-symbolic");
  addPage(review_->widget(), reviewName, "Review", "mail-unread-symbolic");
  addPage(newMorePage(*this), "more", "More", "view-more-horizontal-symbolic");
  GtkWidget* title = adw_view_switcher_title_new();
  adw_view_switcher_title_set_title(ADW_VIEW_SWITCHER_TITLE(title), "Kivo");
  adw_view_switcher_title_set_stack(ADW_VIEW_SWITCHER_TITLE(title), ADW_VIEW_STACK(stack_));
  GtkWidget* header = adw_header_bar_new();
  adw_header_bar_set_title_widget(ADW_HEADER_BAR(header), title);
  adw_header_bar_set_centering_policy(ADW_HEADER_BAR(header), ADW_CENTERING_POLICY_STRICT);
  adw_header_bar_pack_start(ADW_HEADER_BAR(header), iconButton("list-add-symbolic", "Add a payment",
                                                               [this] { openAddPage(*this); }));
  GtkWidget* bar = adw_view_switcher_bar_new();
  adw_view_switcher_bar_set_stack(ADW_VIEW_SWITCHER_BAR(bar), ADW_VIEW_STACK(stack_));
  g_object_bind_property(title, "title-visible", bar, "reveal", G_BINDING_SYNC_CREATE);
  GtkWidget* page = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(page), header);
  gtk_box_append(GTK_BOX(page), stack_);
  gtk_box_append(GTK_BOX(page), bar);
  return page;
}

void AppWindow::addPage(GtkWidget* page, const char* name, const char* title, const char* icon) {
  AdwViewStackPage* added = adw_view_stack_add_titled(ADW_VIEW_STACK(stack_), page, name, title);
  adw_view_stack_page_set_icon_name(added, icon);
}

void AppWindow::refresh() {
  if (!month_) return;
  std::int64_t waiting = 0;
  if (!read([&](const Book& book) { waiting = book.reviewCount(); })) return;
  AdwViewStackPage* page = adw_view_stack_get_page(ADW_VIEW_STACK(stack_), review_->widget());
  adw_view_stack_page_set_badge_number(page, static_cast<guint>(waiting));
  adw_view_stack_page_set_needs_attention(page, waiting > 0);
  month_->refresh();
  payments_->refresh();
  review_->refresh();
  for (const Pushed& pushed : std::vector(pushed_)) {
    if (pushed.refresh) pushed.refresh();
  }
}

bool AppWindow::read(const std::function<void(const Book&)>& reads) {
  try {
    book_->book().atOneMoment([&] { reads(book_->book()); });
    return true;
  } catch (const book::BookFailure& failure) {
    book_->book().tell(failure);
    // The pages are still in use here.
    failing_.call([this, why = std::string(failure.what())] { showFailure(why); });
    return false;
  }
}

std::optional<std::int64_t> AppWindow::change(const std::string& words, const std::string& done,
                                              const std::function<void(Book&)>& steps) {
  return changeAs({words}, done, steps);
}

std::optional<std::int64_t> AppWindow::changeAs(const book::UserCommand& command,
                                                const std::string& done,
                                                const std::function<void(Book&)>& steps) {
  try {
    const auto number = book_->change(command, steps);
    tellDone(done, number);
    refresh();
    return number;
  } catch (const Failure& failure) {
    if (!command.addedTemplate.empty()) recording::TemplateFile::remove(command.addedTemplate);
    tellFailure("Nothing Was Changed", sentence(failure.what()));
    return std::nullopt;
  }
}

void AppWindow::changeMore(const std::string& words, std::int64_t number, const std::string& done,
                           const std::function<void(Book&)>& steps) {
  try {
    book_->changeMore(words, number, steps);
    tellDone(done, number);
    refresh();
  } catch (const Failure& failure) {
    tellFailure("Nothing More Was Changed", sentence(failure.what()));
  }
}

void AppWindow::tellDone(const std::string& done, std::optional<std::int64_t> number) {
  AdwToast* toast = adw_toast_new("");
  // A toast's own title is markup, and cut to one line.
  GtkWidget* title = textLabel(done, "heading");
  gtk_label_set_max_width_chars(GTK_LABEL(title), toastCharacters);
  adw_toast_set_custom_title(toast, title);
  adw_toast_set_timeout(toast, toastSeconds);
  // The overlay would show it after those before it.
  if (toast_ != nullptr) adw_toast_dismiss(toast_);
  g_set_weak_pointer(&toast_, toast);
  if (number) {
    adw_toast_set_button_label(toast, "Undo");
    onSignal(toast, "button-clicked", [this, number = *number] { undo(number); });
  }
  adw_toast_overlay_add_toast(ADW_TOAST_OVERLAY(toasts_), toast);
}

void AppWindow::tell(const std::string& text) { tellDone(text, std::nullopt); }

void AppWindow::undo(std::int64_t number) {
  if (!book_) return;
  try {
    const bool undone = book_->undo(number);
    refresh();
    if (undone) return tell("It is as it was before.");
    tellFailure("Not Taken Back",
                "The book was changed again since. The history shows the way back.");
  } catch (const Failure& failure) {
    tellFailure("Not Taken Back", sentence(failure.what()));
  }
}

void AppWindow::undoSince(std::int64_t number) {
  try {
    const std::int64_t count = book_->undoSince(number);
    refresh();
    tell(count == 0 ? "It was taken back before" : "It is as it was before.");
  } catch (const Failure& failure) {
    tellFailure("Not Taken Back", sentence(failure.what()));
  }
}

void AppWindow::tellFailure(const char* heading, const std::string& why) {
  GtkWidget* dialog = adw_message_dialog_new(GTK_WINDOW(window_), heading, why.c_str());
  adw_message_dialog_add_response(ADW_MESSAGE_DIALOG(dialog), "close", "Close");
  gtk_window_present(GTK_WINDOW(dialog));
}

void AppWindow::ask(const std::string& question, const std::string& detail, const char* yes,
                    std::function<void()> answer) {
  GtkWidget* dialog = adw_message_dialog_new(GTK_WINDOW(window_), nullptr, nullptr);
  adw_message_dialog_set_heading(ADW_MESSAGE_DIALOG(dialog), question.c_str());
  adw_message_dialog_set_body(ADW_MESSAGE_DIALOG(dialog), detail.c_str());
  adw_message_dialog_add_response(ADW_MESSAGE_DIALOG(dialog), "no", "No");
  adw_message_dialog_add_response(ADW_MESSAGE_DIALOG(dialog), "yes", yes);
  adw_message_dialog_set_response_appearance(ADW_MESSAGE_DIALOG(dialog), "yes",
                                             ADW_RESPONSE_SUGGESTED);
  adw_message_dialog_set_default_response(ADW_MESSAGE_DIALOG(dialog), "yes");
  adw_message_dialog_set_close_response(ADW_MESSAGE_DIALOG(dialog), "no");
  onSignal(dialog, "response::yes", std::move(answer));
  gtk_window_present(GTK_WINDOW(dialog));
}

void AppWindow::open(const std::string& link) {
  if (!month_) return;
  popAll();
  std::int64_t waiting = 0;
  read([&](const Book& book) { waiting = book.reviewCount(); });
  if (waiting > 0) showReview();
  if (const auto id = DeepLink::payment(link)) openPayment(*id);
}

void AppWindow::openPayment(std::int64_t id) { openPaymentPage(*this, id); }

void AppWindow::showPayments(const book::EntryFilter& filter) {
  popAll();
  adw_view_stack_set_visible_child_name(ADW_VIEW_STACK(stack_), paymentsName);
  payments_->show(filter);
}

void AppWindow::showReview() {
  adw_view_stack_set_visible_child_name(ADW_VIEW_STACK(stack_), reviewName);
}

void AppWindow::push(const std::string& title, GtkWidget* content, GtkWidget* action,
                     std::function<void()> refresh) {
  GtkWidget* header = adw_header_bar_new();
  GtkWidget* heading = adw_window_title_new(title.c_str(), nullptr);
  adw_header_bar_set_title_widget(ADW_HEADER_BAR(header), heading);
  adw_header_bar_pack_start(ADW_HEADER_BAR(header),
                            iconButton("go-previous-symbolic", "Back", [this] { pop(); }));
  if (action != nullptr) adw_header_bar_pack_end(ADW_HEADER_BAR(header), action);
  GtkWidget* page = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(page), header);
  gtk_box_append(GTK_BOX(page), content);
  dropLeftPages();
  adw_leaflet_append(ADW_LEAFLET(leaflet_), page);
  // With it, what the page's buttons use lives as long as they do.
  const auto destroy = +[](gpointer data) noexcept { delete static_cast<Refresh*>(data); };
  g_object_set_data_full(G_OBJECT(page), "kivo-page", new Refresh(refresh), destroy);
  pushed_.push_back({page, std::move(refresh)});
  adw_leaflet_set_visible_child(ADW_LEAFLET(leaflet_), page);
}

void AppWindow::pop() {
  if (pushed_.empty()) return;
  left_.push_back(pushed_.back().page);
  pushed_.pop_back();
  adw_leaflet_set_visible_child(ADW_LEAFLET(leaflet_),
                                pushed_.empty() ? main_ : pushed_.back().page);
}

void AppWindow::popAll() {
  while (!pushed_.empty()) pop();
}

// A page that was left, also by a swipe, is shown until the transition has ended.
void AppWindow::dropLeftPages() {
  if (leaflet_ == nullptr) return;
  if (adw_leaflet_get_child_transition_running(ADW_LEAFLET(leaflet_)) != FALSE) return;
  GtkWidget* shown = adw_leaflet_get_visible_child(ADW_LEAFLET(leaflet_));
  while (!pushed_.empty() && pushed_.back().page != shown) {
    left_.push_back(pushed_.back().page);
    pushed_.pop_back();
  }
  for (GtkWidget* page : std::exchange(left_, {})) {
    adw_leaflet_remove(ADW_LEAFLET(leaflet_), page);
  }
}

void AppWindow::showFailure(const std::string& why) {
  GtkWidget* page = statusPage("dialog-error-symbolic", "The Book Cannot Be Shown", sentence(why));
  GtkWidget* again = textButton("Try Again", [this] {
    failing_.call([this] { openBook(); });  // this button is about to go
  });
  gtk_widget_add_css_class(again, "pill");
  gtk_widget_set_halign(again, GTK_ALIGN_CENTER);
  adw_status_page_set_child(ADW_STATUS_PAGE(page), again);
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(box), adw_header_bar_new());
  gtk_box_append(GTK_BOX(box), page);
  adw_application_window_set_content(ADW_APPLICATION_WINDOW(window_), box);
  dropPages();
}

void AppWindow::dropPages() {
  leaving_.cancel();
  leaflet_ = nullptr;
  stack_ = nullptr;
  pushed_.clear();
  left_.clear();
  month_.reset();
  payments_.reset();
  review_.reset();
  book_.reset();
}

}  // namespace kivo::app
