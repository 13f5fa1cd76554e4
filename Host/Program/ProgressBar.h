#pragma once

namespace velmora::program {

/// A bar on standard error that shows how far long work is.
class ProgressBar {
 public:
  /// @param shown false: nothing is drawn
  explicit ProgressBar(bool shown) : shown_(shown) {}
  ~ProgressBar() { Clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// @param share from 0 to 1
  void Draw(double share);
  void Clear();

 private:
  bool shown_;
  int drawnPercent_ = -1;
};

}  // namespace velmora::program
