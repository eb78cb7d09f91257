// The program kivo: a window on the book.
#include <memory>
#include <string_view>

#include <adwaita.h>

#include "app/app_window.h"
#include "app/signals.h"
#include "platform/linux/process/process_start.h"

namespace kivo::app {
namespace {

constexpr const char* applicationId = "app.kivo.expenses";

// The bars, in the colours of the theme, rows that are buttons, and toasts above the bar of pages.
constexpr const char* style =
    "button.kivo-row { font-weight: normal; }"
    "progressbar.kivo-share > trough > progress { background-color: @accent_bg_color; }"
    "progressbar.kivo-over > trough > progress { background-color: @warning_bg_color; }"
    "toast { margin-bottom: 64px; }";

class App {
 public:
  App() : application_(adw_application_new(applicationId, G_APPLICATION_HANDLES_OPEN)) {
    onSignal(application_, "startup", [] { loadStyle(); });
    onSignal(application_, "activate", [this] { window().present(); });
    g_signal_connect(application_, "open", G_CALLBACK(openLinks), this);
  }
  ~App() { g_object_unref(application_); }
  App(const App&) = delete;
  App& operator=(const App&) = delete;

  int run(int count, char** arguments) {
    return g_application_run(G_APPLICATION(application_), count, arguments);
  }

 private:
  // Any program can open a link, so one shows something at most.
  static void openLinks(GApplication*, GFile** links, gint count, const char*,
                        gpointer data) noexcept {
    AppWindow& window = static_cast<App*>(data)->window();
    if (count > 0) {
      char* link = g_file_get_uri(links[0]);
      window.open(link);
      g_free(link);
    }
    window.present();
  }

  static void loadStyle() {
    GtkCssProvider* provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, style, -1);
    gtk_style_context_add_provider_for_display(gdk_display_get_default(),
                                               GTK_STYLE_PROVIDER(provider),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
  }

  AppWindow& window() {
    if (!window_) window_ = std::make_unique<AppWindow>(GTK_APPLICATION(application_));
    return *window_;
  }

  AdwApplication* application_;
  std::unique_ptr<AppWindow> window_;
};

}  // namespace
}  // namespace kivo::app

int main(int count, char** arguments) {
  kivo::linux_platform::startProcess();
  for (int at = 1; at < count; ++at) {
    if (std::string_view(arguments[at]) != "--version") continue;
    g_print("kivo %s\n", KIVO_VERSION);
    return 0;
  }
  gtk_disable_setlocale();
  return kivo::app::App().run(count, arguments);
}
