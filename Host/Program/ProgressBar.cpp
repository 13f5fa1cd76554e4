#include "Program/ProgressBar.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>

namespace velmora::program {

void ProgressBar::Draw(double share) {
  if (!shown_) return;
  constexpr int kCells = 40;
  const int percent = static_cast<int>(std::clamp(share, 0.0, 1.0) * 100);
  if (percent == drawnPercent_) return;
  drawnPercent_ = percent;
  const auto filled = static_cast<std::size_t>(percent * kCells / 100);
  const std::string bar = std::string(filled, '#') + std::string(kCells - filled, '.');
  std::fprintf(stderr, "\r[%s] %3d %%", bar.c_str(), percent);
  std::fflush(stderr);
}

void ProgressBar::Clear() {
  if (drawnPercent_ >= 0) std::fputs("\r\x1b[K", stderr);
  drawnPercent_ = -1;
}

}  // namespace velmora::program
