#include "progress_bar.hpp"

#include <algorithm>

#include "interruption.hpp"

namespace evopath {

tarn::evolution::catalogue::StoreProgress ProgressBar::progress() {
  return [this](double share) {
    throwIfInterrupted("interrupted; nothing has been changed");
    if (line_.isOnTerminal()) show(share);
  };
}

void ProgressBar::show(double share) {
  constexpr std::size_t widest = 40;
  constexpr std::size_t narrowest = 5;
  const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
  if (percent == percent_) return;
  percent_ = percent;
  const std::string number = " " + std::to_string(percent) + " %";
  const std::size_t taken = title_.size() + std::string(" [] 100 %").size();
  const std::size_t width =
      std::min(widest, TerminalLine::width() - std::min(TerminalLine::width(), taken));
  const std::size_t filled = static_cast<std::size_t>(percent) * width / 100;
  const std::string bar = " [" + std::string(filled, '#') + std::string(width - filled, ' ') + "]";
  line_.show(title_ + (width < narrowest ? "" : bar) + number);
}

}  // namespace evopath
