// Measures the window beside an empty libadwaita window: the time to its second frame, the time to
// another month, and the memory. Each figure is of a process of its own; the two alternate. Needs a
// display and a book: XDG_DATA_HOME names a folder that has one.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <adwaita.h>

#include "app/app_window.h"
#include "app/signals.h"
#include "platform/linux/process/child_process.h"

namespace {

using kivo::app::AppWindow;
using kivo::app::Later;
using kivo::app::onSignal;

constexpr int runs = 9;

struct Figures {
  double frame = 0;
  double month = 0;
  double megabytes = 0;
};

double milliseconds() { return static_cast<double>(g_get_monotonic_time()) / 1000; }

// Of what the process has in memory for itself alone.
double ownMegabytes() {
  std::ifstream file("/proc/self/smaps_rollup");
  std::string line;
  double kilobytes = 0;
  while (std::getline(file, line)) {
    if (line.starts_with("Private_")) kilobytes += std::stod(line.substr(line.find(':') + 1));
  }
  return kilobytes / 1024;
}

GtkWidget* buttonCalled(GtkWidget* widget, const char* tooltip) {
  const char* text = gtk_widget_get_tooltip_text(widget);
  if (GTK_IS_BUTTON(widget) && text != nullptr && std::strcmp(text, tooltip) == 0) return widget;
  for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    if (GtkWidget* found = buttonCalled(child, tooltip)) return found;
  }
  return nullptr;
}

// One window, from the start of the process to its figures on standard output.
class Run {
 public:
  Run(bool isEmpty, double begin)
      : begin_(begin), application_(adw_application_new(nullptr, G_APPLICATION_NON_UNIQUE)) {
    onSignal(application_, "activate", [this, isEmpty] {
      isEmpty ? showEmpty() : showKivo();
      shown_ = GTK_WIDGET(gtk_application_get_windows(GTK_APPLICATION(application_))->data);
      countFrames();
    });
  }

  void run() { g_application_run(G_APPLICATION(application_), 0, nullptr); }

 private:
  void showEmpty() {
    GtkWidget* window = adw_application_window_new(GTK_APPLICATION(application_));
    gtk_window_set_default_size(GTK_WINDOW(window), 900, 720);
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(box), adw_header_bar_new());
    adw_application_window_set_content(ADW_APPLICATION_WINDOW(window), box);
    gtk_window_present(GTK_WINDOW(window));
  }

  void showKivo() {
    window_ = std::make_unique<AppWindow>(GTK_APPLICATION(application_));
    window_->present();
  }

  void countFrames() {
    frames_ = 0;
    const auto tick = +[](GtkWidget*, GdkFrameClock*, gpointer data) noexcept -> gboolean {
      return static_cast<Run*>(data)->isFrame();
    };
    gtk_widget_add_tick_callback(shown_, tick, this, nullptr);
  }

  // At the third tick two frames were drawn.
  gboolean isFrame() {
    if (++frames_ < 3) return G_SOURCE_CONTINUE;
    if (!wasMonthShown_) {
      figures_.frame = milliseconds() - begin_;
      wasMonthShown_ = true;
      settling_.call([this] { showOtherMonth(); }, std::chrono::milliseconds(1500));
    } else {
      figures_.month = milliseconds() - asked_;
      finish();
    }
    return G_SOURCE_REMOVE;
  }

  void showOtherMonth() {
    figures_.megabytes = ownMegabytes();
    GtkWidget* button = buttonCalled(shown_, "Previous month");
    if (button == nullptr) return finish();
    asked_ = milliseconds();
    g_signal_emit_by_name(button, "clicked");
    countFrames();
  }

  void finish() {
    std::printf("%f %f %f\n", figures_.frame, figures_.month, figures_.megabytes);
    g_application_quit(G_APPLICATION(application_));
  }

  double begin_;
  AdwApplication* application_;
  std::unique_ptr<AppWindow> window_;
  GtkWidget* shown_ = nullptr;
  Figures figures_;
  int frames_ = 0;
  bool wasMonthShown_ = false;
  double asked_ = 0;
  Later settling_;
};

Figures measured(const char* program, const char* which) {
  const auto result = kivo::linux_platform::runProgram({.program = program, .arguments = {which}},
                                                       std::chrono::seconds(30));
  Figures figures;
  std::sscanf(result.output.c_str(), "%lf %lf %lf", &figures.frame, &figures.month,
              &figures.megabytes);
  return figures;
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + runs / 2, values.end());
  return values[runs / 2];
}

void compare(const char* program) {
  std::vector<double> emptyFrames;
  std::vector<double> frames;
  std::vector<double> months;
  std::vector<double> emptyMegabytes;
  std::vector<double> megabytes;
  for (int nth = 0; nth < runs; ++nth) {
    const Figures empty = measured(program, "empty");
    const Figures kivo = measured(program, "kivo");
    emptyFrames.push_back(empty.frame);
    frames.push_back(kivo.frame);
    months.push_back(kivo.month);
    emptyMegabytes.push_back(empty.megabytes);
    megabytes.push_back(kivo.megabytes);
  }
  std::printf("medians of %d runs      empty     kivo\n", runs);
  std::printf("second frame        %6.0f ms %6.0f ms\n", median(emptyFrames), median(frames));
  std::printf("memory of its own   %6.0f MB %6.0f MB\n", median(emptyMegabytes), median(megabytes));
  std::printf("another month                 %6.0f ms\n", median(months));
}

}  // namespace

int main(int count, char** arguments) {
  const double begin = milliseconds();
  if (count == 2) {
    Run(std::strcmp(arguments[1], "empty") == 0, begin).run();
  } else {
    compare(arguments[0]);
  }
}
