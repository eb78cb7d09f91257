#include "server/metrics.h"

#include "platform/foundation/number_text.h"

namespace kivo::server {
namespace {

using platform::integerText;

std::string headOf(const std::string& name, const std::string& meaning, const char* type) {
  return "# HELP " + name + " " + meaning + "\n# TYPE " + name + " " + type + "\n";
}

std::string summaryOf(const std::string& name, const std::string& meaning, double sum,
                      std::int64_t count) {
  return headOf(name, meaning, "summary") + name + "_sum " + platform::doubleText(sum) + "\n" +
         name + "_count " + integerText(count) + "\n";
}

double secondsOf(std::chrono::steady_clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

void Metrics::countAnswer(const std::string& route, int status) { ++answers_[{route, status}]; }

void Metrics::countPause(std::chrono::milliseconds pause) {
  ++pauses_;
  pausedSeconds_ += secondsOf(pause);
}

void Metrics::countStep(std::chrono::steady_clock::duration time) {
  ++steps_;
  stepSeconds_ += secondsOf(time);
}

std::string Metrics::text() const {
  std::string text = headOf("kivo_answers_total", "Answers by route and status.", "counter");
  for (const auto& [what, count] : answers_) {
    text += "kivo_answers_total{route=\"" + what.first + "\",status=\"" +
            std::to_string(what.second) + "\"} " + integerText(count) + "\n";
  }
  text += summaryOf("kivo_pause_seconds", "Time for which requests of hasty people waited.",
                    pausedSeconds_, pauses_);
  return text + summaryOf("kivo_step_seconds", "Time of the steps that answered requests together.",
                          stepSeconds_, steps_);
}

}  // namespace kivo::server
