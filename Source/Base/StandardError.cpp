#include "Base/StandardError.h"

#include <atomic>
#include <cstdio>

namespace velmora {
namespace {

std::atomic<LineFilter> theFilter{nullptr};

}  // namespace

void WriteStandardError(const std::string& line) {
  const bool isPlain = theFilter == nullptr;
  std::fprintf(stderr, "%s\n", isPlain ? line.c_str() : FilteredLine(line).c_str());
}

std::string FilteredLine(const std::string& line) {
  const LineFilter filter = theFilter;
  return filter != nullptr ? filter(line) : line;
}

void SetStandardErrorFilter(LineFilter filter) {
  theFilter = filter;
}

}  // namespace velmora
