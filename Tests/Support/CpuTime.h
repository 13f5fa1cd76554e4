#pragma once

#include <ctime>

namespace velmora::test {

/// Seconds of processor time that `work` takes: what a busy machine does not change.
template <class Work>
double CpuSeconds(Work work) {
  const std::clock_t start = std::clock();
  work();
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

}  // namespace velmora::test
