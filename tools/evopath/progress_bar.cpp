#include "progress_bar.hpp"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <iostream>

#include "interruption.hpp"

namespace evopath {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

void noteInterrupt(int /*signal*/) {
  isInterrupted = 1;
}

}  // namespace

ProgressBar::ProgressBar(const std::string& title)
    : title_(title), isShown_(isatty(STDERR_FILENO) != 0) {
  isInterrupted = 0;
  sigaction(SIGINT, nullptr, &formerAction_);
  if (formerAction_.sa_handler == SIG_IGN) return;  // as for what a shell runs in the background
  struct sigaction action {};
  action.sa_handler = noteInterrupt;
  action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

ProgressBar::~ProgressBar() {
  if (isShown_ && percent_ >= 0) std::cerr << "\r\033[K" << std::flush;
  sigaction(SIGINT, &formerAction_, nullptr);
}

tarn::evolution::catalogue::StoreProgress ProgressBar::progress() {
  return [this](double share) {
    if (isInterrupted != 0) throw Interrupted("interrupted; nothing has been changed", SIGINT);
    if (isShown_) show(share);
  };
}

void ProgressBar::show(double share) {
  constexpr int width = 40;
  const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
  if (percent == percent_) return;
  percent_ = percent;
  const auto filled = static_cast<std::size_t>(percent * width / 100);
  std::cerr << "\r" << title_ << " [" << std::string(filled, '#')
            << std::string(width - filled, ' ') << "] " << percent << " %" << std::flush;
}

}  // namespace evopath
